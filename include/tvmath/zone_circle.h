#pragma once

#include <vector>

#include "tvmath/circle.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

// The circles of metrology. All work in XY, whatever z and the weight of the points; lengths are in the
// caller's units. Each answer is the global optimum, proven in the call and not only a local one, or the null
// circle (`is_trivial()`): for too few points, for a trivial point or a coordinate that is not finite in the
// list, and where no optimum exists. Nothing raises. The order of the points matters only among optima that
// are equal. Points are taken relative to their centroid, so that a part far from the origin keeps the digits
// its points have.

/// The circle amid the narrowest ring that holds all points: its centre gives the roundness by the minimum
/// zone (ISO 12181, MZC), its radius is the mean of the two of the ring.
///
/// Fewer than 3 points give the null circle. Exactly 3 give the circle through them, 3D when all three
/// are. Otherwise the circle is 3D, at the mean z, or at z = 0 for a list that is not all 3D. One place
/// however often repeated gives a circle of radius 0 there; two places the circle on them as a diameter.
///
/// Null where rings about ever farther centres get ever narrower without end: then the points are better
/// described by two parallel lines, as points on a line are. Null too where the proof would take more than
/// some seconds, as for a filled cloud of 1e5 points; a form that resembles a ring takes a millisecond.
///
/// Source: constrained minimisation by gradient projection, J. B. Rosen, J. SIAM 8 (1960) 181-217, from the
/// least-squares circle; the certificate is a search by branch and bound of the centre over the whole plane,
/// see zone_circle_search.h. The optimum touches two points outside and two inside in alternation:
/// H. Ebara et al., 1st Canadian Conf. Comput. Geom. (1989); G. T. Anthony et al., Precision
/// Engineering 19 (1996) 28-36.
TVMATH_API circle minimum_zone_circle(std::vector<point> const& points);

/// The largest circle that has no point inside and its centre enclosed by the points it touches (MIC): the
/// centre lies within, or on a side of, a triangle of three contacts, so that the circle cannot move a little
/// into the triangle or along a side without meeting a point.
///
/// A larger empty circle about a centre that is not enclosed, such as one that looks out through a gap, does
/// not count. Points on a smooth arc of less than a half circle, or at the corners of an obtuse triangle,
/// enclose no centre: null; scatter about such an arc encloses tiny circles. Of points on a line the circle
/// stands on the largest gap between neighbours, of the first one along the line of equals. Null for fewer
/// than 3 points and for fewer than 3 different places. 3D, at the mean z, when all points are 3D. Takes time
/// n log n, and for the contour of a hole little more than a pass over the points.
///
/// Source: the largest triangle of the Delaunay triangulation without an obtuse angle; M. I. Shamos, D. Hoey,
/// Closest-point problems, FOCS 1975, 151-162.
TVMATH_API circle maximum_inscribed_circle(std::vector<point> const& points);

/// The smallest circle that holds all points (MCC). One place however often repeated gives a circle of radius
/// 0 there; null for an empty list. 3D, at the mean z, when all points are 3D.
///
/// Source: a walk over contacts, G. Chrystal, Proc. Edinburgh Math. Soc. 3 (1885) 30-33, certified by the
/// farthest point, B. Gaertner, LNCS 1643 (1999) 325-338.
TVMATH_API circle minimum_circumscribed_circle(std::vector<point> const& points);

}  // namespace tvmath
