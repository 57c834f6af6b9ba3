#include <cmath>

#include "geometry/extent.h"
#include "tvmath/residuals.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Least and greatest. Both are NaN when one of the deviations is: the form of a feature with a point that
// could not be judged is not known.
interval extremes(std::vector<double> const& errors) {
    interval range;
    for (double const e : errors) {
        if (std::isnan(e)) return {e, e};
        range.widen(e);
    }
    return range;
}

}  // namespace

double get_form(std::vector<double> const& errors) {
    if (errors.empty()) return 0.0;
    interval const range = extremes(errors);
    return range.high - range.low;
}

double get_profile_error(std::vector<double> const& errors) {
    if (errors.empty()) return 0.0;
    interval const range = extremes(errors);
    double const least = std::fabs(range.low), greatest = std::fabs(range.high);
    return 2.0 * (least > greatest ? least : greatest);
}

double get_stdev(std::vector<double> const& errors, unsigned int degrees_of_freedom) {
    long long const redundancy = static_cast<long long>(errors.size()) - degrees_of_freedom;
    if (redundancy < 1) return domain_error_value;
    double sum = 0;
    for (double const e : errors) sum += e * e;
    return std::sqrt(sum / static_cast<double>(redundancy));
}

}  // namespace tvmath
