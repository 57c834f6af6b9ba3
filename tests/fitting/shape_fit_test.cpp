#include "tvmath/shape_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/mirrored_points.h"
#include "support/relative.h"
#include "support/shape_points.h"
#include "tvmath/circle.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace {

// Half sizes, and where the figure lies.
struct figure {
    point center;
    double a, b, angle;
};

figure random_figure(seeded_random& random, double far) {
    double const a = random.log_uniform(1e-3, 1e5);
    return {at(random.uniform(-far, far), random.uniform(-far, far)), a, a * random.uniform(0.05, 0.9),
            random.uniform(-1.5, 1.5)};
}

// `n` places on each of the sides that are asked for: left, right, bottom, top.
mirrored_points sides_of(seeded_random& random, figure const& f, int n, double noise, char const* sides) {
    mirrored_points points(random, f.center, f.angle, noise);
    for (char const* side = sides; *side; ++side) {
        for (int i = 0; i < n; ++i) {
            double const q = random.uniform(-0.9, 0.9);
            if (*side == 'l' || *side == 'r') points.add(*side == 'l' ? -f.a : f.a, q * f.b, 1, 0);
            if (*side == 'b' || *side == 't') points.add(q * f.a, *side == 'b' ? -f.b : f.b, 0, 1);
        }
    }
    return points;
}

// The ends, and the sides between them; f.a is half the length between the ends' centres, f.b the radius.
mirrored_points slot_of(seeded_random& random, figure const& f, int n, double noise, char const* parts) {
    mirrored_points points(random, f.center, f.angle, noise);
    for (char const* part = parts; *part; ++part) {
        for (int i = 0; i < n; ++i) {
            double const w = random.uniform(-1.4, 1.4), q = random.uniform(-0.9, 0.9),
                         side = *part == 'l' ? -1 : 1;
            double const x = side * std::cos(w), y = std::sin(w);
            if (*part == 'l' || *part == 'r') points.add(side * f.a + f.b * x, f.b * y, x, y);
            if (*part == 'b' || *part == 't') points.add(q * f.a, *part == 'b' ? -f.b : f.b, 0, 1);
        }
    }
    return points;
}

void expect_figure(transform const& fitted, figure const& f, double tolerance) {
    ASSERT_FALSE(fitted.is_trivial());
    EXPECT_LE(distance2d(fitted.basis(0), f.center) / f.a, tolerance);
    EXPECT_TRUE(near_at_scale(fitted.size(1), f.a, f.a, tolerance, "first half size"));
    EXPECT_TRUE(near_at_scale(fitted.size(2), f.b, f.a, tolerance, "second half size"));
    EXPECT_LE(std::fabs(std::sin(fitted.basis(1).angle2d() - f.angle)), tolerance);
    EXPECT_FALSE(fitted.is_left_handed());
}

// Rounding of the coordinates, magnified a few times.
double tolerance_of(figure const& f, double far) {
    return 100 * 1.1e-16 * (far + f.a) / f.a;
}

TEST(ShapeFit, StaysAtTheFigureOfMirroredPoints) {
    seeded_random random(1);
    for (int trial = 0; trial < 150; ++trial) {
        SCOPED_TRACE(trial);
        double const far = random.log_uniform(1e-3, 1e6);
        figure f = random_figure(random, far);
        double const noise = (trial % 3) * 0.005 * f.b;
        int const n = trial % 5 == 0 ? 1000 : 5;  // more than the search samples
        std::vector<point> points = sides_of(random, f, n, noise, "lrbt").shuffled();
        expect_figure(rectangle_fit(as_array(points), rectangle()), f, tolerance_of(f, far));
        expect_figure(rectangle_fit(as_array(repeated(points)), rectangle()), f, tolerance_of(f, far));
        points = slot_of(random, f, n, noise, "lrbt").shuffled();
        expect_figure(slot_fit(as_array(points)), f, tolerance_of(f, far));

        points = sides_of(random, f, n, noise, "bt").shuffled();
        gap const opening = gap_fit(points);
        // The length spans the points; it and the centre along the sides are no matter of least squares.
        point const off = opening.basis(0) - f.center;
        EXPECT_LE(std::fabs(dot2d(off, opening.direction(2))) / f.a, tolerance_of(f, far));
        expect_figure(gap(opening.length(), opening.distance(), opening.angle2d(), f.center),
                      {f.center, opening.length() / 2, f.b, f.angle},
                      2 * f.a / opening.length() * tolerance_of(f, far));
        EXPECT_LE(opening.length() / 2, f.a);
        EXPECT_TRUE(gap_fit(as_array(points)) == opening);
    }
}

