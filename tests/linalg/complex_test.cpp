#include "tvmath/complex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <limits>
#include <vector>

inline namespace tvmath {
namespace {

using reference = std::complex<long double>;

// All quadrants, both axes with both signs of zero, the unit circle, the branch points and their surroundings.
std::vector<complex> grid(double smallest, double largest) {
    std::vector<double> parts = {0, 1e-300, 1e-160, 1e-20, 1e-9, 1e-4, 0.1,  0.4,   0.6, 0.8,   0.999, 1 - 1e-9,
                                 1, 1.0 + 1e-9, 1.001, 1.3, 1.6, 3,   10.5, 18.36, 18.37, 19.5, 20.5, 350, 1e5, 1e9, 1e20, 1e160, 1e300};
    std::erase_if(parts, [&](double x) { return x != 0 && (x < smallest || x > largest); });
    std::vector<complex> points;
    for (double const x : parts) {
        for (double const y : parts) {
            for (double const sx : {1, -1}) {
                for (double const sy : {1, -1}) points.emplace_back(sx * x, sy * y);
            }
        }
    }
    return points;
}

double relative_error(double actual, long double expected) {
    if (static_cast<long double>(actual) == expected || std::fabs(expected) < 1e-306L) return std::fabs(actual) < 1e-305 || actual == static_cast<double>(expected) ? 0 : 1;
    return static_cast<double>(std::fabs((static_cast<long double>(actual) - expected) / expected));
}

// Relative to each part, or to the whole number.
double error_of(complex const& actual, reference const& expected, bool by_parts) {
    if (by_parts) {
        return std::max(relative_error(actual.re, expected.real()), relative_error(actual.im, expected.imag()));
    }
    return static_cast<double>(std::abs(reference(actual.re, actual.im) - expected) / std::abs(expected));
}

struct checked_function {
    char const* name;
    complex (*function)(complex const&);
    reference (*expected)(reference const&);
    double smallest, largest;
    bool by_parts;
    double allowed_ulps;
};

void check(checked_function const& f) {
    SCOPED_TRACE(f.name);
    double worst = 0;
    complex worst_at;
    for (complex const& z : grid(f.smallest, f.largest)) {
        // A -0.0 counts as 0 here; the standard library takes the other side of a cut.
        reference const expected = f.expected(reference(z.re + 0.0, z.im + 0.0));
        double const error = error_of(f.function(z), expected, f.by_parts);
        if (!(error <= worst)) worst = error, worst_at = z;
    }
    worst /= std::numeric_limits<double>::epsilon();
    EXPECT_LE(worst, f.allowed_ulps) << "at " << worst_at.re << " + i " << worst_at.im;
    testing::Test::RecordProperty(f.name, std::to_string(worst));
    printf("%s %g at %g %g\n",f.name,worst,worst_at.re,worst_at.im);
}

TEST(Complex, FunctionsAreAFewUlpFromLongDouble) {
    using std::log;
    checked_function const functions[] = {
        {"sqrt", sqrt, std::sqrt, 0, 1e300, true, 4},
        {"log", log, std::log, 0, 1e300, false, 4},
        {"exp", exp, std::exp, 0, 350, false, 4},
        {"sin", sin, std::sin, 0, 350, false, 4},
        {"cos", cos, std::cos, 0, 350, false, 4},
        {"sinh", sinh, std::sinh, 0, 350, false, 4},
        {"cosh", cosh, std::cosh, 0, 350, false, 4},
        {"tan", tan, std::tan, 0, 350, true, 8},
        {"tanh", tanh, std::tanh, 0, 350, true, 8},
        {"arcsin", arcsin, std::asin, 0, 1e300, true, 8},
        {"arccos", arccos, std::acos, 0, 1e300, true, 8},
        {"arcsinh", arcsinh, std::asinh, 0, 1e300, true, 8},
        {"arccosh", arccosh, std::acosh, 0, 1e300, true, 8},
        {"arctan", arctan, std::atan, 0, 1e300, true, 8},
        {"arctanh", arctanh, std::atanh, 0, 1e300, true, 8},
    };
    for (auto const& f : functions) check(f);
}

}  // namespace
}  // namespace tvmath
