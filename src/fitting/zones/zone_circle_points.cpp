#include "zone_circle_points.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "geometry/point_lanes.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

// Four points at once; the extremes do not depend on the order.
TVMATH_WIDE_LOOP power_range range_of(double const* x, double const* y, std::size_t n, zone_center const& c) {
    using lanes = double __attribute__((vector_size(32)));
    double const u = 2 * c.u, v = 2 * c.v, t = c.t;
    lanes low = {infinity, infinity, infinity, infinity}, high = -low;
    for (std::size_t i = 0; i < n; i += 4) {
        lanes px, py;
        std::memcpy(&px, x + i, sizeof px);
        std::memcpy(&py, y + i, sizeof py);
        lanes const a = px * (t * px - u) + py * (t * py - v);
        low = a < low ? a : low;
        high = a > high ? a : high;
    }
    power_range range;
    for (int k = 0; k < 4; ++k) {
        range.low = std::min(range.low, low[k]);
        range.high = std::max(range.high, high[k]);
    }
    return range;
}

}  // namespace

ring_points::ring_points(std::vector<point> const& points) : centroid(point_fit(points)) {
    if (centroid.is_trivial()) return;
    std::size_t const padded = (points.size() + 3) / 4 * 4;
    x_.resize(padded);
    y_.resize(padded);
    double const ox = centroid.x(), oy = centroid.y();
    double most = 0, sum = 0;  // a NaN or an infinity stays in the sum
    for (std::size_t i = 0; i < points.size(); ++i) {
        x_[i] = points[i].x() - ox;
        y_[i] = points[i].y() - oy;
        double const ax = std::fabs(x_[i]), ay = std::fabs(y_[i]);
        most = std::max(most, std::max(ax, ay));
        sum += ax / 2 + ay / 2;
    }
    if (!std::isfinite(sum) || !std::isfinite(most * 4)) return;
    count = points.size();
    // Room for a radius above the coordinates; the reciprocal of a subnormal would not be finite.
    if (most > 0) size = std::ldexp(1.0, std::max(-1000, std::ilogb(most) + 1));
    double const scale = 1 / size;
    for (std::size_t i = 0; i < count; ++i) {
        x_[i] *= scale;
        y_[i] *= scale;
    }
    std::fill(x_.begin() + static_cast<std::ptrdiff_t>(count), x_.end(), x_[0]);
    std::fill(y_.begin() + static_cast<std::ptrdiff_t>(count), y_.end(), y_[0]);
}

int ring_points::distinct() const {
    std::size_t other = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (x_[i] == x_[0] && y_[i] == y_[0]) continue;
        if (other == 0) other = i;
        if (x_[i] != x_[other] || y_[i] != y_[other]) return 3;
    }
    return other == 0 ? 1 : 2;
}

power_range ring_points::block_range(std::size_t first, zone_center const& c) const {
    return range_of(x_.data() + first, y_.data() + first, std::min(block, x_.size() - first), c);
}

// The block that holds an extreme is searched for it in the end, once: along a contour in order, the extremes
// so far change in every other block.
std::size_t ring_points::index_in(std::size_t first, zone_center const& c, double power) const {
    std::size_t const end = std::min(first + block, count);
    for (std::size_t i = first; i < end; ++i) {
        if (power_about(c, x_[i], y_[i]) == power) return i;
    }
    return 0;  // the padding, a copy of point 0
}

std::size_t ring_points::farthest_from(zone_center const& c, double& power) const {
    std::size_t best = 0;
    power = -infinity;
    for (std::size_t first = 0; first < count; first += block) {
        double const most = block_range(first, c).high;
        if (!(most > power)) continue;
        power = most;
        best = first;
    }
    return index_in(best, c, power);
}

std::vector<std::size_t> ring_points::extremes(unsigned int directions) const {
    struct extreme {
        zone_center along;
        power_range range;
        std::size_t low_block = 0, high_block = 0;
    };
    unsigned int const axes = directions / 2;
    std::vector<extreme> found(axes);
    for (unsigned int k = 0; k < axes; ++k) {
        double const angle = pi * k / axes;
        found[k].along = {-std::cos(angle) / 2, -std::sin(angle) / 2,
                          0};  // the power is the coordinate there
    }
    for (std::size_t first = 0; first < count; first += block) {
        for (extreme& e : found) {
            power_range const here = block_range(first, e.along);
            if (here.low < e.range.low) e.low_block = first;
            if (here.high > e.range.high) e.high_block = first;
            e.range.widen(here.low);
            e.range.widen(here.high);
        }
    }
    std::vector<std::size_t> corners;
    for (extreme const& e : found) corners.push_back(index_in(e.high_block, e.along, e.range.high));
    for (extreme const& e : found) corners.push_back(index_in(e.low_block, e.along, e.range.low));
    corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
    while (corners.size() > 1 && corners.back() == corners.front()) corners.pop_back();
    return corners;
}

bool sector_picks::add_beyond(ring_points const& points, zone_center const& c, power_range const& limits,
                              xy pole, std::vector<xy>& support, power_range& range) {
    struct pick {
        double excess = 0;
        std::size_t index = 0;
    };
    std::array<pick, 32> picks{};
    range = limits;
    points.visit_beyond(c, limits, [&](std::size_t i, double a) {
        range.widen(a);
        bool const outside = a > limits.high;
        double const excess = outside ? a - limits.high : limits.low - a;
        pick& kept = picks[sector_of(points[i] - pole) + (outside ? 16u : 0u)];
        if (excess > kept.excess) kept = {excess, i};
    });
    std::size_t const before = support.size();
    for (pick const& p : picks) {
        if (p.excess > 0) support.push_back(points[p.index]);
    }
    return support.size() > before;
}

xy circumcenter(xy a, xy b, xy c) {
    xy const p = b - a, q = c - a;
    double const d = 2 * (p.x * q.y - p.y * q.x), pp = dot(p, p), qq = dot(q, q);
    return a + xy{(q.y * pp - p.y * qq) / d, (p.x * qq - q.x * pp) / d};
}

}  // namespace tvmath
