#include <algorithm>
#include <cmath>

#include "fit_view.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

double degrees(double radians) {
    return radians * (180 / pi);
}

outline box(view_extent const& e) {
    return make_outline({e.low, {e.high.x, e.low.y}, e.high, {e.low.x, e.high.y}}, true);
}

fit_view map_view(char const* x_label, char const* y_label) {
    fit_view view;
    view.style = view_style::map;
    view.is_sequence = false;
    view.x_label = x_label;
    view.y_label = y_label;
    return view;
}

// Seen against the normal, in the axes of the plane.
fit_view plane_view(fit_result const& result) {
    plane const& p = static_cast<Plane_Description const&>(*result.feature).geometry;
    fit_view view = map_view("along the first axis of the plane, from its center", "along the second axis");
    point const u = p.direction(1), v = p.direction(2);
    view_extent extent;
    for (point const& q : result.points) {
        point const d = q - p.basis(0);
        spot const at = {dot(d, u), dot(d, v)};
        extent.include(at);
        view.points.push_back({at, {}, at.x});
    }
    view.outlines.push_back(box(extent));
    view.along_label = "length along the first axis";
    view.above = "on the side of the normal";
    view.below = "on the other side";
    return view;
}

fit_view sphere_view(fit_result const& result) {
    sphere const& s = static_cast<Sphere_Description const&>(*result.feature).geometry;
    fit_view view = map_view("longitude, degrees", "latitude, degrees");
    view.is_even = false;
    for (point const& q : result.points) {
        point const d = q - s.basis(0);
        spot const at = {degrees(d.angle2d()), degrees(std::atan2(d.z(), d.length2d()))};
        view.points.push_back({at, {}, at.x});
    }
    view.outlines.push_back(make_outline({{-180, -90}, {180, -90}, {180, 90}, {-180, 90}}, true));
    view.along_label = "longitude, degrees";
    view.along_is_angle = true;
    return view;
}

// Unrolled: the angle about the axis against the place along it.
fit_view cylinder_view(fit_result const& result) {
    cylinder const& c = static_cast<Cylinder_Description const&>(*result.feature).geometry;
    fit_view view = map_view("angle about the axis, degrees", "length along the axis, from its middle");
    view.is_even = false;
    point const axis = c.direction(3), u = c.direction(1), v = cross(axis, u);
    double const half = c.height() / 2;
    for (point const& q : result.points) {
        point const d = q - c.basis(0);
        double const angle = degrees(std::atan2(dot(d, v), dot(d, u)));
        spot const at = {angle < 0 ? angle + 360 : angle, dot(d, axis)};
        view.points.push_back({at, {}, at.x});
    }
    view.outlines.push_back(make_outline({{0, -half}, {360, -half}, {360, half}, {0, half}}, true));
    view.along_label = "angle about the axis, degrees";
    view.along_is_angle = true;
    return view;
}

// All points turned about the axis into one half plane, where the surface is a line.
fit_view cone_view(fit_result const& result) {
    cone const& c = static_cast<Cone_Description const&>(*result.feature).geometry;
    transform const frame = c.make_transform();
    point const axis = c.axis, u = frame.direction(1), v = frame.direction(2);
    fit_view view;
    double const height = distance3d(c.base, c.top), angle = c.angle();
    spot const along = {std::cos(angle), std::sin(angle)}, out = {-along.y, along.x};
    for (std::size_t i = 0; i < result.points.size(); ++i) {
        point const d = result.points[i] - c.base;
        double const x = dot(d, u), y = dot(d, v), about = degrees(std::atan2(y, x));
        spot const at = {dot(d, axis), std::hypot(x, y)};
        // Back to the surface by the very residual.
        view.points.push_back({at - result.residuals[i] * out, out, about < 0 ? about + 360 : about});
    }
    view.outlines.push_back(make_outline({{0, c.base_radius}, {height, c.top_radius}}, false));
    view.guides.push_back(make_outline({{0, 0}, {height, 0}}, false));
    view.x_label = "length along the axis, from the base";
    view.y_label = "distance from the axis";
    view.along_label = "angle about the axis, degrees";
    view.along_is_angle = true;
    view.is_sequence = false;
    view.room = 0.12 * std::max(height, std::max(c.base_radius, c.top_radius));
    return view;
}

}  // namespace

fit_view solid_view_of(fit_result const& result) {
    switch (result.kind->record) {
        case Sphere_Description::type_value:
            return sphere_view(result);
        case Cylinder_Description::type_value:
            return cylinder_view(result);
        case Cone_Description::type_value:
            return cone_view(result);
        default:
            return plane_view(result);
    }
}

}  // namespace tvmath
