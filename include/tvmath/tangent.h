#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Lines that touch ellipses and circles. Each runs from its place on the first argument to that on the second
// and is 3D when an argument is, in the frame that `distance_fit` tells. Lengths are in the caller's units.
// Empty arguments, numbers that are not finite, and what has no tangent give an empty list.

/// The tangents from a point to an ellipse: two, from the point to the tangent points, the left one first as
/// seen from the point. Their half-length is at least 0.005: shorter ones are drawn out to both sides of
/// their middle.
///
/// The squared distance of the point from the centre, in units of the ellipse, decides: below 0.9999999999
/// there is none; below 1.0000000001 the point lies on the ellipse and has one, about the point, of
/// half-length 0.005, with the direction of the left one. A tilted ellipse is seen along its own third axis;
/// one without area has no tangents.
TVMATH_API idioms::array<line> line_tangent(point const& p, ellipse e);

/// All common tangents of two ellipses as they are seen along Z, from tangent point to tangent point; each
/// end keeps the height of its ellipse. `inner` tells whether some run between the ellipses.
///
/// - Ellipses apart have four: the outer ones, the left one first as seen from the first ellipse to the
///   second, then the inner ones, the one that starts on the left first. The inner ones are one where the
///   ellipses touch.
/// - Overlapping ellipses have outer ones only, 2 or 4; each touch from inside makes one of two. Up to two
///   are sorted by the angle of their outward normals anticlockwise from the line of the centres, so that the
///   left one is first; more, and those of concentric ellipses, from an angle of 0.618 beyond the first axis
///   of the first ellipse, or of the second when the first is nearly round.
/// - An ellipse within the other has none, nor have two that are the same.
///
/// Ellipses touch where their supports (the distances of their tangents from the origin) come within some
/// 1e-14 of the coordinates and sizes. Both places on it then are one, about which the tangent is given with
/// a half-length of 0.005. The distance of any tangent from either ellipse is of that order. Empty for an
/// ellipse that is seen edge-on.
///
/// Source: zeros of the difference of the supports; apart, one pair on either side of the widest gap, which
/// is a convex problem; otherwise isolated by the Bernstein form of the pencil of dual conics (J. M. Lane, R.
/// F. Riesenfeld, Bounds on a polynomial, BIT 21 (1981) 112-117), which misses none.
TVMATH_API idioms::array<line> line_tangent(ellipse a, ellipse b, bool& inner);

/// Replaces the list by the tangents of two records by the functions above: of a point and an ellipse, circle
/// or arc, in either order, or of two of the latter. An arc counts as its full circle. From an ellipse to a
/// point they are those from the point, reversed. Other kinds and null pointers have none. The handle is
/// never null; its choice is 0.
TVMATH_API idioms::ref<multi_solution> line_tangent(Geometry_Description* a, Geometry_Description* b,
                                                    std::vector<Segment_Description>& tangents);

}  // namespace tvmath
