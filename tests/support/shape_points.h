#pragma once

#include <cmath>
#include <vector>

#include "seeded_random.h"
#include "tvmath/point.h"

inline namespace tvmath {

inline point at(double x, double y) {
    return point(true, x, y);
}
inline point at(double x, double y, double z) {
    return point(true, x, y, z);
}

/// `n` points at equal angles from `start` to `start + span` of a circle, each off it by `noise` times a
/// normal number along the radius.
inline std::vector<point> circle_points(seeded_random& random, point center, double radius, double start,
                                        double span, int n, double noise = 0) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) {
        double const angle = start + span * i / n, r = radius + noise * random.normal();
        points.push_back(center + point(false, r * std::cos(angle), r * std::sin(angle)));
    }
    return points;
}

/// `n` random points of a sphere, uniform over its surface.
inline std::vector<point> sphere_points(seeded_random& random, point center, double radius, int n,
                                        double noise = 0) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) {
        double const z = random.uniform(-1, 1), angle = random.uniform(0, 6.283185307179586);
        double const r = radius + noise * random.normal(), s = std::sqrt(1 - z * z);
        points.push_back(center + point(false, r * s * std::cos(angle), r * s * std::sin(angle), r * z));
    }
    return points;
}

}  // namespace tvmath
