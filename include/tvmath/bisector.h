#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Lines of symmetry. Lines count as infinite; a result is 3D when an argument is, and has the frame that
// `distance_fit` tells. Lengths are in the caller's units. The empty line (`is_trivial()`) comes back for a
// trivial argument, for a line without extent and for numbers that are not finite.

/// The bisector of the smaller angle of two lines, through `point_intersect(a, b)`: the middle of the
/// shortest connection of two lines that miss each other. It points along the sum of the unit directions,
/// after the second is turned to make no obtuse angle with the first. As long as both on average.
///
/// Parallel lines, which have no common point, have their midline, through the middle of both origins.
TVMATH_API line line_bisect(line a, line b);

/// The axis of symmetry of a line and a point through which it passes: the perpendicular to the line that has
/// the point as its origin and, with infinite length, the foot on it. It points to the left of the line as
/// seen from above, and so does not flip when the point changes sides. Its half-length is that of the line,
/// or the distance to the foot where that is longer. In space the perpendicular of a point on the line lies
/// level.
TVMATH_API line line_bisect(line l, point const& p);
TVMATH_API line line_bisect(point const& p, line l);

/// The perpendicular bisector of two points: about their middle, as long as they are apart, along the
/// difference b - a turned anticlockwise by a quarter in XY. In space it is the one that lies level, along X
/// when the points stand above each other.
TVMATH_API line line_bisect(point const& a, point const& b);

/// Replaces the list by both bisectors of two lines: first `line_bisect(a, b)`, then that of the larger
/// angle, through the same origin and equally long; it is the first one turned by a quarter in the plane of
/// both lines, anticlockwise as seen from above. Parallel lines have only the midline, lines without a
/// bisector an empty list. The handle is never null; its choice is 0. For lines at a right angle rounding
/// decides which is the first; `update_from` of the handle follows that.
TVMATH_API idioms::ref<multi_solution> line_bisect(line a, line b,
                                                   std::vector<Segment_Description>& bisectors);

}  // namespace tvmath
