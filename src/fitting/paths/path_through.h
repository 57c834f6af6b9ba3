#pragma once

#include <cstddef>
#include <vector>

#include "measured_path.h"
#include "tvmath/curve.h"

inline namespace tvmath {

/// The Bezier path of a spline through the points by its slopes; a third of a step along a slope leads to the
/// control point beside it. Relative to the given points, so that these are met to the last bit.
inline curve path_through(measured_path const& path, std::vector<double> const& steps,
                          std::vector<xyz> const& slopes) {
    std::size_t const n = path.given.size(), segments = steps.size();
    curve result(static_cast<unsigned int>(3 * segments + 1));
    point* to = result.lazycopy_begin();
    for (std::size_t i = 0; i < segments; ++i) {
        std::size_t const next = i + 1 == n ? 0 : i + 1;
        double const third = steps[i] / 3 * path.unit;
        *to++ = path.given[i].location(path.is_solid);
        *to++ = (path.given[i] + third * slopes[i]).location(path.is_solid);
        *to++ = (path.given[next] - third * slopes[next]).location(path.is_solid);
    }
    *to = path.given[segments == n ? 0 : n - 1].location(path.is_solid);
    return result;
}

}  // namespace tvmath
