#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

/// ".svg" of "bore.svg"; ".csv" of "-", since standard output gets tables.
std::string suffix_of(std::string const& name);

/// Whether a picture can be written under that name; the empty one, which asks for none, will do. If not, the
/// reason in one line, which begins with the name.
bool check_picture_name(std::string const& name, std::string& reason);

/// Writes the bytes of a picture. One line to `err` when there are none and when the file cannot be written.
exit_status write_picture(std::string const& name, std::string const& bytes, std::ostream& err);

}  // namespace tvmath
