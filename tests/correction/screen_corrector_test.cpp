#include "tvmath/screen_corrector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

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
    for (point& p : points) p = true_place(p) + noise * point(false, random.normal(), random.normal());
    return as_list(points);
}

// Grid lines from edge to edge of a screen of 640 by 480 pixels.
std::vector<point> grid(int columns, int lines) {
    std::vector<point> points;
    for (int k = 0; k < columns * lines; ++k) {
        points.push_back(
            at(640.0 * (k % columns) / (columns - 1) - 320, 480.0 * (k / columns) / (lines - 1) - 240));
    }
    return points;
}

opened random_field(seeded_random& random, unsigned int order) {
    opened c;
    c.order = order;
    c.x_scale = 2 / random.uniform(300, 3000);
    c.coefficients = matrix(2, (order + 1) * (order + 2) / 2);
    for (unsigned int r = 0; r < 2; ++r) {
        for (unsigned int k = 0; k < cols(c.coefficients); ++k) c.coefficients(r)(k) = random.uniform(-5, 5);
    }
    return c;
}

point random_place(seeded_random& random, screen_corrector const& c, double part) {
    return at(random.uniform(-part, part) / c.x_scale, random.uniform(-part, part) / c.y_scale);
}

TEST(ScreenCorrector, AddsAndTakesOffTheFieldOfItsTerms) {
    seeded_random random(81);
    for (unsigned int order = 1; order <= 40; ++order) {  // also those beyond any that a lens needs
        SCOPED_TRACE(order);
        opened const c = random_field(random, order);
        point const q = random_place(random, c, 1), p(random.coin(), q.x(), q.y(), 7);
        double const u = std::acos(p.x() * c.x_scale), v = std::acos(p.y() * c.y_scale);
        vector const terms = c.f(p);
        double dx = 0, dy = 0;
        unsigned int k = 0;
        for (unsigned int d = 0; d <= order; ++d) {
            for (unsigned int j = 0; j <= d; ++j, ++k) {
                double const term = std::cos((d - j) * u) * std::cos(j * v);
                EXPECT_NEAR(terms[k], term, 1e-11);  // near the edge the arc cosine loses half of the digits
                dx += c.coefficients[0][k] * term;
                dy += c.coefficients[1][k] * term;
            }
        }
        point const there = p * c, back = p / c;
        EXPECT_NEAR(distance3d(there, p + point(false, dx, dy)), 0, 1e-9);
        EXPECT_NEAR(distance3d(back, p - point(false, dx, dy)), 0, 1e-9);  // the displacement at p itself
        EXPECT_TRUE(there.is_3d() && there.is_location() == p.is_location() && (q * c).is_2d());
        // Paths, many points at a time, and the product with the matrix give the same bits.
        EXPECT_TRUE(there == p + point(false, c.coefficients * terms));
        std::vector<point> path(21, p);
        path[3] = path[20] = point();
        curve const carried = curve(as_list(path)) * c, removed = curve(as_list(path)) / c;
        for (unsigned int i = 0; i < 21; ++i) {
            EXPECT_TRUE(carried[i] == (path[i].is_trivial() ? point() : there) && removed[i] == path[i] / c);
        }
    }
}

// The differences left over are orthogonal to every term, and the residual is their length. Where there are
// none the field comes back, also from a tenth of the screen: there the normal equations of order 6 and above
// have no digit left.
TEST(ScreenCorrector, LeavesTheLeastSquares) {
    seeded_random random(82);
    for (int trial = 0; trial < 72; ++trial) {
        SCOPED_TRACE(trial);
        int const order = 1 + trial % 8;
        int const kind = trial / 8 % 3;
        double const noise = kind == 0 ? 1 : 0, part = kind == 2 ? 0.1 : 1;
        opened const truth = random_field(random, static_cast<unsigned int>(order));
        opened c = truth;
        point const middle = random_place(random, c, 0.9 * (1 - part));
        std::vector<point> measured;
        for (int i = 0; i < 60 + trial; ++i) {
            measured.push_back(middle + (random_place(random, c, part) - at(0, 0)));
        }
        list const nominal = seen_through([&](point p) { return p * truth; }, measured, noise, random);
        c.fit(order, as_list(measured), nominal);
        vector along(dim(c.f(middle)));
        double squares = 0;
        for (unsigned int i = 0; i < nominal.capacity(); ++i) {
            point const left = nominal[i] - measured[i] * c;
            squares += sqr(left);
            along += c.f(measured[i]) * (left.x() + 3 * left.y());
            EXPECT_TRUE(noise > 0 || left.length2d() < 1e-10);
        }
        EXPECT_LT(maximum_norm(along), 1e-9);
        double const freedom = static_cast<double>(nominal.capacity() - dim(along));
        EXPECT_NEAR(c.residual, std::sqrt(squares / freedom), 1e-9);
    }
}

