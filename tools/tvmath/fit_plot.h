#pragma once

#include <string>

#include "canvas.h"
#include "fit_result.h"

inline namespace tvmath {

/// The bytes of a picture of that suffix: the feature with its points and their residuals, drawn as many
/// times enlarged as it says, the zone of the form error, the extreme points, the residuals over the
/// natural coordinate of the feature, and the figures. Empty when the picture cannot be made.
std::string fit_plot(fit_result const& result, std::string const& suffix);

}  // namespace tvmath
