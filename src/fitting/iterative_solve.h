#pragma once

#include <functional>

#include "tvmath/iterative_lsf.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Adds up, at the model's present parameters, the products of the row w of every point: its gradient with
/// the residual behind it. `sums` are zeros on entry: the upper triangle of the sum of w transpose(w), row by
/// row, n + 1 numbers in the first row; the last number of all is the sum of squares.
using product_sums = std::function<void(double* sums)>;

/// The solution of a model of the library, by the iteration of `IterativeLSF::solve` with another way to the
/// sums: models form them in loops of their own that make no call and no vector for each point.
///
/// Two things are added. The iteration ends when a step is below 1e-8, and what is left then is that step
/// times the rate of convergence, which grows with the scatter of the points: rounds follow while 1e-13 are
/// left. And under curved constraints the iteration may fail on good data, because it judges a step by the
/// sum of squares alone: a step can lower it by leaving the constraint, and the way back then looks like a
/// failure. It is tried again from a better start, found by steps that end on the constraints.
bool solve_model(IterativeLSF& model, product_sums const& sum, bool curved_constraints = false);

}  // namespace geometry_fitter
}  // namespace tvmath
