#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// `n` points of a circle of radius 20 about (100, 50) with 1e-3 of form error, equal steps.
inline std::vector<point> rippled_circle(std::int64_t n) {
    seeded_random random(1);
    std::vector<point> points;
    points.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        double const angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(n);
        double const r = 20 + 1e-3 * random.normal();
        points.emplace_back(true, 100 + r * std::cos(angle), 50 + r * std::sin(angle));
    }
    return points;
}

/// The same of an ellipse with half-axes 30 and 20.
inline std::vector<point> rippled_ellipse(std::int64_t n) {
    std::vector<point> points = rippled_circle(n);
    for (point& p : points) p = point(true, 100 + 1.5 * (p.x() - 100), p.y());
    return points;
}

/// `n` points of a cloud in space, of size 40 about the origin.
inline std::vector<point> space_cloud(std::int64_t n) {
    seeded_random random(2);
    std::vector<point> points;
    points.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        points.emplace_back(true, random.uniform(-20, 20), random.uniform(-20, 20), random.uniform(-20, 20));
    }
    return points;
}

/// `n` points of a sphere of radius 20 about (1, 2, 3) with 1e-3 of form error.
inline std::vector<point> rippled_sphere(std::int64_t n) {
    seeded_random random(3);
    std::vector<point> points = space_cloud(n);
    for (point& p : points) {
        double const r = 20 + 1e-3 * random.normal(), scale = r / p.length3d();
        p = point(true, 1 + scale * p.x(), 2 + scale * p.y(), 3 + scale * p.z());
    }
    return points;
}

/// `n` points of a tilted plane, 40 by 40, with 1e-3 of form error.
inline std::vector<point> rippled_plane(std::int64_t n) {
    seeded_random random(4);
    std::vector<point> points = space_cloud(n);
    for (point& p : points) p.z() = 0.3 * p.x() - 0.2 * p.y() + 5 + 1e-3 * random.normal();
    return points;
}

}  // namespace tvmath
