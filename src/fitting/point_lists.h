#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "geometry/xyz.h"

inline namespace tvmath {

/// The number of different points in the list, as far as it matters to a fit that needs `needed` of them, at
/// most 4: a number below `needed` when there are fewer, `needed + 1` when there are more. Reads no more of
/// the list than that takes, a few points of good data.
inline unsigned int count_distinct(std::span<point const> points, unsigned int needed) {
    point kept[4];
    unsigned int count = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        bool const known = std::find(kept, kept + count, points[i]) != kept + count;
        if (known && points.size() - i - 1 + count < needed) break;  // the rest cannot make up for it
        if (known) continue;
        if (++count > needed) break;
        kept[count - 1] = points[i];
    }
    return count;
}

/// What the coordinates of the points may be off by: a few roundings of the largest one. Points that differ
/// by no more lie in one place as far as can be told.
inline double coordinate_rounding(std::span<point const> points) {
    double most = 0;
    for (point const& p : points) {
        xyz const q(p);
        most = std::max({most, std::fabs(q.x), std::fabs(q.y), std::fabs(q.z)});
    }
    return 4 * std::numeric_limits<double>::epsilon() * most;
}

}  // namespace tvmath
