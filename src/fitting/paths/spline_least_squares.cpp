#include "spline_least_squares.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "envelope_matrix.h"
#include "measured_path.h"
#include "spline_space.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;

// The knots share the points evenly among the spans, between neighbouring points where the share is broken,
// so that every span has points of its own. `at` ascends; of a closed path it has the full turn as its last.
// Where points crowd, a span without width is left out; a periodic spline needs four spans, if need be even
// ones. Source: L. Piegl, W. Tiller, The NURBS Book, 2nd ed., Springer 1997, section 9.4.1.
numbers averaged_breaks(numbers const& at, std::size_t spans, bool closed) {
    double const share = static_cast<double>(at.size() - 1) / static_cast<double>(spans);
    double const even = (at.back() - at.front()) / static_cast<double>(spans), least = 1e-6 * even;
    numbers breaks = {at.front()};
    for (std::size_t j = 1; j < spans; ++j) {
        double const place = share * static_cast<double>(j);
        auto const i = static_cast<std::size_t>(place);
        double const part = place - static_cast<double>(i), next = at[i] + part * (at[i + 1] - at[i]);
        if (next - breaks.back() > least && at.back() - next > least) breaks.push_back(next);
    }
    if (closed && breaks.size() < 4) {
        breaks.resize(1);
        for (std::size_t j = 1; j < spans; ++j) breaks.push_back(at.front() + even * static_cast<double>(j));
    }
    breaks.push_back(at.back());
    return breaks;
}

// Control points, the parameters of the points' feet, and the curve there.
struct spline_state {
    std::vector<xyz> controls;
    numbers at;
    std::vector<span_powers::place> feet;  // of no derivatives where the parameter does not follow
    double sum = std::numeric_limits<double>::infinity();
};

// The iteration for one choice of spans in a plane (2) or in space (3).
template <std::size_t dimension>
class least_squares {
public:
    least_squares(std::vector<xyz> const& points, spline_space space)
        : points_(points), space_(std::move(space)), matrix_(envelope(space_)) {}

    spline_space const& space() const { return space_; }

    // The linear fit with these parameters, then the feet.
    spline_state start(numbers const& at) {
        spline_state zero;
        zero.controls.resize(space_.freedoms());
        zero.at = at;
        for (xyz const& p : points_) zero.feet.push_back({-1.0 * p, {}, {}});
        spline_state fitted = zero;
        move_controls(fitted, 1);
        take_feet(fitted);
        return fitted;
    }

    // Reduces the sum of squares until a step gains less than 1e-4 of it, at most `rounds` times. An offset
    // counts in full across the curve and by `still` along it. At the feet that changes only the step, not
    // the gradient: 1 is the linear fit with fixed parameters, which never leads uphill but is slow; towards
    // 0 it is the Gauss-Newton step for the distances, the feet following. A last 1e-2 keeps the control
    // points from sliding along the curve, which gains next to nothing and never ends.
    void refine(spline_state& state, int rounds) {
        double still = 0.1;
        // Where there are no points, as in the gap of a scan, a loop costs nothing: the control polygon may
        // not grow much.
        double const longest = 1.1 * polygon_length(state);
        for (int round = 0; round < rounds;) {
            spline_state next = state;
            double const step = move_controls(next, still);
            take_feet(next);
            if (next.sum < state.sum && polygon_length(next) <= longest) {
                bool const settled = step < 0x1p-46 || state.sum - next.sum <= 1e-4 * state.sum;
                std::swap(state, next);
                if (settled) return;
                still = std::max(still / 5, 1e-2);
                ++round;
            } else if (still < 1) {
                still = std::min(still * 12, 1.0);
            } else {
                return;  // only rounding is left
            }
        }
    }

private:
    double polygon_length(spline_state const& state) const {
        double sum = 0;
        for (double const leg : chord_lengths(state.controls, space_.is_closed())) sum += leg;
        return sum;
    }

    static std::vector<std::size_t> envelope(spline_space const& space) {
        std::vector<std::size_t> first;
        std::size_t const n = space.freedoms();
        for (std::size_t i = 0; i < n; ++i) {
            bool const is_full = space.is_closed() && i + 3 >= n;
            first.insert(first.end(), dimension, i < 3 || is_full ? 0 : (i - 3) * dimension);
        }
        return first;
    }

    // One step for the control points; returns the largest change.
    double move_controls(spline_state& state, double still) {
        matrix_.clear();
        numbers right(space_.freedoms() * dimension);
        for (std::size_t i = 0; i < points_.size(); ++i)
            add_point(state.feet[i], state.at[i], 1 - still, right);
        matrix_.factorize();
        matrix_.solve(right);
        double most = 0;
        for (std::size_t j = 0; j < state.controls.size(); ++j) {
            double const* const d = right.data() + j * dimension;
            xyz const change(d[0], d[1], dimension == 3 ? d[2] : 0);
            state.controls[j] = state.controls[j] + change;
            most = std::max(most, length(change));
        }
        return most;
    }

