#pragma once

#include <span>
#include <vector>

#include "fitting/point_span.h"
#include "geometry/xyz.h"
#include "tvmath/array.h"

inline namespace tvmath {

/// Measured points near the origin and of size 1: less a centre, divided by a power of two, so that
/// nothing is rounded but the subtraction. Sums of fourth powers then neither cancel nor overflow.
struct local_points {
    std::vector<xyz> points;  ///< empty when the list cannot be fitted
    xyz center;               ///< near the centroid
    double scale = 1;         ///< the largest coordinate is from 1 to 2
    double grain = 0;         ///< what rounding may have moved a point by, in local units

    xyz to_local(xyz const& p) const { return (1 / scale) * (p - center); }
    xyz from_local(xyz const& p) const { return center + scale * p; }
};

/// Empty for no points, a point that is not a finite 3D point, and points that are all equal.
local_points make_local(std::span<point const> points);

/// At most `count` of the points, one out of each of `count` equal runs of the list, at a place that looks
/// random so that a regular scan is not sampled along one of its lines. The same for each call.
std::vector<xyz> sample_of(std::vector<xyz> const& points, std::size_t count);

}  // namespace tvmath
