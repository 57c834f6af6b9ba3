#include "tvmath/screen_corrector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

struct opened : screen_corrector {
    using screen_corrector::f;
    using screen_corrector::fit;
};

using list = idioms::array<point>;
using lens = std::function<point(point)>;  // where a point that is seen at p truly lies

list as_list(std::vector<point> const& points) {
    return list(static_cast<unsigned int>(points.size()), points.data());
}

list seen_through(lens const& true_place, std::vector<point> points, double noise, seeded_random& random) {
    for (point& p : points)
        p = true_place(p) + point(false, noise * random.normal(), noise * random.normal());
    return as_list(points);
}

// Grid lines from edge to edge of a screen of 640 by 480 pixels.
std::vector<point> grid(int columns, int lines) {
    std::vector<point> points;
    for (int i = 0; i < columns; ++i) {
        for (int j = 0; j < lines; ++j) {
            points.push_back(at(-320 + 640.0 * i / (columns - 1), -240 + 480.0 * j / (lines - 1)));
        }
    }
    return points;
}

// T(d - j, u) T(j, v) by the cosine, or the hyperbolic one outside the screen.
std::vector<double> terms(double u, double v, unsigned int order) {
    auto const t = [](unsigned int k, double x) {
        if (std::fabs(x) <= 1) return std::cos(k * std::acos(x));
        return (x < 0 && k % 2 == 1 ? -1 : 1) * std::cosh(k * std::acosh(std::fabs(x)));
    };
    std::vector<double> result;
    for (unsigned int d = 0; d <= order; ++d) {
        for (unsigned int j = 0; j <= d; ++j) result.push_back(t(d - j, u) * t(j, v));
    }
    return result;
}

opened random_field(seeded_random& random, unsigned int order) {
    opened c;
    c.order = order;
    c.x_scale = 2 / random.uniform(300, 3000);
    c.y_scale = 2 / random.uniform(300, 3000);
    c.coefficients = matrix(2, (order + 1) * (order + 2) / 2);
    for (unsigned int r = 0; r < 2; ++r) {
        for (unsigned int k = 0; k < cols(c.coefficients); ++k) c.coefficients(r)(k) = random.uniform(-5, 5);
    }
    return c;
}

TEST(ScreenCorrector, AddsAndTakesOffTheFieldOfItsTerms) {
    seeded_random random(81);
    for (unsigned int order = 1; order <= 40; ++order) {  // also those beyond any that a lens needs
        SCOPED_TRACE(order);
        opened const c = random_field(random, order);
        point const p(random.coin(), random.uniform(-1.2, 1.2) / c.x_scale, random.uniform(-1, 1) / c.y_scale,
                      7);
        std::vector<double> const expected = terms(p.x() * c.x_scale, p.y() * c.y_scale, order);
        vector const found = c.f(p);
        ASSERT_EQ(dim(found), expected.size());
        double d[2] = {0, 0}, tolerance = 0;
        for (unsigned int k = 0; k < dim(found); ++k) {
            // The recurrence and the arc cosine lose some ulps for each order.
            EXPECT_NEAR(found[k], expected[k], 1e-13 * order * (1 + std::fabs(expected[k])));
            for (unsigned int r = 0; r < 2; ++r) d[r] += c.coefficients[r][k] * expected[k];
            tolerance += 1e-12 * order * (1 + std::fabs(expected[k]));
        }
        point const there = p * c, back = there / c;
        EXPECT_NEAR(there.x(), p.x() + d[0], tolerance);
        EXPECT_NEAR(there.y(), p.y() + d[1], tolerance);
        EXPECT_TRUE(there.is_3d() && there.z() == 7 && there.is_location() == p.is_location());
        // Taken off is the displacement of the place where it is asked for.
        EXPECT_TRUE(back == there - ((there * c) - there) || order > 3);
        EXPECT_TRUE((point() * c).is_trivial() && (point() / c).is_trivial() && (at(1, 2) / c).is_2d());
        // The products of a path and of the matrix give the same bits.
        point const by_matrix = p + point(false, c.coefficients * found);
        std::vector<point> path(21, p);
        path[3] = point();
        curve const carried = curve(as_list(path)) * c, removed = curve(as_list(path)) / c;
        for (unsigned int i = 0; i < 21; ++i) {
            EXPECT_TRUE(i == 3 ? carried[i].is_trivial() : carried[i] == by_matrix);
            EXPECT_TRUE(removed[i] == path[i] / c);
        }
    }
}

