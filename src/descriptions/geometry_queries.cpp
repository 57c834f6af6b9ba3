#include "tvmath/geometry_queries.h"

#include <cmath>
#include <limits>

#include "geometry/xyz.h"
#include "record_kinds.h"

// Overloads for each query, in which an empty answer means "none". The nearest points stand in
// nearest_points.cpp.

inline namespace tvmath {
namespace {

using points_list = std::vector<point>;

template <class kind>
concept number_record = std::same_as<kind, Number_Description> || std::same_as<kind, Rotation_Description>;
template <class kind>
concept placed_record = requires(kind const& r) {
    r.placement;
};

// The point of an arc at that angle of its own frame; trivial for a null arc.
point on_arc(circle const& arc, double angle) {
    return arc.is_trivial() ? point() : point(true, std::cos(angle), std::sin(angle)) * arc;
}

bool is_usable(point const& p) {
    return !p.is_trivial() && xyz(p).is_finite();
}

// Mean of the points that are not trivial, in 3D when one of them is. Summed about the first one, since the
// sum of large coordinates loses their last digits.
point mean_of(points_list const& points) {
    xyz origin, sum;
    double count = 0;
    bool solid = false;
    for (point const& p : points) {
        if (p.is_trivial()) continue;
        if (count == 0) origin = xyz(p);
        sum = sum + (xyz(p) - origin);
        solid = solid || p.is_3d();
        ++count;
    }
    return count == 0 ? point() : (origin + (1 / count) * sum).location(solid);
}

// Centre of the extent in XY of a Bezier path, at the mean z of the points when one of them is 3D.
point middle_of(curve const& bezier, points_list const& z_of) {
    if (bezier.is_trivial() || bezier.capacity() % 3 != 1) return point();
    point middle = bezier_bounding_rect(bezier).CenterPoint();
    point const mean = mean_of(z_of);
    if (mean.is_3d()) middle = point(true, middle.x(), middle.y(), mean.z());
    return middle;
}

point middle_of(curve const& bezier) {
    return middle_of(bezier, points_list(bezier.begin(), bezier.end()));
}

point middle_of(nurb const& path) {
    points_list controls;
    for (unsigned int i = 0; i < path.control_points(); ++i) controls.push_back(path.get_control_point(i));
    return path.is_trivial() ? point() : middle_of(path.render_bezier(), controls);
}

// --- Centre

point center_of(number_record auto const&) {
    return point();
}
point center_of(Point_Description const& r) {
    return r.position;
}
point center_of(shape_record auto const& r) {
    return r.geometry.basis(0);
}
point center_of(placed_record auto const& r) {
    return r.placement.basis(0);
}
point center_of(Arc_Description const& r) {
    return r.circle.basis(0);
}
point center_of(Angle_Description const& r) {
    return r.arc.basis(0);
}
point center_of(Cone_Description const& r) {
    return r.geometry.center();
}
point center_of(OpenSpline_Description const& r) {
    return middle_of(r.path);
}
point center_of(ClosedSpline_Description const& r) {
    return r.centroid.is_trivial() ? middle_of(r.path) : r.centroid;
}
point center_of(Nurb_Description const& r) {
    return r.center.is_trivial() ? middle_of(r.geometry) : r.center;
}
point center_of(data_record auto const& r) {
    return mean_of(r.points);
}

// --- Points of construction

points_list points_of(auto const& r) {
    return {center_of(r)};
}
points_list points_of(Segment_Description const& r) {
    if (r.geometry.is_trivial()) return {};
    return {r.geometry.basis(0) - r.geometry.basis(1), r.geometry.basis(0) + r.geometry.basis(1)};
}
points_list points_of(Arc_Description const& r) {
    return {on_arc(r.circle, -r.included_angle / 2), on_arc(r.circle, r.included_angle / 2)};
}
points_list points_of(OpenSpline_Description const& r) {
    if (r.path.capacity() % 3 != 1) return {};
    return {r.path[0], r.path[r.path.capacity() - 1]};
}
points_list points_of(Nurb_Description const& r) {
    if (r.geometry.is_trivial()) return {};
    return {r.geometry.evaluate(r.geometry.get_knot(r.geometry.degree())),
            r.geometry.evaluate(r.geometry.get_knot(r.geometry.control_points()))};
}
points_list points_of(data_record auto const& r) {
    return r.points;
}

// --- Direction

point direction_of(auto const&) {
    return point();
}
template <class kind>
requires std::same_as<kind, Transform_Description> || std::same_as<kind, Composite_Description> ||
    std::same_as<kind, Segment_Description> || std::same_as<kind, Ellipse_Description> ||
    std::same_as<kind, Rectangle_Description> || std::same_as<kind, Gap_Description> ||
    std::same_as<kind, Slot_Description>
        point direction_of(kind const& r) {
    return r.geometry.is_trivial() ? point() : r.geometry.basis(1);
}
point direction_of(Text_Description const& r) {
    return r.placement.is_trivial() ? point() : r.placement.basis(1);
}
point direction_of(Arc_Description const& r) {
    return r.circle.is_trivial() ? point() : r.circle.basis(1);
}
point direction_of(Plane_Description const& r) {
    return r.geometry.is_trivial() ? point() : r.geometry.normal();
}
point direction_of(Cylinder_Description const& r) {
    return r.geometry.is_trivial() ? point() : r.geometry.basis(3);
}
point direction_of(Cone_Description const& r) {
    return r.geometry.axis;
}
point direction_of(Angle_Description const& r) {
    return on_arc(r.arc, r.start_angle + r.included_angle / 2) - r.arc.basis(0);
}

// --- Plane

plane through_point(point center, xyz const& normal) {
    if (!is_usable(center) || !(length(normal) > 0)) return plane();
    center.promote3d();
    return plane(center, normal.location(true));
}

// The plane of the first two axes, which count as parallel within the rounding of unit vectors.
plane of_axes(transform const& t) {
    if (t.is_2d()) return through_point(t.basis(0), {0, 0, 1});
    xyz const normal = cross(unit(xyz(t.basis(1))), unit(xyz(t.basis(2))));
    bool const spans = length(normal) > 4 * std::numeric_limits<double>::epsilon();
    return t.is_trivial() || !spans ? plane() : through_point(t.basis(0), unit(normal));
}

plane plane_of(auto const&) {
    return plane();
}
template <class kind>
requires std::same_as<kind, Transform_Description> || std::same_as<kind, Composite_Description> ||
    std::same_as<kind, Circle_Description> || std::same_as<kind, Ellipse_Description> ||
    std::same_as<kind, Rectangle_Description> || std::same_as<kind, Gap_Description> ||
    std::same_as<kind, Slot_Description>
        plane plane_of(kind const& r) {
    return of_axes(r.geometry);
}
plane plane_of(placed_record auto const& r) {
    return of_axes(r.placement);
}
plane plane_of(Arc_Description const& r) {
    return of_axes(r.circle);
}
plane plane_of(Angle_Description const& r) {
    return of_axes(r.arc);
}
plane plane_of(Plane_Description const& r) {
    return r.geometry;
}
plane plane_of(Cylinder_Description const& r) {
    return through_point(center_of(r), unit(xyz(direction_of(r))));
}
plane plane_of(Cone_Description const& r) {
    return through_point(center_of(r), unit(xyz(direction_of(r))));
}

}  // namespace

GeometryGetter::~GeometryGetter() = default;

bool construct_points(Geometry_Description const& feature, points_list& points) {
    points_list found = ask_record(feature, [](auto const& r) { return points_of(r); });
    std::erase_if(found, [](point const& p) { return !is_usable(p); });
    if (found.empty()) return false;
    points = std::move(found);
    return true;
}

bool get_center_point(Geometry_Description const& feature, point& center) {
    point const found = ask_record(feature, [](auto const& r) { return center_of(r); });
    if (!is_usable(found)) return false;
    center = found;
    return true;
}

bool get_direction(Geometry_Description const& feature, point& direction) {
    point const found = ask_record(feature, [](auto const& r) { return direction_of(r); });
    xyz const scaled = unit(xyz(found));
    if (found.is_trivial() || !(length(scaled) > 0)) return false;
    direction = scaled.location(found.is_3d());
    direction.to_direction();
    return true;
}

bool get_plane(Geometry_Description const& feature, plane& through) {
    plane const found = ask_record(feature, [](auto const& r) { return plane_of(r); });
    if (found.is_trivial() || !is_usable(found.basis(0)) || !(length(unit(xyz(found.normal()))) > 0))
        return false;
    through = found;
    return true;
}

bool construct_points(GeometryGetter const& feature, points_list& points) {
    auto const record = held_record(feature);
    return record && construct_points(*record, points);
}

bool get_center_point(GeometryGetter const& feature, point& center) {
    auto const record = held_record(feature);
    return record && get_center_point(*record, center);
}

bool get_direction(GeometryGetter const& feature, point& direction) {
    auto const record = held_record(feature);
    return record && get_direction(*record, direction);
}

bool get_plane(GeometryGetter const& feature, plane& through) {
    auto const record = held_record(feature);
    return record && get_plane(*record, through);
}

}  // namespace tvmath
