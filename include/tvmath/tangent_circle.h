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

TVMATH_API circle circle_centered_tangent(point const& center, line l);
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_value(line a, line b, double radius,
                                                                    std::vector<Circle_Description>& circles);
TVMATH_API idioms::ref<multi_solution> circle_arc_tangent_tangent_value(ellipse a, ellipse b, double radius,
                                                                        std::vector<Circle_Description>& circles);
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_fit(line a, line b, point const& p,
                                                                  std::vector<Circle_Description>& circles);
TVMATH_API idioms::ref<multi_solution> circle_tangent_tangent_tangent(line a, line b, line c,
                                                                      std::vector<Circle_Description>& circles);

}  // namespace tvmath
