#pragma once

#include <string>

#include "measure/edges/measure_result.h"

inline namespace tvmath {

/// The text of the feature's record, without an end of line; empty when there is no feature.
std::string record_line(measured_tool const& measured);

}  // namespace tvmath
