#pragma once

#include "tvmath/transform.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Foot, in XY, of the perpendicular from `p` on a line, which counts as infinite; z is the line's there.
inline point foot_on_line(point const& p, transform const& l) {
    point const o = l.basis(0), d = l.basis(1);
    return o + d * (dot2d(p - o, d) / dot2d(d, d));
}

}  // namespace geometry_fitter
}  // namespace tvmath
