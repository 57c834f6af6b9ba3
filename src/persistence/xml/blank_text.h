#pragma once

#include <algorithm>

#include "tvmath/wide_string.h"

inline namespace tvmath {

/// True for a text of nothing but what XML counts as white space; also for an empty one.
inline bool is_blank(wide_string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](wide_char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

}  // namespace tvmath
