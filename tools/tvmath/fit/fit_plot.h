#pragma once

#include <string>

#include "fit_result.h"
#include "plot/canvas.h"

inline namespace tvmath {

// In points: A4 across.
constexpr double fit_page_width = 842, fit_page_height = 595;

/// Draws the feature with its points and their residuals, as many times enlarged as it says, the zone of the
/// form error, the extreme points, the residuals over the natural coordinate of the feature, and the figures
/// on a page of that size.
void draw_fit(canvas& c, fit_result const& result);

/// The bytes of that picture in the form of the suffix; empty when it cannot be made.
std::string fit_plot(fit_result const& result, std::string const& suffix);

}  // namespace tvmath
