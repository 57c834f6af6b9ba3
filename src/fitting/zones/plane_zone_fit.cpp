#include "fitting/plane_from_normal.h"
#include "geometry/extent.h"
#include "orientation.h"
#include "plane_zone_width.h"
#include "tvmath/feature_fit.h"
#include "tvmath/zone_fit.h"
#include "zone_points.h"

inline namespace tvmath {
namespace {

// The plane with that unit normal in the middle of the points. They are seen from the first of them, which is
// near to the others wherever `origin` may be.
plane plane_in_middle(point const& origin, xyz const& normal, point_span points, double minimum_width,
                      double minimum_height, double& zone) {
    if (points.empty()) return plane();
    xyz const first(points[0]);
    interval along;
    for (point const& p : points) {
        if (p.is_trivial()) return plane();
        double const t = dot(xyz(p) - first, normal);
        if (!std::isfinite(t)) return plane();
        along.widen(t);
    }
    double const to_middle = (along.low + along.high) / 2.0 + dot(first - xyz(origin), normal);
    xyz const center = xyz(origin) + to_middle * normal;
    if (!center.is_finite()) return plane();
    plane const result = plane_from_normal(center.location(true), point(false, normal.x, normal.y, normal.z),
                                           points, minimum_width, minimum_height);
    if (!result.is_trivial()) zone = along.high - along.low;
    return result;
}

// The normal of the narrowest slab. Only corners of the hull ever touch a slab, so the exchange goes over
// these alone.
xyz zone_normal(xyz const& start, std::vector<xyz> const& points) {
    solid_hull const hull = solid_hull_of(points);
    auto const& c = hull.corners;
    if (hull.is_flat()) return c.size() == 3 ? unit(exact_cross(c[0], c[1], c[0], c[2])) : xyz();
    return narrowest_slab(hull, exchanged_slab(start, c)).normal;
}

}  // namespace

plane plane_zone_fit(idioms::array<point> points, double& zone) {
    plane const start = plane_fit(points);
    if (start.is_trivial()) return plane();
    zone_points const scaled = zone_points_of(span_of(points));
    if (scaled.at.empty()) return plane();
    xyz const normal = zone_normal(xyz(start.normal()), scaled.at);
    return plane_in_middle(start.basis(0), normal, span_of(points), smallest_plane_extent,
                           smallest_plane_extent, zone);
}

plane plane_zone_fit(idioms::array<point> points) {
    double zone = 0;
    return plane_zone_fit(points, zone);
}

plane plane_parallel_zone_fit(plane p, idioms::array<point> points, double& zone) {
    if (!p.is_3d()) return plane();
    return plane_in_middle(p.basis(0), unit(xyz(p.basis(3))), span_of(points), p.size(1), p.size(2), zone);
}

plane plane_parallel_zone_fit(plane p, idioms::array<point> points) {
    double zone = 0;
    return plane_parallel_zone_fit(p, points, zone);
}

plane plane_parallel_centered(plane p, point center) {
    if (!p.is_3d() || center.is_trivial()) return plane();
    xyz const to(center), by = to - xyz(p.basis(0));
    if (!by.is_finite()) return plane();
    plane moved(make_transform(to.location(true), p.basis(1), p.basis(2), p.basis(3)));
    return moved.fill_in_inverse() ? moved : plane();
}

}  // namespace tvmath
