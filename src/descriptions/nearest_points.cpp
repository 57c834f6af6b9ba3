#include <cmath>
#include <utility>

#include "geometry/closest_ellipse.h"
#include "geometry/closest_path.h"
#include "geometry/closest_point.h"
#include "record_kinds.h"
#include "tvmath/geometry_queries.h"

inline namespace tvmath {
namespace {

struct task {
    std::vector<point> const& points;
    std::vector<point>& nearest;

    // Sets the answers of `closest` for all points, as points of a feature of that dimension.
    template <class finder>
    bool answer(bool solid, finder const& closest) const {
        std::vector<point> found;
        found.reserve(points.size());
        for (point const& p : points) {
            xyz const at(p);
            xyz const q = p.is_trivial() || !at.is_finite() ? at : closest(at);
            found.push_back(p.is_trivial() || !q.is_finite() ? point() : q.location(solid));
        }
        nearest = std::move(found);
        return true;
    }

    bool answer_point(point const& only) const {
        return !only.is_trivial() && answer(only.is_3d(), [q = xyz(only)](xyz const&) { return q; });
    }
};

// The four corners of a shape's unit square, or the ends of its axes, as places.
xyz place(transform const& t, double u, double v) {
    return xyz(t.basis(0)) + u * xyz(t.basis(1)) + v * xyz(t.basis(2));
}

bool nearest_on(Number_Description const&, task const&) {
    return false;
}

bool nearest_on(Rotation_Description const&, task const&) {
    return false;
}

bool nearest_on(Point_Description const& r, task const& t) {
    return t.answer_point(r.position);
}

bool nearest_on(Transform_Description const& r, task const& t) {
    return t.answer_point(r.geometry.basis(0));
}

bool nearest_on(Composite_Description const& r, task const& t) {
    return t.answer_point(r.geometry.basis(0));
}

bool nearest_on(Text_Description const& r, task const& t) {
    return t.answer_point(r.placement.basis(0));
}

bool nearest_on(Angle_Description const& r, task const& t) {
    return t.answer_point(r.arc.basis(0));
}

bool nearest_on(Segment_Description const& r, task const& t) {
    if (r.geometry.is_trivial()) return false;
    segment_ends const ends = {place(r.geometry, -1, 0), place(r.geometry, 1, 0)};
    return t.answer(r.geometry.is_3d(), [&](xyz const& p) { return closest_on_segment(p, ends); });
}

bool nearest_on_ellipse(ellipse const& e, task const& t) {
    if (e.is_trivial()) return false;
    true_ellipse const axes(e);
    return t.answer(e.is_3d(), [&](xyz const& p) { return axes.closest(p); });
}

bool nearest_on(Circle_Description const& r, task const& t) {
    return nearest_on_ellipse(r.geometry, t);
}

bool nearest_on(Ellipse_Description const& r, task const& t) {
    return nearest_on_ellipse(r.geometry, t);
}

bool nearest_on(Arc_Description const& r, task const& t) {
    if (r.circle.is_trivial()) return false;
    true_ellipse const axes(r.circle);
    double const half = r.included_angle / 2;
    return t.answer(r.circle.is_3d(), [&](xyz const& p) { return axes.closest_on_arc(p, -half, half); });
}

bool nearest_on(Rectangle_Description const& r, task const& t) {
    if (r.geometry.is_trivial()) return false;
    xyz const a = place(r.geometry, -1, -1), b = place(r.geometry, 1, -1), c = place(r.geometry, 1, 1),
              d = place(r.geometry, -1, 1);
    segment_ends const sides[] = {{a, b}, {b, c}, {c, d}, {d, a}};
    return t.answer(r.geometry.is_3d(), [&](xyz const& p) { return closest_on_segments(p, sides); });
}

bool nearest_on(Gap_Description const& r, task const& t) {
    if (r.geometry.is_trivial()) return false;
    segment_ends const sides[] = {{place(r.geometry, -1, -1), place(r.geometry, 1, -1)},
                                  {place(r.geometry, -1, 1), place(r.geometry, 1, 1)}};
    return t.answer(r.geometry.is_3d(), [&](xyz const& p) { return closest_on_segments(p, sides); });
}

bool nearest_on(Slot_Description const& r, task const& t) {
    if (r.geometry.is_trivial()) return false;
    xyz const half(r.geometry.basis(1)), across(r.geometry.basis(2));
    xyz e1 = unit(half);
    if (dot(e1, e1) == 0) e1 = unit(cross(across, xyz(r.geometry.basis(3))));  // both ends in one place
    xyz const e2 = unit(across - dot(across, e1) * e1);
    return t.answer(r.geometry.is_3d(), [&](xyz const& p) {
        return closest_on_slot(p, xyz(r.geometry.basis(0)), e1, e2, length(half), length(across));
    });
}

bool nearest_on(Plane_Description const& r, task const& t) {
    xyz const normal = unit(cross(xyz(r.geometry.basis(1)), xyz(r.geometry.basis(2))));
    if (r.geometry.is_trivial() || dot(normal, normal) == 0) return false;
    xyz const center(r.geometry.basis(0));
    return t.answer(true, [&](xyz const& p) { return closest_on_plane(p, center, normal); });
}

bool nearest_on(Sphere_Description const& r, task const& t) {
    if (r.geometry.is_trivial()) return false;
    xyz const center(r.geometry.basis(0));
    return t.answer(true, [&](xyz const& p) { return closest_on_sphere(p, center, r.geometry.radius()); });
}

bool nearest_on(Cylinder_Description const& r, task const& t) {
    xyz const half(r.geometry.basis(3)), axis = unit(half), base = xyz(r.geometry.basis(0)) - half;
    if (r.geometry.is_trivial() || dot(axis, axis) == 0) return false;
    double const radius = r.geometry.radius(), height = 2 * length(half);
    return t.answer(true,
                    [&](xyz const& p) { return closest_on_frustum(p, base, axis, height, radius, radius); });
}

bool nearest_on(Cone_Description const& r, task const& t) {
    cone const& c = r.geometry;
    xyz const base(c.base), along = xyz(c.top) - base;
    double const height = length(along);
    xyz const axis = height > 0 ? unit(along) : unit(xyz(c.axis));
    if (c.is_trivial() || c.top.is_trivial() || dot(axis, axis) == 0) return false;
    return t.answer(true, [&](xyz const& p) {
        return closest_on_frustum(p, base, axis, height, c.base_radius, c.top_radius);
    });
}

bool nearest_on(ORing_Description const& r, task const& t) {
    if (r.placement.is_trivial() || (r.inner.is_trivial() && r.outer.is_trivial())) return false;
    return t.answer(r.placement.is_3d(), [&](xyz const& p) {
        point local = p.location(true) / r.placement;
        local.project2d();
        double const angle = local.angle2d();
        point const inner = r.inner.render_point(angle), outer = r.outer.render_point(angle);
        bool const to_inner = r.outer.is_trivial() ||
                              (!r.inner.is_trivial() && distance2d(inner, local) <= distance2d(outer, local));
        return xyz((to_inner ? inner : outer) * r.placement);
    });
}

bool nearest_on_path(span_path const& path, bool solid, task const& t) {
    return !path.is_empty() && t.answer(solid, [&](xyz const& p) { return path.closest(p); });
}

template <class list>
bool has_3d_point(list const& points) {
    for (point const& p : points) {
        if (p.is_3d()) return true;
    }
    return false;
}

bool nearest_on(OpenSpline_Description const& r, task const& t) {
    return nearest_on_path(span_path(r.path), has_3d_point(r.path), t);
}

bool nearest_on(ClosedSpline_Description const& r, task const& t) {
    return nearest_on_path(span_path(r.path), has_3d_point(r.path), t);
}

bool nearest_on(Nurb_Description const& r, task const& t) {
    return nearest_on_path(span_path(r.geometry), true, t);
}

// What a list of measured points is: its points, each joined to the one after it when the path is `joined`,
// and the last to the first when it is `closed` too. Trivial points break it.
bool nearest_on_list(std::vector<point> const& list, bool joined, bool closed, task const& t) {
    std::vector<segment_ends> parts;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].is_trivial()) continue;
        bool const is_last = i + 1 == list.size();
        point const& next = is_last ? list.front() : list[i + 1];
        bool const has_next = joined && (!is_last || closed) && !next.is_trivial();
        parts.push_back({xyz(list[i]), xyz(has_next ? next : list[i])});
    }
    return !parts.empty() &&
           t.answer(has_3d_point(list), [&](xyz const& p) { return closest_on_segments(p, parts); });
}

bool nearest_on(OpenData_Description const& r, task const& t) {
    return nearest_on_list(r.points, true, false, t);
}

bool nearest_on(ClosedData_Description const& r, task const& t) {
    return nearest_on_list(r.points, true, true, t);
}

bool nearest_on(PointCloud_Description const& r, task const& t) {
    return nearest_on_list(r.points, false, false, t);
}

}  // namespace

bool calc_nearest_points(Geometry_Description const& feature, std::vector<point> const& points,
                         std::vector<point>& nearest) {
    return ask_record(feature, [&](auto const& r) { return nearest_on(r, task{points, nearest}); });
}

bool calc_nearest_points(GeometryGetter const& feature, std::vector<point> const& points,
                         std::vector<point>& nearest) {
    auto const record = held_record(feature);
    return record && calc_nearest_points(*record, points, nearest);
}

}  // namespace tvmath
