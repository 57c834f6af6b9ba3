#pragma once

#include <vector>

#include "circumscribed_walk.h"

inline namespace tvmath {

/// The largest circle with none of the points inside and its centre enclosed by three of them, to 1e-14;
/// the points' coordinates are at most 1. None when no three points enclose the centre of an empty circle,
/// and when the search takes too long.
///
/// Branch and bound over squares of centres. With the nearest point at a distance d from the middle of a
/// square of half diagonal h, no circle about a centre in the square has a radius above d + h, and it can
/// touch only points up to d + 2 h from the middle. A square is done with when that radius is not above the
/// best found, when all those points lie on one side of every centre in the square, so that they enclose
/// none of them, and when they are so few that all triangles of them can be tried.
contact_circle inscribed_search(std::vector<xy> const& points);

}  // namespace tvmath
