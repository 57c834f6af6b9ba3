#pragma once

#include <iosfwd>

#include "calibrate/calibrate_result.h"

inline namespace tvmath {

/// A table for people.
void write_text(std::ostream& out, calibrate_result const& result);

/// A document of schema tvmath.calibrate/1 for programs.
void write_json(std::ostream& out, calibrate_result const& result);

/// "least squares from 221 seen to nominal places, screen of 640 x 480 pixels": what was done, in words.
std::string method_words(calibrate_result const& result);

}  // namespace tvmath
