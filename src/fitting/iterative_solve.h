#pragma once

#include <functional>

#include "tvmath/iterative_lsf.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Adds up, at the model's present parameters, the products of the row w of every point: its gradient with
/// the residual behind it. `sums` are zeros on entry: the upper triangle of the sum of w transpose(w), row by
/// row, n + 1 numbers in the first row; the last number of all is the sum of squares.
using product_sums = std::function<void(double* sums)>;

/// The iteration of `IterativeLSF::solve` with another way to the sums: models of the library form them in
/// loops of their own that make no call and no vector for each point, in the same order and with the same
/// bits as `residual`.
bool iterate(IterativeLSF& model, product_sums const& sum);

/// The same, and when it fails again from a better start. The iteration judges a step by the sum of squares
/// alone, and a step along a curved constraint can lower it by leaving the constraint: the way back then
/// looks like a failure. The better start is found by steps that end on the constraints.
bool iterate_on_curved_constraints(IterativeLSF& model, product_sums const& sum);

}  // namespace geometry_fitter
}  // namespace tvmath
