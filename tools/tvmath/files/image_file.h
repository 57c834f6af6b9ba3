#pragma once

#include <iosfwd>
#include <string>

#include "tvmath/image.h"

inline namespace tvmath {

/// Reads a PNG or PGM picture, recognised by its first bytes, as grey values: 0 black to 1 white, each pixel
/// the value in the file over the greatest that it could have. Nothing else is applied: no gamma, no colour
/// profile, and a transparent pixel counts as it is coded. docs/command-line.md has the rules.
///
/// Returns true and sets `out` to at least one pixel. Returns false and sets `reason` to one line of
/// printable characters, `out` untouched, for anything else. Any bytes are allowed: rows are made only as
/// their pixels arrive, and what is longer than its picture can be, such as an endless pipe, is not read to
/// its end.
bool read_image(std::istream& in, image& out, std::string& reason);

/// The same for the file of that name, or for standard input when `name` is "-".
bool read_image_file(std::string const& name, image& out, std::string& reason);

}  // namespace tvmath
