#pragma once

#include <string>

#include "calibrate/calibrate_result.h"

inline namespace tvmath {

// Fit the corrector of `result.setup`, whose lists go together, and set all else of `result`. Return why
// there is no corrector, in a few words; empty when there is one.

std::string calibrate_screen(calibrate_result& result);
std::string calibrate_flatness(calibrate_result& result);
std::string calibrate_telecentricity(calibrate_result& result);

}  // namespace tvmath
