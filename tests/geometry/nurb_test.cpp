#include "tvmath/nurb.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/nurb_curves.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

double const nan = std::nan("");
TQ3RationalPoint4D const zero = {0, 0, 0, 0};

// The recursion as it is written down, with all its zeros.
double cox_de_boor(nurb const& n, unsigned int i, unsigned int order, double t) {
    double const low = n.get_knot(i), next = n.get_knot(i + 1), last = n.get_knot(n.knots() - 1);
    if (order == 1) return low <= t && (t < next || (t == last && low < t && next == t)) ? 1 : 0;
    double const up = n.get_knot(i + order - 1) - low, down = n.get_knot(i + order) - next;
    return (up > 0 ? (t - low) / up * cox_de_boor(n, i, order - 1, t) : 0) +
           (down > 0 ? (n.get_knot(i + order) - t) / down * cox_de_boor(n, i + 1, order - 1, t) : 0);
}

void add(TQ3RationalPoint4D& sum, double factor, TQ3RationalPoint4D const& p) {
    sum = {sum.x + factor * p.x, sum.y + factor * p.y, sum.z + factor * p.z, sum.w + factor * p.w};
}

TQ3RationalPoint4D full_sum(nurb const& n, double t) {
    TQ3RationalPoint4D sum = zero;
    for (unsigned int i = 0; i < n.control_points(); ++i) {
        add(sum, cox_de_boor(n, i, n.order(), t), n.get_control_point(i));
    }
    return sum;
}

double difference(TQ3RationalPoint4D const& a, TQ3RationalPoint4D const& b) {
    return std::max(std::max(std::fabs(a.x - b.x), std::fabs(a.y - b.y)),
                    std::max(std::fabs(a.z - b.z), std::fabs(a.w - b.w)));
}

// Where the numbers lie: equal for curves that share them.
TQ3RationalPoint4D const* block(nurb const& n) {
    return static_cast<TQ3NURBCurveData const&>(n).control_points;
}

// Both curves are the same over the parameters from a to b.
void expect_same(nurb const& actual, nurb const& expected, double a, double b) {
    for (int i = 0; i <= 20; ++i) {
        double const t = i == 20 ? b : a + (b - a) * i / 20;
        EXPECT_LT(difference(actual.evaluate(t), expected.evaluate(t)), 1e-12) << "at " << t;
    }
}

// NURBS-Python (O. R. Bingol, A. Krishnamurthy), tests/test_curve.py: published to 1e-3 or 1e-4. The digits
// beyond are ours, by the recursion in 40 digits, as are the lengths, by Gauss-Legendre quadrature.
TEST(Nurb, GivesPublishedPointsAndLengths) {
    std::vector<point> const points = {at(5, 5), at(10, 10), at(20, 15), at(35, 15), at(45, 10), at(50, 5)};
    std::vector<double> const thirds = {0, 0, 0, 0, 0.33, 0.66, 1, 1, 1, 1};
    struct {
        nurb n;
        double length;
        std::vector<std::vector<double>> samples;  // t, x, y
    } const cases[] = {
        {make_nurb(thirds, points),
         50.33487275415302823,
         {{0, 5, 5},
          {0.3, 18.61758076634109587, 13.37716003005259169},
          {0.5, 27.64549230676715793, 14.69170222414608588},
          {0.6, 32.14320622461550809, 14.32813560955999155},
          {1, 50, 5}}},
        {make_nurb(thirds, points, {0.5, 1.0, 0.75, 1.0, 0.25, 1.0}),
         50.37879213824225657,
         {{0, 5, 5},
          {0.2, 13.81819758185286199, 11.51039614105332853},
          {0.5, 28.17752526671449748, 14.78585521521701519},
          {0.95, 48.78379221759475897, 6.002231265956273871}}},
        {make_nurb({0, 0, 0, 0, 1, 2, 3, 3, 3, 3}, points),
         50.33467509551803321,
         {{0, 5, 5}, {1, 20, 13.75}, {1.5, 27.5, 14.6875}, {2, 35, 13.75}, {3, 50, 5}}},
    };
    for (auto const& c : cases) {
        for (auto const& s : c.samples) EXPECT_LT(distance3d(c.n.evaluate(s[0]), at(s[1], s[2])), 3e-14);
        double length = 0;
        c.n.compute_moments(length);
        EXPECT_NEAR(length, c.length, 1e-6 * c.length);  // what the quadrature promises
    }
}

