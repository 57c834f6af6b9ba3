#include "applicable_fits.h"

#include <tvmath/tvmath.h>

#include <algorithm>
#include <cmath>

namespace {

using points = std::vector<point>;

std::vector<double> coordinates(point const& p) {
    return p.is_3d() ? std::vector<double>{p.x(), p.y(), p.z()} : std::vector<double>{p.x(), p.y()};
}

idioms::array<point> as_array(points const& list) {
    return {static_cast<unsigned int>(list.size()), list.data()};
}

// The constrained fitters take points in space.
points in_space(points list) {
    for (point& p : list) p.promote3d();
    return list;
}

// Sum of squares and form error of a feature that was found.
figures with_residuals(figures found, Geometry_Description const& feature, points const& list) {
    std::vector<double> errors;
    calculate_errors(feature, feature.type(), list, errors);
    if (feature.type() == Ellipse_Description::type_value) {
        // To the last digit, not by the quick foot of the residuals.
        points feet;
        calc_nearest_points(feature, list, feet);
        for (std::size_t i = 0; i < list.size(); ++i) {
            errors[i] = std::copysign(distance2d(list[i], feet[i]), errors[i]);
        }
    }
    double sum = 0;
    for (double const e : errors) sum += e * e;
    found["sum_sq"] = {sum};
    found["res_pv"] = {get_form(errors)};
    return found;
}

// The place where a line or an axis passes the centroid.
point beside_centroid(point const& on_axis, point const& direction, points const& list) {
    point const d = normalize(direction);
    return on_axis + dot(point_fit(list) - on_axis, d) * d;
}

answer describe(Circle_Description const& found, points const& list) {
    if (found.geometry.is_trivial()) return {};
    point center = found.geometry.center();
    center.project2d();
    return with_residuals({{"center", coordinates(center)}, {"radius", {found.geometry.radius()}}}, found,
                          list);
}

answer describe(Sphere_Description const& found, points const& list) {
    if (found.geometry.is_trivial()) return {};
    return with_residuals(
        {{"center", coordinates(found.geometry.center())}, {"radius", {found.geometry.radius()}}}, found,
        list);
}

answer describe(Segment_Description const& found, points const& list) {
    if (found.geometry.is_trivial()) return {};
    point at = found.geometry.basis(0), direction = found.geometry.direction();
    at.project2d();
    direction.project2d();
    return with_residuals(
        {{"point", coordinates(beside_centroid(at, direction, list))}, {"direction", coordinates(direction)}},
        found, list);
}

answer describe(Plane_Description const& found, points const& list) {
    if (found.geometry.is_trivial()) return {};
    point const n = found.geometry.normal(), c = point_fit(list);
    return with_residuals(
        {{"point", coordinates(c + dot(found.geometry.basis(0) - c, n) * n)}, {"normal", coordinates(n)}},
        found, list);
}

answer describe(Ellipse_Description const& found, points const& list) {
    if (found.geometry.is_trivial()) return {};
    point center = found.geometry.basis(0);
    center.project2d();
    double const a = found.geometry.size(1), b = found.geometry.size(2);
    return with_residuals({{"center", coordinates(center)},
                           {"semi_major", {std::max(a, b)}},
                           {"semi_minor", {std::min(a, b)}},
                           {"angle", {found.geometry.basis(a > b ? 1 : 2).angle2d()}}},
                          found, list);
}

answer describe(Cylinder_Description const& found, points const& list) {
    cylinder const& c = found.geometry;
    if (c.is_trivial()) return {};
    return with_residuals({{"axis_point", coordinates(beside_centroid(c.basis(0), c.basis(3), list))},
                           {"axis", coordinates(normalize(c.basis(3)))},
                           {"radius", {c.radius()}}},
                          found, list);
}

answer describe(Cone_Description const& found, points const& list) {
    cone const& c = found.geometry;
    if (c.is_trivial()) return {};
    point const at = beside_centroid(c.base, c.axis, list);
    return with_residuals({{"apex", coordinates(c.vertex())},
                           {"axis", coordinates(c.axis)},
                           {"half_angle", {std::fabs(c.angle())}},
                           {"axis_point", coordinates(at)},
                           {"radius_at_axis_point", {c.base_radius + c.slope() * dot(at - c.base, c.axis)}}},
                          found, list);
}

// What the constrained fitter makes of points alone.
template <class fitter, class description>
answer by_fitter(reference_set const& set) {
    fitter f;
    f.add(geometry_fitter::fit(in_space(set.points)));
    description found;
    if (!f.result(found)) return {};
    return describe(found, set.points);
}

template <class description, class shape>
answer one_call(shape const& fitted, points const& list) {
    description found;
    found.geometry = fitted;
    return describe(found, list);
}

// A part of the reference answer.
point given(reference_set const& set, char const* name, bool location) {
    std::vector<double> const& c = set.answer.at(name);
    return c.size() == 3 ? point(location, c[0], c[1], c[2]) : point(location, c[0], c[1]);
}

template <class description, auto fit>
answer of_points(reference_set const& set) {
    return one_call<description>(fit(set.points), set.points);
}

template <class description, auto fit>
answer of_array(reference_set const& set) {
    return one_call<description>(fit(as_array(set.points)), set.points);
}

// Closed forms of circle and sphere.
template <bool (*fit)(points const&, point&, double&)>
answer closed_form(reference_set const& set) {
    point center;
    double radius = 0;
    if (!fit(set.points, center, radius)) return {};
    return figures{{"center", coordinates(center)}, {"radius", {radius}}};
}

using namespace geometry_fitter;

}  // namespace

