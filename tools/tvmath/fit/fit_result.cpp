#include "fit_result.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "fit_shared.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/residuals.h"

inline namespace tvmath {
namespace {

// In units of the largest residual, so that no square overflows, nor underflows where it matters.
double rms_of(std::vector<double> const& residuals, double largest) {
    if (largest == 0.0) return 0;
    double sum = 0;
    for (double const r : residuals) sum += (r / largest) * (r / largest);
    return largest * std::sqrt(sum / static_cast<double>(residuals.size()));
}

bool is_finite(std::vector<figure> const& figures) {
    return std::all_of(figures.begin(), figures.end(), [](figure const& f) {
        return std::all_of(f.values.begin(), f.values.end(), [](double v) { return std::isfinite(v); });
    });
}

// Beyond these sizes sums of fourth powers leave the range of numbers.
bool is_of_common_size(std::vector<point> const& points) {
    double largest = 0;
    for (point const& p : points)
        largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y()), p.is_3d() ? std::fabs(p.z()) : 0.0});
    return largest == 0.0 || (largest > 1e-60 && largest < 1e60);
}

std::string points_text(std::size_t n) {
    return std::to_string(n) + (n == 1 ? " point" : " points");
}

std::string failure(fit_kind const& kind, std::vector<point> const& points, fit_conditions const& known,
                    fitted_feature const& fitted) {
    if (!fitted.reason.empty()) return fitted.reason;
    unsigned const loosening = option_center | option_through | option_tangent | option_parallel |
                               option_perpendicular | option_diameter;
    std::size_t const least =
        known.has(loosening) ? static_cast<std::size_t>(std::max(fitted.unknowns, 1L)) : kind.least_points;
    if (points.size() < least) {
        return kind.named() + " needs at least " + points_text(least) + ", not " +
               std::to_string(points.size());
    }
    std::string const start = std::string("no ") + kind.name + " is determined: ";
    if (!is_of_common_size(points))
        return start + "the coordinates are too large or too small to calculate with";
    if (known.has(loosening)) return start + "the conditions and the points do not go together";
    return start + kind.when_singular;
}

std::optional<nominal_comparison> compare(std::vector<point> const& points, fit_kind const& kind,
                                          fit_conditions const& known, std::vector<figure> const& fitted) {
    if (known.nominal.empty() || kind.takes_all_files) return std::nullopt;
    Geometry_Description const& nominal = *known.nominal.front();
    nominal_comparison comparison;
    for (std::string const& words : known.words) {
        if (words.starts_with("nominal ")) comparison.words = words.substr(8);
    }
    comparison.deviations = deviations(fitted, figures_of(nominal));
    std::vector<double> errors;
    std::vector<point> nearest;
    auto const* const oring = dynamic_cast<ORing_Description const*>(&nominal);
    if (oring && oring->inner.is_trivial()) {
        measure_ring(*oring, points, errors);
    } else if (calculate_errors(nominal, nominal.type(), points, errors) == 0 &&
               calc_nearest_points(nominal, points, nearest)) {
        for (std::size_t i = 0; i < points.size(); ++i)
            errors.push_back(points[i].is_3d() ? distance3d(points[i], nearest[i])
                                               : distance2d(points[i], nearest[i]));
    }
    double const profile = get_profile_error(errors);
    if (!errors.empty() && std::isfinite(profile)) comparison.profile_error = profile;
    return comparison;
}

extreme_point extreme_at(std::vector<point> const& points, std::vector<double> const& residuals,
                         std::vector<double>::const_iterator found) {
    auto const index = static_cast<std::size_t>(found - residuals.begin());
    return {index, points[index], residuals[index]};
}

constexpr double few_roundings = 8 * std::numeric_limits<double>::epsilon();

// Of distances from the feature: the centre of a short arc is far from its points.
double rounding_of(std::vector<figure> const& figures) {
    double largest = 0;
    for (figure const& f : figures) {
        if (f.kind != figure_kind::length && f.kind != figure_kind::location) continue;
        for (double const v : f.values) largest = std::max(largest, std::fabs(v));
    }
    return few_roundings * largest;
}

