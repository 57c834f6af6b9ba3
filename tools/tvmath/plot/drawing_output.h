#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "drawing.h"
#include "exit_status.h"

inline namespace tvmath {

/// Whether a drawing can be written under that name, by its suffix; "-" is a table on standard output. If
/// not, says so in one line to `err`.
bool is_drawing_name(std::string const& name, std::ostream& err);

/// Writes the drawings, several of them in rows of `columns`, as a picture, or the first one as a table. A
/// failure is said in one line to `err`.
exit_status write_drawings(std::vector<drawing> const& drawings, int columns, std::string const& name,
                           std::ostream& out, std::ostream& err);

}  // namespace tvmath
