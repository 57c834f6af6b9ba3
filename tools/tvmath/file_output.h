#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

/// Writes the bytes into a file of that name. When that fails, says so in one line to `err` and returns
/// `internal`.
exit_status write_file(std::string const& name, std::string const& bytes, std::ostream& err);

}  // namespace tvmath
