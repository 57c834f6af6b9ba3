#pragma once

#include <iosfwd>
#include <string>

#include "exit_status.h"
#include "fit_options.h"

inline namespace tvmath {

/// Whether the fitted record is wanted on standard output, where it stands in place of the report.
inline bool is_record_printed(fit_request const& request) {
    return !request.record.empty() && request.record_file.empty();
}

/// Whether what the request says of the record makes sense; if not, why in one line.
bool check_record_options(fit_request const& request, bool is_single, std::string& reason);

/// Writes the fitted record where and in the form that the request says, if it does. One line to `err` for
/// what went wrong.
exit_status write_fitted_record(fit_request const& request, Geometry_Description const& record,
                                std::ostream& out, std::ostream& err);

}  // namespace tvmath
