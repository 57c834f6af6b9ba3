#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/nurb.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Smooth curves through or along measured points that stand in the order of the path, and the sorting that
// brings them into it. `closed` means that the path leads from the last point back to the first, which need
// not be repeated.
//
// All fits share these rules. Points count as positions whatever their weight. Of 2D points the curve is 2D;
// with a 3D point in the list all are taken in space, 2D points at z = 0. Neighbours in the same place, to
// within four roundings of the largest coordinate, count once. The empty curve (the null NURBS curve) comes
// back for a trivial point in the list, for coordinates that are not finite, and for fewer different points
// than 2 (open) or 3 (closed). Nothing raises. Coordinates are taken relative to the points and to their
// extent, so that neither the place nor the unit costs digits. Both list forms give the same bits. Time and
// memory grow linearly with the number of points.

/// Cubic spline through every point, as a Bezier path: one segment from each point to the next, with
/// continuous first and second derivative with respect to the chord length. The joints are the points to the
/// last bit. Two points give a straight segment, three of an open path a parabola. An open path has the
/// not-a-knot condition at both ends, a closed one is periodic, its last control point the first again.
///
/// The chord length is the parameter because it is the one power of the distances for which the spline comes
/// near a smooth path with the fourth power of the spacing, however uneven that is. Neighbouring distances of
/// very different length at a sharp turn make the curve swing out; such a corner asks for two paths.
///
/// Sources: C. de Boor, A Practical Guide to Splines, Springer 1978, chapter IV; M. S. Floater, Chordal cubic
/// spline interpolation is fourth-order accurate, IMA J. Numer. Anal. 26 (2006) 25-33.
TVMATH_API curve bezier_fit(std::vector<point> const& points, bool closed);
TVMATH_API curve bezier_fit(idioms::array<point> points, bool closed);

/// Path through every point with little bending energy, the integral of the squared curvature over the
/// length; it bends less at its ends than that of `bezier_fit`. Segments, joints and continuity are as there.
///
/// For given parameters of the points the cubic spline without second derivative at open ends, or the
/// periodic one, has the least integral of the squared second derivative of all smooth curves through them.
/// With the length along the curve as parameter that integral is the bending energy. Starting from the chord
/// length, each spline gives the lengths that the next one has for parameters, as long as the bending energy
/// falls, 12 times at most. The energy is never above that of `bezier_fit`. A global minimum is not sought:
/// there is none, since long loops bend ever less.
///
/// Sources: J. C. Holladay, A smoothest curve approximation, MTAC 11 (1957) 233-243; H. P. Moreton, C. H.
/// Sequin, Functional optimization for fair surface design, SIGGRAPH 26 (1992) 167-176.
TVMATH_API curve bezier_minimum_curvature_fit(std::vector<point> const& points, bool closed);
TVMATH_API curve bezier_minimum_curvature_fit(idioms::array<point> points, bool closed);

/// Smooth cubic path along the points, as a Bezier path with fewer segments than points: a C2 B-spline that
/// minimises the sum of squared distances, each measured at a right angle to the curve, from its foot. Of an
/// open path the first and the last point are compared with the ends of the curve.
///
/// Its knots share the points evenly, by their chord length; there are as many segments as score best by
/// Schwarz's criterion n ln(sum / n) + 2 c ln n, with n points and c control points, which count for their
/// place across the curve and along it. Numbers are tried in steps of a quarter, up to a control point for
/// every second point or until no more than 1e-9 of the extent is left. More segments would follow the noise.
/// Up to 7 points are interpolated as by `bezier_fit`.
///
/// With each step the feet follow the curve: the step is nearly the Gauss-Newton one for the distances. A
/// hundredth of it is that of fixed parameters, so that control points do not slide along the curve, by which
/// the sum would still fall a little without end. The steps stop when one gains less than 1e-4 of the sum,
/// after 50 at most, or 20 above 1e5 points, and before the control polygon is a tenth longer than at the
/// start, since a loop in a gap between the points would cost nothing. A contour that comes near itself is
/// safe as long as its noise is below the spacing there; points that one curve can hardly follow, a few for
/// each turn, leave it loosely determined.
///
/// Sources: J. Hoschek, Intrinsic parametrization for approximation, CAGD 5 (1988) 27-31; D. F. Rogers, N. G.
/// Fog, Constrained B-spline curve and surface fitting, Computer-Aided Design 21 (1989) 641-648; W. Wang, H.
/// Pottmann, Y. Liu, Fitting B-spline curves to point clouds by curvature-based squared distance
/// minimization, ACM Trans. Graphics 25 (2006) 214-238; G. Schwarz, Estimating the dimension of a model, Ann.
/// Statist. 6 (1978) 461-464.
TVMATH_API curve bezier_least_squares_fit(std::vector<point> const& points, bool closed);
TVMATH_API curve bezier_least_squares_fit(idioms::array<point> points, bool closed);

/// Cubic B-spline curve in space along the points; its parameter is the chord length, in units of the
/// largest extent of the points.
///
/// Up to 100 points are interpolated, by the spline of `bezier_fit`; from 101 points on the curve is the
/// least-squares spline of `bezier_least_squares_fit`. The open curve starts and ends in a control point. The
/// closed one is periodic: knots and control points repeat after one turn, the last three points being the
/// first three, so that the second derivative is continuous where it closes.
TVMATH_API nurb open_nurb_fit(std::vector<point> const& points);
TVMATH_API nurb open_nurb_fit(idioms::array<point> points);
TVMATH_API nurb closed_nurb_fit(std::vector<point> const& points);
TVMATH_API nurb closed_nurb_fit(idioms::array<point> points);

/// Brings the points of one path, measured in any order, into the order of the path: a short way through all
/// of them. Returns false, the list untouched, for a trivial point and for coordinates that are not finite.
///
/// An open path starts at that of its two ends which came first in the list. A closed one starts at the first
/// point of the list and runs towards the one of its two neighbours that came first. A list that is already
/// in such an order keeps it. Points in the very same place stay together. The order is right when the points
/// are closer together along the path than any two branches of it, and than its noise.
///
/// The shortest edges are joined first (greedy heuristic, by a k-d tree), then pairs of edges are exchanged
/// while that shortens the way (2-opt among the 8 nearest neighbours). The exchanges end when they have moved
/// 1e6 + 100 n points; that bound is on the work, so that the order is the same on every machine. The time
/// grows with n log n but for the exchanges.
///
/// Sources: J. L. Bentley, Fast algorithms for geometric traveling salesman problems, ORSA J. Computing 4
/// (1992) 387-411; G. A. Croes, A method for solving traveling-salesman problems, Operations Research 6
/// (1958) 791-812.
TVMATH_API bool sort_spline_data(std::vector<point>& points, bool closed);
TVMATH_API bool sort_spline_data(idioms::array<point>& points, bool closed);

}  // namespace tvmath
