#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "tvmath/curve.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Number of zeros of `f` on [0, 1] by `n` + 1 samples; an extremum between samples that might reach 0 is
/// sought by ternary search. -1 when one comes within `unsure` of 0, or an end does.
template <class function>
int sampled_zeros(function const& f, int n, double unsure) {
    std::vector<double> y;
    for (int i = 0; i <= n; ++i) y.push_back(f(static_cast<double>(i) / n));
    if (std::fabs(y.front()) < unsure || std::fabs(y.back()) < unsure) return -1;
    int count = 0;
    for (std::size_t i = 1; i < y.size(); ++i) {
        if ((y[i - 1] < 0) != (y[i] < 0)) ++count;
        if (i + 1 == y.size() || (y[i - 1] < 0) != (y[i] < 0) || (y[i + 1] < 0) != (y[i] < 0)) continue;
        double const sign = y[i] < 0 ? -1 : 1;
        if (sign * y[i] > sign * y[i - 1] || sign * y[i] > sign * y[i + 1]) continue;
        double lo = (static_cast<double>(i) - 1) / n, hi = (static_cast<double>(i) + 1) / n;
        for (int step = 0; step < 60; ++step) {
            double const a = lo + (hi - lo) / 3, b = hi - (hi - lo) / 3;
            (sign * f(a) < sign * f(b) ? hi : lo) = sign * f(a) < sign * f(b) ? b : a;
        }
        double const least = sign * f((lo + hi) / 2);
        if (std::fabs(least) < unsure) return -1;
        if (least < 0) count += 2;
    }
    return count;
}

/// The point of a Bezier path at `t` from 0 to 1 over all of it, by de Casteljau's scheme.
inline point path_point(curve const& c, double t) {
    unsigned int const spans = c.capacity() / 3;
    double const at = t * spans;
    unsigned int const k = at >= spans ? spans - 1 : static_cast<unsigned int>(at);
    double const s = at - k;
    point p[4] = {c[3 * k], c[3 * k + 1], c[3 * k + 2], c[3 * k + 3]};
    for (int level = 3; level > 0; --level) {
        for (int i = 0; i < level; ++i) p[i] = p[i] + (p[i + 1] - p[i]) * s;
    }
    return p[0];
}

/// Distance in XY from a Bezier path, by samples and ternary search.
inline double path_distance(curve const& c, point const& p, int fine = 32) {
    int const n = fine * static_cast<int>(c.capacity() / 3);
    auto const distance = [&](double t) { return distance2d(path_point(c, t), p); };
    double best = distance(0), leg = 0;
    for (unsigned int i = 1; i < c.capacity(); ++i) leg = std::max(leg, distance2d(c[i - 1], c[i]));
    for (int i = 0; i < n; ++i) {  // the joints are among the samples
        double lo = static_cast<double>(i) / n, hi = static_cast<double>(i + 1) / n;
        // No point of the interval is farther than that from its middle: the speed is at most 3 legs.
        if (distance((lo + hi) / 2) - 1.5 * leg / fine > best) continue;
        for (int step = 0; step < 80; ++step) {
            double const a = lo + (hi - lo) / 3, b = hi - (hi - lo) / 3;
            (distance(a) < distance(b) ? hi : lo) = distance(a) < distance(b) ? b : a;
        }
        best = std::min(best, distance((lo + hi) / 2));
    }
    // A tight turn may have had two minima between samples.
    return best > 1e-8 && fine < 1000 ? path_distance(c, p, 1024) : best;
}

}  // namespace tvmath
