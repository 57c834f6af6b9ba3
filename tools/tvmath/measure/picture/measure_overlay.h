#pragma once

#include <string>

#include "measure/edges/measure_frame.h"
#include "measure/report/measure_report.h"
#include "tvmath/image.h"

inline namespace tvmath {

/// The image with fitted features, edge points and residuals, enlarged by a factor that is a round number,
/// drawn over it by the overlays of the library: a PNG of the size of the image. Empty when it cannot be
/// made.
std::string overlay_png(image const& scene, measure_frame const& frame, measure_report const& report);

/// The sheet: the image with the features and their names, edge points, enlarged residuals, and beside it
/// what was measured. `suffix` as in `is_picture_suffix`. Empty when it cannot be made.
std::string measure_plot(image const& scene, measure_frame const& frame, measure_report const& report,
                         std::string const& suffix);

}  // namespace tvmath
