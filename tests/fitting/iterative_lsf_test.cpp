#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "support/shape_points.h"
#include "tvmath/iterative_lsf.h"

inline namespace tvmath {
namespace {

// A model made of functions: residual and gradient of one point by the parameters.
class model : public geometry_fitter::IterativeLSF {
public:
    using row_function = std::function<double(point const&, vector const&, vector&)>;
    using constraint_function = std::function<vector(vector const&, matrix&)>;

    model(std::vector<double> const& start, row_function row) : row_(std::move(row)) {
        parameters = vector(static_cast<unsigned int>(start.size()), start.data());
    }
    double residual(point p, vector& gradient) override {
        gradient.redim(dim(parameters));
        tried.push_back(parameters[0]);
        return row_(p, parameters, gradient);
    }
    vector constraints(matrix& jacobian) override {
        return constraint ? constraint(parameters, jacobian) : IterativeLSF::constraints(jacobian);
    }
    double damping(unsigned int index) override { return damped + IterativeLSF::damping(index); }

    std::vector<double> tried;  // the first parameter at each call
    constraint_function constraint;
    double damped = 0;

private:
    row_function row_;
};

// y = a + b x.
double straight(point const& p, vector const& q, vector& gradient) {
    gradient(0) = 1;
    gradient(1) = p.x();
    return q[0] + q[1] * p.x() - p.y();
}

std::vector<point> const four = {at(0, 1), at(1, 2), at(2, 2), at(3, 5)};

// Normal equations by hand: sums 4, 6, 14 and 10, 21, so that b = 1.2 and a = 0.7.
TEST(IterativeLSF, SolvesALinearProblem) {
    model m({5, 5}, straight);
    ASSERT_TRUE(m.solve(four));
    EXPECT_NEAR(m.parameters[0], 0.7, 1e-14);
    EXPECT_NEAR(m.parameters[1], 1.2, 1e-14);
    EXPECT_EQ(m.tried.size(), 8u);  // one round to get there, one to see it
}

// Through (0, 1): b is the best slope of (1, 1), (2, 1), (3, 4) through the origin, 15 / 14.
TEST(IterativeLSF, KeepsConstraints) {
    model m({5, 5}, straight);
    m.constraint = [](vector const& q, matrix& jacobian) {
        jacobian = matrix(1, 2);
        jacobian(0)(0) = 1;
        return vector(1, q[0] - 1);
    };
    ASSERT_TRUE(m.solve(four));
    EXPECT_NEAR(m.parameters[0], 1, 1e-14);
    EXPECT_NEAR(m.parameters[1], 15.0 / 14, 1e-14);
}

// A damped step is shorter: of -x by 1 / (1 + 1).
TEST(IterativeLSF, AddsTheDampingToTheDiagonal) {
    model m({8}, [](point const&, vector const& q, vector& gradient) {
        gradient(0) = 1;
        return q[0];
    });
    m.damped = 1;
    EXPECT_FALSE(m.solve({at(0, 0)}));  // halves 30 times, which is no 1e-8 of itself
    ASSERT_EQ(m.tried.size(), 30u);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(m.tried[static_cast<std::size_t>(i)], std::ldexp(8, -i));
}

// r = atan x from 2: Newton's step leads to 2 - 5 atan 2 = -3.54, where the sum is larger. A tenth of the
// step leads to 2 - 0.5 atan 2 = 1.446, where it is smaller, and the whole step is taken from there again.
TEST(IterativeLSF, RetreatsToATenthOfAStep) {
    model m({2}, [](point const&, vector const& q, vector& gradient) {
        gradient(0) = 1 / (1 + q[0] * q[0]);
        return std::atan(q[0]);
    });
    m.solve({at(0, 0)});
    double const third = 2 - 0.5 * std::atan(2.0);
    double const expected[] = {2, 2 - 5 * std::atan(2.0), third,
                               third - (1 + third * third) * std::atan(third)};
    ASSERT_GE(m.tried.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(m.tried[i], expected[i], 1e-14) << i;
}

TEST(IterativeLSF, SaysWhyItCannotSolve) {
    double const nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    struct {
        char const* name;
        std::vector<double> start;
        model::row_function row;
        bool solved;
        std::size_t calls;  // 0: any number
    } const cases[] = {
        {"zero residual and a parameter",
         {3},
         [](auto&, auto&, vector& g) { return g(0) = 1, 0.0; },
         true,
         1},
        {"zero residual and parameter",
         {0},
         [](auto&, auto&, vector& g) { return g(0) = 1, 0.0; },
         false,
         30},
        {"NaN", {3}, [=](auto&, auto&, vector& g) { return g(0) = 1, nan; }, false, 1},
        {"infinite sum", {3}, [=](auto&, auto&, vector& g) { return g(0) = 1, inf; }, false, 1},
        {"singular", {3}, [](auto&, auto&, vector& g) { return g(0) = 0, 1.0; }, false, 1},
        // A gradient of the wrong sign leads away; tenths are tried until the step is nothing.
        {"diverging", {1}, [](auto&, vector const& q, vector& g) { return g(0) = -1, q[0]; }, false, 0},
        {"endless step",
         {1},
         [](auto&, vector const& q, vector& g) { return g(0) = 1e-310, q[0]; },
         false,
         0},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        model m(c.start, c.row);
        EXPECT_EQ(m.solve({at(0, 0)}), c.solved);
        if (c.calls != 0) {
            EXPECT_EQ(m.tried.size(), c.calls);
        }
        EXPECT_LE(m.tried.size(), 30u * 20u);
    }
}

}  // namespace
}  // namespace tvmath