// The points of each boundary, to rounding. Where the boundaries are one, each point touches both.
std::vector<contact_point> contacts_of(fitted_feature const& fitted, std::vector<point> const& points,
                                       std::vector<figure> const& figures, double highest, double lowest) {
    std::vector<contact_point> contacts;
    double const rounding = std::max(rounding_of(points), rounding_of(figures));
    auto const add = [&](std::string const& side, double boundary) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            double const r = fitted.residuals[i];
            if (std::fabs(r - boundary) <= rounding) contacts.push_back({side, {i, points[i], r}});
        }
    };
    boundary_names const& names = fitted.boundaries;
    if (names.high && names.low && highest - lowest <= rounding) {
        add("both", (highest + lowest) / 2);
    } else {
        if (names.high) add(names.high, highest);
        if (names.low) add(names.low, lowest);
    }
    return contacts;
}

}  // namespace

double rounding_of(std::vector<point> const& points) {
    double largest = 0;
    for (point const& p : points)
        largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y()), p.is_3d() ? std::fabs(p.z()) : 0.0});
    return few_roundings * largest;
}

bool fit_result::forgets_z() const {
    if (dimension != 3 || kind->in_space) return false;
    static constexpr unsigned long long in_space =
        Point_Description::type_value | OpenSpline_Description::type_value |
        ClosedSpline_Description::type_value | Nurb_Description::type_value |
        Transform_Description::type_value | Composite_Description::type_value;
    return (kind->record & in_space) == 0;
}

bool fit_feature(fit_kind const& kind, std::vector<point> const& points,
                 std::vector<std::size_t> const& sizes, fit_conditions const& known, fit_result& result,
                 std::string& reason, bool& is_usage) {
    is_usage = false;
    if (kind.in_space && points.front().is_2d()) {
        reason = kind.named() + " needs points with x, y and z; these have x and y";
        return false;
    }
    fitted_feature fitted;
    bool const found = kind.fit({points, known, sizes}, fitted);
    if (!found) {
        reason = failure(kind, points, known, fitted);
        is_usage = fitted.is_usage;
        return false;
    }
    fit_result fresh;
    if (fitted.residuals.empty()) {
        fitted.parameters = calculate_errors(*fitted.record, kind.record, points, fitted.residuals);
    }
    std::vector<double>& residuals = fitted.residuals;
    auto const [least, most] = std::minmax_element(residuals.begin(), residuals.end());
    fresh.figures = figures_of(*fitted.record);
    // Of a ring both circles have a name on drawings.
    if (kind.fit == fit_zone_circle) {
        double const radius = static_cast<Circle_Description const&>(*fitted.record).geometry.radius();
        fresh.figures.push_back({"outer radius", figure_kind::length, {radius + *most}});
        fresh.figures.push_back({"inner radius", figure_kind::length, {radius + *least}});
    }
    if (!is_finite(fresh.figures) ||
        !std::all_of(residuals.begin(), residuals.end(), [](double r) { return std::isfinite(r); })) {
        reason = std::string("no ") + kind.name +
                 " is determined: the coordinates are too large or too small to calculate with";
        return false;
    }
    fresh.kind = &kind;
    fresh.method = fitted.method;
    fresh.conditions = known.words;
    fresh.dimension = points.front().dimension();
    fresh.count = points.size();
    fresh.feature = fitted.record;
    fresh.parameters = fitted.parameters;
    fresh.form_error = fitted.zone_width.value_or(get_form(residuals));
    fresh.profile_error = get_profile_error(residuals);
    fresh.rms = rms_of(residuals, fresh.profile_error / 2);
    if (fitted.unknowns >= 0) {
        long const equations = static_cast<long>(points.size()) * fitted.equations;
        fresh.degrees_of_freedom = equations - fitted.unknowns;
        // With the unknowns that the points decided: conditions leave fewer than the feature has parameters.
        if (*fresh.degrees_of_freedom > 0)
            fresh.standard_deviation = fresh.rms * std::sqrt(static_cast<double>(points.size()) /
                                                             static_cast<double>(*fresh.degrees_of_freedom));
    }
    fresh.highest = extreme_at(points, residuals, most);
    fresh.lowest = extreme_at(points, residuals, least);
    fresh.contacts = contacts_of(fitted, points, fresh.figures, *most, *least);
    fresh.has_standard_names = kind.form.symbol && (fitted.method == "least squares" || fresh.is_zone()) &&
                               !known.has(~(option_nominal));
    fresh.tolerance = known.tolerance;
    fresh.nominal = compare(points, kind, known, fresh.figures);
    fresh.residuals = std::move(residuals);
    fresh.parts = fitted.parts;
    fresh.part_sizes = sizes;
    fresh.points = points;
    fresh.targets = known.onto;
    result = std::move(fresh);
    return true;
}

}  // namespace tvmath
