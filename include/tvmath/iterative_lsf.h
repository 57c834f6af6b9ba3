#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/matrix.h"
#include "tvmath/point.h"
#include "tvmath/vector.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Least squares of orthogonal distances by damped Gauss-Newton steps, with equality constraints by Lagrange
/// multipliers. A feature derives from it as a model: a residual and its gradient for each measured point,
/// and optionally constraints.
///
/// Source: A. Bjorck, Numerical Methods for Least Squares Problems, SIAM 1996, chapters 5 and 9.
class TVMATH_API IterativeLSF {
public:
    /// The unknowns: starting values before `solve`, the result after it.
    vector parameters;

    virtual ~IterativeLSF();
    /// Signed residual of one point; `gradient` becomes its derivatives by the parameters, one for each.
    virtual double residual(point p, vector& gradient) = 0;
    /// Values that are to be 0, one for each constraint; `jacobian` becomes their derivatives, a row for
    /// each. None in the base class.
    virtual vector constraints(matrix& jacobian);
    /// Added to the diagonal of the normal matrix at that parameter; 0 in the base class.
    virtual double damping(unsigned int index);

    /// Minimises the sum of squared residuals. True when the last step was below 1e-8 of the parameters;
    /// false, with parameters that mean nothing, after 30 rounds, for a NaN, a singular system, and a sum of
    /// squares above the first one.
    bool solve(std::vector<point> const& fit_points);
};

}  // namespace geometry_fitter
}  // namespace tvmath
