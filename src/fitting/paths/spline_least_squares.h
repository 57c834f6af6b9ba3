#pragma once

#include <cstddef>
#include <vector>

#include "cubic_spline.h"
#include "geometry/xyz.h"

inline namespace tvmath {

/// Fewest points for a least-squares spline: with fewer, a span has as many freedoms as they have.
constexpr std::size_t least_points_along = 8;

/// The cubic spline of least squares along at least `least_points_along` points, of size 1; the method is
/// told at `bezier_least_squares_fit`.
cubic_bspline spline_along(std::vector<xyz> const& points, bool closed, bool solid);

}  // namespace tvmath
