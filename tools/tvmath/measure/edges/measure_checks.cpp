#include "measure/edges/measure_checks.h"

#include <algorithm>
#include <cmath>

#include "report/figure_json.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// NaN for what the fit does not tell, which keeps no limit.
double value_of(tolerance_limit const& limit, fit_result const& fit) {
    if (limit.figure == "form") return fit.form_error;
    if (limit.figure == "profile")
        return fit.nominal && fit.nominal->profile_error ? *fit.nominal->profile_error : fit.profile_error;
    if (limit.figure == "standard_deviation") return fit.standard_deviation.value_or(std::nan(""));
    if (fit.nominal) {
        for (figure const& d : fit.nominal->deviations) {
            if (figure_key(d) == limit.figure) return deviation_size(d);
        }
    }
    return std::nan("");
}

}  // namespace

std::vector<tolerance_check> check_limits(measure_tool const& tool, fit_result const& fit) {
    std::vector<tolerance_check> checks;
    for (tolerance_limit const& limit : tool.limits) {
        double const value = value_of(limit, fit);
        checks.push_back({limit, value, limit.lower <= value && value <= limit.upper});
    }
    return checks;
}

tolerance_check const* find_check(std::vector<tolerance_check> const& checks, std::string const& name) {
    auto const found = std::find_if(checks.begin(), checks.end(),
                                    [&name](tolerance_check const& c) { return c.limit.figure == name; });
    return found == checks.end() ? nullptr : &*found;
}

double deviation_size(figure const& deviation) {
    if (is_angle(deviation)) return deviation.values.front() * (180 / pi);
    if (deviation.values.size() == 1) return deviation.values.front();
    double sum = 0;
    for (double const v : deviation.values) sum = std::hypot(sum, v);
    return sum;
}

}  // namespace tvmath
