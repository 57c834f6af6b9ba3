#pragma once

#include "tvmath/export.h"

/// Version of the headers that a program was compiled with.
#define TVMATH_VERSION_STRING "0.1.0"

inline namespace tvmath {

/// Version of the library that is loaded, in the form of `TVMATH_VERSION_STRING`.
TVMATH_API char const* version();

}  // namespace tvmath
