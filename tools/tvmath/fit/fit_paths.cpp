#include <algorithm>
#include <cmath>

#include "fit_kinds.h"
#include "fit_shared.h"
#include "plot/outline.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

constexpr unsigned int steps = 16;  // of the polyline that stands for a segment

// The segments beside the one that `edge` of the polyline belongs to.
curve neighbourhood(curve const& path, std::size_t edge) {
    auto const segments = (path.capacity() - 1) / 3, at = static_cast<unsigned int>(edge) / steps;
    unsigned int const first = at > 0 ? at - 1 : 0, last = std::min(at + 2, segments);
    return curve(idioms::array<point>(3 * (last - first) + 1, path.begin() + 3 * first));
}

// Distances from a Bezier path. In the plane they are signed: positive outside a closed path, and on the left
// of an open one. A path in space has no sides.
bool measure_path(fit_input const& in, curve const& path, bool closed, fitted_feature& fitted) {
    OpenSpline_Description whole;
    whole.path = path;
    std::vector<point> nearest;
    if (in.points.front().is_3d()) {
        if (!calc_nearest_points(whole, in.points, nearest)) return false;
        for (std::size_t i = 0; i < in.points.size(); ++i)
            fitted.residuals.push_back(distance3d(in.points[i], nearest[i]));
        return true;
    }
    point const origin = in.points.front();
    auto const local = [&origin](point const& p) { return spot{p.x() - origin.x(), p.y() - origin.y()}; };
    outline line;
    for (point const& p : render(path, false, steps)) line.at.push_back(local(p));
    line.out.resize(line.at.size());
    std::vector<outline> const lines = {line};
    outline_finder const finder(lines);
    double area = 0;
    point centroid;
    bool const to_the_right = closed && calculate_closed_bezier_moments(path, area, centroid) && area > 0;
    for (point const& p : in.points) {
        // The polyline tells which segments come near; so the time does not grow with all pairs.
        std::size_t const edge = finder.nearest(local(p)).edge;
        whole.path = neighbourhood(path, edge);
        if (!calc_nearest_points(whole, {p}, nearest)) return false;
        spot const away = {p.x() - nearest[0].x(), p.y() - nearest[0].y()},
                   along = line.at[std::min(edge + 1, line.at.size() - 1)] - line.at[edge];
        double const side = along.x * away.y - along.y * away.x;
        fitted.residuals.push_back(std::copysign(distance2d(p, nearest[0]), to_the_right ? -side : side));
    }
    return true;
}

// An interpolating path has the points themselves for joints, so that nothing is left to be measured.
bool fit_residuals(fit_input const& in, curve const& path, bool closed, bool interpolates,
                   fitted_feature& fitted) {
    if (!interpolates) return measure_path(in, path, closed, fitted);
    fitted.residuals.assign(in.points.size(), 0.0);
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
    return fit_residuals(in, record->path, closed, in.known.method != path_method::least_squares, fitted);
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
    return fit_residuals(in, record->geometry.render_bezier(), closed, points.size() <= 100, fitted);
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
