#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"

inline namespace tvmath {

struct convert_request {
    std::string input, output;  ///< "-" is standard input, and standard output
    std::string from, to;       ///< forms in words; empty for that of the suffix
    std::string kind;           ///< what the input holds; empty when it says so itself, or holds points
    std::string method;         ///< of compressed points, "0" to "3"
    std::string precision;      ///< significant digits of lists of points, "1" to "17"
    bool bare = false;          ///< no word for the kind in front of a text
};

/// Writes the points or the record of one file in another form. Results to `out` when the output is "-", one
/// line to `err` for what went wrong. The output is replaced as a whole, or stays as it was.
exit_status run_convert(convert_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
