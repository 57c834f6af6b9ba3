#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Fits in closed form from a centroid and scatter sums. They need no starting values, and they give the
// iterative fits theirs. A fit that fails returns false and leaves its outputs as they were; nothing here
// raises.
//
// Coordinates are taken relative to the centroid, and the centroid itself is summed with compensation, so
// that a feature far from the origin keeps the digits its points have. Sums run in list order; results do not
// depend on the machine. Both list forms give the same bits. Points count as positions whatever their weight.
// A singular system is told by a pivot of exactly 0: nearly singular points give an honest, very large
// feature.

/// Centroid of the points, a location in their units: 3D when every point is 3D, otherwise 2D, without z.
/// Returns the trivial point for an empty list and for a list that holds a trivial point.
TVMATH_API point point_fit(std::vector<point> const& points);
TVMATH_API point point_fit(idioms::array<point> points);

/// Least-squares line in XY: minimises the sum of squared distances. A 3D list is fitted by its x and y.
///
/// Returns true and sets `center` to the centroid and `direction` to a 2D direction of unit length. Of two
/// points the direction runs from the first to the second; two equal points give the zero direction and true.
/// Returns false, outputs untouched, for fewer than 2 points, for a trivial point in the list, and when the
/// scatter has no principal axis, as of the corners of a square.
///
/// Source: K. Pearson, On lines and planes of closest fit, Phil. Mag. 2 (1901) 559-572.
TVMATH_API bool line_quick_fit(std::vector<point> const& points, point& center, point& direction);
TVMATH_API bool line_quick_fit(idioms::array<point> points, point& center, point& direction);

/// Algebraic least-squares circle in XY: minimises the sum of (distance² - radius²)². Noise on a short arc
/// makes the radius too small.
///
/// Returns true and sets `center` and `radius` in the units of the points; the centre of a 3D list lies at
/// its mean z. Returns false, outputs untouched, for fewer than 3 points, for a trivial point in the list,
/// and for an exactly singular system, such as equal points or points along an axis.
///
/// Source: I. Kasa, A circle fitting procedure and its error analysis, IEEE Trans. IM-25 (1976) 8-14.
TVMATH_API bool circle_quick_fit(std::vector<point> const& points, point& center, double& radius);
TVMATH_API bool circle_quick_fit(idioms::array<point> points, point& center, double& radius);

/// Algebraic least-squares sphere, of the same kind as the circle.
///
/// Returns true and sets `center`, a 3D location, and `radius`. Returns false, outputs untouched, for fewer
/// than 4 points, for a list with a point that is not 3D, and for a pivot of exactly 0, such as of points in
/// a plane along two axes.
TVMATH_API bool sphere_quick_fit(std::vector<point> const& points, point& center, double& radius);

}  // namespace tvmath