// Lenses on a screen of 640 by 480, r in units of half its width.
lens radial(double third, double fifth) {
    return [=](point p) {
        double const r2 = sqr(p) / (320 * 320);
        return p * (1 + third * r2 + fifth * r2 * r2);
    };
}
point decentred(point p) {
    double const x = p.x() / 320, y = p.y() / 320, r2 = x * x + y * y;
    return p + point(false, 6 * x * y + 2 * (r2 + 2 * x * x), 3 * (r2 + 2 * y * y) + 4 * x * y);
}
point tilted(point p) {
    return p * (1 / (1 + 2e-5 * p.x() - 1e-5 * p.y()));
}

TEST(ScreenCorrector, FollowsLensesAsCloselyAsTheNoiseAllows) {
    struct {
        lens true_place;
        unsigned int order;  // of the lens; as far as the noise can tell, for the tilted one
        int columns, lines;
    } const cases[] = {{decentred, 2, 3, 3},
                       {tilted, 2, 3, 3},
                       {tilted, 2, 9, 7},
                       {radial(0.02, 0), 3, 6, 5},
                       {radial(-0.05, 0), 3, 20, 20},
                       {radial(0.03, -0.02), 5, 12, 10},
                       {radial(-0.1, 0.04), 5, 50, 40}};
    seeded_random random(83);
    double const noise = 0.02;
    for (auto const& [true_place, order, columns, lines] : cases) {
        std::vector<point> const seen = grid(columns, lines);
        SCOPED_TRACE(testing::Message() << "order " << order << ", " << seen.size() << " points");
        double const n = static_cast<double>(seen.size());
        double squares = 0, largest = 0;
        for (int trial = 0; trial < 20; ++trial) {
            screen_corrector const c(640, 480, as_list(seen), seen_through(true_place, seen, noise, random),
                                     6);
            EXPECT_GE(c.order, order);
            squares += c.residual * c.residual / 20;
            // Points not used in the fit, out to the corners, where polynomials swing first.
            for (int i = 0; i < 40; ++i) {
                point const p =
                    i < 4 ? at(i % 2 ? 319 : -319, i < 2 ? 239 : -239) : random_place(random, c, 1);
                largest = std::max(largest, distance2d(p * c, true_place(p)));
            }
        }
        // The order is chosen for its small residual, which takes some off. A corner of a grid of N points is
        // off by noise times the root of 4 n² / N at most, n = 28 terms; six of these for the worst of all.
        EXPECT_NEAR(std::sqrt(squares / 2), noise, noise * (n < 10 ? 0.5 : 0.15));
        EXPECT_LT(largest, 6 * noise * std::max(1.0, 2 * 28 / std::sqrt(n)));
        // Without noise the search ends at the order of the lens.
        screen_corrector const c(640, 480, as_list(seen), seen_through(true_place, seen, 0, random), 6);
        if (n == 63) continue;  // tilt is no polynomial
        EXPECT_EQ(c.order, order);
    }
}

