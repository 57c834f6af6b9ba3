#pragma once

#include <string>

#include "tvmath/wide_string.h"

inline namespace tvmath {

enum class xml_place { text, attribute };

/// Appends `text` as UTF-8 that a parser gives back unchanged, but for what XML cannot hold: that is U+FFFD.
void append_escaped(std::string& to, wide_string_view text, xml_place place);

}  // namespace tvmath