// In the least-squares field the differences left over are orthogonal to every term, and the residual is
// their length. The sets reach over the whole screen, over a part away from the middle, and beyond it.
TEST(ScreenCorrector, LeavesDifferencesOrthogonalToAllTerms) {
    seeded_random random(82);
    for (int trial = 0; trial < 60; ++trial) {
        opened c;
        int const order = 1 + trial % 6;
        unsigned int const n =
            (static_cast<unsigned int>(order) + 1) * (static_cast<unsigned int>(order) + 2) / 2;
        double const part = trial % 3 == 0 ? 1.3 : trial % 3 == 1 ? 1 : 0.4;
        std::vector<point> measured, nominal;
        for (unsigned int i = 0; i < n + 5 + random.below(90); ++i) {
            measured.push_back(
                at(320 * (1 - part + part * random.uniform(-1, 1)), 240 * part * random.uniform(-1, 1)));
            nominal.push_back(measured.back() + point(false, random.uniform(-3, 3), random.uniform(-3, 3)));
        }
        c.fit(order, as_list(measured), as_list(nominal));
        double squares = 0;
        std::vector<double> along(2 * n);
        for (std::size_t i = 0; i < measured.size(); ++i) {
            point const left = nominal[i] - measured[i] * c;
            squares += sqr(left);
            auto const t =
                terms(measured[i].x() / 320, measured[i].y() / 240, static_cast<unsigned int>(order));
            for (unsigned int k = 0; k < n; ++k) {
                along[2 * k] += left.x() * t[k];
                along[2 * k + 1] += left.y() * t[k];
            }
        }
        SCOPED_TRACE(trial);
        // Coordinates are rounded at 1e-13, coefficients, which reach 1e5 on a part of the screen, at 1e-16.
        double const rounding =
            1e-15 * max_value(abs(c.coefficients)) * n * static_cast<double>(measured.size());
        for (double const sum : along) EXPECT_NEAR(sum, 0, 1e-9 + rounding);
        double const freedom = static_cast<double>(measured.size() - n);
        EXPECT_NEAR(c.residual, std::sqrt(squares / freedom), 1e-9);
    }
}

// Lenses on a screen of 640 by 480, r in units of half the width.
lens radial(double third, double fifth) {
    return [=](point p) {
        double const r2 = (p.x() * p.x() + p.y() * p.y()) / (320 * 320);
        return p * (1 + third * r2 + fifth * r2 * r2);
    };
}
point decentred(point p) {
    double const x = p.x() / 320, y = p.y() / 320, r2 = x * x + y * y;
    return p + point(false, 3 * (2 * x * y) + 2 * (r2 + 2 * x * x), 3 * (r2 + 2 * y * y) + 2 * (2 * x * y));
}
point tilted(point p) {
    return at(p.x(), p.y()) * (1 / (1 + 2e-5 * p.x() - 1e-5 * p.y()));
}

