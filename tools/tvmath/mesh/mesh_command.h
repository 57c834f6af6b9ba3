#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

struct mesh_request {
    std::string file;    ///< "-" is standard input
    std::string output;  ///< its suffix decides what is written; "-" is CSV on standard output, none nothing
    bool json = false, decimal_comma = false;
};

/// Joins the points of the file to triangles by x and y, and writes the output and, unless that is the table
/// on `out`, the counts to `out`. One line to `err` for what went wrong.
exit_status run_mesh(mesh_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
