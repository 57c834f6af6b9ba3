#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "exit_status.h"

inline namespace tvmath {

struct render_request {
    std::string kind;  ///< "all" draws the contact sheet, a sample of every kind
    std::vector<std::string> parameters;
    std::vector<std::string> offsets;  ///< distances of the parallels to be drawn
    std::vector<std::string> view;     ///< empty, or the three angles of a rotation: yaw, pitch, roll
    std::string output;                ///< its suffix decides what is written; "-" is CSV on standard output
};

/// Draws a shape into a picture or a table. Results to `out` when the output is "-", one line to `err` for
/// what went wrong. No file is left behind by a run that fails before it writes.
exit_status run_render(render_request const& request, std::ostream& out, std::ostream& err);

/// The kinds with their parameters, for the help.
std::string render_kinds_help();

}  // namespace tvmath
