#include "fitting/point_span.h"
#include "geometry/extent.h"
#include "orientation.h"
#include "planar_hull.h"
#include "tvmath/zone_fit.h"
#include "zone_points.h"

inline namespace tvmath {
namespace {

// A strip with one side on the hull's edge from a to b and the other one through c.
struct strip {
    xyz a, b, c;
    double width = infinity;
};

// The distance of c from the line through a and b; 0 for equal a and b, which are all there is of a list of
// equal points.
double distance_from_line(xyz const& a, xyz const& b, xyz const& c) {
    double const length = std::hypot(b.x - a.x, b.y - a.y);
    return length == 0.0 ? 0.0 : exact_cross(a, b, a, c).z / length;
}

// The narrowest strip of a convex polygon has a side on an edge: between two edges its width is that of two
// fixed points seen at a turning angle, which is concave and has no minimum inside. Rotating calipers: the
// farthest point only moves on as the edge does. The distances along it rise and then fall; equal ones move
// on to the later point. Of edges with equal strips the first one is kept.
// Source: M. E. Houle, G. T. Toussaint, Computing the width of a set, IEEE PAMI 10 (1988) 761-765.
strip narrowest_strip(std::vector<xyz> const& points) {
    std::vector<unsigned int> const hull = planar_hull(points);
    std::size_t const m = hull.size();
    auto const corner = [&](std::size_t i) -> xyz const& { return points[hull[i % m]]; };
    strip best;
    for (std::size_t i = 0, j = 2; i < m; ++i) {
        xyz const &a = corner(i), &b = corner(i + 1);
        while (j < i + m && turn_xy(a, b, corner(j), corner(j + 1)) >= 0) ++j;
        double const width = distance_from_line(a, b, corner(j));
        if (best.width > width) best = {a, b, corner(j), width};
    }
    return best;
}

bool all_3d(point_span points) {
    return std::all_of(points.begin(), points.end(), [](point const& p) { return p.is_3d(); });
}

// Null where the line's middle or length is too large a number.
line finite_line(point const& start, point const& end) {
    bool const fits = xyz(start + end).is_finite() && xyz(end - start).is_finite();
    return fits ? line(start, end) : line();
}

// The middle line of the strip, as long as the points reach along it, at their mean z.
line middle_line(strip const& s, zone_points const& points, bool solid) {
    xyz middle = s.a + 0.25 * (s.b - s.a) + 0.5 * (s.c - s.a);
    xyz const across = s.b - s.a, ends = points.at.back() - points.at.front();
    xyz u = unit({across.x, across.y, 0});
    if (dot(ends, u) < 0.0) u = -1.0 * u;
    interval along{0, 0};
    double z = 0;
    for (xyz const& p : points.at) {
        along.widen(dot(p - middle, u));
        z += p.z - points.at[0].z;
    }
    middle.z = points.at[0].z + z / static_cast<double>(points.at.size());
    xyz const start = points.unit * (middle + along.low * u), end = points.unit * (middle + along.high * u);
    return finite_line(start.location(solid), end.location(solid));
}

}  // namespace

line line_zone_fit(std::vector<point> const& points, double& zone) {
    zone = 0.0;
    if (points.size() < 2) return line();
    zone_points const scaled = zone_points_of(points);
    if (scaled.at.empty()) return line();
    if (points.size() == 2) {
        point first = points[0], second = points[1];
        first.to_location();
        second.to_location();
        return finite_line(first, second);
    }
    strip const best = narrowest_strip(scaled.at);
    double const width = scaled.unit * best.width;
    line const result = std::isfinite(width) ? middle_line(best, scaled, all_3d(points)) : line();
    if (!result.is_trivial()) zone = width;
    return result;
}

line line_zone_fit(std::vector<point> const& points) {
    double zone = 0;
    return line_zone_fit(points, zone);
}

}  // namespace tvmath
