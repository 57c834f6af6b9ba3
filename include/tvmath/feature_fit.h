#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/circle.h"
#include "tvmath/export.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"
#include "tvmath/sphere.h"

inline namespace tvmath {

// Least-squares features of measured points, in one call. Each returns the null feature (`is_trivial()`) when
// it fails: for fewer points than it needs, for a trivial point in the list, for a singular system and for an
// iteration that does not settle. Nothing raises. Lengths are in the caller's units, angles in radians.

/// The line of least squares of the distances in XY, spanning the data and running from the first measured
/// point towards the last; through two points exactly. Null for points that scatter equally in all
/// directions.
TVMATH_API line line_fit(idioms::array<point> points);

/// The circle of least squares of the distances in XY, in a plane parallel to XY at the mean z; through three
/// different points exactly. 2D when the first point is.
TVMATH_API circle circle_fit(std::vector<point> const& points);
TVMATH_API circle circle_fit(idioms::array<point> points);
/// Of exactly two points the circle on them as a diameter; otherwise `circle_fit`.
TVMATH_API circle circle_2pt_fit(idioms::array<point> points);
/// The circle about `center` with the mean distance in XY as radius. One point is enough.
TVMATH_API circle circle_centered_fit(point center, std::vector<point> const& points);
TVMATH_API circle circle_centered_fit(point center, idioms::array<point> points);

/// The plane of least squares of the distances, for at least three different 3D points not on one line. Its
/// axes have the half extents of the data, at least 0.005 where these are exactly 0; its normal has a
/// positive largest component.
TVMATH_API plane plane_fit(idioms::array<point> points);
/// The same through a given 3D point, which becomes its centre; two points are enough.
TVMATH_API plane plane_centered_fit(point center, idioms::array<point> points);
/// The plane parallel to `p` through the centroid. One point is enough.
TVMATH_API plane plane_parallel_fit(plane p, idioms::array<point> points);

/// The sphere of least squares of the distances; through four different points exactly.
TVMATH_API sphere sphere_fit(std::vector<point> const& points);
/// The sphere about `center` with the mean distance as radius. One point is enough.
TVMATH_API sphere sphere_centered_fit(point center, std::vector<point> const& points);

// An arc is a circle whose first axis points at the middle of the measured range, with the sweep beside it.
// The range is the complement of the largest gap between the points' angles.

/// Circle of `circle_quick_fit` and the range of angles, `end_angle` at or above `start_angle`. False,
/// outputs untouched, when that fails.
TVMATH_API bool arc_quick_fit(idioms::array<point> points, point& center, double& radius, double& start_angle,
                              double& end_angle);
TVMATH_API circle arc_fit(idioms::array<point> points, double& sweep);
TVMATH_API circle arc_centered_fit(point center, idioms::array<point> points, double& sweep);
/// `c` turned so that its first axis points at the middle of the points' range.
TVMATH_API circle circle_to_arc(circle c, std::vector<point> const& points, double& sweep);
TVMATH_API circle circle_to_arc(circle c, idioms::array<point> points, double& sweep);

}  // namespace tvmath
