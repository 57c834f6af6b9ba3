#include "fit_command.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "point_file.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

// Signed distance of p from the feature, in the space that the feature lives in.
double residual(fit_result const& fit, point const& p) {
    double const dx = p.x() - fit.center.x(), dy = p.y() - fit.center.y();
    if (fit.feature == "line") return fit.direction.x() * dy - fit.direction.y() * dx;
    bool const in_space = p.is_3d() && fit.center.is_3d() && fit.feature != "circle";
    double const distance = in_space ? std::hypot(dx, dy, p.z() - fit.center.z()) : std::hypot(dx, dy);
    return distance - fit.radius;  // a point has radius 0
}

// In units of the largest residual, so that no square overflows, nor underflows where it matters.
double rms_residual(fit_result const& fit, std::vector<point> const& points) {
    double largest = 0, sum = 0;
    for (point const& p : points) {
        double const r = std::fabs(residual(fit, p));
        if (!std::isfinite(r)) return r;  // max() would pass over a NaN
        largest = std::max(largest, r);
    }
    if (largest == 0.0) return 0;
    for (point const& p : points) {
        double const r = residual(fit, p) / largest;
        sum += r * r;
    }
    return largest * std::sqrt(sum / static_cast<double>(points.size()));
}

bool is_finite(point const& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && (!p.is_3d() || std::isfinite(p.z()));
}

bool is_finite(fit_result const& fit) {
    return is_finite(fit.center) && (fit.direction.is_trivial() || is_finite(fit.direction)) &&
           std::isfinite(fit.radius) && std::isfinite(fit.rms_residual);
}

struct feature_rule {
    char const* name;
    std::size_t least_points;
    char const* when_singular;
    bool (*fit)(std::vector<point> const&, fit_result&);
};

feature_rule const feature_rules[] = {
    {"point", 1, "the points have no centroid",
     [](std::vector<point> const& points, fit_result& fit) {
         fit.center = point_fit(points);
         return !fit.center.is_trivial();
     }},
    {"line", 2, "the points scatter equally in every direction, or are all equal",
     [](std::vector<point> const& points, fit_result& fit) {
         // Equal points give the zero direction, which is no line for anybody who asked for one.
         return line_quick_fit(points, fit.center, fit.direction) &&
                !(fit.direction.x() == 0.0 && fit.direction.y() == 0.0);
     }},
    {"circle", 3, "the points lie on one line, or are fewer than 3 different ones",
     [](std::vector<point> const& points, fit_result& fit) {
         return circle_quick_fit(points, fit.center, fit.radius);
     }},
    {"sphere", 4, "the points lie in one plane, or are fewer than 4 different ones",
     [](std::vector<point> const& points, fit_result& fit) {
         return sphere_quick_fit(points, fit.center, fit.radius);
     }},
};

}  // namespace

bool fit_feature(std::string const& feature, std::vector<point> const& points, fit_result& result,
                 std::string& reason) {
    auto const rule = std::find_if(std::begin(feature_rules), std::end(feature_rules),
                                   [&feature](feature_rule const& r) { return r.name == feature; });
    if (rule == std::end(feature_rules)) {
        reason = "unknown feature " + feature;
        return false;
    }
    if (points.size() < rule->least_points) {
        reason = "a " + feature + " needs at least " + std::to_string(rule->least_points) + " points, not " +
                 std::to_string(points.size());
        return false;
    }
    fit_result fit;
    fit.feature = feature;
    fit.points = points.size();
    fit.dimension = points.front().dimension();
    if (feature == "sphere" && fit.dimension == 2) {
        reason = "a sphere needs points with x, y and z; these have x and y";
        return false;
    }
    if (!rule->fit(points, fit)) {
        reason = "no " + feature + " is determined: " + rule->when_singular;
        return false;
    }
    fit.rms_residual = rms_residual(fit, points);
    if (!is_finite(fit)) {
        reason =
            "no " + feature + " is determined: the coordinates are too large or too small to calculate with";
        return false;
    }
    result = fit;
    return true;
}

exit_status run_fit(fit_request const& request, std::ostream& out, std::ostream& err) {
    exit_status status = exit_status::done;
    std::vector<fit_result> results;
    for (std::string const& file : request.files) {
        std::vector<point> points;
        read_error error;
        if (!read_point_file(file, request.decimal_comma, points, error)) {
            err << error_text(file, error) << '\n';
            status = worse(status, exit_status::unreadable_input);
            continue;
        }
        fit_result result;
        error.line = 0;
        if (!fit_feature(request.feature, points, result, error.reason)) {
            err << error_text(file, error) << '\n';
            status = worse(status, exit_status::no_answer);
            continue;
        }
        result.file = file;
        if (!request.json) {
            if (!results.empty()) out << '\n';
            write_text(out, result);
        }
        results.push_back(result);
    }
    // Without any result there is nothing to say, so a caller may test for output.
    if (request.json && !results.empty()) write_json(out, results);
    return status;
}

}  // namespace tvmath
