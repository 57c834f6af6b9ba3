#pragma once

#include <vector>

#include "circumscribed_walk.h"

inline namespace tvmath {

/// A circle amid the points, relative to their centroid or to a point near it, found by growing: the centre
/// moves away from the nearest point until a second one stops it, then along their bisector to a third, and
/// on from the longest side while the triangle of the contacts is obtuse.
///
/// The circle is a local maximum, and a vertex dropped at an obtuse angle is not looked at again and may end
/// up inside. Two contacts when nothing bounds the circle on either side of their chord, as of points on a
/// line; none when there is no way to grow.
contact_circle inscribed_walk(std::vector<xy> const& points);

}  // namespace tvmath
