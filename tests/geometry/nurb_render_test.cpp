#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/nurb_curves.h"
#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/nurb.h"

inline namespace tvmath {
namespace {

double const pi_here = 2 * std::acos(0.0), nan = std::nan(""), infinite = HUGE_VAL;

double distance_from_polyline(point const& p, curve const& line) {
    double best = infinite;
    for (unsigned int i = 1; i < line.capacity(); ++i) {
        point const chord = line[i] - line[i - 1];
        double const length2 = sqr(chord), s = length2 > 0 ? dot(p - line[i - 1], chord) / length2 : 0;
        best = std::min(best, distance3d(p, line[i - 1] + chord * std::min(1.0, std::max(0.0, s))));
    }
    return best;
}

struct moments {
    double area = -1, perimeter = -1, length = -1;
    point centroid = at(-1, -1);
};
moments moments_of(idioms::array<nurb> const& outline) {
    moments m;
    compute_moments(outline, m.length);
    compute_moments(outline, m.area, m.perimeter, m.centroid);
    return m;
}
moments moments_of(nurb const& n) {
    moments m;
    n.compute_moments(m.length);
    n.compute_moments(m.area, m.perimeter, m.centroid);
    return m;
}

TEST(NurbRender, StepsEverySpanThatIsNotEmpty) {
    seeded_random random(11);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        std::vector<point> expected = {n.evaluate(first_parameter(n))};
        for (unsigned int span = n.degree(); span < n.control_points(); ++span) {
            double const low = n.get_knot(span), width = n.get_knot(span + 1) - low;
            for (int i = 1; i <= 4 && width > 0; ++i) expected.push_back(n.evaluate(low + width * i / 4));
        }
        curve const open = n.render(4, false), closed = n.render(4, true);
        ASSERT_EQ(open.capacity(), expected.size());
        ASSERT_EQ(closed.capacity() + 1, expected.size());
        for (unsigned int i = 0; i < open.capacity(); ++i) {
            EXPECT_LT(distance3d(open[i], expected[i]), 1e-12);
            EXPECT_TRUE(open[i].is_3d() && (i == 0 || open[i] == closed[i - 1]));
        }
    }
    EXPECT_EQ(circle_nurb(at(0, 0, 0), 1).render(-3, true).capacity(), 4u);
}

// Closed forms of the circle, near the origin and where coordinates have six digits before a small radius.
TEST(NurbRender, MakesAnExactCircle) {
    for (point const& center : {at(0, 0, 0), at(3, -2, 5), at(1048576, -1048576, 0)}) {
        double const r = 0.125, ulps = std::max(1e-16, 4e-16 * std::fabs(center.x()));
        nurb const n = circle_nurb(center, r);
        for (point const& p : n.render(50, false)) EXPECT_NEAR(distance3d(p, center), r, 2 * ulps);
        moments const m = moments_of(n);
        // The weighted coordinates of the corners are rounded where the circle is.
        EXPECT_NEAR(m.length, 2 * pi_here * r, 1e-7 * r + 20 * ulps);
        EXPECT_NEAR(m.perimeter, 2 * pi_here * r, 1e-7 * r + 20 * ulps);
        EXPECT_NEAR(m.area, pi_here * r * r, 1e-7 * r * r + 20 * ulps * r);
        EXPECT_LT(distance2d(m.centroid, center), 1e-7 * r + 20 * ulps);
        EXPECT_TRUE(m.centroid.is_2d());
        nurb back = n;
        back.reverse();
        EXPECT_NEAR(moments_of(back).area, -m.area, 1e-12 + 20 * ulps * r);
    }
}

TEST(NurbMoments, AgreeWithDensePolygons) {
    seeded_random random(12);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        curve const line = n.render(4000, false);
        double area = 0, length = 0, mx = 0, my = 0, flow = 0;
        for (unsigned int i = 0; i < line.capacity(); ++i) {
            bool const is_end = i + 1 == line.capacity();
            point const p = line[i], q = line[is_end ? 0 : i + 1];
            double const a = cross2d(p, q) / 2;
            area += a;
            flow += std::fabs(a);
            mx += a * (p.x() + q.x()) / 3;
            my += a * (p.y() + q.y()) / 3;
            if (!is_end) length += distance3d(p, q);
        }
        moments const m = moments_of(n);
        EXPECT_TRUE(
            relatively_near(m.length, length, 1e-5, "the quadrature's bound where a speed has a kink"));
        EXPECT_TRUE(relatively_near(m.perimeter, length, 1e-5, "the same"));
        EXPECT_TRUE(near_at_scale(m.area, area, flow, 1e-5, "of all that is swept to and fro"));
        if (std::fabs(area) < 1e-3 * flow) continue;
        EXPECT_LT(distance2d(m.centroid, at(mx / area, my / area)), 1e-4 * flow / std::fabs(area));
    }
}

