#pragma once

#include <vector>

#include "fitting/point_span.h"
#include "tvmath/point.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Carries `center` and `radius` from the algebraic sphere of these points on to that of least squares.
/// False, with both unchanged, when the iteration does not settle. All points are 3D locations.
bool refine_sphere(point_span points, point& center, double& radius);

/// The sphere of least squares of `fit` that passes exactly through the points of `through`. All points are
/// 3D locations. False, with `result` unchanged, when there is none.
bool least_squares_sphere(std::vector<point> const& fit, std::vector<point> const& through, sphere& result);

}  // namespace geometry_fitter
}  // namespace tvmath
