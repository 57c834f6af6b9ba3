#pragma once

#include <vector>

#include "measure/edges/measure_result.h"

inline namespace tvmath {

/// The limits of the tool and how the fit stands to them, in their order.
std::vector<tolerance_check> check_limits(measure_tool const& tool, fit_result const& fit);

/// The check of the limit of that name; null when there is none.
tolerance_check const* find_check(std::vector<tolerance_check> const& checks, std::string const& name);

/// What a limit on a deviation speaks of: degrees of an angle, the distance of a place.
double deviation_size(figure const& deviation);

}  // namespace tvmath
