#pragma once

#include <cstddef>

#include "persistence/token_reader.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// Sets `parts` to the interiors of the first items when there are at least that many.
template <std::size_t n>
bool first_parts(wide_string_view text, wide_string_view (&parts)[n]) {
    token_reader::item_walk items(text);
    for (wide_string_view& part : parts) {
        if (items.at_end()) return false;
        part = token_reader::interior(items.next());
    }
    return true;
}

}  // namespace tvmath
