#include <algorithm>
#include <cmath>

#include "fit_kinds.h"
#include "fit_shared.h"
#include "outline.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

// Distances from the path. In the plane they are signed: positive outside a closed path, and on the left of
// an open one. A path in space has no sides.
bool measure_path(fit_input const& in, curve const& polyline, bool closed, fitted_feature& fitted) {
    std::vector<point> nearest;
    if (!calc_nearest_points(*fitted.record, in.points, nearest)) return false;
    bool const flat = in.points.front().is_2d();
    std::vector<outline> const sides = {make_outline(polyline, closed, in.points.front())};
    outline_finder const finder(sides);
    for (std::size_t i = 0; i < in.points.size(); ++i) {
        point const& p = in.points[i];
        double residual = flat ? distance2d(p, nearest[i]) : distance3d(p, nearest[i]);
        if (flat && residual > 0) {
            spot const foot = {nearest[i].x() - in.points.front().x(),
                               nearest[i].y() - in.points.front().y()};
            spot const out = finder.nearest(foot).out;
            double const side = (p.x() - nearest[i].x()) * out.x + (p.y() - nearest[i].y()) * out.y;
            residual = std::copysign(residual, side);
        }
        fitted.residuals.push_back(residual);
    }
    return true;
}

// The points in the order of the path, which the fits ask for.
bool in_order(fit_input const& in, bool closed, std::vector<point>& points) {
    points = in.points;
    return !in.known.has(option_sort) || sort_spline_data(points, closed);
}

curve path_through(std::vector<point> const& points, bool closed, path_method method, std::string& name) {
    switch (method) {
        case path_method::least_squares:
            name = "least squares";
            return bezier_least_squares_fit(points, closed);
        case path_method::minimum_curvature:
            name = "interpolating, minimum curvature";
            return bezier_minimum_curvature_fit(points, closed);
        case path_method::interpolating:
            break;
    }
    name = "interpolating";
    return bezier_fit(points, closed);
}

template <class kind>
bool fit_spline(fit_input const& in, bool closed, fitted_feature& fitted) {
    std::vector<point> points;
    if (!in_order(in, closed, points)) return false;
    auto record = std::make_shared<kind>();
    fitted.record = record;
    record->path = path_through(points, closed, in.known.method, fitted.method);
    if (record->path.capacity() < 4 || !calculate_bezier_length(record->path, record->length)) return false;
    if constexpr (requires { record->area; }) {
        calculate_closed_bezier_moments(record->path, record->area, record->centroid);
    }
    return measure_path(in, render(record->path, closed, 16), closed, fitted);
}

bool fit_nurb(fit_input const& in, bool closed, fitted_feature& fitted) {
    std::vector<point> points;
    if (!in_order(in, closed, points)) return false;
    auto record = std::make_shared<Nurb_Description>();
    fitted.record = record;
    record->geometry = closed ? closed_nurb_fit(points) : open_nurb_fit(points);
    if (record->geometry.is_trivial()) return false;
    fitted.method = points.size() > 100 ? "least squares" : "interpolating";
    double area = 0, length = 0;
    if (closed) compute_moments(idioms::array<nurb>(1u, record->geometry), area, length, record->center);
    return measure_path(in, record->geometry.render(16, closed), closed, fitted);
}

}  // namespace

bool fit_open_spline(fit_input const& in, fitted_feature& fitted) {
    return fit_spline<OpenSpline_Description>(in, false, fitted);
}

bool fit_closed_spline(fit_input const& in, fitted_feature& fitted) {
    return fit_spline<ClosedSpline_Description>(in, true, fitted);
}

bool fit_open_nurb(fit_input const& in, fitted_feature& fitted) {
    return fit_nurb(in, false, fitted);
}

bool fit_closed_nurb(fit_input const& in, fitted_feature& fitted) {
    return fit_nurb(in, true, fitted);
}

}  // namespace tvmath
