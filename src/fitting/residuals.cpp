#include "tvmath/residuals.h"

#include <cmath>
#include <limits>

#include "descriptions/record_kinds.h"
#include "fitting/ellipse/ellipse_walk.h"
#include "geometry/closest_ellipse.h"
#include "geometry/planar_shape.h"
#include "geometry/xyz.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using point_list = std::vector<point>;
using error_list = std::vector<double>;

// Deviations are taken from differences to the feature's origin, never from products of whole coordinates:
// far from the origin those have lost the digits that count.

// Makes `errors` what `deviation` says of each point as it lies seen from `origin`. 2D points lie in z = 0.
template <class rule>
void measure(point_list const& points, point const& origin, error_list& errors, rule const& deviation) {
    errors.clear();
    errors.resize(points.size());
    double* e = errors.data();
    xyz const center(origin);
    for (point const& p : points) *e++ = deviation(xyz(p) - center);
}

double length_in_xy(xyz const& d) {
    return std::sqrt(d.x * d.x + d.y * d.y);
}

double length_in_space(xyz const& d) {
    return std::sqrt(dot(d, d));
}

// The deviation of smaller size, the second one of equals.
double smaller(double first, double second) {
    return std::fabs(second) > std::fabs(first) ? first : second;
}

// Distance from the axis along `u`. What rounding makes of a point on the axis, a few units in the last place
// of its place along the axis, counts as 0. The difference of squares d² - (d u)² would lose half of the
// digits.
double distance_from_axis(xyz const& d, xyz const& u) {
    constexpr double rounding = 4 * std::numeric_limits<double>::epsilon();
    xyz const across = cross(d, u);
    double const squared = dot(across, across);
    return squared > rounding * rounding * dot(d, d) ? std::sqrt(squared) : 0.0;
}

void measure_round(ellipse const& c, point_list const& points, error_list& errors) {
    double const radius = c.size(1);
    measure(points, c.basis(0), errors, [=](xyz const& d) { return length_in_xy(d) - radius; });
}

void measure_along(transform const& feature, int axis, point_list const& points, error_list& errors) {
    xyz const n(feature.direction(axis));
    measure(points, feature.basis(0), errors, [=](xyz const& d) { return dot(d, n); });
}

// What the walk has no answer for: the centre, and an ellipse without width.
double deviation_of_any(double x, double y, double a, double b) {
    true_ellipse const axes(ellipse(a, b, 0.0));
    double const distance = length(axes.closest({x, y, 0}) - xyz(x, y, 0));
    bool const inside = a > 0 && b > 0 && sqr(x / a) + sqr(y / b) < 1;
    return inside ? -distance : distance;
}

}  // namespace

unsigned int calculate_errors(Point_Description const& feature, point_list const& points,
                              error_list& errors) {
    measure(points, feature.position, errors, length_in_space);
    return 1;
}

unsigned int calculate_errors(Segment_Description const& feature, point_list const& points,
                              error_list& errors) {
    measure_along(feature.geometry, 2, points, errors);
    return 2;
}

unsigned int calculate_errors(Circle_Description const& feature, point_list const& points,
                              error_list& errors) {
    measure_round(feature.geometry, points, errors);
    return 3;
}

unsigned int calculate_errors(Arc_Description const& feature, point_list const& points, error_list& errors) {
    measure_round(feature.circle, points, errors);
    return 3;
}

unsigned int calculate_errors(Plane_Description const& feature, point_list const& points,
                              error_list& errors) {
    measure_along(feature.geometry, 3, points, errors);
    return 3;
}

unsigned int calculate_errors(Gap_Description const& feature, point_list const& points, error_list& errors) {
    xyz const n(feature.geometry.direction(2));
    double const half = feature.geometry.size(2);
    measure(points, feature.geometry.basis(0), errors,
            [=](xyz const& d) { return std::fabs(dot(d, n)) - half; });
    return 3;
}

unsigned int calculate_errors(Sphere_Description const& feature, point_list const& points,
                              error_list& errors) {
    double const radius = feature.geometry.radius();
    measure(points, feature.geometry.basis(0), errors,
            [=](xyz const& d) { return length_in_space(d) - radius; });
    return 4;
}

unsigned int calculate_errors(Slot_Description const& feature, point_list const& points, error_list& errors) {
    unit_axes const axes = unit_axes_of(feature.geometry);
    xyz const u(axes.u), v(axes.v), half(feature.geometry.basis(1));
    double const a = feature.geometry.size(1), b = feature.geometry.size(2);
    measure(points, feature.geometry.basis(0), errors, [=](xyz const& d) {
        double const t = dot(d, u);
        if (-a > t) return length_in_xy(d + half) - b;
        if (t > a) return length_in_xy(d - half) - b;
        return std::fabs(dot(d, v)) - b;
    });
    return 4;
}

