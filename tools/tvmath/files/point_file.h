#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// Why a point list could not be read.
struct read_error {
    std::size_t line = 0;  ///< counted from 1; 0 when the input as a whole is meant
    std::string reason;    ///< one line of printable characters
};

/// Reads points from comma, semicolon, blank or tab separated text; docs/command-line.md has the rules.
///
/// Returns true and sets `points` to 2D or 3D locations, all of one dimension, at least one. Returns false
/// and sets `error`, `points` untouched, at the first line that is not understood. Any bytes are allowed:
/// memory stays within one chunk of text and the points themselves. The locale plays no part.
bool read_points(std::istream& in, bool decimal_comma, std::vector<point>& points, read_error& error);

/// The same for the file of that name, or for standard input when `name` is "-".
bool read_point_file(std::string const& name, bool decimal_comma, std::vector<point>& points,
                     read_error& error);

/// Opens a file of that name. False, with the reason, when it cannot be opened or is a folder.
bool open_input(std::string const& name, std::ifstream& file, read_error& error);

/// Words of a file as an error line quotes them: printable and short, whatever bytes they are made of.
std::string quoted(std::string_view words);

/// `FILE:LINE: reason`, or `FILE: reason`, without an end of line; standard input is called <stdin>.
std::string error_text(std::string const& name, read_error const& error);

/// The text with question marks for control characters, so that it stays one line.
std::string one_line(std::string text);

/// The name of a file as it is shown: standard input by name, all others on one line.
std::string shown_name(std::string const& name);

}  // namespace tvmath
