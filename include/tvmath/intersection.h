#pragma once

#include "tvmath/array.h"
#include "tvmath/circle.h"
#include "tvmath/cone.h"
#include "tvmath/curve.h"
#include "tvmath/cylinder.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"
#include "tvmath/sphere.h"

inline namespace tvmath {

// Where two features meet. Lines, planes and axes count as infinite, cylinders as endless. Lengths are in the
// caller's units; 2D shapes lie in z = 0.
//
// The order of the arguments never changes which places are found, and swapped arguments share one
// computation wherever two kinds meet. What does not meet gives an empty result: a trivial point, a null
// shape or an empty list; so does an empty argument, and one whose numbers are not finite. Lists hold 3D
// locations.
//
// Features that touch are decided by rounding where nothing else is said: a gap of a few ulp of the
// coordinates may give no answer or two answers next to each other.

/// Middle of the shortest connection of two lines: their common point where they have one. 3D when a line is.
/// A line without extent counts as its point. The trivial point when the cosine of the directions is within
/// 5e-16 of 1 (an angle of 3e-8).
TVMATH_API point point_intersect(line a, line b);

/// Where a line meets a plane; in the dimension of the line. The trivial point only when the line is exactly
/// parallel: there is no tolerance.
TVMATH_API point point_intersect(line l, plane p);
inline point point_intersect(plane p, line l) {
    return point_intersect(l, p);
}

/// The common line of two planes. It runs next to the middle of their origins and is as long as the squares
/// from -1 to 1 on both planes' axes reach along it; its direction is that of the first normal times the
/// second. `basis(1)` has its full slope, also where the line leaves the XY plane. Exactly parallel planes
/// give a line without extent at the first plane's origin, which means nothing.
TVMATH_API line line_intersect(plane a, plane b);

/// Two points, in the direction of the line; equal ones where it touches.
TVMATH_API idioms::array<point> point_intersect(line l, sphere s);
/// Two points, in the direction of the line; equal ones where it touches. Empty for a line along the axis,
/// that is parallel within rounding of its direction.
TVMATH_API idioms::array<point> point_intersect(line l, cylinder c);
/// Two points, in the direction of the line, on the cone and on its mirror image beyond the vertex, neither
/// limited by the ends; equal ones where the line touches or goes through the vertex, both within rounding.
/// One point for a line parallel to a generator, within rounding; none for a generator itself.
TVMATH_API idioms::array<point> point_intersect(line l, cone c);

/// Two points of the XY projections, in the direction of the line; equal ones where it touches. z is the mean
/// of the heights of the line and the ellipse there. Empty when the line has no direction in XY.
TVMATH_API idioms::array<point> point_intersect(line l, ellipse e);
/// All points of the path over the line, as seen along Z, in the order of the path; z is that of the path. A
/// place where a span only touches is given twice, and so can be one at the joint of two spans. Nothing for a
/// span along the line. Empty unless the size of the path is 1 mod 3 and at least 4.
///
/// Source: zeros of the Bernstein form, Lane and Riesenfeld, BIT 21 (1981) 112-117.
TVMATH_API idioms::array<point> point_intersect(line l, curve c);

/// All common points of the XY projections, up to 4, anticlockwise by the angle on the first ellipse (as its
/// axes turn) from a fixed one of 0.618. z is the mean of the heights of both. A place where they only touch
/// is given twice: that is one where the squared distance from the centre, in units of the larger ellipse,
/// passes 1 by less than some 1e-15. One that crosses in the manner of a touch, of third order, is given
/// once. Empty for two ellipses that are the same within rounding, and for two that are both seen edge-on; a
/// single one seen so is the segment, run through there and back.
///
/// Source: zeros of the quartic in the tangent of half the angle, in Bernstein form over two half turns,
/// which has no leading coefficient to vanish for concentric or equal axes; Newton's iteration on the
/// equation itself.
TVMATH_API idioms::array<point> point_intersect(ellipse e1, ellipse e2);
/// All points of the path over the ellipse, as for a line. Empty for an ellipse seen edge-on.
TVMATH_API idioms::array<point> point_intersect(ellipse e, curve c);
/// All common points of two paths as seen along Z, in the order of the first path's spans and, for each, of
/// the second one's; within a span in its direction. z is the mean of both. Places nearer than 1e-7 to one
/// found before are left out, so one at a joint, or a touch, is given once. Two spans touch where rounding
/// cannot tell them apart. Spans that share a stretch do so everywhere on it: nothing is given for such a
/// pair, though their neighbours may give its joints. Empty unless both sizes are 1 mod 3 and at least 4 and
/// both first points are 3D.
///
/// Source: subdivision with the bounds of T. W. Sederberg, T. Nishita, Curve intersection using Bezier
/// clipping, CAD 22 (1990) 538-549, and Newton's iteration for pieces that share no direction.
TVMATH_API idioms::array<point> point_intersect(curve a, curve b);

// The same with the arguments exchanged.
inline idioms::array<point> point_intersect(sphere s, line l) {
    return point_intersect(l, s);
}
inline idioms::array<point> point_intersect(cylinder c, line l) {
    return point_intersect(l, c);
}
inline idioms::array<point> point_intersect(cone c, line l) {
    return point_intersect(l, c);
}
inline idioms::array<point> point_intersect(ellipse e, line l) {
    return point_intersect(l, e);
}
inline idioms::array<point> point_intersect(curve c, line l) {
    return point_intersect(l, c);
}
inline idioms::array<point> point_intersect(curve c, ellipse e) {
    return point_intersect(e, c);
}

/// The circle in which a plane cuts a sphere, about the plane's normal. Of radius 0 where it touches; null
/// when the sphere is farther away.
TVMATH_API circle circle_intersect(plane p, sphere s);
/// A circle of the cylinder's radius in the plane, about the point on the axis, whatever the tilt: the true
/// section is that of `ellipse_intersect`. Null when the axis is exactly parallel to the plane.
TVMATH_API circle circle_intersect(plane p, cylinder c);
/// The circle in the plane, about the point on the axis, with the radius that the cone has there, whatever
/// the tilt. Beyond the vertex the normal is reversed. Null when the plane is not 3D, when the axis is
/// exactly parallel to it, and for a cone without length.
TVMATH_API circle circle_intersect(plane p, cone c);
/// The circle of the cylinder's radius about the axis of the cone, where the cone has that radius. Null when
/// the cylinder is not 3D and when the radii of the cone are equal.
TVMATH_API circle circle_intersect(cylinder c, cone k);

/// The section of a plane and a cylinder. The first half-axis is the major one, the second lies along the
/// product of the plane's normal and the cylinder's axis, the third is the normal; right-handed. Where the
/// product has a component of 0 its first other one is kept positive, and across the axis it is the plane's
/// first axis, so that the axes do not flip between measurements. Null when the axis is exactly parallel.
TVMATH_API ellipse ellipse_intersect(plane p, cylinder c);
/// The section of a plane and a cone, with the axes as for a cylinder; the cone is not limited by its ends,
/// but ends at the vertex. Null when the plane is parallel to a generator, within rounding, or steeper, when
/// it meets the vertex or only the mirror image beyond, and for a cone without length.
TVMATH_API ellipse ellipse_intersect(plane p, cone c);

// The same with the arguments exchanged.
inline circle circle_intersect(sphere s, plane p) {
    return circle_intersect(p, s);
}
inline circle circle_intersect(cylinder c, plane p) {
    return circle_intersect(p, c);
}
inline circle circle_intersect(cone c, plane p) {
    return circle_intersect(p, c);
}
inline circle circle_intersect(cone k, cylinder c) {
    return circle_intersect(c, k);
}
inline ellipse ellipse_intersect(cylinder c, plane p) {
    return ellipse_intersect(p, c);
}
inline ellipse ellipse_intersect(cone c, plane p) {
    return ellipse_intersect(p, c);
}

}  // namespace tvmath
