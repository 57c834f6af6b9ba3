#pragma once

#include <string>

#include "calibrate/calibrate_result.h"

inline namespace tvmath {

/// A page with the field of displacements as arrows, enlarged as many times as it says, the errors of the
/// observations before and after, and the figures; as the bytes of a picture of that suffix, empty when it
/// cannot be made.
std::string calibrate_plot(calibrate_result const& result, std::string const& suffix);

}  // namespace tvmath
