#include "tvmath/iterative_lsf.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "iterative_solve.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr int most_rounds = 30;
constexpr double squared_tolerance = 1e-16;  // of a step, relative to all parameters
constexpr double retreat = 0.1, retreat_stop = 10.0;

// The Gauss-Newton step on the linearised constraints, from the bordered normal equations
//     | N  Jt | | step       |     | gradient    |
//     | J  0  | | multipliers| = - | constraints |
bool next_step(IterativeLSF& model, std::vector<double> const& sums, vector& step) {
    unsigned int const n = dim(model.parameters);
    matrix jacobian;
    vector const values = model.constraints(jacobian);
    unsigned int const m = dim(values);
    matrix bordered(n + m, n + m);
    vector rhs(n + m);
    double* const right = rhs.lazycopy_begin();
    double const* sum = sums.data();
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = i; j < n; ++j) bordered(i)(j) = bordered(j)(i) = *sum++;
        right[i] = -*sum++;
        bordered(i)(i) += model.damping(i);
    }
    for (unsigned int i = 0; i < m; ++i) {
        for (unsigned int j = 0; j < n; ++j) bordered(n + i)(j) = bordered(j)(n + i) = jacobian[i][j];
        right[n + i] = -values[i];
    }
    if (!rhs.times_inverse_of(std::move(bordered))) return false;
    rhs.redim(n);
    step = rhs;
    return std::all_of(step.begin(), step.end(), [](double s) { return std::isfinite(s); });
}

// Lengths of the last two steps, relative to the parameters.
struct last_steps {
    double before = 1, last = 1;

    // At a linear rate of convergence.
    double left() const { return last * (last / before); }
};

bool iterate(IterativeLSF& model, product_sums const& sum, last_steps& steps) {
    vector& parameters = model.parameters;
    unsigned int const n = dim(parameters);
    vector step(n), previous(n);
    std::vector<double> sums(std::size_t{n + 1} * (n + 2) / 2);
    double first_sse = 0.0, sse = 0.0;
    for (int round = 1; round <= most_rounds; ++round) {
        double const previous_sse = sse;
        for (;;) {
            std::fill(sums.begin(), sums.end(), 0.0);
            sum(sums.data());
            sse = sums.back();
            if (std::isnan(sse)) return false;
            // Exact: 0 is the mark of the first evaluation, and of a start that fits perfectly.
            if (first_sse == 0.0 || sse < previous_sse) break;
            // A step that has shrunk to nothing is kept, although the sum did not fall. So is one that cannot
            // be compared, among NaN parameters.
            if (!(dot(step, step) > retreat_stop * dot(previous, previous) * squared_tolerance)) break;
            step *= retreat;
            parameters = previous + step;
        }
        if (first_sse == 0.0) first_sse = sse;
        if (!next_step(model, sums, step)) return false;
        previous = parameters;
        parameters += step;
        double const size = dot(parameters, parameters), moved = dot(step, step);
        steps = {steps.last, std::sqrt(moved / size)};
        if (squared_tolerance * size > moved) return true;
        if (sse > first_sse) return false;  // diverging
    }
    return false;
}

std::vector<double> sums_at_present(IterativeLSF const& model, product_sums const& sum) {
    std::size_t const n = dim(model.parameters);
    std::vector<double> sums((n + 1) * (n + 2) / 2);
    sum(sums.data());
    return sums;
}

// Brings the parameters onto the constraints, by Newton's steps of least length.
void restore(IterativeLSF& model) {
    for (int i = 0; i < 20; ++i) {
        matrix inverse;
        vector const values = model.constraints(inverse);
        if (!inverse.under_constrained_inverse()) return;
        vector const step = inverse * values;
        model.parameters -= step;
        if (!(dot(step, step) > 1e-32 * dot(model.parameters, model.parameters))) return;
    }
}

// Gauss-Newton steps that end on the constraints, shortened until the sum of squares falls, as far as they
// lead.
void approach_on_constraints(IterativeLSF& model, product_sums const& sum) {
    restore(model);
    std::vector<double> sums = sums_at_present(model, sum);
    vector step;
    for (int round = 0; round < 100 && next_step(model, sums, step); ++round) {
        vector const from = model.parameters;
        double const sse = sums.back();
        for (int cut = 0; cut < 10; ++cut, step *= 0.25) {
            model.parameters = from + step;
            restore(model);
            sums = sums_at_present(model, sum);
            if (sums.back() < sse) break;
        }
        if (!(sums.back() < sse)) {
            model.parameters = from;
            return;
        }
        if (dot(step, step) < 1e-20 * dot(from, from)) return;
    }
}

}  // namespace

bool solve_model(IterativeLSF& model, product_sums const& sum, bool curved_constraints) {
    vector best = model.parameters;
    last_steps steps;
    bool solved = iterate(model, sum, steps);
    if (!solved && curved_constraints) {
        model.parameters = best;
        approach_on_constraints(model, sum);
        solved = iterate(model, sum, steps);
    }
    if (!solved) return false;
    for (int more = 0; more < 6 && steps.left() > 1e-13; ++more) {
        best = model.parameters;
        if (iterate(model, sum, steps)) continue;
        model.parameters = best;
        break;
    }
    return true;
}

IterativeLSF::~IterativeLSF() = default;

vector IterativeLSF::constraints(matrix&) {
    return vector();
}

double IterativeLSF::damping(unsigned int) {
    return 0.0;
}

bool IterativeLSF::solve(std::vector<point> const& fit_points) {
    last_steps steps;
    auto const sum = [&](double* sums) {
        unsigned int const n = dim(parameters);
        vector row(n);
        for (point const& p : fit_points) {
            double const r = residual(p, row);
            double const* const g = row.begin();
            double* to = sums;
            for (unsigned int i = 0; i < n; ++i) {
                for (unsigned int j = i; j < n; ++j) *to++ += g[i] * g[j];
                *to++ += r * g[i];
            }
            *to += r * r;
        }
    };
    return iterate(*this, sum, steps);
}

}  // namespace geometry_fitter
}  // namespace tvmath
