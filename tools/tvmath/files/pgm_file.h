#pragma once

#include <string>
#include <string_view>

#include "image_reading.h"

inline namespace tvmath {

/// Whether a file that starts so is a PGM, plain (P2) or binary (P5).
bool is_pgm(std::string_view start);

/// Reads a PGM of 1 to 65535 as its greatest value, as `read_image` promises. A comment may stand between
/// numbers. Beyond its pixels a plain one has blanks and comments only and a binary one nothing: more than
/// that is refused, since it tells of a header that does not fit the pixels.
///
/// Source: the manual page pgm(5) of Netpbm.
bool read_pgm(byte_source& source, image& out, std::string& reason);

}  // namespace tvmath