// Independent of the fit's own reasoning: no step in any direction makes the sum of squares smaller.
TEST(ShapeFit, IsAMinimumOfTheDistancesOfScatteredPoints) {
    seeded_random random(2);
    for (int trial = 0; trial < 40; ++trial) {
        SCOPED_TRACE(trial);
        std::vector<point> box_points, slot_points;
        for (int i = 0; i < 60; ++i) {
            double const q = random.uniform(-1, 1), off = 0.05 * random.normal(), side = i % 2 ? 1 : -1;
            box_points.push_back(i % 3 ? at(8 * q, side * (4 + off)) : at(side * (8 + off), 4 * q));
            double const r = 4 + off, w = 1.5 * q;
            slot_points.push_back(i % 3 ? at(8 * q, side * r)
                                        : at(side * (8 + r * std::cos(w)), r * std::sin(w)));
        }
        // Parameters: centre, angle, half sizes.
        auto const squares = [](std::vector<point> const& points, double const* v, bool is_slot) {
            long double sum = 0;
            for (point const& p : points) {
                long double const c = std::cos(static_cast<long double>(v[2])),
                                  s = std::sin(static_cast<long double>(v[2]));
                long double const dx = p.x() - v[0], dy = p.y() - v[1];
                long double const x = std::fabs(c * dx + s * dy) - v[3], y = std::fabs(c * dy - s * dx);
                long double const past = x > 0 ? x : 0, above = y - v[4];
                long double const round = std::hypot(past, y) - v[4];
                long double const sharp = x > 0 && above > 0 ? std::hypot(x, above) : x > above ? x : above;
                sum += is_slot ? round * round : sharp * sharp;
            }
            return sum;
        };
        rectangle const box = rectangle_fit(as_array(box_points), rectangle());
        slot const hole = slot_fit(as_array(slot_points));
        for (bool const is_slot : {false, true}) {
            auto const& points = is_slot ? slot_points : box_points;
            transform const& t = is_slot ? static_cast<transform const&>(hole) : box;
            ASSERT_FALSE(t.is_trivial());
            double const best[5] = {t.basis(0).x(), t.basis(0).y(), t.basis(1).angle2d(), t.size(1),
                                    t.size(2)};
            long double const least = squares(points, best, is_slot);
            for (int step = 0; step < 200; ++step) {
                double moved[5];
                double const length = random.log_uniform(1e-9, 1e-3);
                for (int k = 0; k < 5; ++k) moved[k] = best[k] + length * random.normal();
                // Rounding of the parameters moves the least sum by its own square only.
                EXPECT_GE(squares(points, moved, is_slot), least * (1 - 1e-14L));
            }
        }
    }
}

TEST(ShapeFit, TellsWhenThePointsDoNotTell) {
    seeded_random random(3);
    for (int trial = 0; trial < 50; ++trial) {
        SCOPED_TRACE(trial);
        figure const f = {at(random.uniform(-50, 50), 7), 10, random.uniform(2, 8),
                          random.uniform(-1.5, 1.5)};
        double const noise = (trial % 3) * 0.005 * f.b;
        for (char const* sides : {"l", "t", "lt", "bt", "lrb", "lbt"}) {
            SCOPED_TRACE(sides);
            auto const points = sides_of(random, f, 15, noise, sides).shuffled();
            EXPECT_TRUE(rectangle_fit(as_array(points), rectangle()).is_trivial());
        }
        for (char const* parts : {"b", "bt", "lb", "lbt"}) {
            SCOPED_TRACE(parts);
            EXPECT_TRUE(slot_fit(as_array(slot_of(random, f, 15, noise, parts).shuffled())).is_trivial());
        }
        EXPECT_TRUE(slot_fit(as_array(circle_points(random, f.center, 5, 0, 6.28, 40, noise))).is_trivial());
        EXPECT_TRUE(gap_fit(sides_of(random, f, 40, noise, "b").shuffled()).is_trivial());
    }
    double const nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<point> const square = {at(0, 1), at(0, 2), at(3, 0), at(4, 2), at(2, 4)};
    for (point const& bad : {point(), at(nan, 0), at(0, infinity)}) {
        std::vector<point> points = square;
        points.push_back(bad);
        EXPECT_TRUE(rectangle_fit(as_array(points), rectangle()).is_trivial());
        EXPECT_TRUE(slot_fit(as_array(points)).is_trivial());
        EXPECT_TRUE(gap_fit(points).is_trivial());
    }
    EXPECT_TRUE(gap_fit({at(0, 0), at(1, 1), at(2, 2)}).is_trivial());
    EXPECT_TRUE(gap_fit({at(0, 0), at(1, 1), at(1, 1)}).is_trivial());
    EXPECT_TRUE(rectangle_fit(as_array(repeated({at(0, 0), at(1, 0), at(1, 1), at(0, 1)})), rectangle())
                    .is_trivial());
}

