#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"

inline namespace tvmath {

/// The angle between two lines, as a dimension: from the ray that runs from the vertex to the middle of the
/// first line to that of the second, at most pi.
///
/// The vertex is the common point, or the middle of the shortest connection; the first axis of `arc` lies
/// along the bisector and has the dimension radius as its length, the third is the unit normal, with z not
/// below 0. Angles are in the arc's frame. Where the way to the second ray is clockwise, the sense is changed
/// as by `change_sign`, so that `included_angle` is not negative. The extents tell where the lines begin and
/// end along their rays; the radius is half of the greatest of both far ends and the sum of both midpoints'
/// distances.
///
/// False, with a default record, for an empty line, one without direction, parallel lines (as for
/// `point_intersect`), and numbers that are not finite.
TVMATH_API bool angle_intersect(line first, line second, Angle_Description& angle);

/// The same angle again, after the lines were measured once more: of the four between them the one whose
/// rays lie nearest to those of `reference`, on the same side of its plane; the reflex one, from pi to 2 pi,
/// when it was that one, and with the same sign. Lines may have changed their direction. Failure as above;
/// `angle` may be `reference`.
TVMATH_API bool angle_intersect(line first, line second, Angle_Description const& reference,
                                Angle_Description& angle);

/// Lets the angle run from its end to its start: twice is the same angle, up to rounding.
TVMATH_API void change_sign(Angle_Description& angle);

/// Replaces the list by the four angles that two lines form: `angle`, its supplement (between the reversed
/// start and the end), the vertical angle (both reversed) and the reflex angle. The first axis of each lies
/// along its bisector, all have the sign of `angle`, and the extents are along their own rays.
TVMATH_API void get_angle_solutions(Angle_Description const& angle,
                                    std::vector<Angle_Description>& solutions);

}  // namespace tvmath