TEST(Nurb, EvaluatesAndExpandsAsTheRecursion) {
    seeded_random random(1);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        double const first = n.get_knot(0), last = n.get_knot(n.knots() - 1);
        for (unsigned int i = 0; i < n.knots(); ++i) {  // also before and after the parameter range
            for (double const t : {n.get_knot(i), random.uniform(first, last)}) {
                EXPECT_LT(difference(n.evaluate(t), full_sum(n, t)), 1e-13);
            }
        }
        for (double const t : {first - 1e-9, last + 1e-9}) EXPECT_EQ(difference(n.evaluate(t), zero), 0);

        unsigned int const order = n.order();
        std::vector<double> table(order * order);
        std::vector<TQ3RationalPoint4D> poly(order);
        for (unsigned int span = n.degree(); span < n.control_points(); ++span) {
            double const low = n.get_knot(span), width = n.get_knot(span + 1) - low;
            double const about = low + width * random.unit(), u = low + width * random.unit();
            n.calc_poly(span, table.data(), about);
            n.calc_poly(span, poly.data(), about);
            TQ3RationalPoint4D sum = zero;
            for (unsigned int r = 0; r < order; ++r) {
                double value = 0;
                for (unsigned int c = order; c-- > 0;) value = value * (u - about) + table[r * order + c];
                double const expected = width > 0 ? cox_de_boor(n, span - n.degree() + r, order, u) : 0;
                EXPECT_NEAR(value, expected, 1e-12);
                add(sum, std::pow(u - about, r), poly[r]);
            }
            EXPECT_LT(difference(sum, width > 0 ? full_sum(n, u) : zero), 1e-11);
        }
    }
}

TEST(Nurb, KeepsItsPointsWhenKnotsAreInserted) {
    seeded_random random(2);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        double const a = first_parameter(n), b = last_parameter(n), t = random_parameter(random, n);
        // In no order, beyond the range, no numbers, and two of them more often than a knot may occur.
        std::vector<double> values = {nan, a - 1e-9, b + 1e-9, b};
        for (unsigned int i = 0; i < n.order() + 3; ++i) values.insert(values.end(), {t, a});
        nurb refined = n;
        refined.insert_knots(values.data(), static_cast<unsigned int>(values.size()));
        bool const clamped = n.get_knot(0) == a;  // then a and b are there as often as they may be
        EXPECT_EQ(refined.knots(), n.knots() + n.order() + (clamped ? 0 : n.degree() + 1));
        for (unsigned int i = 1; i < refined.knots(); ++i)
            EXPECT_LE(refined.get_knot(i - 1), refined.get_knot(i));
        EXPECT_TRUE(first_parameter(refined) == a && last_parameter(refined) == b);
        expect_same(refined, n, a, b);
    }
}

TEST(Nurb, KeepsThePartThatIsClippedAndNothingElse) {
    seeded_random random(3);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        double const first = first_parameter(n), last = last_parameter(n);
        double ends[2];
        for (double& end : ends) {
            end = random.below(4) == 0 ? n.get_knot(random.below(n.knots()))
                                       : random.uniform(first - 1, last + 1);
        }
        nurb part = n;
        part.clip_evaluation_range(ends[0], ends[1]);
        if (ends[0] >= ends[1] || ends[0] >= last || ends[1] <= first) {
            EXPECT_EQ(block(part), block(n));
            continue;
        }
        double const a = std::max(ends[0], first), b = std::min(ends[1], last);
        for (unsigned int i = 0; i < n.order(); ++i) {
            EXPECT_TRUE(part.get_knot(i) == a && part.get_knot(part.knots() - 1 - i) == b);
        }
        expect_same(part, n, a, b);
        EXPECT_EQ(part.evaluate(a - 1e-9).w, 0);
    }
    nurb n = circle_nurb(at(0, 0, 0), 1);
    n.clip_evaluation_range(nan, 1);
    n.clip_evaluation_range(1, nan);
    EXPECT_EQ(n.control_points(), 9u);
}

