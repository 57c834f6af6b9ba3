#include "planar_points.h"

#include <algorithm>
#include <cmath>
#include <limits>

inline namespace tvmath {
// Unit vector along the largest scatter, by the half-angle formulas that do not cancel.
xy principal_axis(double xx, double xy_, double yy) {
    double const a = xx - yy, b = 2 * xy_, h = std::hypot(a, b);
    if (h == 0.0) return {1, 0};
    xy const axis = a >= 0 ? xy{h + a, b} : xy{b, h - a};
    double const n = std::hypot(axis.x, axis.y);
    return {axis.x / n, axis.y / n};
}

planar_points relative_to(point const& origin, std::span<point const> points) {
    if (origin.is_trivial()) return {};
    planar_points relative{origin, {}, 0};
    relative.origin.to_location();
    relative.at.reserve(points.size());
    double const ox = origin.x(), oy = origin.y();
    double largest = 0, sum = 0;
    bool any_trivial = false;
    for (point const& p : points) {
        any_trivial |= p.is_trivial();
        double const x = p.x() - ox, y = p.y() - oy;
        relative.at.push_back({x, y});
        largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y())});
        sum += std::fabs(x) + std::fabs(y);
    }
    if (any_trivial || !std::isfinite(sum)) return {};
    relative.resolution = largest * std::numeric_limits<double>::epsilon();
    return relative;
}

transform planar_points::place(xy center, xy u, xy v) const {
    point const c = place(center), a(false, u.x, u.y), b(false, v.x, v.y);
    return c.is_3d() ? make_transform(c, a, b, point(false, 0, 0, 1)) : make_transform(c, a, b);
}

planar_scatter scatter_about(xy center, std::vector<xy> const& points) {
    planar_scatter s;
    s.center = center;
    double xx = 0, xy_ = 0, yy = 0;
    for (xy const& p : points) {
        xy const d = p - center;
        xx += d.x * d.x;
        xy_ += d.x * d.y;
        yy += d.y * d.y;
    }
    s.axis = principal_axis(xx, xy_, yy);

    // Once more along and across: the small part of a long scatter is lost in the sums above.
    double tt = 0, tn = 0;
    for (xy const& p : points) {
        double const t = dot(p - center, s.axis), n = dot(p - center, quarter_turned(s.axis));
        tt += t * t;
        tn += t * n;
    }
    s.lean = tt > 0 ? tn / tt : 0;
    double rest = 0;
    for (xy const& p : points) {
        double const t = dot(p - center, s.axis), n = dot(p - center, quarter_turned(s.axis));
        double const off = n - s.lean * t;
        rest += off * off;
    }
    double const count = static_cast<double>(points.size());
    s.along = std::sqrt(tt / count);
    s.across = std::sqrt(rest / count);
    return s;
}

planar_scatter scatter_of(std::vector<xy> const& points) {
    xy sum;
    for (xy const& p : points) sum = sum + p;
    return scatter_about(1 / static_cast<double>(points.size()) * sum, points);
}

}  // namespace tvmath
