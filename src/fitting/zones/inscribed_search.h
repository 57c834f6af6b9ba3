#pragma once

#include <vector>

#include "circumscribed_walk.h"

inline namespace tvmath {

/// The largest circle with none of the points inside and its centre enclosed by three of them, to 1e-14;
/// the points' coordinates are at most 1. Of equal ones that of the walk over contacts, if it is among them.
/// None when no three points enclose the centre of an empty circle.
///
/// It is the largest circle around a triangle of the Delaunay triangulation without an obtuse angle: the
/// triangles are those with an empty circle, and where more than three points lie on that, the one around the
/// centre is among theirs.
contact_circle inscribed_search(std::vector<xy> const& points);

}  // namespace tvmath
