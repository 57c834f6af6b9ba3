#include "tvmath/quadrature.h"

#include <gtest/gtest.h>

#include <cmath>

inline namespace tvmath {
namespace {

class counted : public integrand {
public:
    explicit counted(double (*f)(double)) : f_(f) {}
    double operator()(double x) const override {
        ++samples;
        return f_(x);
    }
    mutable int samples = 0;

private:
    double (*f_)(double);
};

double saw(double x) {
    return std::fmod(1e6 * x, 1.0);
}

TEST(Quadrature, StopsWhenTheDiagonalSettles) {
    struct {
        char const* name;
        double (*f)(double);
        double lower, upper, integral, tolerance;
        int samples;  // 2^row + 1
    } const cases[] = {
        {"constant", [](double) { return 3.0; }, 0, 2, 6, 0, 3},
        // Row 1 is Simpson's rule and exact, row 2 sees it.
        {"cubic", [](double x) { return x * x * x; }, 0, 2, 4, 0, 5},
        // Row 2 is Boole's rule, exact to the power 5; row 3 sees it.
        {"quintic", [](double x) { return std::pow(x, 5); }, 0, 1, 1.0 / 6, 1e-16, 9},
        {"reversed", [](double x) { return x * x * x; }, 2, 0, -4, 0, 5},
        // The published table of its rows is 2.00000555, 1.99999999 in rows 3 and 4: row 5 settles.
        {"sine", [](double x) { return std::sin(x); }, 0, 3.141592653589793, 2, 1e-9, 33},
        // Never below a millionth of itself, strictly.
        {"zero", [](double) { return 0.0; }, 0, 1, 0, 0, 2049},
        {"no width", [](double x) { return x; }, 1, 1, 0, 0, 2049},
    };
    for (auto const& c : cases) {
        counted const f(c.f);
        EXPECT_NEAR(integrate(f, c.lower, c.upper), c.integral, c.tolerance) << c.name;
        EXPECT_EQ(f.samples, c.samples) << c.name;
    }
}

TEST(Quadrature, ThatDoesNotSettleGivesItsTwelfthRow) {
    counted const f(saw), nan([](double) { return std::nan(""); });
    EXPECT_NEAR(integrate(f), 0.5, 0.1);  // the mean of a saw; bounds 0 and 1 by default
    EXPECT_EQ(f.samples, 2049);
    EXPECT_TRUE(std::isnan(integrate(nan)));
}

}  // namespace
}  // namespace tvmath
