#pragma once

#include <vector>

#include "tvmath/nearest_point.h"

inline namespace tvmath {

// Distances as features: the line that joins the two places between which a distance is taken, from the place
// on the first argument to that on the second. Arguments in the other order give the same line reversed.
//
// Lengths are in the caller's units. A distance of 0 is a line of length 0, whose inverse map is not finite.
// The empty line (`is_trivial()`) comes back for a trivial argument and wherever the search for the places,
// the function of nearest_point.h of the same measure, fails.

/// The line from `a` to `b`: origin (a + b) / 2, first axis (b - a) / 2; of two 2D points 2D, with the first
/// axis turned by a quarter as the second. In 3D the second axis lies in XY, as long as the first, and the
/// third completes a right-handed frame of equal lengths. A line along Z has the unit X direction as its
/// second axis and the product of the first two as its third.
///
/// Empty when a point is trivial or not finite.
TVMATH_API line distance_fit(point const& a, point const& b);
/// To the foot in XY.
TVMATH_API line distance_fit(point const& p, line l);
TVMATH_API line distance_fit(line l, point const& p);
/// To the foot in space.
TVMATH_API line distance_fit(point const& p, plane s);
TVMATH_API line distance_fit(plane s, point const& p);
TVMATH_API line distance_fit3d(point const& p, line l);
TVMATH_API line distance_fit3d(line l, point const& p);

/// The shortest line between two lists, or the longest. All points must be 3D, and the lists not empty.
///
/// The shorter list, the first one of equals, goes into a `PointFinder3D`; the other is walked, and the first
/// of equally good pairs stays. The time thus grows with the sum of the sizes, but for a logarithm.
TVMATH_API line distance_near_3d(std::vector<point> const& a, std::vector<point> const& b);
TVMATH_API line distance_far_3d(std::vector<point> const& a, std::vector<point> const& b);

// Between one point of a list, nearest or farthest, and another feature.

/// In space.
TVMATH_API line distance_near_3d(std::vector<point> const& list, point const& p);
TVMATH_API line distance_near_3d(point const& p, std::vector<point> const& list);
TVMATH_API line distance_far_3d(std::vector<point> const& list, point const& p);
TVMATH_API line distance_far_3d(point const& p, std::vector<point> const& list);
/// In space, to the foot in space.
TVMATH_API line distance_near_3d(std::vector<point> const& list, line l);
TVMATH_API line distance_near_3d(line l, std::vector<point> const& list);
TVMATH_API line distance_far_3d(std::vector<point> const& list, line l);
TVMATH_API line distance_far_3d(line l, std::vector<point> const& list);
TVMATH_API line distance_near_3d(std::vector<point> const& list, plane s);
TVMATH_API line distance_near_3d(plane s, std::vector<point> const& list);
TVMATH_API line distance_far_3d(std::vector<point> const& list, plane s);
TVMATH_API line distance_far_3d(plane s, std::vector<point> const& list);

/// In XY; the line itself joins the points as they are.
TVMATH_API line distance_near_2d(std::vector<point> const& list, point const& p);
TVMATH_API line distance_near_2d(point const& p, std::vector<point> const& list);
TVMATH_API line distance_far_2d(std::vector<point> const& list, point const& p);
TVMATH_API line distance_far_2d(point const& p, std::vector<point> const& list);
/// In XY, to the foot in XY.
TVMATH_API line distance_near_2d(std::vector<point> const& list, line l);
TVMATH_API line distance_near_2d(line l, std::vector<point> const& list);
TVMATH_API line distance_far_2d(std::vector<point> const& list, line l);
TVMATH_API line distance_far_2d(line l, std::vector<point> const& list);
/// Between a 3D point of a list and its nearest, or farthest, point of a Bezier path.
TVMATH_API line distance_near_2d(std::vector<point> const& list, curve c);
TVMATH_API line distance_near_2d(curve c, std::vector<point> const& list);
TVMATH_API line distance_far_2d(std::vector<point> const& list, curve c);
TVMATH_API line distance_far_2d(curve c, std::vector<point> const& list);

/// To the point of a Bezier path by `point_nearest_on`, or `point_farthest_on`; the point must be 3D.
TVMATH_API line distance_near(point const& p, curve c);
TVMATH_API line distance_near(curve c, point const& p);
TVMATH_API line distance_far(point const& p, curve c);
TVMATH_API line distance_far(curve c, point const& p);
/// From the place of the path or the ellipse to its foot on the line, in XY. A line that crosses is 0 away,
/// but the answer is one of the extremes that `point_nearest_on(line, ...)` tells.
TVMATH_API line distance_near(line l, curve c);
TVMATH_API line distance_near(curve c, line l);
TVMATH_API line distance_far(line l, curve c);
TVMATH_API line distance_far(curve c, line l);
TVMATH_API line distance_near(line l, ellipse e);
TVMATH_API line distance_near(ellipse e, line l);
TVMATH_API line distance_far(line l, ellipse e);
TVMATH_API line distance_far(ellipse e, line l);
/// To the point of the ellipse nearest, or farthest, in XY.
TVMATH_API line distance_near(point const& p, ellipse e);
TVMATH_API line distance_near(ellipse e, point const& p);
TVMATH_API line distance_far(point const& p, ellipse e);
TVMATH_API line distance_far(ellipse e, point const& p);

/// The shortest line in space between two ellipses, or the longest: of length 0, but for rounding, where they
/// cross. Among equally good ones the answer is one, the same for both orders.
///
/// A search by halving both ellipses with bounds of second order, and Newton's iteration at the end: the
/// distance is within 1e-12 of the size of the figure of the best one. Circles in parallel planes have a
/// closed form. Where the distance is nearly constant along whole arcs, as between almost equal or concentric
/// ellipses, the search ends at a limit of steps with the best local extreme nearby the places of a grid,
/// which is that good too as a rule; within 3e-10 of the size in random cases made to be of this kind.
///
/// Source: branch and bound as in R. Horst, H. Tuy, Global Optimization, Springer 1996, chapter 4.
TVMATH_API line distance_near(ellipse a, ellipse b);
TVMATH_API line distance_far(ellipse a, ellipse b);

/// The shortest line in space between two Bezier paths, of 3 n + 1 points with n at least 1 each, otherwise
/// empty; of length 0, but for rounding, where they cross. Accuracy, limits and source as for two ellipses.
///
/// Pairs of spans are taken in order of the distance of their boxes, from trees over both paths, until none
/// can be better. Paths at a constant distance are searched in full for ten pairs only. Spans with a trivial
/// or infinite control point are left out.
TVMATH_API line distance_near(curve a, curve b);

}  // namespace tvmath
