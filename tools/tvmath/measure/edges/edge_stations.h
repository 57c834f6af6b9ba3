#pragma once

#include <vector>

#include "measure/edges/edge_window.h"
#include "measure/job/measure_job.h"
#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// The windows along the outline of a tool, in the order of its outline, without those parts of it where two
/// sides would be seen in one window. `scene` is asked for the direction across the edge at a point that has
/// none. Empty for a kind that has no outline in an image, and for a point without any edge about it.
std::vector<edge_window> edge_stations(measure_tool const& tool, image const& scene);

/// The window moved to an edge that it found near the outline of a feature, across and bent as the feature is
/// there. The window tells the side of a line and of a rectangle.
edge_window aligned_window(Geometry_Description const& feature, point const& edge, edge_window window);

}  // namespace tvmath
