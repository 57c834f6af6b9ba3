#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "geometry/point_lanes.h"
#include "geometry/xyz.h"
#include "plane_from_normal.h"
#include "point_lists.h"
#include "point_span.h"
#include "tvmath/feature_fit.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

// Second moments of the points about `center` along three perpendicular axes.
struct moments {
    double uu = 0, vv = 0, ww = 0, uv = 0, vw = 0, wu = 0;
};

// Sums of four points at a time, which share each instruction and meet at the end.
struct moment_lanes {
    point_lanes uu{}, vv{}, ww{}, uv{}, vw{}, wu{};

    [[gnu::always_inline]] void add(xyz const& a, xyz const& b, xyz const& c, xyz const& d,
                                    xyz const (&axes)[3]) {
        point_lanes const x = {a.x, b.x, c.x, d.x}, y = {a.y, b.y, c.y, d.y}, z = {a.z, b.z, c.z, d.z};
        point_lanes const u = x * axes[0].x + y * axes[0].y + z * axes[0].z,
                          v = x * axes[1].x + y * axes[1].y + z * axes[1].z,
                          w = x * axes[2].x + y * axes[2].y + z * axes[2].z;
        uu += u * u;
        vv += v * v;
        ww += w * w;
        uv += u * v;
        vw += v * w;
        wu += w * u;
    }
};

TVMATH_WIDE_LOOP moments moments_about(xyz const& center, xyz const (&axes)[3], point_span points) {
    moment_lanes sums;
    std::size_t const n = points.size(), whole = n / 4 * 4;
    auto const relative = [&](std::size_t i) { return i < n ? xyz(points[i]) - center : xyz(); };
    for (std::size_t i = 0; i < whole; i += 4) {
        sums.add(xyz(points[i]) - center, xyz(points[i + 1]) - center, xyz(points[i + 2]) - center,
                 xyz(points[i + 3]) - center, axes);
    }
    sums.add(relative(whole), relative(whole + 1), relative(whole + 2), xyz(), axes);
    auto const total = [](point_lanes const& a) { return (a[0] + a[1]) + (a[2] + a[3]); };
    return {total(sums.uu), total(sums.vv), total(sums.ww), total(sums.uv), total(sums.vw), total(sums.wu)};
}

// Whether the sum of squares across the longest axis is more than the rounding of the coordinates makes it.
bool is_beyond_rounding(double across, double along, point const& center, point_span points) {
    auto const beyond = [&](double rounding) {
        return across > 2 * rounding * rounding * static_cast<double>(points.size());
    };
    // No coordinate is larger than this; only where that leaves a doubt the list is searched for the largest.
    double const reach = length(xyz(center)) + std::sqrt(across + along);
    return beyond(4 * std::numeric_limits<double>::epsilon() * reach) ||
           beyond(std::max(coordinate_rounding({&center, 1}), coordinate_rounding(points)));
}

// The principal axes of the points about `center`, the normal of their plane as the last one. A narrow strip
// has moments across it that are lost in the rounding of those along it (the scatter matrix squares the ratio
// of length to width), and the axes with them. Seen along these axes the moments are graded and keep their
// digits, so that one Jacobi rotation across the strip and one along it make good what the first matrix lost.
// Source: J. Demmel, K. Veselic, Jacobi's method is more accurate than QR, SIAM J. Matrix Anal. Appl. 13
// (1992) 1204-1245.
//
// Null when the points lie on one line as far as their coordinates can tell.
point refined_normal(point const& center, xyz const (&axes)[3], point_span points) {
    moments const m = moments_about(xyz(center), axes, points);
    double const difference = m.vv - m.ww, h = std::hypot(difference, 2 * m.vw), across = m.vv + m.ww + h;
    if (!is_beyond_rounding(across, m.uu, center, points)) return point();
    xyz normal = axes[2];
    // A cloud that is nearly round across its longest axis has no better normal than the one it got.
    if (m.vv + m.ww <= 3 * h) {
        double const turn = std::atan2(2 * m.vw, difference) / 2, c = std::cos(turn), s = std::sin(turn);
        double const ww = (m.vv + m.ww - h) / 2, wu = c * m.wu - s * m.uv;
        normal = c * axes[2] - s * axes[1] - wu / (m.uu - ww) * axes[0];
    }
    xyz const n = unit(normal);
    return point(false, n.x, n.y, n.z);
}

// The normal of the best plane through `center`: the direction of the least singular value of the scatter
// matrix, the first one of equals. Null for fewer than 2 points, a 2D centre, and points on one line.
point plane_normal_fit(point const& center, point_span points) {
    if (points.size() < 2 || !center.is_3d()) return point();
    moments const m = moments_about(xyz(center), {xyz(1, 0, 0), xyz(0, 1, 0), xyz(0, 0, 1)}, points);
    double const trace = m.uu + m.vv + m.ww;
    if (!std::isfinite(trace)) return point();
    double const rows[3][3] = {{m.uu, m.uv, m.wu}, {m.uv, m.vv, m.vw}, {m.wu, m.vw, m.ww}};
    matrix scatter(3, 3), u, v;
    for (unsigned int i = 0; i < 3; ++i) scatter.row(i, vector(3, rows[i]));
    vector const values = singular_value_decomposition(scatter, u, v);

    unsigned int k = 0;
    for (unsigned int j = 1; j < 3; ++j) {
        if (values[k] > values[j]) k = j;
    }
    unsigned int i = (k + 1) % 3, j = (k + 2) % 3;
    if (values[i] == 0.0 || values[j] == 0.0) return point();
    if (values[i] < values[j]) std::swap(i, j);
    auto const column = [&v](unsigned int n) { return xyz(v[0][n], v[1][n], v[2][n]); };
    return refined_normal(center, {column(i), column(j), column(k)}, points);
}

bool any_trivial(point_span points) {
    return std::any_of(points.begin(), points.end(), [](point const& p) { return p.is_trivial(); });
}

}  // namespace

plane plane_fit(idioms::array<point> points) {
    point_span const all = span_of(points);
    if (count_distinct(all, 3) < 3) return plane();
    point const center = point_fit(points), normal = plane_normal_fit(center, all);
    return plane_from_normal(center, normal, all, smallest_plane_extent, smallest_plane_extent);
}

plane plane_centered_fit(point center, idioms::array<point> points) {
    point_span const all = span_of(points);
    if (any_trivial(all)) return plane();
    point const normal = plane_normal_fit(center, all);
    return plane_from_normal(center, normal, all, smallest_plane_extent, smallest_plane_extent, false);
}

plane plane_parallel_fit(plane p, idioms::array<point> points) {
    if (!p.is_3d()) return plane();
    return plane_from_normal(point_fit(points), p.basis(3), span_of(points), p.size(1), p.size(2));
}

}  // namespace tvmath
