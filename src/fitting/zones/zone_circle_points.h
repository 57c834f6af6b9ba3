#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "fitting/planar/planar_points.h"
#include "tvmath/circle.h"
#include "tvmath/scalar.h"

inline namespace tvmath {

/// The centre (u, v) / t of a circle, which may lie at any distance: t = 0 is the direction (u, v).
struct zone_center {
    double u = 0, v = 0, t = 1;

    static zone_center at(xy c) { return {c.x, c.y, 1}; }
    xy position() const { return {u / t, v / t}; }
    double square() const { return u * u + v * v; }
};

/// The squared distance of p from the centre less |centre|², times t:
///     a(p) = |p|² t - 2 (u, v) . p.
/// It is linear in the centre, orders the points by their distance, and needs no root:
///     distance² t² = t a(p) + u² + v².
inline double power_about(zone_center const& c, double x, double y) {
    return x * (c.t * x - 2 * c.u) + y * (c.t * y - 2 * c.v);
}
inline double power_about(zone_center const& c, xy p) {
    return power_about(c, p.x, p.y);
}

/// t times the distance that belongs to the power `a`.
inline double reach(zone_center const& c, double a) {
    return std::sqrt(std::fmax(0.0, c.t * a + c.square()));
}

/// Least and greatest power of some points.
struct power_range {
    double low = infinity, high = -infinity;

    void widen(double a) {
        if (a < low) low = a;
        if (a > high) high = a;
    }
    /// The width of the ring about `c`: (R² - r²) / (R + r), which keeps its digits when R and r are nearly
    /// equal or infinite.
    double ring_width(zone_center const& c) const {
        double const sum = reach(c, high) + reach(c, low);
        return sum > 0 ? (high - low) / sum : 0.0;
    }
};

/// Measured points for the zone circles: by x and y, relative to the centroid and divided by `size`, a power
/// of two, so that every coordinate is at most 1: thresholds below are then the same for every part.
class ring_points {
public:
    /// `count` is 0 for an empty list and for one with a trivial point or a coordinate that is not finite.
    explicit ring_points(std::vector<point> const& points);

    std::size_t count = 0;
    point centroid;
    double size = 1;

    xy operator[](std::size_t i) const { return {x_[i], y_[i]}; }
    /// The circle in the caller's coordinates, in the dimension and at the height of the centroid.
    circle place(xy center, double radius) const {
        return circle(radius * size, centroid + point(false, center.x * size, center.y * size));
    }
    /// 1, 2, or 3 for three and more.
    int distinct() const;

    /// One pass: calls `visit(i, a)` for points whose power about `c` is outside `limits`, which the visitor
    /// may widen meanwhile.
    template <class visitor>
    void visit_beyond(zone_center const& c, power_range const& limits, visitor visit) const {
        for (std::size_t first = 0; first < count; first += block) {
            visit_block(first, c, limits, visit);
        }
    }
    /// One pass: the index of the point farthest from `c`, and its power there.
    std::size_t farthest_from(zone_center const& c, double& power) const;
    /// One pass: the points farthest out in `directions` equal directions, an even number, anticlockwise and
    /// each once. They are corners of the convex hull, or all the same point.
    std::vector<std::size_t> extremes(unsigned int directions) const;

private:
    static constexpr std::size_t block = 512;  // 8 KB: stays in the first cache for a second look
    std::vector<double> x_, y_;                // filled up with copies to a multiple of 4

    power_range block_range(std::size_t first, zone_center const& c) const;
    std::size_t index_in(std::size_t first, zone_center const& c, double power) const;

    template <class visitor>
    void visit_block(std::size_t first, zone_center const& c, power_range const& limits,
                     visitor& visit) const {
        power_range const here = block_range(first, c);
        if (!(here.low < limits.low || here.high > limits.high)) return;
        std::size_t const end = first + block < count ? first + block : count;
        for (std::size_t i = first; i < end; ++i) {
            double const a = power_about(c, x_[i], y_[i]);
            if (a < limits.low || a > limits.high) visit(i, a);
        }
    }
};

/// One of 16 equal sectors about the origin, without a division.
inline unsigned int sector_of(xy d) {
    double const x = std::fabs(d.x), y = std::fabs(d.y), least = x < y ? x : y, most = x < y ? y : x;
    return (d.x > 0) + 2u * (d.y > 0) + 4u * (x < y) + 8u * (least > 0.41421356237309503 * most);
}

/// Collects in one pass the points beyond a ring, of each sector about the centre the one farthest outside
/// and the one farthest inside: few, and yet enough for the next circle to meet few others.
class sector_picks {
public:
    /// Adds to `support` the points whose power about `c` is outside `limits`; false when there is none.
    /// `range` becomes that of all points where it is wider than the limits. The sectors are taken about
    /// `pole`.
    static bool add_beyond(ring_points const& points, zone_center const& c, power_range const& limits,
                           xy pole, std::vector<xy>& support, power_range& range);
};

/// The circle through three points relative to the first one; the centre is not finite when they lie on a
/// line.
xy circumcenter(xy a, xy b, xy c);

}  // namespace tvmath
