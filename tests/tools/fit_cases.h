#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "fit/fit_result.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {

/// One point for each step of a turn, from the place that `at_angle` gives.
template <class function>
std::vector<point> around(int n, function at_angle) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) points.push_back(at_angle(2 * 3.14159265358979323846 * i / n));
    return points;
}

/// A kind with points whose best fit is known, in the words of the command.
struct fit_case {
    char const* kind;
    std::vector<point> points;
    fit_request request;  ///< the options; kind and files are not read
    /// Label, index and value of figures that are known by construction.
    struct expectation {
        char const* label;
        std::size_t index;
        double value;
    };
    std::vector<expectation> figures;
    double form_error;
    long degrees_of_freedom;  ///< -1 for none
};

/// Every kind once, and every condition. The points lie on their feature, or deviate from it alternately by
/// the same amount in symmetric places, so that the best feature is the one they were made from.
std::vector<fit_case> fit_cases();

/// The fit of a case; with a failed expectation when there is none.
fit_result fitted(fit_case const& c);

}  // namespace tvmath
