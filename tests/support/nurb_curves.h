#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "seeded_random.h"
#include "tvmath/nurb.h"

inline namespace tvmath {

/// A curve from its knots, its points and their weights (none: all 1).
inline nurb make_nurb(std::vector<double> const& knots, std::vector<point> const& points,
                      std::vector<double> const& weights = {}) {
    auto const n = static_cast<unsigned int>(points.size());
    nurb curve(static_cast<unsigned int>(knots.size()) - n, n);
    for (unsigned int i = 0; i < n; ++i) {
        double const w = weights.empty() ? 1 : weights[i];
        curve.set_control_point(i, {w * points[i].x(), w * points[i].y(), w * points[i].z(), w});
    }
    for (unsigned int i = 0; i < curve.knots(); ++i) curve.set_knot(i, knots[i]);
    return curve;
}

/// Full circle of radius `r` about `c` from the quarters of a square; exact with these weights.
inline nurb circle_nurb(point const& c, double r) {
    std::vector<point> points;
    std::vector<double> weights;
    for (int i = 0; i <= 8; ++i) {
        double const x[] = {1, 1, 0, -1, -1, -1, 0, 1};
        points.push_back(c + point(false, r * x[i % 8], r * x[(i + 6) % 8]));
        weights.push_back(i % 2 ? std::sqrt(0.5) : 1);
    }
    return make_nurb({0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4}, points, weights);
}

/// Degree 1 to 7, 1 to 6 spans of different widths, inner knots of any multiplicity up to the degree, ends
/// that the curve reaches or not, weights 0.5 to 2 or all equal, points in a cube of size 20.
inline nurb random_nurb(seeded_random& random, unsigned int most_degree = 7) {
    unsigned int const degree = 1 + random.below(most_degree);
    bool const clamped = random.coin(), rational = random.coin();
    std::vector<double> knots;
    double t = random.uniform(-5, 5);
    for (unsigned int i = 0; i <= degree; ++i) knots.push_back(clamped ? t : t -= random.uniform(0, 1));
    std::reverse(knots.begin(), knots.end());
    t = knots.back();
    for (unsigned int spans = random.below(6); spans > 0; --spans) {
        t += random.uniform(0.1, 2);
        knots.insert(knots.end(), 1 + (random.coin() ? random.below(degree) : 0), t);
    }
    t += random.uniform(0.1, 2);
    for (unsigned int i = 0; i <= degree; ++i) knots.push_back(clamped ? t : t += random.uniform(0, 1));
    std::vector<point> points;
    std::vector<double> weights;
    double const w = random.uniform(0.5, 2);
    while (points.size() + degree + 1 < knots.size()) {
        points.emplace_back(true, random.uniform(-10, 10), random.uniform(-10, 10), random.uniform(-10, 10));
        weights.push_back(rational ? random.uniform(0.5, 2) : w);
    }
    return make_nurb(knots, points, weights);
}

inline double first_parameter(nurb const& n) {
    return n.get_knot(n.degree());
}
inline double last_parameter(nurb const& n) {
    return n.get_knot(n.control_points());
}
inline double random_parameter(seeded_random& random, nurb const& n) {
    return random.uniform(first_parameter(n), last_parameter(n));
}

}  // namespace tvmath
