#pragma once

#include <vector>

#include "fitting/point_span.h"
#include "tvmath/circle.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"

inline namespace tvmath {
namespace geometry_fitter {

/// A circle in XY.
struct planar_circle {
    double x = 0, y = 0, radius = 0;

    bool is_usable() const;  ///< Finite, and of a radius above 0.
};

/// What a circle without a given centre is to fulfil: least squares of `fit`, exactly through points, exactly
/// touching lines. All points are 3D locations, all lines 3D.
struct circle_conditions {
    std::vector<point> const& fit;
    std::vector<point> through;
    std::vector<transform> touched;
};

/// A circle that touches lines and fulfils the conditions near enough for the iteration; the circle itself
/// where they leave no redundancy. False when there is none.
bool starting_tangent_circle(circle_conditions const& known, planar_circle& start);

/// Carries `center` and `radius` from the algebraic circle of these points on to that of least squares in XY,
/// at the same height. False, with both unchanged, when the iteration does not settle, and for a direction
/// among the points.
bool refine_circle(point_span points, point& center, double& radius);

/// The circle of least squares under the conditions, in a plane parallel to XY at the mean height of the
/// points and of the feet on the lines. False, with `result` unchanged, when there is none.
bool least_squares_circle(circle_conditions const& known, circle& result);

}  // namespace geometry_fitter
}  // namespace tvmath
