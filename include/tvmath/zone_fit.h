#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"
#include "tvmath/sphere.h"

inline namespace tvmath {

// Zones: the narrowest strip or slab that holds all the points, by which straightness and flatness are
// defined, the plane on which a part rests, and the smallest sphere around a part. Every answer is the global
// optimum for the points as they are given, to rounding, or the null feature (`is_trivial()`).
//
// Each fails on an empty list, on a trivial point, and on a coordinate that is a NaN or an infinity. Nothing
// raises. Points count as positions whatever their weight. Lengths are in the caller's units. Sides are
// decided on the coordinates without error, so that ties, repeated points, points on one line or in one plane
// and lists far from the origin need no tolerance.

/// The line in the middle of the narrowest strip in XY that holds all the points, as long as they reach along
/// it, running from the first measured point towards the last; through two points exactly. The line of 3D
/// points lies at their mean z.
///
/// `zone` becomes the width of the strip, 0.0 for two points, for points on one line, and on failure. Of
/// several strips of one width the one on the earliest edge of the hull is taken, anticlockwise from the
/// corner of least `angle2d` about the centroid. Null for fewer than 2 points. Equal points give a line of
/// length 0. About n log n steps.
///
/// Source: M. E. Houle, G. T. Toussaint, Computing the width of a set, IEEE PAMI 10 (1988) 761-765.
TVMATH_API line line_zone_fit(std::vector<point> const& points, double& zone);
/// The same, with the width dropped.
TVMATH_API line line_zone_fit(std::vector<point> const& points);

/// The plane in the middle of the narrowest slab that holds all the points, with axes and the sense of the
/// normal as of `plane_fit`.
///
/// `zone` becomes the width of the slab; untouched on failure. An exchange of contact points that starts at
/// the least-squares plane goes down to a slab that no tilt makes narrower; the slabs on all faces and all
/// opposite pairs of edges of the convex hull then tell whether there is a narrower one elsewhere. Of several
/// of one width the exchange's own stays.
///
/// Null where `plane_fit` is: for fewer than three different points, for points on one line, and for 2D
/// points. About n log n steps for the points of a measured surface, and for most others; for crossed arcs
/// that face each other it may come to the square of their number.
///
/// Source: M. E. Houle, G. T. Toussaint, Computing the width of a set, IEEE PAMI 10 (1988) 761-765.
TVMATH_API plane plane_zone_fit(idioms::array<point> points, double& zone);
/// The same, with the width dropped.
TVMATH_API plane plane_zone_fit(idioms::array<point> points);

/// The plane parallel to `p` in the middle of the points' extent along its normal, with axes that reach over
/// the points and over the centre of `p`, of the size of `p` where that leaves none. One point is enough; 2D
/// points lie in z = 0.
///
/// `zone` becomes that extent; untouched on failure. Null for a `p` that is not 3D.
TVMATH_API plane plane_parallel_zone_fit(plane p, idioms::array<point> points, double& zone);
/// The same, with the extent dropped.
TVMATH_API plane plane_parallel_zone_fit(plane p, idioms::array<point> points);

/// `p` moved so that its centre is `center`: with its axes and its normal as they are. A 2D `center` lies in
/// z = 0. Null for a `p` that is not 3D and for a trivial `center`.
TVMATH_API plane plane_parallel_centered(plane p, point center);

/// The plane on which the points rest, as a part rests on a surface plate: it touches three of them, their
/// triangle holds the centroid as seen along Z, and all points lie on one side. A true `flag` puts the plate
/// below the points, a false one above them:
///
///               false   ====o=======o====
///       z                 *   *  *    *        o  contacts
///       |                   *   *   *
///       +--- x, y       ======o===o======
///               true
///
/// `contacts` becomes the three points, anticlockwise as seen from +Z; untouched on failure. When more than
/// three points touch, or the centroid lies over an edge, it is one triangle of those that hold it. The axes
/// and the sense of the normal are those of `plane_fit`, whatever `flag`.
///
/// Null for fewer than 3 points, for points that lie on one line, to rounding, as seen along Z, for a list
/// with a point that is not 3D, and after more than n squared exchanges, which is a bound that no list is
/// known to reach.
///
/// Source: the dual simplex method on the linear programme of the lowest plane above the points, of the
/// height over the centroid; ties by H. Edelsbrunner, E. P. Muecke, Simulation of simplicity, ACM TOG 9
/// (1990) 66-104.
TVMATH_API plane seating_plane_fit(idioms::array<point> points, bool flag, idioms::array<point>& contacts);

/// The smallest sphere that holds all the points; 2D points among 3D ones lie in z = 0.
///
/// Returns true and sets `center`, a 3D location, and `radius`, its distance from the farthest points, two to
/// four of which hold the sphere; 0.0 for equal points. Far from the origin the radius is more exact than the
/// centre's coordinates can be. Returns false, outputs untouched, for a list without a 3D point.
///
/// Source: B. Gaertner, Fast and robust smallest enclosing balls, ESA 1999, LNCS 1643, 325-338 (pivoting);
/// K. Fischer, B. Gaertner, M. Kutz, Fast smallest-enclosing-ball computation in high dimensions, ESA 2003,
/// LNCS 2832, 630-641.
TVMATH_API bool minimum_circumscribed_sphere(std::vector<point> const& points, point& center, double& radius);
/// The same as a sphere; the null sphere when the form above returns false.
TVMATH_API sphere minimum_circumscribed_sphere(std::vector<point> const& points);

}  // namespace tvmath
