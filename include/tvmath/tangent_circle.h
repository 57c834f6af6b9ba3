#pragma once

#include <vector>

#include "tvmath/circle.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Circles that touch measured features. Everything is seen along Z: lines are infinite, ellipses count as a
// whole, and the circles lie parallel to XY. They are 2D when every argument is; otherwise 3D, with the mean
// of the heights that the features have where the circle touches them. Lengths are in the caller's units.
//
// The constructions with several answers replace `circles` by all of them, each once, in an order of their
// own that small changes of the features keep, and return the memory of the choice, at 0; they never return a
// null handle. The list is empty when nothing touches, for an empty argument, a line without direction in XY,
// and numbers that are not finite. A negative radius counts as its magnitude, and there is no answer of
// radius 0.
//
// A circle that touches is an answer also where it crosses the same feature elsewhere.

/// The circle about `center` that touches the line; it has the centre as it is given. Of radius 0 for a point
/// on the line; null for an empty argument, a line without direction in XY, and numbers that are not finite.
TVMATH_API circle circle_centered_tangent(point const& center, line l);

/// The four circles of one radius that touch two lines, by the sides of the lines in their directions: left
/// of both, left of the first and right of the second, right and left, right of both.
///
/// Parallel lines (a sine below 3e-8) have one, at the middle of their midpoints, when the radius is half of
/// their distance within 1e-9 of it and the rounding of the coordinates, else none. None for a line twice.
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_value(line a, line b, double radius,
                                                                    std::vector<Circle_Description>& circles);

/// All circles of one radius that touch two ellipses: those with a centre at that distance along a normal of
/// each. Both may lie outside or inside of either ellipse. First those with the centre on the outward normal
/// of both, then outward of the first only, of the second only, of none; within each anticlockwise by the
/// angle on the first ellipse (as its axes turn) from a fixed one of 0.618.
///
/// Two circles have up to 8, in closed form; gaps that are 0 within rounding (some 1e-15 of the size of
/// everything) touch. Ellipses have more. Answers with centres nearer than 1e-8 of that size are one; a pair
/// that is about to merge may be given as one from 1e-6 on, and any answer that is a touch of the curves of
/// the centres has half of the digits along it. None for the same ellipse twice, for concentric circles, of
/// which all circles in the gap touch, and for an ellipse that is seen edge-on. Ellipses that are equal but
/// for some 1e-9 of their size, and a radius more than some 1e6 times their size, may have answers that are
/// not found.
///
/// Source: intersection of the parallel curves by halving convex arcs, with the test of T. W. Sederberg, T.
/// Nishita, Curve intersection using Bezier clipping, CAD 22 (1990) 538-549, and Newton's iteration.
TVMATH_API idioms::ref<multi_solution> circle_arc_tangent_tangent_value(
    ellipse a, ellipse b, double radius, std::vector<Circle_Description>& circles);

/// The two circles that touch two lines and pass through a point. Both lie with the point in one sector of
/// the lines and come in the direction of the first line. A point on a line, within rounding of the
/// coordinates, is where both touch it: one on its left, then one on its right. None for the point where the
/// lines meet.
///
/// Parallel lines, also exact ones, have the two of half their distance when the point lies between them, one
/// when it lies on one of them, and none when it lies beside them or the lines are the same. `p` is seen
/// along Z too, with its height as that of a third feature; the trivial point gives none.
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_fit(line a, line b, point const& p,
                                                                  std::vector<Circle_Description>& circles);

/// The four circles that touch three lines: the incircle of their triangle, then the excircles beyond the
/// first, the second and the third line.
///
/// Two parallel lines (a sine below 3e-8) and a third one across have two, the one left of the third line
/// first. None for three parallel lines, for a line twice, and for lines through one point, within rounding
/// of the coordinates.
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_tangent(
    line a, line b, line c, std::vector<Circle_Description>& circles);

}  // namespace tvmath
