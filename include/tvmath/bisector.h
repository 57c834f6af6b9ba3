#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"
#include "tvmath/point.h"

inline namespace tvmath {

TVMATH_API line line_bisect(line a, line b);
TVMATH_API line line_bisect(line l, point const& p);
TVMATH_API line line_bisect(point const& p, line l);
TVMATH_API line line_bisect(point const& a, point const& b);
TVMATH_API idioms::ref<multi_solution> line_bisect(line a, line b, std::vector<Segment_Description>& bisectors);

}  // namespace tvmath
