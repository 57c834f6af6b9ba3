#include "tvmath/quadrature.h"

#include <cmath>

#include "romberg.h"

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
    return romberg(f, lower, upper,
                   [](double now, double before) { return 1e-6 * std::fabs(now) > std::fabs(now - before); });
}

}  // namespace tvmath
