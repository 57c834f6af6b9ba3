#include "tvmath/complex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <limits>
#include <string>
#include <vector>

inline namespace tvmath {
namespace {

using reference = std::complex<long double>;

// All quadrants, both axes with both signs of zero, the branch points and their surroundings, the thresholds.
std::vector<complex> grid(double largest) {
    std::vector<double> parts = {0,     1e-300,   1e-160, 1e-20,    1e-9,  1e-4, 0.1,  0.4,   0.6,
                                 0.999, 1 - 1e-9, 1,      1 + 1e-9, 1.001, 1.3,  1.6,  3,     10.5,
                                 18.3,  18.37,    19.5,   20.5,     350,   1e5,  1e20, 1e160, 1e300};
    std::erase_if(parts, [&](double x) { return x > largest; });
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

// The sign of zero by which the standard library, which knows two sides of a cut, is asked for our side.
using side = complex (*)(complex const&);
side const as_it_is = [](complex const& z) { return z; };
side const positive = [](complex const& z) { return complex(z.re + 0.0, z.im + 0.0); };
side const by_real = [](complex const& z) { return z.im == 0 ? complex(z.re, std::copysign(0.0, z.re)) : z; };
side const against_real = [](complex const& z) { return z.im == 0 ? conj(by_real(z)) : z; };
side const by_imaginary = [](complex const& z) {
    return z.re == 0 ? complex(std::copysign(0.0, z.im), z.im) : z;
};

double relative_error(long double actual, long double expected) {
    // Zeros of any sign, and what underflows, are equal.
    if (std::fabs(actual - expected) < 1e-305L) return 0;
    return static_cast<double>(std::fabs(actual - expected) / std::fabs(expected));
}

// Of the worse part: both keep their digits, not only the number as a whole.
double error_by_parts(complex const& actual, reference const& expected) {
    return std::max(relative_error(actual.re, expected.real()), relative_error(actual.im, expected.imag()));
}

TEST(Complex, FunctionsAreAFewUlpFromLongDouble) {
    struct {
        char const* name;
        complex (*function)(complex const&);
        reference (*expected)(reference const&);
        side asked;
        double largest, allowed;
    } const functions[] = {
        {"sqrt", sqrt, std::sqrt, positive, 1e300, 2},
        {"log", log, std::log, as_it_is, 1e300, 2},
        {"exp", exp, std::exp, as_it_is, 350, 2},
        {"sin", sin, std::sin, as_it_is, 350, 2},
        {"cos", cos, std::cos, as_it_is, 350, 2},
        {"sinh", sinh, std::sinh, as_it_is, 350, 2},
        {"cosh", cosh, std::cosh, as_it_is, 350, 2},
        // The real part below an imaginary part of 1 is cosh² - sinh², here up to 3.8 times as large.
        {"tan", tan, std::tan, as_it_is, 350, 6},
        {"tanh", tanh, std::tanh, as_it_is, 350, 6},
        {"arcsin", arcsin, std::asin, against_real, 1e300, 4},
        {"arccos", arccos, std::acos, against_real, 1e300, 4},
        {"arcsinh", arcsinh, std::asinh, by_imaginary, 1e300, 4},
        {"arccosh", arccosh, std::acosh, positive, 1e300, 4},
        {"arctan", arctan, std::atan, by_imaginary, 1e300, 4},
        {"arctanh", arctanh, std::atanh, by_real, 1e300, 4},
    };
    for (auto const& f : functions) {
        double worst = 0;
        complex worst_at;
        for (complex const& z : grid(f.largest)) {
            complex const asked = f.asked(z);
            double const error = error_by_parts(f.function(z), f.expected(reference(asked.re, asked.im)));
            if (!(error <= worst)) worst = error, worst_at = z;
        }
        worst /= std::numeric_limits<double>::epsilon();
        EXPECT_LE(worst, f.allowed) << f.name << " at " << worst_at.re << " + i " << worst_at.im;
        RecordProperty(f.name, std::to_string(worst));
    }
}

bool same(complex const& a, double re, double im) {
    return a == complex(re, im) && std::signbit(a.re) == std::signbit(re) &&
           std::signbit(a.im) == std::signbit(im);
}

TEST(Complex, BranchesAtTheAxesAreExact) {
    EXPECT_TRUE(same(reciprocal(complex(0, 2)), 0, -0.5));
    EXPECT_TRUE(same(reciprocal(complex(2, 0)), 0.5, 0));
    EXPECT_TRUE(same(sqrt(complex(-4, 0)), 0, 2));
    EXPECT_TRUE(same(sqrt(complex(-4, -0.0)), 0, 2));
    EXPECT_TRUE(same(sqrt(complex(0, 0)), 0, 0));
    EXPECT_TRUE(same(pow(complex(0, 0), 0), 1, 0));
    EXPECT_TRUE(same(pow(complex(3, -4), 0), 1, 0));
    // A real argument within the domain of the real function takes that function, with its failure value.
    EXPECT_TRUE(same(arcsin(complex(0.3)), std::asin(0.3), 0));
    EXPECT_TRUE(same(arccos(complex(0.3)), std::acos(0.3), 0));
    EXPECT_TRUE(same(arctan(complex(7)), std::atan(7.0), 0));
    EXPECT_TRUE(same(arcsinh(complex(7)), arcsinh(7.0), 0));
    EXPECT_TRUE(same(arctanh(complex(1)), infinity, 0));
}

// The values of the real functions, from tables: arccosh 2 = ln(2 + sqrt 3), arctanh 1/2 = ln(3) / 2.
TEST(Complex, RealArgumentsOutsideTheRealDomainHaveAFixedPart) {
    double const arccosh_2 = 1.3169578969248167, half_ln_3 = 0.5493061443340549;
    struct {
        char const* name;
        complex actual, expected;
    } const cases[] = {
        {"arcsin 2", arcsin(complex(2)), {pi / 2, -arccosh_2}},
        {"arccos 2", arccos(complex(2)), {0, arccosh_2}},
        {"arccosh -2", arccosh(complex(-2)), {arccosh_2, pi}},
        {"arccosh 1/2", arccosh(complex(0.5)), {0, pi / 3}},
        {"arctanh 2", arctanh(complex(2)), {half_ln_3, pi / 2}},
        {"arccoth 1/2", arccoth(complex(0.5)), {half_ln_3, pi / 2}},
        {"arcsec -1/2", arcsec(complex(-0.5)), {pi, -arccosh_2}},
    };
    for (auto const& c : cases) {
        EXPECT_NEAR(c.actual.re, c.expected.re, 4e-16) << c.name;
        EXPECT_NEAR(c.actual.im, c.expected.im, 4e-16) << c.name;
    }
}

TEST(Complex, PowersAndQuotientsAgreeWithLongDouble) {
    complex const points[] = {{3, -4}, {-0.7, 0.2}, {1e-3, 5}, {0, -2}, {-1.5, 0}};
    reference const w(0.3L, -1.7L);
    auto const near = [](complex const& actual, reference const& expected) {
        // Angles of up to 20 radians are off by ulps.
        return std::abs(reference(actual.re, actual.im) - expected) < 1e-14L * std::abs(expected);
    };
    for (complex const& z : points) {
        reference const x(z.re, z.im);
        for (int n = -7; n <= 7; ++n) EXPECT_TRUE(near(pow(z, n), std::pow(x, n))) << z.re << ", " << n;
        EXPECT_TRUE(near(pow(z, 2.5), std::pow(x, 2.5L)));
        EXPECT_TRUE(near(pow(z, complex(0.3, -1.7)), std::exp(reference(0.3, -1.7) * std::log(x))));
        EXPECT_TRUE(near(z / complex(0.3, -1.7), x / w));
        EXPECT_TRUE(near(log(10, z), std::log10(x)) && near(log10(z), std::log10(x)));
        EXPECT_TRUE(near(cot(z), 1.0L / std::tan(x)) && near(coth(z), 1.0L / std::tanh(x)));
    }
    EXPECT_TRUE(near(pow(-2.0, complex(0.3, -1.7)), std::pow(reference(-2), reference(0.3, -1.7))));
    EXPECT_EQ(pow(complex(0), complex(2, 0)), complex(0));
}

TEST(Complex, OverflowsOnlyWhereTheValueDoes) {
    // cosh(710.4) = 1.666e308 and cosh(710.5) is beyond the largest double; e^710.4 is beyond it already.
    EXPECT_NEAR(cish(-710.4).re, 1.6663642832806496e308, 1e293);
    EXPECT_EQ(cish(-710.4).im, -cish(710.4).re);
    EXPECT_EQ(cish(710.5).re, infinity);
    EXPECT_TRUE(same(sin(complex(0, 1000)), 0, infinity));
    EXPECT_TRUE(same(exp(complex(1000)), infinity, 0));
    EXPECT_NEAR(exp(complex(710, pi / 2)).re, 1.3679272698459396e292, 1e277);  // the cosine is 6.1e-17
    EXPECT_EQ(sqrt(complex(-1.5e308, 0)), complex(0, std::sqrt(1.5e308)));
    EXPECT_TRUE(same(arcsinh(complex(infinity, 1)), infinity, 0));
    complex const saturated = tan(complex(1, 30));
    EXPECT_EQ(saturated.im, 1);
    EXPECT_DOUBLE_EQ(saturated.re, 2 * std::exp(-60.0) * std::sin(2.0));
    EXPECT_TRUE(std::isnan(arccos(complex(std::nan(""), 1)).re));
}

}  // namespace
}  // namespace tvmath