TEST(ScreenCorrector, FollowsLensesAsCloselyAsTheNoiseAllows) {
    struct {
        char const* name;
        lens true_place;
        unsigned int order;  // the least that describes the lens far below the noise
        int columns, lines;
    } const cases[] = {{"decentring, 9 points", decentred, 2, 3, 3},
                       {"tilt, 9 points", tilted, 2, 3, 3},
                       {"tilt", tilted, 2, 9, 7},
                       {"third order", radial(0.02, 0), 3, 6, 5},
                       {"third order, fine", radial(-0.05, 0), 3, 20, 20},
                       {"fifth order", radial(0.03, -0.02), 5, 12, 10},
                       {"fifth order, fine", radial(-0.1, 0.04), 5, 50, 40}};
    seeded_random random(83);
    double const noise = 0.02;
    for (auto const& lens_case : cases) {
        SCOPED_TRACE(lens_case.name);
        std::vector<point> const seen = grid(lens_case.columns, lens_case.lines);
        double const n = static_cast<double>(seen.size());
        double squares = 0, largest = 0;
        int const trials = 20;
        for (int trial = 0; trial < trials; ++trial) {
            list const nominal = seen_through(lens_case.true_place, seen, noise, random);
            screen_corrector const c(640, 480, as_list(seen), nominal, 6);
            ASSERT_GE(c.order, lens_case.order);
            squares += c.residual * c.residual / trials;
            // Points not used in the fit, out to the corners, where polynomials swing first.
            for (int i = 0; i < 40; ++i) {
                point const p = i < 4 ? at(i % 2 ? 319 : -319, i < 2 ? 239 : -239)
                                      : at(random.uniform(-320, 320), random.uniform(-240, 240));
                largest = std::max(largest, distance2d(p * c, lens_case.true_place(p)));
            }
        }
        // The lower bound leaves room for the order having been chosen for its small residual. At a corner of
        // a grid a fit of n terms is off by up to noise times the root of 4 n² / N, four in 99.99 of 100.
        EXPECT_NEAR(std::sqrt(squares / 2), noise, noise * (n < 10 ? 0.5 : 0.15));
        EXPECT_LT(largest, 4 * 1.5 * noise * std::max(1.0, 2 * 28 / std::sqrt(n)));
        // Without noise the search ends at the order of the lens.
        if (lens_case.name[0] == 't' && lens_case.name[1] == 'i') continue;  // tilt is no polynomial
        screen_corrector const exact(640, 480, as_list(seen),
                                     seen_through(lens_case.true_place, seen, 0, random), 6);
        EXPECT_EQ(exact.order, lens_case.order);
        EXPECT_EQ(exact.residual, 0);
        for (point const& p : seen) EXPECT_NEAR(distance2d(p * exact, lens_case.true_place(p)), 0, 1e-11);
    }
}

// On a tenth of the screen the normal equations of order 8 have a condition of some 1e16.
TEST(ScreenCorrector, KeepsItsDigitsWherePointsFillAPartOfTheScreen) {
    seeded_random random(84);
    opened truth = random_field(random, 8), c;
    c.x_scale = truth.x_scale = 2.0 / 640;
    c.y_scale = truth.y_scale = 2.0 / 480;
    std::vector<point> measured, nominal;
    for (int i = 0; i < 400; ++i) {
        measured.push_back(at(random.uniform(200, 264), random.uniform(-200, -152)));
        nominal.push_back(measured.back() * truth);
    }
    c.fit(8, as_list(measured), as_list(nominal));
    for (int i = 0; i < 100; ++i) {
        point const p = at(random.uniform(200, 264), random.uniform(-200, -152));
        EXPECT_NEAR(distance2d(p * c, p * truth), 0, 1e-10);
    }
}

