#pragma once

#include "tvmath/wide_string.h"

inline namespace tvmath {

/// True for a name that every XML parser accepts, see `kvxml::ISAXWriter::StartElement`.
bool is_xml_name(wide_string_view name);

}  // namespace tvmath
