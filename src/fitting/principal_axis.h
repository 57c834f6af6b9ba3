#pragma once

#include <cmath>

#include "point_span.h"

inline namespace tvmath {

/// The principal axis, in XY, of the points about `center`, a unit direction; trivial when their scatter has
/// none.
inline point principal_axis(point_span points, point const& center) {
    double uu = 0, uv = 0, vv = 0;
    for (point const& p : points) {
        double const u = p.x() - center.x(), v = p.y() - center.y();
        uu += u * u;
        uv += u * v;
        vv += v * v;
    }
    // Exact on purpose: any difference, however small, is a principal axis that the data has.
    if (uu == vv && uv == 0.0) return point();

    // With t the axis' angle: a = h cos 2t, b = h sin 2t, and (a + b + h, b - a + h) is a multiple of (cos t,
    // sin t). For negative b its terms would cancel; the other multiple has none.
    double const a = uu - vv, b = 2 * uv, h = std::sqrt(a * a + b * b);
    return normalize(b >= 0 ? point(false, a + b + h, b - a + h) : point(false, a - b + h, a + b - h));
}

}  // namespace tvmath
