#include "fit_kinds.h"
#include "fit_shared.h"
#include "tvmath/cone_fit.h"
#include "tvmath/cylinder_fit.h"
#include "tvmath/feature_fit.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

// A centre and a direction, each known or not.
enum class known_axis { nothing, center, direction, both };

known_axis axis_of(fit_conditions const& known) {
    bool const directed = !known.parallel.empty();
    if (known.center) return directed ? known_axis::both : known_axis::center;
    return directed ? known_axis::direction : known_axis::nothing;
}

point direction_of(fit_conditions const& known) {
    std::vector<double> const& v = known.parallel;
    return v.empty() ? point() : point(false, v[0], v[1], v[2]);
}

bool refuse(char const* reason, fitted_feature& fitted) {
    fitted.reason = reason;
    fitted.is_usage = true;
    return false;
}

}  // namespace

bool fit_plane(fit_input const& in, fitted_feature& fitted) {
    auto record = std::make_shared<Plane_Description>();
    fitted.record = record;
    fitted.method = "least squares";
    idioms::array<point> const points = list_of(in.points);
    switch (axis_of(in.known)) {
        case known_axis::nothing:
            fitted.unknowns = 3;
            record->geometry = plane_fit(points);
            break;
        case known_axis::center:
            fitted.unknowns = 2;
            record->geometry = plane_centered_fit(*in.known.center, points);
            break;
        case known_axis::direction:
            fitted.unknowns = 1;
            record->geometry = plane_parallel_fit(plane(in.points.front(), direction_of(in.known)), points);
            break;
        case known_axis::both:
            return refuse("a plane with --center and --parallel leaves nothing for the points to decide",
                          fitted);
    }
    return !record->geometry.is_trivial();
}

bool fit_sphere(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 4;
    fitted.method = "least squares";
    if (in.known.has(option_quick)) {
        if (in.known.center) return refuse("--quick of a sphere goes without --center", fitted);
        fitted.method = "algebraic";
        auto record = std::make_shared<Sphere_Description>();
        fitted.record = record;
        point center;
        double radius = 0;
        bool const found = sphere_quick_fit(in.points, center, radius);
        if (found) record->geometry = sphere(radius, center);
        return found;
    }
    if (in.known.given & (option_center | option_through | option_tangent)) {
        if (!in.known.tangent.empty() && !in.known.center)
            return refuse("a sphere takes --tangent about a given --center only", fitted);
        return fit_constrained<geometry_fitter::sphere_fitter, Sphere_Description>(in, fitted);
    }
    auto record = std::make_shared<Sphere_Description>();
    fitted.record = record;
    record->geometry = sphere_fit(in.points);
    return !record->geometry.is_trivial();
}

bool fit_cylinder(fit_input const& in, fitted_feature& fitted) {
    auto record = std::make_shared<Cylinder_Description>();
    fitted.record = record;
    fitted.method = "least squares";
    point const axis = direction_of(in.known);
    switch (axis_of(in.known)) {
        case known_axis::nothing:
            fitted.unknowns = 5;
            record->geometry = cylinder_fit(list_of(in.points));
            break;
        case known_axis::center:
            return refuse("a cylinder takes --center together with --parallel only", fitted);
        case known_axis::direction:
            fitted.unknowns = 3;
            record->geometry = cylinder_parallel_fit(axis, in.points);
            break;
        case known_axis::both:
            fitted.unknowns = 1;
            record->geometry = cylinder_parallel_centered_fit(*in.known.center, axis, in.points);
            break;
    }
    return !record->geometry.is_trivial();
}

bool fit_cone(fit_input const& in, fitted_feature& fitted) {
    auto record = std::make_shared<Cone_Description>();
    fitted.record = record;
    fitted.method = "least squares";
    cone const start = in.known.nominal.empty()
                           ? cone()
                           : static_cast<Cone_Description const&>(*in.known.nominal[0]).geometry;
    point const axis = direction_of(in.known);
    switch (axis_of(in.known)) {
        case known_axis::nothing:
            fitted.unknowns = 6;
            record->geometry = cone_fit(in.points, start);
            break;
        case known_axis::center:
            fitted.unknowns = 4;
            record->geometry = cone_centered_fit(*in.known.center, in.points, start);
            break;
        case known_axis::direction:
            fitted.unknowns = 4;
            record->geometry = cone_parallel_fit(axis, in.points);
            break;
        case known_axis::both:
            fitted.unknowns = 2;
            record->geometry = cone_parallel_centered_fit(*in.known.center, axis, in.points);
            break;
    }
    return !record->geometry.is_trivial();
}

}  // namespace tvmath
