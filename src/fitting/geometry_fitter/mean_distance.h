#pragma once

#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Mean of `distance(p)` over the points, of which there must be one. Summed as differences from the first
/// one: these are small for points of a circle or sphere, and so is the rounding of their sum.
template <class function>
double mean_distance(std::vector<point> const& points, function const& distance) {
    double const first = distance(points.front());
    double beyond = 0;
    for (point const& p : points) beyond += distance(p) - first;
    return first + beyond / static_cast<double>(points.size());
}

}  // namespace geometry_fitter
}  // namespace tvmath
