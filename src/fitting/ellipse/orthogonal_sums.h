#pragma once

#include "fitting/small_cholesky.h"
#include "orthogonal_ellipse.h"

inline namespace tvmath {

using ellipse_system = small_cholesky<5>;

/// Half the sum of squared distances from an ellipse, and its derivatives by the centre and by the matrix N
/// of the ellipse c + N (cos t, sin t), symmetric: n11, n12, n22. All in the frame of the half-axes, where N
/// is diagonal.
///
/// With N for the half-axes and the angle nothing is singular on a circle, and the points of the ellipse are
/// linear in the unknowns.
struct orthogonal_sums {
    double half_squares = 0;
    ellipse_system::row gradient{};
    ellipse_system::square hessian{};       ///< The lower triangle, as of the next.
    ellipse_system::square gauss_newton{};  ///< Without what the residuals add to the second derivatives.
};

orthogonal_sums sum_distances(std::vector<xy> const& points, planar_ellipse const& e);

}  // namespace tvmath
