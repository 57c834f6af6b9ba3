#pragma once

#include <vector>

#include "seeded_random.h"
#include "tvmath/array.h"
#include "tvmath/point.h"

inline namespace tvmath {

inline idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

/// Names the families of `random_zone_points`.
inline constexpr int zone_families = 9;

/// A short list, of 3 to 12 points, of a family that a zone fit may stumble over: clouds, grids whose points
/// tie, thin surfaces, exact planes as rounded, points near a line or in one plane, points on a sphere, and
/// clusters; one in three of them lies 1e6 from the origin, one in four repeats a point.
inline std::vector<point> random_zone_points(seeded_random& random, int family) {
    double const away = random.below(3) == 0 ? 1e6 : 0;
    unsigned int const n = 3 + random.below(10);
    std::vector<point> points;
    for (unsigned int i = 0; i < n; ++i) {
        double x = random.uniform(-1, 1), y = random.uniform(-1, 1), z = random.uniform(-1, 1);
        double const bit = random.below(2);
        switch (family) {
            case 0:
                break;
            case 1:
                x = random.below(3), y = random.below(3), z = random.below(3);
                break;
            case 2:
                x = random.below(4) * 0.1, y = random.below(4) * 0.1, z = bit * 0.1;
                break;
            case 3:
                z = 0.3 * x + 0.7 * y;
                break;
            case 4:
                z = 0.3 * x + 0.7 * y + 1e-3 * random.normal();
                break;
            case 5:
                y = 0.5 * x + 1e-4 * random.normal(), z = -0.2 * x + 1e-4 * random.normal();
                break;
            case 6:
                z = 0;
                break;
            case 7: {
                double const r = std::sqrt(x * x + y * y + z * z) + 1e-300;
                x /= r, y /= r, z /= r;
                break;
            }
            default:
                x = bit + 1e-9 * x, y = random.below(2) + 1e-9 * y, z = random.below(2) + 1e-9 * z;
        }
        points.emplace_back(true, x + away, y - away, z + away / 3);
    }
    if (random.below(4) == 0) points.push_back(points[0]);
    return points;
}

}  // namespace tvmath
