#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/point.h"

inline namespace tvmath {

double constexpr infinite = std::numeric_limits<double>::infinity();
double constexpr nan = std::numeric_limits<double>::quiet_NaN();

/// A kind of point list, drawn coordinate by coordinate.
struct point_family {
    char const* name;
    std::function<double(seeded_random&, int axis, int i)> coordinate;

    point draw(seeded_random& random, bool is_3d, int i) const {
        double const x = coordinate(random, 0, i), y = coordinate(random, 1, i), z = coordinate(random, 2, i);
        return is_3d ? point(true, x, y, z) : point(true, x, y);
    }
    /// Every tenth list is a long one.
    std::vector<point> list(seeded_random& random, bool is_3d) const {
        unsigned int const count = 1 + random.below(random.below(10) == 0 ? 700 : 20);
        std::vector<point> points;
        for (int i = 0; points.size() < count; ++i) points.push_back(draw(random, is_3d, i));
        return points;
    }
    /// By turns a new place, a point of the list, and a place close to the last query.
    void move(point& query, seeded_random& random, std::vector<point> const& points, int turn) const {
        if (turn % 3 == 0) query = draw(random, query.is_3d(), turn);
        if (turn % 3 == 1) query = points[random.below(static_cast<unsigned int>(points.size()))];
        if (turn % 3 == 2) query.y() += random.uniform(-0.1, 0.1);
    }
};

inline bool is_finite(point const& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && (!p.is_3d() || std::isfinite(p.z()));
}

template <class type>
type read(void const* from, std::size_t offset = 0) {
    type value;
    std::memcpy(&value, static_cast<unsigned char const*>(from) + offset, sizeof value);
    return value;
}

/// What a finder is made of: the block of bytes, then two 32-bit offsets.
template <class finder>
std::vector<unsigned char> const& block_of(finder const& f) {
    return reinterpret_cast<std::vector<unsigned char> const&>(f);
}
template <class finder>
std::uint32_t offset_of(finder const& f, std::size_t which) {
    return read<std::uint32_t>(&f, sizeof(std::vector<unsigned char>) + 4 * which);
}

}  // namespace tvmath