    // Adds what one point gives to the matrix and to the right sides, -N_j offset.
    void add_point(span_powers::place const& foot, double t, double following, numbers& right) {
        std::size_t const span = space_.span_of(t);
        std::array<double, 4> const basis = space_.basis(span, t);
        xyz const tangent = std::sqrt(following) * unit(foot.first);
        double const offset[3] = {foot.offset.x, foot.offset.y, foot.offset.z};
        double const along[3] = {tangent.x, tangent.y, tangent.z};
        double metric[dimension][dimension];
        for (std::size_t d = 0; d < dimension; ++d) {
            for (std::size_t e = 0; e < dimension; ++e) metric[d][e] = (d == e ? 1 : 0) - along[d] * along[e];
        }
        for (std::size_t r = 0; r < 4; ++r) {
            std::size_t const j = space_.freedom(span, r);
            for (std::size_t d = 0; d < dimension; ++d) right[j * dimension + d] -= basis[r] * offset[d];
            for (std::size_t q = 0; q < 4; ++q) {
                std::size_t const k = space_.freedom(span, q);
                if (k > j) continue;
                double const weight = basis[r] * basis[q];
                for (std::size_t d = 0; d < dimension; ++d) {
                    double* const row = &matrix_.at(j * dimension + d, k * dimension);
                    std::size_t const columns = k == j ? d + 1 : dimension;
                    for (std::size_t e = 0; e < columns; ++e) row[e] += weight * metric[d][e];
                }
            }
        }
    }

    // The first and the last point of an open path belong to the ends of the curve.
    void take_feet(spline_state& state) {
        span_powers const curve(space_, state.controls);
        state.sum = 0;
        for (std::size_t i = 0; i < points_.size(); ++i) {
            bool const is_end = !space_.is_closed() && (i == 0 || i + 1 == points_.size());
            double& t = state.at[i];
            span_powers::place const here = is_end ? curve.at(t, points_[i]) : curve.foot(t, points_[i]);
            bool const is_bound = !space_.is_closed() && (t <= space_.begin() || t >= space_.end());
            state.feet[i] = is_bound ? span_powers::place{here.offset, {}, {}} : here;
            state.sum += dot(here.offset, here.offset);
        }
    }

    std::vector<xyz> const& points_;
    spline_space space_;
    envelope_matrix matrix_;
};

// Parameters by chord length, and at the end of a closed path the full turn.
numbers chord_parameters(std::vector<xyz> const& points, bool closed) {
    numbers at = {0};
    for (double const h : chord_lengths(points, closed)) at.push_back(at.back() + h);
    return at;
}

template <std::size_t dimension>
cubic_bspline best_spline(std::vector<xyz> const& points, bool closed) {
    numbers const turn = chord_parameters(points, closed);
    numbers at = turn;
    at.resize(points.size());
    double const n = static_cast<double>(points.size());
    std::size_t best_spans = 0, most = points.size() / 2 - (closed ? 0 : 3);
    double best_score = std::numeric_limits<double>::infinity();
    // What is left at 1e-9 of the size is no longer a question of more spans.
    double const least = 1e-18 * n;
    double const penalty = 2 * std::log(n);
    auto const fit = [&](std::size_t spans) {
        return least_squares<dimension>(points, spline_space(averaged_breaks(turn, spans, closed), closed));
    };
    for (std::size_t spans = closed ? 4 : 1, worse = 0; spans <= most && worse < 4; spans += 1 + spans / 4) {
        auto solver = fit(spans);
        spline_state state = solver.start(at);
        solver.refine(state, std::clamp(static_cast<int>(2e5 / n), 2, 30));
        double const score = n * std::log(std::max(state.sum, least) / n) +
                             penalty * static_cast<double>(solver.space().freedoms());
        worse = score < best_score ? 0 : worse + 1;
        if (worse == 0) {
            best_score = score;
            best_spans = spans;
        }
        if (state.sum <= least) break;
    }
    auto solver = fit(best_spans);
    spline_state state = solver.start(at);
    solver.refine(state, std::clamp(static_cast<int>(2e6 / n), 20, 50));
    return solver.space().with(state.controls);
}

}  // namespace

cubic_bspline spline_along(std::vector<xyz> const& points, bool closed, bool solid) {
    return solid ? best_spline<3>(points, closed) : best_spline<2>(points, closed);
}

}  // namespace tvmath