TEST(ScreenCorrector, DoesNothingWhereThePointsDoNotTell) {
    seeded_random random(85);
    for (int set = 0; set < 6; ++set) {
        SCOPED_TRACE(set);
        std::vector<point> points;
        for (int i = 0; i < 60; ++i) {
            double const x = random.uniform(-300, 300), turn = random.uniform(-3, 3);
            point const of_set[] = {at(17.3, 31.9),
                                    at(x, 0.37 * x + 11),
                                    at(100 * std::cos(turn), 50 * std::sin(turn)),
                                    at(x, 100.1 * (i % 4) - 150),
                                    at(x, i == 40 ? NAN : 50 * turn),
                                    at(x, 50 * turn)};
            points.push_back(of_set[set]);
        }
        list nominal = seen_through(decentred, points, 0.1, random);
        if (set == 5) nominal(59)(2) = INFINITY;
        opened c;
        c.fit(4, as_list(points), nominal);
        EXPECT_TRUE(c.residual == infinity && c.coefficients.is_trivial() && c.order == 4 && !c.is_trivial());
        EXPECT_TRUE(at(1, 2) * c == at(1, 2) && at(1, 2) / c == at(1, 2) && c.sub_grab(at(1, 2)).order == 4);
        screen_corrector const searched(1000, 500, as_list(points), nominal, 9);
        bool const some_order = set == 3;  // those of less than four lines
        EXPECT_TRUE(some_order ? searched.order == 2 || searched.order == 3 : searched.is_trivial());
        EXPECT_EQ(searched.x_scale, some_order ? 0.002 : 2.0 / 640);
        EXPECT_EQ(searched.y_scale, some_order ? 0.004 : 2.0 / 480);
    }
    opened c;
    std::vector<point> two_lines;  // on zeros of T2, as far as rounding lets them
    for (int i = 0; i < 60; ++i) {
        double const y = (240 + 1e-14 * (i % 7)) * std::sqrt(0.5);
        two_lines.push_back(at(random.uniform(-300, 300), i % 2 == 0 ? y : -y));
    }
    c.fit(2, as_list(two_lines), seen_through(decentred, two_lines, 0.1, random));
    EXPECT_EQ(c.residual, infinity);
    list const points = as_list(grid(5, 5));
    for (list const& other_length : {as_list(grid(5, 6)), as_list(grid(5, 4)), list()}) {
        c.fit(2, points, other_length);
        EXPECT_EQ(c.residual, infinity);
    }
    for (int const order : {2147483647, 6, 0, -2147483647 - 1}) {
        c.fit(order, points, points);
        EXPECT_TRUE(c.coefficients.is_trivial() && c.residual == (order > 0 ? infinity : 0.0));
    }
    c.coefficients = matrix(2, 30);  // fewer than these orders ask for
    for (c.order = 300; c.order != 0; c.order = c.order == 300 ? 0x7FFFFFFFu : c.order << 1) {
        EXPECT_TRUE(at(1, 2) * c == at(1, 2) && dim(c.f(at(1, 2))) == (c.order == 300 ? 301u * 151 : 0));
    }
}

TEST(ScreenCorrector, IsNeverOfTheFirstOrderAlone) {
    seeded_random random(86);
    std::vector<point> points = grid(6, 6);
    auto const turned = [](point p) { return (1.01 * p).rotate(0.02); };
    for (unsigned int const most : {0u, 1u, 7u, 0xFFFFFFFFu}) {  // higher orders leave no less than nothing
        screen_corrector const c(800, 800, as_list(points), seen_through(turned, points, 0, random), most);
        EXPECT_TRUE(c.is_trivial() && c.residual == 0 && c.y_scale == 2.0 / 480 &&
                    c.coefficients.is_trivial());
    }
    EXPECT_TRUE(screen_corrector(800, 800, as_list(points), as_list(points), 7).is_trivial());
    EXPECT_TRUE(screen_corrector(800, 800, list(), list(), 7).is_trivial());
    points.clear();
    for (int i = 1; i <= 7; ++i) {  // the second order has six terms, and asks for a point more
        points.push_back(random_place(random, {}, 1));
        screen_corrector const c(8, 8, as_list(points), seen_through(decentred, points, 0, random), 7);
        EXPECT_EQ(c.order, i < 7 ? 0u : 2u);
    }
}

TEST(ScreenCorrector, GivesTheFieldOfAPartOfTheScreen) {
    seeded_random random(87);
    for (unsigned int order = 1; order <= 10; ++order) {
        opened const c = random_field(random, order);
        point const origin = random_place(random, c, 0.5), shift = origin - at(0, 0);
        screen_corrector const part = c.sub_grab(origin), same = c.sub_grab(at(0, 0)),
                               none = c.sub_grab(point());
        for (int i = 0; i < 10; ++i) {
            point const p = random_place(random, c, 0.5);
            EXPECT_NEAR(distance2d(p * part + shift, (p + shift) * c), 0, 1e-9);
            EXPECT_TRUE(distance2d(p * same, p * c) < 1e-11 && p * none == p * c);
        }
        EXPECT_TRUE(part.order == order && part.x_scale == c.x_scale && part.residual == c.residual);
    }
}

}  // namespace
}  // namespace tvmath
