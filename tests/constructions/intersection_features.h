#pragma once

#include <algorithm>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/intersection.h"
#include "tvmath/scalar.h"

using points = idioms::array<point>;
constexpr int trials = 500;  // of random features and placements for each pair

inline point along(double x, double y, double z) {
    return point(false, x, y, z);
}
inline line space_line(point const& middle, point const& half) {
    return line(make_transform(middle, half, along(0, 1, 0), along(0, 0, 1)));
}

inline bool same_places(points const& a, points const& b, double tolerance) {
    if (a.capacity() != b.capacity()) return false;
    return std::all_of(a.begin(), a.end(), [&](point const& p) {
        return std::any_of(b.begin(), b.end(), [&](point const& q) { return distance3d(p, q) <= tolerance; });
    });
}

// A similar scene: features of size 1 turned, scaled by 1e-3 to 1e5 and moved by some sizes.
struct placement {
    transform map;
    double scale;
};
inline placement random_placement(seeded_random& random, bool in_space) {
    double const s = random.log_uniform(1e-3, 1e5);
    auto const number = [&] { return random.uniform(-3, 3); };
    transform t = in_space ? transform::rotation(number(), number(), number()).dilate(s, s, s)
                           : transform::rotation(number()).dilate(s);
    t.translate(point(true, s * number(), s * number(), s * number()));
    if (!in_space) t.project2d();
    return {t, s};
}

inline double coordinate(seeded_random& random) {
    return random.uniform(-1.5, 1.5);
}
inline point random_place(seeded_random& random) {
    return at(coordinate(random), coordinate(random));
}
inline point random_space_place(seeded_random& random) {
    return at(coordinate(random), coordinate(random), coordinate(random));
}
inline point random_direction(seeded_random& random) {
    return along(random.normal(), random.normal(), random.normal());
}
inline line random_line(seeded_random& random) {
    return line(random_place(random), random_place(random));
}
inline line random_space_line(seeded_random& random) {
    return space_line(random_space_place(random), random_direction(random));
}
// Oblique half-diameters; some are circles, some stand on the centre of others, some have the same axes.
inline ellipse random_ellipse(seeded_random& random) {
    unsigned int const kind = random.below(4);
    if (kind == 0) return ellipse(random.uniform(0.2, 1.5), random_place(random));
    if (kind == 1) return ellipse(random.uniform(0.1, 2), random.uniform(0.1, 2), at(0, 0));
    if (kind == 2) return ellipse(1.5, random.uniform(0.03, 1), random_place(random));
    point const u = random_place(random), v = random_place(random);
    if (std::fabs(cross2d(u, v)) < 0.05) return ellipse(1, random_place(random));
    return ellipse(make_transform(random_place(random), u - at(0, 0), v - at(0, 0)));
}
inline curve random_path(seeded_random& random) {
    curve c(3 * (1 + random.below(3)) + 1);
    for (unsigned int i = 0; i < c.capacity(); ++i) c(i) = random_space_place(random);
    return c;
}
inline cone random_cone(seeded_random& random) {
    return cone(random_space_place(random), random_space_place(random), random.uniform(0, 1),
                random.uniform(0.1, 1));
}
