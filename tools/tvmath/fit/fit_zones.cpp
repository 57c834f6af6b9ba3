#include "fit_kinds.h"
#include "fit_shared.h"
#include "tvmath/zone_circle.h"
#include "tvmath/zone_fit.h"

inline namespace tvmath {

// A zone is an extreme and no estimate: it has no degrees of freedom.

bool fit_zone_circle(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "the ring of least width that holds all points";
    fitted.boundaries = {"outer", "inner"};
    if (!keep<Circle_Description>(minimum_zone_circle(in.points), fitted)) return false;
    if (in.points.front().is_2d()) project(*fitted.record);
    return true;
}

bool fit_inscribed_circle(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "the largest circle without a point inside, its centre amid its contacts";
    fitted.boundaries.low = "inner";
    return keep<Circle_Description>(maximum_inscribed_circle(in.points), fitted);
}

bool fit_circumscribed_circle(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "the smallest circle that holds all points";
    fitted.boundaries.high = "outer";
    return keep<Circle_Description>(minimum_circumscribed_circle(in.points), fitted);
}

bool fit_zone_line(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "the strip of least width that holds all points";
    fitted.boundaries = {"left", "right"};
    double width = 0;
    line const middle = line_zone_fit(in.points, width);
    fitted.zone_width = width;
    return keep<Segment_Description>(middle, fitted);
}

bool fit_zone_plane(fit_input const& in, fitted_feature& fitted) {
    fitted.boundaries = {"upper", "lower"};
    auto record = std::make_shared<Plane_Description>();
    fitted.record = record;
    double width = 0;
    std::vector<double> const& v = in.known.parallel;
    if (v.empty()) {
        fitted.method = "the slab of least width that holds all points";
        record->geometry = plane_zone_fit(list_of(in.points), width);
    } else {
        fitted.method = "the slab of known direction that holds all points";
        plane const directed(in.points.front(), point(false, v[0], v[1], v[2]));
        record->geometry = plane_parallel_zone_fit(directed, list_of(in.points), width);
    }
    fitted.zone_width = width;
    return !record->geometry.is_trivial();
}

bool fit_seating_plane(fit_input const& in, fitted_feature& fitted) {
    bool const is_below = !in.known.has(option_flip);
    fitted.method = is_below ? "the plane on which the points rest" : "the plane that rests on the points";
    auto record = std::make_shared<Plane_Description>();
    fitted.record = record;
    idioms::array<point> corners;
    record->geometry = seating_plane_fit(list_of(in.points), is_below, corners);
    // The sense of the normal is that of the least-squares plane, whatever side the points are on.
    bool const points_are_positive = is_below == (record->geometry.normal().z() > 0);
    (points_are_positive ? fitted.boundaries.low : fitted.boundaries.high) = "seat";
    return !record->geometry.is_trivial();
}

bool fit_circumscribed_sphere(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "the smallest sphere that holds all points";
    fitted.boundaries.high = "outer";
    return keep<Sphere_Description>(minimum_circumscribed_sphere(in.points), fitted);
}

}  // namespace tvmath
