#pragma once

#include <cmath>

#include "lens.h"

namespace plate {

/// How much of what lies beyond an edge a pixel shows: the profile of a blurred edge, half the error
/// function, meant over the pixel's area by Gauss-Legendre quadrature with 3 by 3 points. For a blur of a
/// pixel or more that is right to 2e-6. The profile is symmetric in the distance, so the edge lies exactly
/// where it crosses a half.
///
/// `distance(place)` is the signed distance in pixels of a true place, `middle` that of the pixel's centre.
/// Edges may be displaced by `offset`, towards negative distances.
template <class signed_distance>
double edge_share(signed_distance const& distance, double middle, double column, double row, double blur,
                  double offset = 0) {
    static constexpr double places[] = {0.112701665379258, 0.5, 0.887298334620742};
    static constexpr double weights[] = {5.0 / 18, 8.0 / 18, 5.0 / 18};
    if (std::fabs(middle + offset) > 6 * blur + 1) return middle + offset < 0 ? 0 : 1;
    double sum = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double const d = distance(true_place({column + places[i], row + places[j]})) + offset;
            sum += weights[i] * weights[j] * 0.5 * std::erfc(-d / (blur * std::sqrt(2.0)));
        }
    }
    return sum;
}

}  // namespace plate