TEST(RectangleFit, FollowsTheNominalRectangle) {
    seeded_random random(4);
    figure const f = {at(3, 4), 10, 6, 0.2};
    idioms::array<point> const points = as_array(sides_of(random, f, 10, 0.01, "lrbt").shuffled());
    for (int turns = 0; turns < 4; ++turns) {
        rectangle const nominal = rotate_rectangle(rectangle(21, 11, 0.1, at(3.2, 4.1)), turns);
        rectangle const fitted = rectangle_fit(points, nominal);
        EXPECT_GT(dot2d(fitted.direction(1), nominal.direction(1)), 0.9);
        EXPECT_NEAR(fitted.width(), turns % 2 ? 12 : 20, 1e-12);
    }
    // A nominal rectangle far away costs nothing.
    expect_figure(rectangle_fit(points, rectangle(1, 2, 1.5, at(1e5, 0))).rotate(0.0),
                  {f.center, 6, 10, f.angle + pi / 2}, 1e-12);

    // A regular pentagon lies on five rectangles: the nominal one decides.
    for (int k = 0; k < 5; ++k) {
        double const angle = 2 * pi * k / 5;
        std::vector<point> pentagon;
        for (int i = 0; i < 5; ++i) pentagon.push_back(make_polar_point(1, pi / 2 + 2 * pi * i / 5));
        rectangle const fitted = rectangle_fit(as_array(pentagon), rectangle(2, 2, angle + 0.01, at(0, 0)));
        EXPECT_NEAR(std::sin(fitted.angle2d() - angle), 0, 1e-14);
    }
}

TEST(ShapeConstructors, PassThroughTheirPoints) {
    seeded_random random(5);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        figure const f = {at(3, -4), 10, random.uniform(2, 9), random.uniform(-1.5, 1.5)};
        mirrored_points const frame(random, f.center, f.angle, 0);
        double const q = random.uniform(0.2, 0.9), w = random.uniform(-1, 1);
        point const first = frame.out(-q * f.a, -f.b), second = frame.out(q * f.a, -f.b);
        point const above = frame.out(w * f.a / 2, f.b);
        expect_figure(
            rectangle(first, second, frame.out(f.a, w * f.b / 2), above, frame.out(-f.a, -w * f.b / 2)), f,
            1e-13);
        double const x = f.b * std::cos(w), y = f.b * std::sin(w);
        expect_figure(slot(first, second, frame.out(f.a + x, y), above, frame.out(-f.a - x, y)), f, 1e-12);
        gap const opening(first, second, above);
        EXPECT_NEAR(opening.distance(), 2 * f.b, 1e-13);
        auto const on_ellipse = [&](double t) { return frame.out(f.a * std::cos(t), f.b * std::sin(t)); };
        ellipse const oval(on_ellipse(w), on_ellipse(w + 1.3), on_ellipse(w + 2.5), on_ellipse(w + 3.9),
                           on_ellipse(w + 5));
        expect_figure(oval, f, 1e-12);
    }
    circle const ring(at(2, 0), at(0, 2), at(-2, 0));
    EXPECT_NEAR(ring.radius(), 2, 1e-15);
    EXPECT_TRUE(ellipse(at(2, 0), at(0, 2), at(-2, 0)) == ring);
    EXPECT_NEAR(sphere(at(3, 0, 0), at(0, 3, 0), at(0, 0, 3), at(-3, 0, 0)).radius(), 3, 1e-14);
    EXPECT_TRUE(circle(at(0, 0), at(1, 0), at(2, 0)).is_trivial());
    EXPECT_TRUE(ellipse(at(1, 1), at(2, 0.5), at(4, 0.25), at(-1, -1), at(-2, -0.5)).is_trivial());
}

TEST(ShapeFit, LiesAtTheMeanHeightOfPointsInSpace) {
    idioms::array<point> const points =
        as_array({at(-4, -1, 1), at(3, -1, 3), at(5, 0, 1), at(2, 1, 3), at(-5, 0, 1), at(-3, 1, 3)});
    transform const fitted[] = {rectangle_fit(points, rectangle()), slot_fit(points),
                                gap_fit({at(-4, -1, 1), at(3, -1, 3), at(2, 1, 3), at(-3, 1, 1)})};
    for (transform const& t : fitted) {
        EXPECT_NEAR(t.basis(0).z(), 2, 1e-14);
        EXPECT_TRUE(t.basis(3) == point(false, 0, 0, 1));
        EXPECT_NEAR(t.size(2), 1, 1e-12);
    }
}

}  // namespace
}  // namespace tvmath
