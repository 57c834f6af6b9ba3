#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

/// Makes the bytes the content of the file of that name. They are written beside it and take its place when
/// they are complete, so that a failure leaves the old file as it was; a link stays one, and a file keeps its
/// permissions. Into what is no file, such as a pipe, they are written directly. When that fails, says so in
/// one line to `err` and returns `internal`.
exit_status write_file(std::string const& name, std::string const& bytes, std::ostream& err);

}  // namespace tvmath
