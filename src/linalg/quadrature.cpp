#include "tvmath/quadrature.h"

#include <cmath>
#include <cstdint>

inline namespace tvmath {

double integrand::lower_bound() const {
    return 0.0;
}

double integrand::upper_bound() const {
    return 1.0;
}

integrand::~integrand() = default;

double integrate(integrand const& f) {
    return integrate(f, f.lower_bound(), f.upper_bound());
}

double integrate(integrand const& f, double lower, double upper) {
    constexpr int row_count = 12;
    double rows[2][row_count];  // only the last two rows of the triangle are ever needed
    double h = upper - lower;
    double sum = (f(lower) + f(upper)) / 2;
    rows[0][0] = h * sum;
    double result = rows[0][0];
    for (int i = 1; i < row_count; ++i) {
        double const* const last = rows[(i - 1) & 1];
        double* const row = rows[i & 1];
        h /= 2;
        for (int k = 1; k < 1 << i; k += 2) sum += f(k * h + lower);
        row[0] = sum * h;
        // Column j removes the error term in h^(2j + 2).
        for (int j = 0; j < i; ++j) {
            row[j + 1] = row[j] + (row[j] - last[j]) / static_cast<double>((std::int64_t{4} << (2 * j)) - 1);
        }
        result = row[i];
        if (1e-6 * std::fabs(result) > std::fabs(result - last[i - 1])) break;
    }
    return result;
}

}  // namespace tvmath
