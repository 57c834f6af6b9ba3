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
// it fails: for fewer points than it needs, for a trivial point or a NaN in the list, for a singular system
// and for an iteration that does not settle. Nothing raises. Lengths are in the caller's units, angles in
// radians.
//
// Nearly singular points are not refused: a short arc or nearly straight points give an honest, very large
// circle, whose centre is as uncertain as the points make it.

/// The line of least squares of the distances in XY, spanning the data and running from the first measured
/// point towards the last; through two points exactly. The line of 3D points lies at their mean z. Null for
/// fewer than 2 points and for points that scatter equally in all directions, as the corners of a square do.
/// Two equal points give a line of length 0.
TVMATH_API line line_fit(idioms::array<point> points);

/// The circle of least squares of the distances in XY, in a plane parallel to XY at the mean z; through three
/// different points exactly, however often they are repeated. 2D when the first point is. Null for fewer than
/// three different points, for three on a line along an axis, and, of more than three, for a direction among
/// them and for a 2D point after a first one that is 3D.
TVMATH_API circle circle_fit(std::vector<point> const& points);
TVMATH_API circle circle_fit(idioms::array<point> points);
/// Of exactly two points the circle on them as a diameter; otherwise `circle_fit`.
TVMATH_API circle circle_2pt_fit(idioms::array<point> points);
/// The circle about `center` with the mean distance in XY as radius. One point is enough.
TVMATH_API circle circle_centered_fit(point center, std::vector<point> const& points);
TVMATH_API circle circle_centered_fit(point center, idioms::array<point> points);

/// The plane of least squares of the distances, for at least three different 3D points not on one line. Its
/// axes have the half extents of the data, at least 0.005 where these are exactly 0; its normal has a
/// positive largest component, the first one of those that are equal within 1e-6.
///
/// The normal of a strip, long and narrow, is as good as the points across it make it. Null when the points
/// lie on one line to a few roundings of their coordinates.
///
/// Source: K. Pearson, On lines and planes of closest fit, Phil. Mag. 2 (1901) 559-572; J. Demmel, K.
/// Veselic, Jacobi's method is more accurate than QR, SIAM J. Matrix Anal. Appl. 13 (1992) 1204-1245.
TVMATH_API plane plane_fit(idioms::array<point> points);
/// The same through a given 3D point, which becomes its centre, so that the axes reach to the farthest point
/// on either side; two points not on a line with it are enough. 2D points lie in z = 0.
TVMATH_API plane plane_centered_fit(point center, idioms::array<point> points);
/// The plane parallel to `p` through the centroid, with its axes as above, of the size of `p` where the data
/// have none. One point is enough. Null for a `p` that is not 3D.
TVMATH_API plane plane_parallel_fit(plane p, idioms::array<point> points);

/// The sphere of least squares of the distances; through four different 3D points exactly, however often they
/// are repeated. Null for fewer, and for points that determine no sphere, such as points in one plane.
TVMATH_API sphere sphere_fit(std::vector<point> const& points);
/// The sphere about `center` with the mean distance as radius. One point is enough.
TVMATH_API sphere sphere_centered_fit(point center, std::vector<point> const& points);

// An arc is a circle whose first axis points at the middle of the measured range, with the sweep beside it.
// The range is the complement of the largest gap between the points' angles.

/// Circle of `circle_quick_fit` and the range of angles, `end_angle` at or above `start_angle`. False,
/// outputs untouched, when that fails.
TVMATH_API bool arc_quick_fit(idioms::array<point> points, point& center, double& radius, double& start_angle,
                              double& end_angle);
/// `circle_fit`, turned to the arc; `sweep` is untouched when that fails.
TVMATH_API circle arc_fit(idioms::array<point> points, double& sweep);
/// `circle_centered_fit`, turned to the arc.
TVMATH_API circle arc_centered_fit(point center, idioms::array<point> points, double& sweep);
/// `c` turned about its centre so that its first axis points at the middle of the points' range in XY; a
/// single point has a `sweep` of 0. Null, `sweep` untouched, for a null `c` and for an empty list.
TVMATH_API circle circle_to_arc(circle c, std::vector<point> const& points, double& sweep);
TVMATH_API circle circle_to_arc(circle c, idioms::array<point> points, double& sweep);

}  // namespace tvmath
