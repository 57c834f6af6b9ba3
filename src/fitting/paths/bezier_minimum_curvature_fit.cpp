#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "cubic_spline.h"
#include "measured_path.h"
#include "path_through.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

// Length and integral of the squared curvature of each segment and of all.
struct bending {
    std::vector<double> lengths;
    double energy = 0;
};

// Gauss's rule with five points; the curvature changes little over a segment.
bending measure(std::vector<xyz> const& points, std::vector<double> const& steps,
                std::vector<xyz> const& slopes) {
    static constexpr double root[] = {0.04691007703066800, 0.23076534494715845, 0.5, 0.76923465505284155,
                                      0.95308992296933200};
    static constexpr double weight[] = {0.11846344252809454, 0.23931433524968324, 0.28444444444444444,
                                        0.23931433524968324, 0.11846344252809454};
    bending result;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        std::size_t const next = i + 1 == points.size() ? 0 : i + 1;
        double const h = steps[i];
        xyz const chord = (1 / h) * (points[next] - points[i]);
        // C' = d0 + s (a + s b), with a and b from the chord and the slopes at both ends.
        xyz const d0 = slopes[i], b = 3 * ((d0 - chord) + (slopes[next] - chord));
        xyz const a = (slopes[next] - d0) - b;
        double length_of_segment = 0;
        for (std::size_t q = 0; q < 5; ++q) {
            double const s = root[q];
            xyz const first = d0 + s * (a + s * b), second = (1 / h) * (a + 2 * s * b);
            xyz const bend = cross(first, second);
            double const speed = length(first);
            length_of_segment += weight[q] * h * speed;
            result.energy += weight[q] * h * dot(bend, bend) / std::pow(speed, 5);
        }
        result.lengths.push_back(length_of_segment);
    }
    return result;
}

curve fit(std::span<point const> points, bool closed) {
    measured_path const path = prepare_path(points, closed);
    if (path.is_empty()) return curve();
    std::vector<double> steps = chord_lengths(path.local, closed), best_steps = steps;
    std::vector<xyz> best =
        spline_slopes(path.local, steps, closed ? spline_ends::periodic : spline_ends::not_a_knot);
    double least = measure(path.local, steps, best).energy;
    spline_ends const ends = closed ? spline_ends::periodic : spline_ends::natural;
    for (int round = 0; round < 12; ++round) {
        std::vector<xyz> slopes = spline_slopes(path.local, steps, ends);
        bending now = measure(path.local, steps, slopes);
        // A gain in rounding alone is none.
        bool const is_better = now.energy < least * (1 - 1e-12) || !std::isfinite(least);
        if (is_better) {
            best_steps = steps;
            best = std::move(slopes);
            least = now.energy;
        } else if (round > 0) {
            break;
        }
        steps = std::move(now.lengths);
    }
    return path_through(path, best_steps, best);
}

}  // namespace

curve bezier_minimum_curvature_fit(std::vector<point> const& points, bool closed) {
    return fit(points, closed);
}

curve bezier_minimum_curvature_fit(idioms::array<point> points, bool closed) {
    return fit(span_of(points), closed);
}

}  // namespace tvmath
