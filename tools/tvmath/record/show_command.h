#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

struct show_request {
    std::string file;    ///< "-" is standard input
    std::string from;    ///< the form in a word; empty for that of the suffix
    std::string kind;    ///< what the file holds; empty when it says so itself, or holds points
    std::string output;  ///< a drawing to be written; empty for none, "-" for a table in place of the report
};

/// Reports the parameters of the points or the record in a file to `out`, and draws them. One line to `err`
/// for what went wrong.
exit_status run_show(show_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
