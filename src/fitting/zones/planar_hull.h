#pragma once

#include <vector>

#include "geometry/xyz.h"

inline namespace tvmath {

/// The corners, in XY, of the convex hull of the points: their indices, anticlockwise, each corner once and
/// no point within an edge. The first corner is the one of least `point::angle2d` about the centroid. One
/// index when all points are equal, two when they lie on one line, none for an empty list.
///
/// Exact for all coordinates. Source: W. F. Eddy, A new convex hull algorithm for planar sets, ACM TOMS 3
/// (1977) 398-403 (quickhull), with the turns of `orientation.h`.
std::vector<unsigned int> planar_hull(std::vector<xyz> const& points);

}  // namespace tvmath
