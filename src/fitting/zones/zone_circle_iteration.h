#pragma once

#include <vector>

#include "fitting/planar/planar_points.h"
#include "zone_constraints.h"

inline namespace tvmath {

/// Moves `model` from where it is to the narrowest ring near it that holds the points: at most 12 runs of
/// the minimiser, the constraints linearised anew for each. False, with a model that means nothing, when a
/// run fails; running out of rounds is no failure. A point on the centre has no gradient and never blocks.
bool iterate_zone_circle(ZoneCircleModel& model, std::vector<xy> const& points);

}  // namespace tvmath
