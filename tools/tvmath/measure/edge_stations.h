#pragma once

#include <vector>

#include "measure/edge_window.h"
#include "measure/measure_job.h"
#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// The windows along the outline of a tool, in the order of its outline, without those parts of it where two
/// sides would be seen in one window. `scene` is asked for the direction across the edge at a point that has
/// none. Empty for a kind that has no outline in an image, and for a point without any edge about it.
std::vector<edge_window> edge_stations(measure_tool const& tool, image const& scene);

/// The outward normal of a feature in the plane at a place near its outline; `normal`, the one from which it
/// was found, tells the side of a line and the side of a rectangle.
point outward_normal(Geometry_Description const& feature, point const& place, point const& normal);

}  // namespace tvmath
