#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "fitting/point_span.h"
#include "geometry/xyz.h"

inline namespace tvmath {

/// The coordinates of a list in a unit in which the largest one lies between 1/2 and 1, so that products of
/// several neither overflow nor underflow. The unit is a power of two: no digit changes.
struct zone_points {
    std::vector<xyz> at;  ///< empty for a list with a trivial point, a NaN or an infinity
    double unit = 1;      ///< times a length here, a length of the caller
};

inline zone_points zone_points_of(point_span points) {
    zone_points scaled;
    double most = 0;
    for (point const& p : points) {
        xyz const q(p);
        if (p.is_trivial() || !q.is_finite()) return scaled;
        most = std::max({most, std::fabs(q.x), std::fabs(q.y), std::fabs(q.z)});
    }
    int exponent = 0;
    std::frexp(most, &exponent);
    exponent = std::clamp(exponent, -1000, 1000);  // beyond, one of the two factors is no normal number
    scaled.unit = std::ldexp(1.0, exponent);
    double const factor = std::ldexp(1.0, -exponent);
    scaled.at.reserve(points.size());
    for (point const& p : points) scaled.at.push_back(factor * xyz(p));
    return scaled;
}

}  // namespace tvmath
