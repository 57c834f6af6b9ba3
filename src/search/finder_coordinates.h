#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "geometry/xyz.h"

inline namespace tvmath {

template <unsigned int dimension>
using coordinates = std::array<double, dimension>;

/// A point as a finder counts it: in 2D without its z, in 3D with z = 0 if it has none.
template <unsigned int dimension>
coordinates<dimension> coordinates_of(point const& p) {
    xyz const q(p);
    if constexpr (dimension == 3) {
        return {q.x, q.y, q.z};
    } else {
        return {q.x, q.y};
    }
}

template <std::size_t dimension>
bool is_finite(std::array<double, dimension> const& c) {
    return std::all_of(c.begin(), c.end(), [](double v) { return std::isfinite(v); });
}

template <std::size_t dimension>
point location(std::array<double, dimension> const& c) {
    if constexpr (dimension == 3) {
        return point(true, c[0], c[1], c[2]);
    } else {
        return point(true, c[0], c[1]);
    }
}

/// Sum of squares, in one order wherever distances are compared: rounding is monotone, so a box is never
/// farther than anything in it.
template <class number, std::size_t dimension>
number squared(std::array<number, dimension> const& v) {
    number sum = v[0] * v[0] + v[1] * v[1];
    if constexpr (dimension == 3) sum += v[2] * v[2];
    return sum;
}

}  // namespace tvmath
