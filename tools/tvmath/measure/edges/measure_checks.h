#pragma once

#include <vector>

#include "measure/edges/measure_result.h"

inline namespace tvmath {

/// The limits of the tool and how the fit stands to them, in their order.
std::vector<tolerance_check> check_limits(measure_tool const& tool, fit_result const& fit);

}  // namespace tvmath
