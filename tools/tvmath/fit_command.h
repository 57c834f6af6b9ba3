#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "exit_status.h"
#include "report.h"

inline namespace tvmath {

struct fit_request {
    std::string feature;             ///< "point", "line", "circle" or "sphere"
    std::vector<std::string> files;  ///< "-" is standard input
    bool json = false;
    bool decimal_comma = false;
};

/// Fits the feature to the points. Returns true and sets all of `result` but its file; returns false,
/// `result` untouched, and says in `reason` why the points determine no such feature.
bool fit_feature(std::string const& feature, std::vector<point> const& points, fit_result& result,
                 std::string& reason);

/// Fits every file by itself: results to `out`, one line to `err` for each file without a result. A file that
/// fails does not stop the others; the worst status of all is returned.
exit_status run_fit(fit_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
