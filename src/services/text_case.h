#pragma once

#include <algorithm>
#include <string_view>

#include "tvmath/wide_string.h"

inline namespace tvmath {

/// Compares the letters A to Z without case and everything else exactly. The texts may differ in type.
template <class text, class other_text>
bool equal_ignoring_case(text const& a, other_text const& b) {
    auto const lower = [](auto unit) {
        auto const code = static_cast<char32_t>(unit);
        return code >= U'A' && code <= U'Z' ? code + (U'a' - U'A') : code;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](auto x, auto y) { return lower(x) == lower(y); });
}

}  // namespace tvmath
