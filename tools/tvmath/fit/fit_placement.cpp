#include <algorithm>

#include "fit_kinds.h"
#include "fit_shared.h"
#include "tvmath/composite_fit.h"
#include "tvmath/residuals.h"
#include "tvmath/transform.h"

inline namespace tvmath {

bool fit_transform(fit_input const& in, fitted_feature& fitted) {
    std::vector<point> const &from = in.points, &to = in.known.onto;
    bool const in_space = from.front().is_3d() && to.front().is_3d();
    fitted.method = in_space ? "least squares, affine in space" : "least squares, affine in XY";
    fitted.equations = in_space ? 3 : 2;
    fitted.unknowns = in_space ? 12 : 6;
    fitted.parameters = in_space ? 12 : 6;
    if (from.size() != to.size()) {
        fitted.reason = std::to_string(from.size()) + " points, but " + std::to_string(to.size()) +
                        " of --onto; the points of both are taken in pairs";
        return false;
    }
    auto record = std::make_shared<Transform_Description>();
    fitted.record = record;
    idioms::array<double> const alike;
    record->geometry = in_space ? transform::fit3d(list_of(from), list_of(to), alike)
                                : transform::fit2d(list_of(from), list_of(to), alike);
    if (record->geometry.is_trivial()) return false;
    for (std::size_t i = 0; i < from.size(); ++i) {
        point const led = from[i] * record->geometry;
        fitted.residuals.push_back(in_space ? distance3d(led, to[i]) : distance2d(led, to[i]));
    }
    return true;
}

bool fit_whole_composite(fit_input const& in, fitted_feature& fitted) {
    fitted.method = "least squares";
    std::vector<ctl::ref<Geometry_Description>> features;
    std::vector<std::vector<point>> lists;
    std::size_t first = 0;
    for (std::size_t const size : in.sizes) {
        auto const from = in.points.begin() + static_cast<std::ptrdiff_t>(first);
        lists.emplace_back(from, from + static_cast<std::ptrdiff_t>(size));
        first += size;
    }
    if (in.known.nominal.size() != lists.size()) {
        fitted.reason = "a composite takes one --nominal for each FILE, in the same order; these are " +
                        std::to_string(in.known.nominal.size()) + " for " + std::to_string(lists.size());
        fitted.is_usage = true;
        return false;
    }
    for (auto const& nominal : in.known.nominal) {
        features.push_back(Geometry_Description::create_ref(nominal->type()));
        features.back()->assign(*nominal);
        std::vector<double> errors;
        if (calculate_errors(*nominal, nominal->type(), {point(true, 0, 0)}, errors) == 0) {
            fitted.reason = "--nominal: this kind has no deviations, so it takes no part in a composite";
            fitted.is_usage = true;
            return false;
        }
    }
    auto record = std::make_shared<Composite_Description>();
    fitted.record = record;
    record->geometry = fit_composite(features, lists);
    if (record->geometry.is_trivial()) return false;
    fitted.unknowns = fitted.parameters = record->geometry.is_3d() ? 6 : 3;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        for (point& p : lists[i]) p /= record->geometry;
        std::vector<double> errors;
        calculate_errors(*features[i], features[i]->type(), lists[i], errors);
        fitted.residuals.insert(fitted.residuals.end(), errors.begin(), errors.end());
        fitted.parts.emplace_back(features[i]->create_copy())->apply_transform(record->geometry);
    }
    return true;
}

}  // namespace tvmath
