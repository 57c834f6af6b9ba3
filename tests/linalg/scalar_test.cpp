#include "tvmath/scalar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

double ulps(double actual, long double expected) {
    double const rounded = static_cast<double>(expected);
    double const ulp = std::nextafter(std::fabs(rounded), infinity) - std::fabs(rounded);
    return static_cast<double>(std::fabs(static_cast<long double>(actual) - expected)) / ulp;
}

long double sinc_long(long double x) {
    return x == 0 ? 1 : std::sin(x) / x;
}

// The same functions in long double, 11 bits finer, are the reference.
TEST(Scalar, RationalApproximationsAreAFewUlpFromLongDouble) {
    struct {
        char const* name;
        double (*function)(double);
        long double (*reference)(long double);
        double lo, hi;
        bool around_one;  // lo and hi bound x - 1
        double allowed;
    } const cases[] = {
        {"arccosh near 1", arccosh, std::acosh, 1e-12, 0.5, true, 4},
        {"arccosh by logarithm", arccosh, std::acosh, 1.5, 8192, false, 4},
        {"arccosh by series", arccosh, std::acosh, 8192, 1e300, false, 2},
        {"arcsinh by quotient", arcsinh, std::asinh, 1e-300, 1, false, 4},
        {"arcsinh by logarithm", arcsinh, std::asinh, 1, 8192, false, 4},
        {"arcsinh by series", arcsinh, std::asinh, 8192, 1e300, false, 2},
        {"arctanh", arctanh, std::atanh, 1e-300, 0.999999, false, 4},
        {"sinc", sinc, sinc_long, 1e-300, 100, false, 4},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        seeded_random random(7);
        double worst = 0, worst_at = 0;
        for (int i = 0; i < 20000; ++i) {
            double const drawn = random.log_uniform(c.lo, c.hi), x = c.around_one ? 1 + drawn : drawn;
            double const error = ulps(c.function(x), c.reference(x));
            if (error > worst) worst = error, worst_at = x;
        }
        EXPECT_LE(worst, c.allowed) << "at " << worst_at;
        RecordProperty(c.name, std::to_string(worst));
    }
}

TEST(Scalar, InverseHyperbolicFunctionsAreOddAndTellTheirDomain) {
    EXPECT_EQ(arcsinh(-0.7), -arcsinh(0.7));
    EXPECT_EQ(arctanh(-0.7), -arctanh(0.7));
    EXPECT_EQ(arccosh(1.0), 0.0);
    EXPECT_TRUE(std::signbit(arcsinh(-0.0)));
    EXPECT_EQ(arcsinh(infinity), infinity);
    for (double const undefined : {arctanh(1), arctanh(-1), arctanh(2), arccosh(0.5), arccosh(-3)}) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(undefined) >> 32, 0xFFF80000u);
    }
    for (auto const function : {arccosh, arcsinh, arctanh, sinc})
        EXPECT_TRUE(std::isnan(function(std::nan(""))));
}

TEST(Scalar, ReciprocalFunctionsInvertEachOther) {
    // Well inside each domain, where no step loses more than a few bits.
    double const x = 0.6;
    EXPECT_NEAR(arcsec(sec(x)), x, 1e-15);
    EXPECT_NEAR(arccsc(csc(x)), x, 1e-15);
    EXPECT_NEAR(arccot(cot(x)), x, 1e-15);
    EXPECT_NEAR(arcsech(sech(x)), x, 1e-15);
    EXPECT_NEAR(arccsch(csch(x)), x, 1e-15);
    EXPECT_NEAR(arccoth(coth(x)), x, 1e-15);
    EXPECT_EQ(arctan(1.0, -1.0), 3 * pi / 4);
}

TEST(Scalar, ModulusCarriesTheSignOfItsDivisor) {
    EXPECT_EQ(modulus(-1, 5), 4);
    EXPECT_EQ(modulus(1, -5), -4);
    EXPECT_EQ(modulus(7, 5, 10), 7);
    EXPECT_EQ(modulus(10, 5, 10), 5);
    EXPECT_EQ(modulus(4, 5, 10), 9);
}

TEST(Scalar, QuadrantsIncludeTheirLowerBound) {
    struct {
        double angle;
        int expected;
    } const angles[] = {{0, 0}, {2 * pi, 0}, {-0.1, 3},   {1, 0},  {2, 1},
                        {4, 2}, {5, 3},      {pi / 2, 1}, {-pi, 2}};
    for (auto const& a : angles) EXPECT_EQ(quadrant(a.angle), a.expected) << a.angle;

    // Rows y = 1, 0, -1; columns x = -1, 0, 1.
    int const grid[3][3] = {{1, 1, 0}, {2, 0, 0}, {2, 3, 3}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            int const x = column - 1, y = 1 - row;
            EXPECT_EQ(quadrant(x, y), grid[row][column]) << x << ", " << y;
            EXPECT_EQ(quadrant(0.5 * x, 0.5 * y), grid[row][column]) << x << ", " << y;
        }
    }
}

TEST(Scalar, IntegerPowersOfTwoAreExact) {
    for (long n = -1022; n <= 1023; ++n) EXPECT_EQ(pow(2.0, n), std::ldexp(1.0, static_cast<int>(n)));
    EXPECT_EQ(pow(0.0, 0u), 1.0);
    EXPECT_EQ(pow(-3.0, 5ul), -243.0);
    EXPECT_EQ(pow(1.0, std::numeric_limits<long>::min()), 1.0);
    EXPECT_EQ(pow(4.0, 1.5L), 8.0);
}

TEST(Scalar, PolynomialIsInAscendingPowers) {
    double const c[] = {1, 2, 3};
    EXPECT_EQ(poly(2, 3, c), 17.0);
    EXPECT_EQ(poly(2, 1, c), 1.0);
    EXPECT_EQ(poly(2, 0, c), 0.0);
    EXPECT_EQ(poly(2, -1, c), 0.0);
}

TEST(Scalar, MantissaAndExponentGiveTheNumberBack) {
    EXPECT_EQ(mantissa(-12.0), -0.75);
    EXPECT_EQ(exponent(-12.0), 4);
    EXPECT_EQ(mantissa(0.0), 0.0);
}

TEST(Scalar, TablesAreExact) {
    EXPECT_EQ(factorial32(0), 1);
    EXPECT_EQ(factorial32(12), 479001600);
    EXPECT_EQ(factorial64(20), 2432902008176640000);
    // Every row sums to 2^n (in unsigned arithmetic where the sum passes 2^63), and each value is
    // n (n - 1) ... / k!, built up in exact steps.
    for (unsigned int n = 0; n <= 66; ++n) {
        std::uint64_t sum = 0;
        std::uint64_t value = 1;
        for (unsigned int k = 0; k <= n; ++k) {
            std::uint64_t const stored = static_cast<std::uint64_t>(binomial64(n, k));
            if (n <= 57) {  // value * n stays below 2^64
                ASSERT_EQ(stored, value) << n << " over " << k;
                value = value * (n - k) / (k + 1);
            }
            if (n <= 33) {
                ASSERT_EQ(binomial32(n, k), binomial64(n, k));
            }
            sum += stored;
        }
        EXPECT_EQ(sum, n < 64 ? std::uint64_t{1} << n : 0) << n;
    }
    EXPECT_EQ(binomial64(66, 33), 7219428434016265740);
}

}  // namespace
}  // namespace tvmath
