#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/gap.h"
#include "tvmath/point.h"
#include "tvmath/rectangle.h"
#include "tvmath/slot.h"

inline namespace tvmath {

// Rectangles, slots and gaps in XY of least squares of the orthogonal distances. The points come in any order
// and do not say which side they lie on. Lengths are in the caller's units. A 3D list gives a feature
// parallel to XY at its mean z, any other list a 2D one.
//
// Each fit is started in many directions on at most a thousand of the points, and the best start is followed
// on all of them until nothing changes but rounding; where several features pass through the points to the
// last digit, the one with the first two points on one side is taken, of a slot and otherwise the narrowest.
// The null feature (`is_trivial()`) comes back for too few points, for a trivial point or a coordinate that
// is not finite, and when the points do not tell the feature, as each fit says. Nothing raises.

/// The rectangle of least squares of the distances from its outline: a point past a corner has the distance
/// from the corner, as in a form error.
///
/// `nominal` is a further start, and the answer where others are as good; `basis(1)` then is the side that
/// runs along its width, forward or backward. With a trivial one `basis(1)` is the longer side, to the right.
///
/// Needs 5 points. Null unless each side has a point of its own, farther from the next side than three times
/// the scatter (so for points on three sides only), and one side two of them; and when the width or the
/// height is below six times the scatter, which points on one line do not exceed.
///
/// Source: W. Gander, U. von Matt, Some least squares problems, in: Solving Problems in Scientific Computing
/// Using Maple and MATLAB, Springer 1993, chapter 6: the best direction of lines known to be parallel or
/// perpendicular is an eigenvector, so that each round is exact for its assignment of points to sides.
TVMATH_API rectangle rectangle_fit(idioms::array<point> points, rectangle nominal);

/// The slot of least squares of the distances from its outline, `basis(1)` to the right.
///
/// Needs 5 points. Null when no point past an end leaves the line of the sides by six times the scatter,
/// which the points of the sides alone do not; when the standard deviation of the place of an end, of the
/// direction times the length or of the radius exceeds a tenth of the radius, as for points on one side; and
/// when the straight part is below three times its own, as for the points of a circle.
///
/// Source: K. Levenberg, Quart. Appl. Math. 2 (1944) 164-168; D. Marquardt, SIAM J. 11 (1963) 431-441.
TVMATH_API slot slot_fit(idioms::array<point> points);

/// The gap between two parallel sides of least squares of the distances from the nearer one; `basis(1)`
/// spans the points along the sides and runs to the right.
///
/// Needs 3 points: of just 3 different ones the first two are one side. Null when one side has no two points
/// at different places, and when the distance of the sides is below six times the scatter, which points on
/// one line do not exceed. Found as the rectangle is.
TVMATH_API gap gap_fit(std::vector<point> const& points);
TVMATH_API gap gap_fit(idioms::array<point> points);

}  // namespace tvmath