unsigned int calculate_errors(Ellipse_Description const& feature, point_list const& points,
                              error_list& errors) {
    point major = feature.geometry.basis(1), minor = feature.geometry.basis(2);
    orthogonalize_ellipse(major, minor);
    double const a = major.length3d(), b = minor.length3d();
    if (a == 0.0 && b == 0.0) {  // a point, seen from which no direction is special
        measure_round(feature.geometry, points, errors);
        return 5;
    }
    unit_axes const axes = unit_axes_of(make_transform(point(), major, minor, feature.geometry.basis(3)));
    xyz const u(axes.u), v(axes.v);
    walked_ellipse const outline(0, 0, a, b, 0);
    measure(points, feature.geometry.basis(0), errors, [=](xyz const& d) {
        double const x = dot(d, u), y = dot(d, v);
        double const deviation = -foot_at(outline, walk_to_foot(outline, x, y), x, y).depth;
        return std::isnan(deviation) ? deviation_of_any(x, y, a, b) : deviation;
    });
    return 5;
}

unsigned int calculate_errors(Rectangle_Description const& feature, point_list const& points,
                              error_list& errors) {
    unit_axes const axes = unit_axes_of(feature.geometry);
    xyz const u(axes.u), v(axes.v);
    double const a = feature.geometry.size(1), b = feature.geometry.size(2);
    measure(points, feature.geometry.basis(0), errors, [=](xyz const& d) {
        double const e1 = std::fabs(dot(d, u)) - a, e2 = std::fabs(dot(d, v)) - b;
        return e1 > 0.0 && e2 > 0.0 ? std::sqrt(e1 * e1 + e2 * e2) : smaller(e1, e2);
    });
    return 5;
}

unsigned int calculate_errors(Cylinder_Description const& feature, point_list const& points,
                              error_list& errors) {
    xyz const u(feature.geometry.direction(3));
    double const radius = feature.geometry.radius();
    measure(points, feature.geometry.basis(0), errors,
            [=](xyz const& d) { return distance_from_axis(d, u) - radius; });
    return 5;
}

unsigned int calculate_errors(Cone_Description const& feature, point_list const& points, error_list& errors) {
    cone const& c = feature.geometry;
    double const height = distance3d(c.top, c.base), growth = c.top_radius - c.base_radius;
    double const slant = std::hypot(height, growth), radius = c.base_radius;
    // Ends in one place leave no axis: then it is Z, and of equal ends a circle is left.
    xyz const axis(c.make_transform().basis(3));
    double const cosine = slant > 0 ? height / slant : 1, sine = slant > 0 ? growth / slant : 0;
    measure(points, c.base, errors, [=](xyz const& d) {
        return (distance_from_axis(d, axis) - radius) * cosine - dot(d, axis) * sine;
    });
    return 6;
}

unsigned int calculate_errors(ORing_Description const& feature, point_list const& points,
                              error_list& errors) {
    errors.clear();
    errors.reserve(points.size());
    for (point const& p : points) {
        point local = p;
        local.to_location();  // a measured point is a place, whatever its weight
        local /= feature.placement;
        errors.push_back(smaller(feature.inner.distance(local), feature.outer.distance(local)));
    }
    return feature.inner.capacity() + feature.outer.capacity();
}

unsigned int calculate_errors(Angle_Description const& feature, point_list const& points,
                              error_list& errors) {
    double const start = feature.start_angle, end = start + feature.included_angle;
    auto const normal = [&](double x, double y) { return xyz(normalize(point(false, x, y) * feature.arc)); };
    xyz const first = normal(-std::sin(start), std::cos(start));
    xyz const second = normal(std::sin(end), -std::cos(end));
    measure(points, feature.arc.basis(0), errors,
            [=](xyz const& d) { return smaller(dot(d, first), dot(d, second)); });
    return 4;
}

unsigned int calculate_errors(Geometry_Description const& feature, unsigned long long type,
                              point_list const& points, error_list& errors) {
    using measured_kinds =
        record_kinds<Point_Description, Segment_Description, Circle_Description, Arc_Description,
                     Ellipse_Description, ORing_Description, Rectangle_Description, Gap_Description,
                     Slot_Description, Plane_Description, Angle_Description, Sphere_Description,
                     Cylinder_Description, Cone_Description>;
    unsigned int parameters = 0;
    measured_kinds::with_class(type, [&]<class kind>(std::type_identity<kind>) {
        // By the class too: a record of another kind under this type has no such shape.
        if (auto const* const record = dynamic_cast<kind const*>(&feature))
            parameters = calculate_errors(*record, points, errors);
    });
    return parameters;
}

}  // namespace tvmath