TEST(Nurb, RunsBackwardsAndMovesWithItsTransform) {
    seeded_random random(5);
    transform const maps[] = {transform(), transform(2, 3).rotate(0.3),
                              transform::rotation(0.1, 0.2, 0.3).translate(1, 2, 3).dilate(1.1, 0.9, 1.2)};
    point const shifts[] = {point(), at(1, 2), point(false, 1, 2, 3)};
    for (int trial = 0; trial < 90; ++trial) {
        nurb const n = random_nurb(random);
        transform const& map = maps[trial % 3];
        point const& shift = shifts[trial % 3];
        double const t = random_parameter(random, n);
        point const p = n.evaluate(t);
        EXPECT_LT(distance3d((n * map).evaluate(t), p * map), 1e-12);
        EXPECT_LT(distance3d((n * map / map).evaluate(t), p), 1e-12);
        EXPECT_LT(distance3d((n + shift).evaluate(t), p + shift), 1e-12);
        EXPECT_LT(distance3d((n + shift - shift).evaluate(t), p), 1e-12);
        nurb back = n;
        back.reverse();
        double const last = n.get_knot(n.knots() - 1);
        EXPECT_NEAR(first_parameter(back), last - last_parameter(n), 1e-14);
        EXPECT_LT(difference(back.evaluate(last - t), n.evaluate(t)), 1e-12);
    }
}

TEST(Nurb, SharesItsBlockUntilItIsWritten) {
    nurb const n = circle_nurb(at(1, 2, 3), 4);
    nurb copy = n;
    copy *= transform();
    copy += point();
    copy.redim(3, 9);
    copy.insert_knots(&nan, 1);
    EXPECT_EQ(block(copy), block(n));
    void (*const writers[])(nurb&) = {
        [](nurb& c) { c.set_knot(0, -1); },
        [](nurb& c) { c.set_control_point(0, c.get_control_point(1)); },
        [](nurb& c) { static_cast<TQ3NURBCurveData&>(c).knot_values[1] = 7; },
        [](nurb& c) { c.reverse(); },
        [](nurb& c) { c += at(1, 0); },
        [](nurb& c) { c *= transform(1, 2); },
        [](nurb& c) { c = nurb(static_cast<TQ3NURBCurveData const&>(c)); },
        [](nurb& c) { c.redim(4, 10); },
    };
    for (auto const write : writers) {
        copy = n;
        write(copy);
        EXPECT_NE(block(copy), block(n));
        EXPECT_TRUE(n.evaluate(0).x == 5 && n.get_knot(0) == 0 && n.get_knot(1) == 0);
    }
    EXPECT_EQ(copy.get_knot(8), 3);  // the old knots by index, then zeros
    EXPECT_EQ(copy.get_knot(13) + copy.get_control_point(9).w, 0);
    EXPECT_THROW(nurb(0xFFFFFFFFu, 0xFFFFFFFFu), pointer_exception);
    EXPECT_THROW(nurb(1, 0xFFFFFFFFu), pointer_exception);
}

TEST(Nurb, ComesFromABezierPathOrAListOfPoints) {
    seeded_random random(6);
    for (unsigned int degree = 1; degree <= 5; ++degree) {
        curve path(3 * degree + 1);
        for (unsigned int i = 0; i < path.capacity(); ++i) path(i) = at(random.normal(), random.normal(), 1);
        nurb const n = bezier_to_nurb(path, degree);
        ASSERT_EQ(n.knots(), 4 * degree + 2);
        for (unsigned int i = 0; i < 30; ++i) {
            double const t = i % 10 / 10.0;
            std::vector<point> p(path.begin() + i / 10 * degree, path.begin() + (i / 10 + 1) * degree + 1);
            for (; p.size() > 1; p.pop_back()) {  // de Casteljau
                for (std::size_t j = 0; j + 1 < p.size(); ++j) p[j] = p[j] * (1 - t) + p[j + 1] * t;
            }
            EXPECT_LT(distance3d(n.evaluate(i / 10 + t), p[0]), 1e-13);
        }
    }
    EXPECT_TRUE(bezier_to_nurb(curve(5, at(1, 2)), 3).is_trivial());
    EXPECT_TRUE(bezier_to_nurb(curve(3, at(1, 2)), 3).is_trivial());
    EXPECT_TRUE(bezier_to_nurb(curve(3, at(1, 2)), 0).is_trivial());
    EXPECT_TRUE(bezier_to_nurb(curve(), 0xFFFFFFFFu).is_trivial());
    // At a knot, a cubic with knots at equal steps is (p0 + 4 p1 + p2) / 6.
    curve list(at(0, 0), at(6, 0), at(6, 12));
    EXPECT_TRUE(uniform_bspline_to_nurb(list, 3).is_trivial());
    list.append(curve(at(9, 9)));
    EXPECT_LT(distance3d(uniform_bspline_to_nurb(list, 3).evaluate(3), at(5, 2)), 1e-14);
}

}  // namespace
}  // namespace tvmath