// A half circle of radius 1 above the X axis, closed by its diameter: worked by hand.
TEST(NurbMoments, CloseGapsByStraightLines) {
    nurb quarter = circle_nurb(at(7, 8, 0), 1), other = quarter;
    quarter.clip_evaluation_range(0, 1);
    other.clip_evaluation_range(1, 2);
    nurb half = circle_nurb(at(7, 8, 0), 1);
    half.clip_evaluation_range(0, 2);
    idioms::array<nurb> chain(4);  // two null curves among them
    chain(1) = quarter;
    chain(3) = other;
    for (moments const& m : {moments_of(half), moments_of(chain)}) {
        EXPECT_NEAR(m.area, pi_here / 2, 1e-7);
        EXPECT_NEAR(m.length, pi_here, 1e-7);
        EXPECT_NEAR(m.perimeter, pi_here, 1e-7);
        EXPECT_LT(distance2d(m.centroid, at(7, 8 + 4 / (3 * pi_here))), 1e-7);
    }
    chain(3) = nurb();  // a segment of a quarter
    EXPECT_NEAR(moments_of(chain).area, pi_here / 4 - 0.5, 1e-7);
    point const way(false, 0.7, 0.1);  // a straight line there and back: its area is what rounding left
    moments const line = moments_of(bezier_to_nurb(curve(at(1, 3), at(1, 3) + 0.3 * way, at(1, 3) - way), 2));
    EXPECT_TRUE(line.area != 0 && line.centroid.is_trivial());
    for (moments const& m : {moments_of(nurb()), moments_of(idioms::array<nurb>())}) {
        EXPECT_EQ(m.area + m.perimeter + m.length, 0);
        EXPECT_TRUE(m.centroid.is_trivial());
    }
}

TEST(NurbRender, FollowsTheCurveByACubicPath) {
    seeded_random random(13);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        nurb n = random_nurb(random);
        if (trial % 3 == 0) n += at(1e6, 1e6, 0);
        curve const path = n.render_bezier();
        ASSERT_EQ(path.capacity() % 3, 1u);
        nurb const again = bezier_to_nurb(path, 3);
        curve const line = n.render(8000, false);  // chords that leave the curve by less than 1e-6
        double worst = 0;
        for (int i = 0; i < 10; ++i) {
            point const p = again.evaluate(random_parameter(random, again));
            worst = std::max(worst, distance_from_polyline(p, line));
        }
        EXPECT_LT(worst, 1e-6 * 20);  // of the cube of the points
    }
}

TEST(NurbRender, GivesACubicPathBackAsItIs) {
    seeded_random random(14);
    curve path(10);
    for (unsigned int i = 0; i < 10; ++i) path(i) = at(random.normal(), random.normal(), random.normal());
    curve const same = bezier_to_nurb(path, 3).render_bezier();
    ASSERT_EQ(same.capacity(), 10u);
    for (unsigned int i = 0; i < 10; ++i) EXPECT_EQ(same[i], path[i]);
    // A parabola raised by hand, and a curve of degree 0, which jumps from point to point.
    curve const raised = bezier_to_nurb(curve(at(0, 0), at(3, 3), at(6, 0)), 2).render_bezier();
    EXPECT_TRUE(raised[1] == at(2, 2, 0) && raised[2] == at(4, 2, 0));
    EXPECT_EQ(uniform_bspline_to_nurb(curve(at(0, 0), at(3, 3)), 0).render_bezier().capacity(), 10u);
}

