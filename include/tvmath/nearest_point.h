#pragma once

#include <vector>

#include "tvmath/curve.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"
#include "tvmath/rectangle.h"

inline namespace tvmath {

// The point of one feature that is nearest to another, or farthest from it. The answer lies on the second
// argument, or on the list for the forms with a list; the first argument is what it is compared with. It is a
// location of the dimension of the shape, or a point of the list as it is.
//
// Lengths are in the caller's units. Lines and planes count as infinite. "In XY" means the distance of the
// projections along Z; where a distance is one in space, a 2D point or shape lies in the plane z = 0.
//
// The trivial point comes back for a trivial argument, for an empty list and a list of trivial points, for a
// line without a direction in the measure of the function, for a plane whose axes span none, and when no
// answer is finite.

// The point of a list, the first one of equals by the squared distance. Trivial points and points with a NaN
// are passed over, and in a search for the nearest those whose squared distance is infinite.

/// By the distance in XY from `p`.
TVMATH_API point point_nearest_on_2d(point const& p, std::vector<point> const& list);
TVMATH_API point point_farthest_on_2d(point const& p, std::vector<point> const& list);
/// By the distance in XY from the line, on either side.
TVMATH_API point point_nearest_on_2d(line l, std::vector<point> const& list);
TVMATH_API point point_farthest_on_2d(line l, std::vector<point> const& list);
/// By the distance from the point of a Bezier path that is nearest to the point of the list, or by that from
/// the one farthest from it, as `point_nearest_on` and `point_farthest_on` find them for a 3D point; 2D
/// points are passed over.
TVMATH_API point point_nearest_on_2d(curve c, std::vector<point> const& list);
TVMATH_API point point_farthest_on_2d(curve c, std::vector<point> const& list);

/// By the distance in space from `p`.
TVMATH_API point point_nearest_on_3d(point const& p, std::vector<point> const& list);
TVMATH_API point point_farthest_on_3d(point const& p, std::vector<point> const& list);
/// By the distance in space from the line.
TVMATH_API point point_nearest_on_3d(line l, std::vector<point> const& list);
TVMATH_API point point_farthest_on_3d(line l, std::vector<point> const& list);
/// By the distance from the plane, on either side.
TVMATH_API point point_nearest_on_3d(plane s, std::vector<point> const& list);
TVMATH_API point point_farthest_on_3d(plane s, std::vector<point> const& list);

/// Foot of the perpendicular in XY: o + d ((p - o) d) / (d d) with o = basis(0), d = basis(1) and the
/// products in XY, also for a 3D line, whose foot has the z of the line there.
TVMATH_API point point_nearest_on(point const& p, line l);
/// Foot of the perpendicular in space.
TVMATH_API point point_nearest3d_on(point const& p, line l);

/// Foot of the perpendicular on the infinite plane through basis(0) along basis(1) and basis(2), which need
/// be neither orthogonal nor unit vectors.
TVMATH_API point point_nearest_on(point const& p, plane s);
TVMATH_API point point_nearest3d_on(point const& p, plane s);

/// The point of the outline nearest in space; of equals that on the first side in the order of
/// `render_rectangle`.
TVMATH_API point point_nearest_on(point const& p, rectangle r);

/// The point of the ellipse nearest in space, also for a point in its centre, which gets an end of the short
/// axis. Half-diameters may be oblique, and the ellipse may be flat. Of two nearest points, which lie
/// symmetrically about the long axis, the answer is one.
///
/// Within about 1e-15 of the size of the ellipse where the question determines the point that well; near the
/// evolute, where two answers merge, the distance still is. The zero of the derivative is bracketed in the
/// one quadrant that holds it, so no root is missed.
///
/// Source: the stationary condition in D. Eberly, Distance from a Point to an Ellipse, an Ellipsoid, or a
/// Hyperellipsoid, Geometric Tools 2013, in the angle as the unknown.
TVMATH_API point point_nearest3d_on(point const& p, ellipse e);
/// The point of the ellipse nearest in XY; that of a 3D ellipse has its z there. Otherwise as in space.
TVMATH_API point point_nearest_on(point const& p, ellipse e);
/// The point of the ellipse farthest in XY, with the same accuracy. From the centre it is one end of the long
/// axis.
TVMATH_API point point_farthest_on(point const& p, ellipse e);

/// The place of the ellipse, in XY, at which its distance from the infinite line is least, or greatest, among
/// the two places where the tangent runs along the line; of equals the one on the left of the line's
/// direction. For an ellipse that the line crosses both are extremes of the distance and none is 0: where
/// they meet is a question of intersections.
TVMATH_API point point_nearest_on(line l, ellipse e);
TVMATH_API point point_farthest_on(line l, ellipse e);

/// The point of a Bezier path nearest in space, or farthest; the first one that the search meets of equals.
/// The point must be 3D and the size of the path 3 n + 1 with n at least 1, otherwise the answer is trivial;
/// so it is for a 2D point. Spans with a trivial or infinite control point are left out.
///
/// Every span that the bound by its control points does not rule out is searched in full: all zeros of the
/// derivative of the squared distance, of degree 5, and both ends.
///
/// Source: the zeros by J. M. Lane, R. F. Riesenfeld, Bounds on a polynomial, BIT 21 (1981) 112-117.
TVMATH_API point point_nearest_on(point const& p, curve c);
TVMATH_API point point_farthest_on(point const& p, curve c);

/// The place of a Bezier path, in XY, at which its distance from the infinite line is least, or greatest,
/// among the ends of the spans and the places where the path runs along the line; the first one of equals
/// along the path. For a path that the line crosses these are not the crossings, which intersections give.
/// The size must be 3 n + 1 with n at least 1.
TVMATH_API point point_nearest_on(line l, curve c);
TVMATH_API point point_farthest_on(line l, curve c);

}  // namespace tvmath
