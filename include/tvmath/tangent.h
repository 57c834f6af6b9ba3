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

TVMATH_API idioms::array<line> line_tangent(point const& p, ellipse e);
TVMATH_API idioms::array<line> line_tangent(ellipse a, ellipse b, bool& inner);
TVMATH_API idioms::ref<multi_solution> line_tangent(Geometry_Description* a, Geometry_Description* b,
                                                    std::vector<Segment_Description>& tangents);

}  // namespace tvmath