std::vector<named_fit> const& applicable_fits() {
    static std::vector<named_fit> const fits = {
        {"circle_quick_fit", "circle", promise::algebraic, closed_form<circle_quick_fit>},
        {"circle_fit", "circle", promise::least_squares,
         of_points<Circle_Description, [](points const& p) { return circle_fit(p); }>},
        {"circle_fitter", "circle", promise::least_squares, by_fitter<circle_fitter, Circle_Description>},
        {"circle_centered_fit", "circle", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Circle_Description>(circle_centered_fit(given(s, "center", true), s.points),
                                                 s.points);
         }},
        {"sphere_quick_fit", "sphere", promise::algebraic, closed_form<sphere_quick_fit>},
        {"sphere_fit", "sphere", promise::least_squares, of_points<Sphere_Description, sphere_fit>},
        {"sphere_fitter", "sphere", promise::least_squares, by_fitter<sphere_fitter, Sphere_Description>},
        {"sphere_centered_fit", "sphere", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Sphere_Description>(sphere_centered_fit(given(s, "center", true), s.points),
                                                 s.points);
         }},
        {"line_quick_fit", "line", promise::least_squares,
         [](reference_set const& s) -> answer {
             point center, direction;
             if (!line_quick_fit(s.points, center, direction)) return {};
             return figures{{"point", coordinates(center)}, {"direction", coordinates(direction)}};
         }},
        {"line_fit", "line", promise::least_squares, of_array<Segment_Description, line_fit>},
        {"line_fitter", "line", promise::least_squares, by_fitter<line_fitter, Segment_Description>},
        {"plane_fit", "plane", promise::least_squares, of_array<Plane_Description, plane_fit>},
        {"plane_centered_fit", "plane", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Plane_Description>(
                 plane_centered_fit(given(s, "point", true), as_array(s.points)), s.points);
         }},
        {"plane_parallel_fit", "plane", promise::least_squares,
         [](reference_set const& s) {
             plane const nominal(point(true, 0, 0, 0), given(s, "normal", false));
             return one_call<Plane_Description>(plane_parallel_fit(nominal, as_array(s.points)), s.points);
         }},
        {"ellipse_fit", "ellipse", promise::least_squares,
         of_points<Ellipse_Description, [](points const& p) { return ellipse_fit(p); }>},
        {"ellipse_fitter", "ellipse", promise::nearly_least_squares,
         by_fitter<ellipse_fitter, Ellipse_Description>},
        {"ellipse_centered_fit", "ellipse", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Ellipse_Description>(ellipse_centered_fit(given(s, "center", true), s.points),
                                                  s.points);
         }},
        {"cylinder_fit", "cylinder", promise::least_squares, of_array<Cylinder_Description, cylinder_fit>},
        {"cylinder_parallel_fit", "cylinder", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Cylinder_Description>(cylinder_parallel_fit(given(s, "axis", false), s.points),
                                                   s.points);
         }},
        {"cylinder_parallel_centered_fit", "cylinder", promise::least_squares,
         [](reference_set const& s) {
             cylinder const found = cylinder_parallel_centered_fit(given(s, "axis_point", true),
                                                                   given(s, "axis", false), s.points);
             return one_call<Cylinder_Description>(found, s.points);
         }},
        {"cone_fit", "cone", promise::least_squares,
         of_points<Cone_Description, [](points const& p) { return cone_fit(p, cone()); }>},
        {"cone_centered_fit", "cone", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Cone_Description>(
                 cone_centered_fit(given(s, "axis_point", true), s.points, cone()), s.points);
         }},
        {"cone_parallel_fit", "cone", promise::least_squares,
         [](reference_set const& s) {
             return one_call<Cone_Description>(cone_parallel_fit(given(s, "axis", false), s.points),
                                               s.points);
         }},
        {"cone_parallel_centered_fit", "cone", promise::least_squares,
         [](reference_set const& s) {
             cone const found =
                 cone_parallel_centered_fit(given(s, "axis_point", true), given(s, "axis", false), s.points);
             return one_call<Cone_Description>(found, s.points);
         }},
    };
    return fits;
}
