#include <algorithm>
#include <cmath>

#include "fit_kinds.h"
#include "fit_shared.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/feature_fit.h"
#include "tvmath/quick_fit.h"
#include "tvmath/ring_fit.h"
#include "tvmath/shape_fit.h"

inline namespace tvmath {
namespace {

constexpr unsigned line_conditions = option_center | option_through | option_parallel | option_perpendicular;
constexpr unsigned circle_conditions = option_center | option_through | option_tangent;

// Along the direction, as far as the points reach.
line line_along(point const& center, point const& direction, std::vector<point> const& points) {
    double low = 0, high = 0;
    for (point const& p : points) {
        double const t = dot2d(p - center, direction);
        low = std::min(low, t);
        high = std::max(high, t);
    }
    return line(center + direction * low, center + direction * high);
}

}  // namespace

bool fit_point(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 1;
    fitted.method = "centroid";
    auto record = std::make_shared<Point_Description>();
    record->position = point_fit(in.points);
    fitted.record = record;
    return !record->position.is_trivial();
}

bool fit_line(fit_input const& in, fitted_feature& fitted) {
    if (in.known.given & line_conditions) {
        // To the fitter a centre is the middle of points; beside a point to pass it is another such point.
        fit_conditions known = in.known;
        if (known.center && !known.through.empty()) {
            known.through.push_back(*known.center);
            known.center.reset();
        }
        return fit_constrained<geometry_fitter::line_fitter, Segment_Description>(
            {in.points, known, in.sizes}, fitted);
    }
    fitted.unknowns = 2;
    fitted.method = "least squares";
    if (!in.known.has(option_quick)) return keep<Segment_Description>(line_fit(list_of(in.points)), fitted);
    // Of a line the closed form is the least-squares answer itself.
    point center, direction;
    return line_quick_fit(in.points, center, direction) &&
           keep<Segment_Description>(line_along(center, direction, in.points), fitted);
}

bool fit_circle(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 3;
    fitted.method = "least squares";
    if (in.known.has(option_diameter)) {
        fitted.unknowns = 2;
        fitted.method = "two points as a diameter";
        if (in.points.size() != 2 || in.known.given & circle_conditions) {
            fitted.reason = "--diameter takes a file of exactly 2 points, and no other condition";
            return false;
        }
        return keep<Circle_Description>(circle_2pt_fit(list_of(in.points)), fitted);
    }
    if (in.known.has(option_quick)) {
        point center;
        double radius = 0;
        if (in.known.center) {
            fitted.reason = "--quick of a circle goes without --center";
            fitted.is_usage = true;
            return false;
        }
        fitted.method = "algebraic";
        return circle_quick_fit(in.points, center, radius) &&
               keep<Circle_Description>(circle(radius, center), fitted);
    }
    if (in.known.given & circle_conditions) {
        return fit_constrained<geometry_fitter::circle_fitter, Circle_Description>(in, fitted);
    }
    return keep<Circle_Description>(circle_fit(in.points), fitted);
}

bool fit_arc(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 3;
    fitted.method = "least squares";
    if (!in.known.has(option_quick) && in.known.given & circle_conditions) {
        return fit_constrained<geometry_fitter::arc_fitter, Arc_Description>(in, fitted);
    }
    auto record = std::make_shared<Arc_Description>();
    fitted.record = record;
    if (!in.known.has(option_quick)) {
        record->circle = arc_fit(list_of(in.points), record->included_angle);
        return !record->circle.is_trivial();
    }
    fitted.method = "algebraic";
    point center;
    double radius = 0, start = 0, end = 0;
    if (in.known.center) {
        fitted.reason = "--quick of an arc goes without --center";
        fitted.is_usage = true;
        return false;
    }
    if (!arc_quick_fit(list_of(in.points), center, radius, start, end)) return false;
    record->circle = circle(ellipse(radius, radius, (start + end) / 2, center));
    record->included_angle = end - start;
    return true;
}

bool fit_ellipse(fit_input const& in, fitted_feature& fitted) {
    bool const centered = in.known.center.has_value();
    fitted.unknowns = centered ? 3 : 5;
    fitted.method = "least squares";
    if (!in.known.has(option_quick)) {
        // A centre that is known by x and y only lies where the points do.
        point const center = centered ? in_dimension(*in.known.center, in.points) : point();
        return keep<Ellipse_Description>(
            centered ? ellipse_centered_fit(center, in.points) : ellipse_fit(in.points), fitted);
    }
    fitted.method = "algebraic";
    point center, major, minor;
    bool const found = centered
                           ? ellipse_quick_centered_fit(*in.known.center, in.points, center, major, minor)
                           : ellipse_quick_fit(in.points, center, major, minor);
    return found && keep<Ellipse_Description>(ellipse(make_transform(center, major, minor)), fitted);
}

bool fit_rectangle(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 5;
    fitted.method = "least squares";
    rectangle const start = in.known.nominal.empty()
                                ? rectangle()
                                : static_cast<Rectangle_Description const&>(*in.known.nominal[0]).geometry;
    return keep<Rectangle_Description>(rectangle_fit(list_of(in.points), start), fitted);
}

bool fit_slot(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 5;
    fitted.method = "least squares";
    return keep<Slot_Description>(slot_fit(list_of(in.points)), fitted);
}

bool fit_gap(fit_input const& in, fitted_feature& fitted) {
    fitted.unknowns = 3;
    fitted.method = "least squares";
    return keep<Gap_Description>(gap_fit(in.points), fitted);
}

bool fit_ring(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "least squares of the radii, a Fourier series";
    auto record = std::make_shared<ORing_Description>();
    fitted.record = record;
    record->outer = ring_fit(list_of(in.points), record->placement);
    if (record->outer.is_trivial()) return false;
    fitted.parameters = record->outer.capacity();
    fitted.unknowns = fitted.parameters;
    measure_ring(*record, in.points, fitted.residuals);
    return true;
}

bool fit_oring(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "least squares of the radii, two Fourier series";
    auto record = std::make_shared<ORing_Description>();
    fitted.record = record;
    record->placement = oring_fit(in.points, record->inner, record->outer);
    fitted.unknowns = static_cast<long>(record->inner.capacity()) + record->outer.capacity();
    return !record->placement.is_trivial();
}

}  // namespace tvmath
