#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/intersection.h"
#include "tvmath/multi_solution.h"

inline namespace tvmath {

// Where two features meet, for a user who chooses one of the places. `places` is set to those of
// `point_intersect` without it, in their order, and to nothing where that is empty. The memory of the choice
// comes back in any case, with the choice at 0.
//
// Two places on a line are told apart by the direction of the line, as it is seen along Z for an ellipse and
// in space otherwise. So the choice is kept when the line was measured in the other direction, and while it
// passes by the feature. A line that turns through the direction of a cone's generators loses one place and
// finds it again on the other nappe; a choice of 1 that is beyond the list waits for it.

TVMATH_API idioms::ref<multi_solution> point_intersect(line l, sphere s,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(line l, cylinder c,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(line l, cone c,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(line l, ellipse e,
                                                       std::vector<Point_Description>& places);

// Places on paths and ellipses are told apart by where they are.

TVMATH_API idioms::ref<multi_solution> point_intersect(line l, curve c,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(ellipse e1, ellipse e2,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(ellipse e, curve c,
                                                       std::vector<Point_Description>& places);
TVMATH_API idioms::ref<multi_solution> point_intersect(curve a, curve b,
                                                       std::vector<Point_Description>& places);

// The same with the arguments exchanged.
inline idioms::ref<multi_solution> point_intersect(sphere s, line l, std::vector<Point_Description>& places) {
    return point_intersect(l, s, places);
}
inline idioms::ref<multi_solution> point_intersect(cylinder c, line l,
                                                   std::vector<Point_Description>& places) {
    return point_intersect(l, c, places);
}
inline idioms::ref<multi_solution> point_intersect(cone c, line l, std::vector<Point_Description>& places) {
    return point_intersect(l, c, places);
}
inline idioms::ref<multi_solution> point_intersect(ellipse e, line l,
                                                   std::vector<Point_Description>& places) {
    return point_intersect(l, e, places);
}
inline idioms::ref<multi_solution> point_intersect(curve c, line l, std::vector<Point_Description>& places) {
    return point_intersect(l, c, places);
}
inline idioms::ref<multi_solution> point_intersect(curve c, ellipse e,
                                                   std::vector<Point_Description>& places) {
    return point_intersect(e, c, places);
}

}  // namespace tvmath
