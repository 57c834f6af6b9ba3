#pragma once

#include <iosfwd>

#include "exit_status.h"
#include "fit_options.h"

inline namespace tvmath {

/// Fits every file by itself, a composite all together: results to `out`, one line to `err` for each file
/// without a result and for each feature out of tolerance. A file that fails does not stop the others; the
/// worst status of all is returned.
exit_status run_fit(fit_request const& request, std::ostream& out, std::ostream& err);

/// The same for the kinds of zones.
exit_status run_zone(fit_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
