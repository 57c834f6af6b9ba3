#pragma once

#include <iosfwd>

#include "exit_status.h"
#include "measure/measure_request.h"

inline namespace tvmath {

/// `tvmath measure`: edges in an image, the features through them and how these stand to their tolerances.
/// Reports to `out`; one line to `err` for each thing that went wrong.
exit_status run_measure(measure_request const& request, std::ostream& out, std::ostream& err);

}  // namespace tvmath
