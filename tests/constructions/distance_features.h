#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/shape_points.h"
#include "tvmath/distance.h"

inline namespace tvmath {

inline constexpr double full_turn = 6.283185307179586;

/// Random features about 10 across times `scale`, in XY or in space.
struct random_features {
    seeded_random& random;
    double scale;
    bool solid;

    double length(double lo, double hi) { return scale * random.uniform(lo, hi); }
    point place(bool in_space) {
        double const x = length(-10, 10), y = length(-10, 10);
        return in_space ? at(x, y, length(-10, 10)) : at(x, y);
    }
    point place() { return place(solid); }
    transform motion() {
        if (!solid) return transform::rotation(random.uniform(-3, 3)).translate(length(-5, 5), length(-5, 5));
        transform turn = transform::rotation(random.uniform(-3, 3), random.uniform(-3, 3), 0.7);
        return turn.translate(length(-5, 5), length(-5, 5), length(-5, 5));
    }
    /// Round, oblique, nearly flat or as it comes.
    ellipse oval() {
        double const a = scale * random.log_uniform(0.1, 5);
        transform shape = ellipse(a, a * random.log_uniform(1e-3, 1), random.uniform(-3, 3), place(false));
        switch (random.below(4)) {
            case 0:
                shape = ellipse(a, place(false));
                break;
            case 1:
                shape.shear_x(random.uniform(-2, 2));
                break;
            default:
                break;
        }
        return ellipse(shape * motion());
    }
    /// A path with cusps and control points in one place among its spans.
    curve path(unsigned int spans) {
        curve c(3 * spans + 1);
        point* const to = c.lazycopy_begin();
        to[0] = place();
        for (unsigned int i = 1; i < c.capacity(); ++i) {
            double const step = random.below(12) == 0 ? 0 : random.log_uniform(0.02, 0.5);
            to[i] = to[i - 1] + step * point(false, place(solid)[1], place(solid)[2]);
            if (solid) to[i].z() += step * length(-10, 10);
        }
        return c;
    }
};

/// Runs a check with features of every scale, in XY and in space in turn; stops at the first failure.
template <class check>
void for_random_features(std::uint64_t seed, int cases, check const& run) {
    seeded_random random(seed);
    for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        run(random_features{random, std::pow(10.0, i % 9 - 3), (i / 9) % 2 == 1});
    }
}

inline point point_of(ellipse const& e, double t) {
    return e.basis(0) + std::cos(t) * e.basis(1) + std::sin(t) * e.basis(2);
}
/// By the Bernstein polynomials as they are written; t counts spans.
inline point point_of(curve const& c, double t) {
    unsigned int const spans = c.capacity() / 3;
    unsigned int const k = t < spans ? static_cast<unsigned int>(t) : spans - 1;
    double const s = t - k, u = 1 - s;
    point const* const q = c.begin() + 3 * k;
    return u * u * u * q[0] + 3 * u * u * s * q[1] + 3 * u * s * s * q[2] + s * s * s * q[3];
}

inline std::vector<point> samples(ellipse const& e, int n) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) points.push_back(point_of(e, full_turn * i / n));
    return points;
}
inline std::vector<point> samples(curve const& c, int n_per_span) {
    std::vector<point> points;
    int const n = n_per_span * static_cast<int>(c.capacity() / 3);
    for (int i = 0; i <= n; ++i) points.push_back(point_of(c, static_cast<double>(i) / n_per_span));
    return points;
}

inline point start_of(line const& l) {
    return l.basis(0) - l.basis(1);
}
inline point end_of(line const& l) {
    return l.basis(0) + l.basis(1);
}

using measure = double (*)(point, point);

/// The least (or the greatest) distance of a point from a list, by trying all.
inline double extreme_distance(point const& p, std::vector<point> const& list, bool near, measure distance) {
    double best = near ? 1e300 : 0;
    for (point const& q : list) {
        best = near ? std::min(best, distance(p, q)) : std::max(best, distance(p, q));
    }
    return best;
}

}  // namespace tvmath
