#pragma once

#include <vector>

#include "tvmath/cone.h"
#include "tvmath/curve.h"
#include "tvmath/nurb.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace Persistence {

// The readers of the same names with `to_` in tvmath/persistence.h, for a part of a text.

point read_point(bool location, wide_string_view text, point const& fallback);
/// Sets `points`, also to nothing.
void read_points(wide_string_view text, std::vector<point>& points);
curve read_curve(wide_string_view text, curve const& fallback);
vector read_vector(wide_string_view text, vector const& fallback);
transform read_transform(wide_string_view text, transform const& fallback);
nurb read_nurb(wide_string_view text, nurb const& fallback);
cone read_cone(wide_string_view text, cone const& fallback);
/// `fallback` for an empty text only.
double read_real(wide_string_view text, double fallback);

}  // namespace Persistence
}  // namespace tvmath