TEST(NurbRender, KeepsAPolylineWithinItsTolerance) {
    seeded_random random(15);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        nurb const n = random_nurb(random);
        double const tolerance = random.log_uniform(1e-4, 1);
        curve const line = n.render_polyline(point(), tolerance, 4);
        curve const moved = n.render_polyline(at(1, 2, 3), tolerance, 4);
        ASSERT_EQ(line.capacity(), moved.capacity());
        for (int i = 0; i < 200; ++i) {
            double const t = random_parameter(random, n);
            EXPECT_LT(distance_from_polyline(n.evaluate(t), line), tolerance);
            EXPECT_LT(distance_from_polyline(point(n.evaluate(t)) - point(false, 1, 2, 3), moved), tolerance);
        }
    }
    // A chord over the angle a has the sagitta r (1 - cos(a / 2)): 64 equal chords would do. The parameter is
    // not quite that of the angle, and only halves are tried.
    nurb const n = circle_nurb(at(1048576, 0, 0), 1);
    curve const circle = n.render_polyline(at(1048576, 0), 1 - std::cos(pi_here / 64), 1);
    EXPECT_TRUE(circle.capacity() > 64 && circle.capacity() <= 2 * 64 + 1);
    EXPECT_LT(distance3d(circle[0], at(1, 0, 0)), 1e-9);
    // 0, negative and NaN: a sagitta of 1e-9 of the square's side, so 5e4 chords if they were equal.
    for (double const finest : {0.0, -1.0, nan}) {
        unsigned int const pieces = n.render_polyline(point(), finest, 1).capacity() - 1;
        EXPECT_TRUE(pieces > 49000 && pieces < 4 * 49000) << pieces;
    }
}

// Nothing to expect but an end, points that can be counted, and no fault that the sanitizers see.
TEST(NurbHostile, EndsWithoutHarm) {
    std::vector<point> const p = {at(0, 0), at(1, 2), at(3, 1), at(4, 4), at(5, 0)};
    double const tiny = std::numeric_limits<double>::denorm_min();
    struct {
        char const* name;
        nurb n;
    } const cases[] = {
        {"null", nurb()},
        {"order 0", nurb(0, 5)},
        {"no points", nurb(4, 0)},
        {"fewer points than the order", nurb(7, 3)},
        {"all zero", nurb(4, 6)},
        {"order beyond polynomials", nurb(300, 400)},
        {"knots descend", make_nurb({9, 8, 7, 6, 5, 4, 3, 2}, p)},
        {"knots in no order", make_nurb({0, 5, 1, 9, -3, 2, 7, 4}, p)},
        {"all equal", make_nurb({1, 1, 1, 1, 1, 1, 1, 1}, p)},
        {"knots are no numbers", make_nurb({nan, 0, nan, 1, nan, 2, 3, nan}, p)},
        {"infinite knots", make_nurb({-infinite, -infinite, 0, 1, 2, infinite, infinite, infinite}, p)},
        {"huge and tiny spans", make_nurb({0, 0, 0, tiny, 1, 1e308, 1e308, 1e308}, p)},
        {"weights of 0", make_nurb({0, 0, 0, 1, 2, 3, 3, 3}, p, {0, 0, 0, 0, 0})},
        {"a pole", make_nurb({0, 0, 0, 1, 2, 3, 3, 3}, p, {1, -1, 1, -1, 1})},
        {"weights are no numbers", make_nurb({0, 0, 0, 1, 2, 3, 3, 3}, p, {1, nan, infinite, 1, 1})},
        {"a knot too often", make_nurb({0, 0, 1, 1, 1, 1, 2, 2}, p)},
    };
    double const values[] = {2, nan, 1, infinite, 0, -infinite, 1, 1, 1, 1, 0.5};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        for (double const t : {0.0, 1.0, 2.5, 9.0, -1e300, nan, infinite, -infinite}) c.n.evaluate(t);
        nurb n = c.n;
        n.insert_knots(values, 11);
        for (double const t : values) n.evaluate(t);
        n.clip_evaluation_range(0.5, 2.5);
        n.reverse();
        n *= transform(infinite, nan);
        for (nurb const& each : {c.n, n}) {
            moments_of(each);
            EXPECT_LE(each.render(3, false).capacity(), 19u);
            EXPECT_LE(each.render_bezier().capacity(), 5 * 1024 * 3 + 1u);
            for (double const tolerance : {nan, 0.0, -1.0, infinite, tiny}) {
                EXPECT_LE(each.render_polyline(at(nan, 0), tolerance, 0).capacity(), 5 * 65536 + 1u);
            }
            unsigned int const order = each.order();
            std::vector<double> table(order * order + 1, 7);
            for (unsigned int const span : {0u, 2u, 3u, 9u, 0xFFFFFFFFu})
                each.calc_poly(span, table.data(), 0);
            EXPECT_EQ(table.back(), 7);
            open_nurb_integrand const beyond(each, 12);
            EXPECT_EQ(beyond(0.5) + beyond.lower_bound() + beyond.upper_bound(), 0);
        }
    }
    nurb moved = circle_nurb(at(0, 0, 0), 1);
    nurb const taken = std::move(moved);
    EXPECT_THROW(moved.evaluate(0), pointer_exception);
}

}  // namespace
}  // namespace tvmath