TEST(ScreenCorrector, DoesNothingWhereThePointsDoNotTell) {
    seeded_random random(85);
    std::vector<std::pair<char const*, std::vector<point>>> sets;
    for (char const* name : {"spot", "slanted line", "circle", "4 lines", "not a number", "infinite"}) {
        std::vector<point> points;
        for (int i = 0; i < 60; ++i) {
            double const x = random.uniform(-300, 300), turn = random.uniform(-3, 3);
            points.push_back(*name == 's'   ? name[1] == 'p' ? at(17.3, 31.9) : at(x, 0.37 * x + 11)
                               : *name == 'c' ? at(30 + 100 * std::cos(turn), 100 * std::sin(turn))
                             : *name == '4' ? at(x, -150 + 100.1 * (i % 4))
                                            : at(x, 50 * turn));
        }
        if (*name == 'n') points[40](1) = NAN;
        if (*name == 'i') points[59](2) = INFINITY;
        sets.emplace_back(name, points);
    }
    for (auto const& [name, points] : sets) {
        SCOPED_TRACE(name);
        list const nominal = seen_through(decentred, points, 0.1, random);
        opened c;
        c.fit(4, as_list(points), nominal);
        EXPECT_TRUE(c.residual == infinity && c.coefficients.is_trivial() && c.order == 4 && !c.is_trivial());
        EXPECT_TRUE(at(1, 2) * c == at(1, 2) && at(1, 2) / c == at(1, 2) && c.sub_grab(at(1, 2)).order == 4);
        screen_corrector const searched(1000, 1000, as_list(points), nominal, 9);
        bool const some_order = *name == '4';  // those of less than four lines
        EXPECT_TRUE(some_order ? searched.order == 2 || searched.order == 3 : searched.is_trivial());
        EXPECT_EQ(searched.x_scale, some_order ? 0.002 : 2.0 / 640);
    }
    opened c;
    std::vector<point> const points = grid(5, 5);
    c.fit(2, as_list(points), as_list({at(1, 2)}));
    EXPECT_TRUE(c.residual == infinity && at(1, 2) * c == at(1, 2));
    for (int const order : {0, -1, -2147483647 - 1}) {
        c.fit(order, as_list(points), as_list(points));
        EXPECT_TRUE(c.is_trivial() && c.residual == 0 && c.coefficients.is_trivial());
    }
    c.fit(2147483647, as_list(points), as_list(points));
    EXPECT_EQ(c.residual, infinity);
    for (unsigned int const order : {300u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        c.order = order;
        c.coefficients = matrix(2, 30);
        EXPECT_TRUE(at(1, 2) * c == at(1, 2));
        EXPECT_EQ(dim(c.f(at(1, 2))), order == 300 ? 301 * 151u : 0u) << order;
    }
}

TEST(ScreenCorrector, IsNeverOfTheFirstOrderAlone) {
    seeded_random random(86);
    std::vector<point> points = grid(6, 6);
    auto const turned = [](point p) { return (1.01 * p).rotate(0.02); };
    for (unsigned int const most : {0u, 1u, 7u, 0xFFFFFFFFu}) {
        // Exact first order: no higher one is better.
        screen_corrector const c(800, 800, as_list(points), seen_through(turned, points, 0, random), most);
        EXPECT_TRUE(c.is_trivial() && c.residual == 0 && c.y_scale == 2.0 / 480 &&
                    c.coefficients.is_trivial());
    }
    EXPECT_TRUE(screen_corrector(800, 800, as_list(points), as_list(points), 7).is_trivial());
    points.resize(6);
    list const nominal = seen_through(decentred, points, 1, random);
    EXPECT_TRUE(screen_corrector(800, 800, as_list(points), nominal, 7).is_trivial());
    EXPECT_TRUE(screen_corrector(800, 800, list(), list(), 7).is_trivial());
}

TEST(ScreenCorrector, GivesTheFieldOfAPartOfTheScreen) {
    seeded_random random(87);
    for (unsigned int order = 1; order <= 10; ++order) {
        opened const c = random_field(random, order);
        point const origin = at(random.uniform(-0.5, 0.5) / c.x_scale, random.uniform(-0.5, 0.5) / c.y_scale);
        screen_corrector const part = c.sub_grab(origin);
        screen_corrector const same = c.sub_grab(at(0, 0)), untouched = c.sub_grab(point());
        for (int i = 0; i < 10; ++i) {
            point const p = at(random.uniform(-0.5, 0.5) / c.x_scale, random.uniform(-0.5, 0.5) / c.y_scale);
            // Shifted coefficients of order 10 reach a thousand times the old ones.
            EXPECT_NEAR(distance2d(p * part + (origin - at(0, 0)), (p + (origin - at(0, 0))) * c), 0, 1e-9);
            EXPECT_NEAR(distance2d(p * same, p * c), 0, 1e-11);
            EXPECT_TRUE(p * untouched == p * c);
        }
        EXPECT_TRUE(part.order == order && part.x_scale == c.x_scale && part.residual == c.residual);
    }
}

}  // namespace
}  // namespace tvmath
