#pragma once

#include <vector>

#include "tvmath/point.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace geometry_fitter {

/// The sphere of least squares of `fit` that passes exactly through the points of `through`. All points are
/// 3D locations. False, with `result` unchanged, when there is none.
bool least_squares_sphere(std::vector<point> const& fit, std::vector<point> const& through, sphere& result);

}  // namespace geometry_fitter
}  // namespace tvmath
