#include "tvmath/ellipse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/circle.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

double const nan_value = std::nan("");

point random_direction(seeded_random& random, bool solid, double size) {
    double const x = random.normal(), y = random.normal();
    return normalize(solid ? point(false, x, y, random.normal()) : point(false, x, y)) * size;
}

// Oblique half-diameters of a ratio up to 5, in either handedness, in the plane or in space.
ellipse random_ellipse(seeded_random& random, bool solid) {
    for (;;) {
        double const size = random.log_uniform(0.01, 100);
        point const u = random_direction(random, solid, size);
        point const v = random_direction(random, solid, size * random.uniform(0.3, 3));
        point const normal = cross(u, v);
        if (normal.length3d() < 0.2 * size * size) continue;
        double const x = random.uniform(-100, 100), y = random.uniform(-100, 100);
        if (!solid) return ellipse(make_transform(at(x, y), u, v));
        return ellipse(make_transform(at(x, y, random.uniform(-100, 100)), u, v, normalize(normal)));
    }
}

// Of a size between 0.4 and 2, and moved by up to 10.
transform random_transform(seeded_random& random) {
    auto const number = [&] { return random.uniform(-3, 3); };
    if (random.coin())
        return transform::dilation(random.uniform(0.5, 2), -1).rotate(number()).translate(9, 8);
    return transform::dilation(random.uniform(0.5, 2), 1, 0.8).rotate(number(), number(), number()) *
           transform(1, 2, 3);
}

point point_of(ellipse const& e, double t) {
    return e.center() + std::cos(t) * e.basis(1) + std::sin(t) * e.basis(2);
}

// On the outer parallel at a distance, by the definition: at right angles to the tangent, in the plane.
point parallel_point(ellipse const& e, double t, double distance) {
    point const u = e.basis(1), v = e.basis(2), tangent = std::cos(t) * v - std::sin(t) * u;
    return point_of(e, t) + normalize(cross(tangent, cross(u, v))) * distance;
}

point on_bezier(curve const& path, unsigned int segment, double t) {
    std::vector<point> p(path.begin() + 3 * segment, path.begin() + 3 * segment + 4);
    for (std::size_t left = 3; left > 0; --left) {
        for (std::size_t i = 0; i < left; ++i) p[i] = p[i] + (p[i + 1] - p[i]) * t;
    }
    return p[0];
}

void expect_near_rect(CRealRect const& actual, CRealRect const& expected, double tolerance) {
    EXPECT_NEAR(actual.left, expected.left, tolerance);
    EXPECT_NEAR(actual.bottom, expected.bottom, tolerance);
    EXPECT_NEAR(actual.right, expected.right, tolerance);
    EXPECT_NEAR(actual.top, expected.top, tolerance);
}

void expect_same_points(curve const& a, curve const& b, double tolerance) {
    ASSERT_EQ(a.capacity(), b.capacity());
    for (unsigned int i = 0; i < a.capacity(); ++i) {
        EXPECT_LT(distance3d(a[i], b[i]), tolerance) << i;
        EXPECT_TRUE(a[i].is_location());
    }
}

TEST(Ellipse, IsDrawnThroughATransformAsItsDrawingIs) {
    seeded_random random(31);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        transform const t = random_transform(random);
        ellipse const moved(e * t), back(e * t / t);
        double const a1 = random.uniform(-7, 7), a2 = random.uniform(-7, 7);
        // Rounding at coordinates of 1e3, and the drift of the recurrence over 100 points, n² 1e-16 of the
        // size.
        double const tolerance = 1e-12 * (2 + e.semimajor() + e.semiminor());
        expect_same_points(moved.render_ellipse(100), e.render_ellipse(100) * t, tolerance);
        expect_same_points(moved.render_ellipse(100, a1, a2), e.render_ellipse(100, a1, a2) * t, tolerance);
        expect_same_points(moved.render_bezier(), e.render_bezier() * t, tolerance);
        expect_same_points(moved.render_bezier(a1, a2), e.render_bezier(a1, a2) * t, tolerance);
        expect_same_points(back.render_ellipse(9), e.render_ellipse(9), tolerance);

        curve const arc = e.render_ellipse(100, a1, a2);
        ASSERT_EQ(arc.capacity(), 101u);
        for (unsigned int i = 0; i <= 100; ++i) {
            EXPECT_LT(distance3d(arc[i], point_of(e, a1 + (a2 - a1) * i / 100)), tolerance);
        }
    }
}

TEST(Ellipse, RendersParallelsAtTheirDistanceOutside) {
    seeded_random random(32);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        double const a1 = random.uniform(-7, 7), a2 = random.uniform(-7, 7), d = random.uniform(-5, 5);
        double const both[] = {d, 0};
        idioms::array<curve> const arcs = e.render_ellipse(50, vector(2, both), a1, a2);
        ASSERT_EQ(arcs.capacity(), 2u);
        expect_same_points(arcs[1], e.render_ellipse(50, a1, a2), 1e-13);
        expect_same_points(arcs[0], e.render_ellipse(50, a1, a2, d), 1e-13);
        for (unsigned int i = 0; i <= 50; ++i) {
            EXPECT_LT(distance3d(arcs[0][i], parallel_point(e, a1 + (a2 - a1) * i / 50, d)), 1e-10);
        }
        for (point const& p : circle(3, at(1, 2)).render_ellipse(16, d)) {
            EXPECT_NEAR(distance3d(p, at(1, 2)), std::fabs(3 + d), 1e-14);
            EXPECT_TRUE(p.is_3d());
        }
    }
    EXPECT_TRUE(circle(3).render_ellipse(16, 0.0)[0].is_2d());
    EXPECT_EQ(circle(3).render_ellipse(16, vector()).capacity(), 0u);
    // No normal anywhere, and a size whose squares underflow.
    for (ellipse const& e : {ellipse(0), ellipse(make_transform(at(0, 0), at(1, 2), at(2, 4)))}) {
        EXPECT_EQ(e.render_ellipse(5, 2.0)[0], point(true, e.basis(1).x(), e.basis(1).y(), 0));
    }
    EXPECT_NEAR(ellipse(1e-120, 2e-120, 0.0).render_ellipse(4, 3.0)[1].y(), 3, 1e-15);
}

TEST(Ellipse, LiesInItsRectangleAndTouchesAllSides) {
    seeded_random random(33);
    int const samples = 4000;
    for (int trial = 0; trial < 80; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        double const size = std::max(e.semimajor(), e.semiminor()), d = size * random.uniform(-2, 2);
        double const a1 = random.uniform(-7, 7), a2 = a1 + random.uniform(-6.2, 6.2);
        transform const t = random_transform(random);
        auto const sampled = [&](double from, double to, double offset, transform const& view, bool inner) {
            curve c(2 * (samples + 1));
            point* p = c.lazycopy_begin();
            for (int i = 0; i <= samples; ++i) {
                double const angle = from + (to - from) * i / samples;
                *p++ = parallel_point(e, angle, std::fabs(offset)) * view;
                *p++ = parallel_point(e, angle, inner ? -std::fabs(offset) : std::fabs(offset)) * view;
            }
            return c.get_bounding_rect();
        };
        struct {
            char const* name;
            CRealRect actual, expected;
        } const cases[] = {
            {"whole", e.get_bounding_rect(), sampled(0, 2 * pi, 0, transform(), true)},
            {"arc", e.get_bounding_rect(a1, a2), sampled(a1, a2, 0, transform(), true)},
            {"moved band", e.get_bounding_rect(t, d), sampled(0, 2 * pi, d, t, false)},
            {"moved band's inside", e.get_bounding_rect(t, d), sampled(0, 2 * pi, d, t, true)},
            {"band of an arc", e.get_bounding_rect(a1, a2, t, d), sampled(a1, a2, d, t, true)},
        };
        for (auto const& c : cases) {
            SCOPED_TRACE(c.name);
            // Between samples the normal turns by up to 15 steps of 1.6e-3, and half its square is missed.
            expect_near_rect(c.actual, c.expected, 3e-4 * 2 * (size + std::fabs(d)));
            CRealRect held = c.actual;
            held |= c.expected;
            expect_near_rect(held, c.actual, 1e-12 * (300 + 4 * size));  // rounding only
        }
        EXPECT_EQ(e.get_bounding_rect(a2, a1, t, d), e.get_bounding_rect(a1, a2, t, -d));
    }
}

TEST(Ellipse, HasRectanglesOfArcsWorkedByHand) {
    double const h = std::sqrt(2.0);
    CRealRect const all(-2, -2, 2, 2);
    struct {
        char const* name;
        double a1, a2, offset;
        CRealRect expected;
    } const cases[] = {
        {"quarter between tangents", 0, pi / 2, 0, {0, 0, 2, 2}},
        {"clockwise", pi / 2, 0, 0, {0, 0, 2, 2}},
        {"over the top", pi / 4, 3 * pi / 4, 0, {-h, h, h, 2}},
        {"across the wrap of angles", 7 * pi / 4, 9 * pi / 4, 0, {h, -h, 2, h}},
        {"tangent only at the start", pi, 5 * pi / 4, 0, {-2, -h, -h, 0}},
        {"no sweep", pi / 2, pi / 2, 0, {0, 2, 0, 2}},
        {"tiny sweep", pi, pi + 1e-12, 0, {-2, -2e-12, -2, 0}},
        {"many turns away",
         2e6 * pi + 1,
         2e6 * pi + 2,
         0,
         {2 * std::cos(2), 2 * std::sin(1), 2 * std::cos(1), 2}},
        {"whole turn", 1, 1 + 2 * pi, 0, all},
        {"without end", 0, infinity, 0, all},
        {"band", 0, pi / 2, -1, {0, 0, 3, 3}},
        {"inner parallel beyond the centre", pi / 4, 3 * pi / 4, 4, {-3 * h, -2, 3 * h, 6}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_near_rect(circle(2).get_bounding_rect(c.a1, c.a2, transform(), c.offset), c.expected, 1e-9);
    }
    EXPECT_TRUE(std::isnan(circle(2).get_bounding_rect(0, nan_value).left));
    // The inner parallel at 1 turns back where it meets the evolute (3 / 2 cos³ t, -3 sin³ t), at a curvature
    // radius (1 + 3 sin² t)^(3/2) / 2 of 1.
    double const s = std::sqrt((std::cbrt(4.0) - 1) / 3);
    CRealRect const turn = ellipse(2, 1, 0.0).get_bounding_rect(0.3, 0.6, transform(), 1);
    EXPECT_NEAR(turn.bottom, -3 * s * s * s, 1e-15);
}

TEST(Ellipse, BecomesBezierPathsCloseToTheCircle) {
    struct {
        double a1, a2;
        unsigned int size;
    } const cases[] = {{1, 1, 1},         {0.3, 0.3 + 1e-9, 4}, {0, pi / 2, 4},    {-1, 1, 7},
                       {2, -2.7, 10},     {-5, 1.2, 13},        {0, -2 * pi, 13},  {0, 7, 13},
                       {0, nan_value, 0}, {nan_value, 0, 0},    {0, infinity, 13}, {1, 1 + 1e-300, 1}};
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a1 << " to " << c.a2);
        curve const path = circle(1).render_bezier(c.a1, c.a2);
        ASSERT_EQ(path.capacity(), c.size);
        if (c.size == 0 || c.size == 13) continue;
        EXPECT_LT(distance2d(path[0], make_polar_point(1, c.a1)), 1e-15);
        EXPECT_LT(distance2d(path[c.size - 1], make_polar_point(1, c.a2)), 2e-15);
        for (unsigned int k = 0; 3 * k + 1 < c.size; ++k) {
            double const from = c.a1 + (c.a2 - c.a1) * 3 * k / (c.size - 1);
            double const step = (c.a2 - c.a1) * 3 / (c.size - 1);
            for (double t = 0; t <= 1; t += 0.125) {
                point const p = on_bezier(path, k, t);
                EXPECT_NEAR(p.length2d(), 1, 2.8e-4);
                // Symmetric, so exact in the middle, and nowhere far from even speed.
                EXPECT_NEAR(std::remainder(p.angle2d() - from - t * step, 2 * pi), 0, 0.01 * std::fabs(step));
            }
            EXPECT_NEAR(on_bezier(path, k, 0.5).length2d(), 1, 2e-15);
        }
    }
    curve const whole = ellipse().render_bezier();
    ASSERT_EQ(whole.capacity(), 13u);
    for (unsigned int i = 0; i < 5; ++i) {
        EXPECT_EQ(whole[3 * i], std::vector({at(-1, 0), at(0, 1), at(1, 0), at(0, -1), at(-1, 0)})[i]);
    }
    for (unsigned int k = 0; k < 4; ++k) EXPECT_NEAR(on_bezier(whole, k, 0.5).length2d(), 1, 1e-15);
}

TEST(Ellipse, HasFociOfConstantSumAndItsPolygonsArea) {
    seeded_random random(34);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        point f1, f2;
        double a = 0, b = 0;
        e.calc_ellipse_foci(f1, f2, a, b);
        EXPECT_GE(a, b);
        for (point const& p : e.render_ellipse(17)) {
            EXPECT_NEAR(distance3d(p, f1) + distance3d(p, f2), 2 * a, 1e-12 * (100 + a));
        }
        EXPECT_TRUE(relatively_near(e.area(), pi * a * b, 1e-13, "products of the same vectors"));
        if (trial % 2 == 0) continue;
        // A polygon inscribed at equal parameters has n / (2 pi) sin(2 pi / n) of the area.
        curve const polygon = e.render_ellipse(12);
        double twice = 0;
        for (unsigned int i = 0; i < 12; ++i) {
            twice += cross2d(polygon[i] - e.center(), polygon[(i + 1) % 12] - e.center());
        }
        EXPECT_TRUE(
            relatively_near(std::fabs(twice) / 2, e.area() * 3 / pi, 1e-10, "far centre: sin = 1 / 2"));
    }
    point f1, f2;
    double a = 0, b = 0;
    ellipse(3, 5, at(1, 2)).calc_ellipse_foci(f1, f2, a, b);
    EXPECT_LT(distance2d(f1, at(1, -2)) + distance2d(f2, at(1, 6)), 1e-14);
    EXPECT_TRUE(a == 5 && b == 3);
    ellipse().calc_ellipse_foci(f1, f2, a, b);
    EXPECT_TRUE(f1 == at(0, 0) && f2 == at(0, 0) && a == 1 && b == 1);
    ellipse(0, at(1, 2)).calc_ellipse_foci(f1, f2, a, b);
    EXPECT_TRUE(f1 == at(1, 2) && f2 == at(1, 2));
}

TEST(Ellipse, HasThePublishedPerimeter) {
    // Half-axes 1 and sqrt(1 - k²), 4 E(k), from the elliptic integral tables of Boost.Math (ellint_e_data).
    struct {
        double b, perimeter;
    } const published[] = {
        {0.1379941979296999510434332, 4.1098110754286748120199128909184213},
        {0.3511097495690043509293566, 4.4931498223668088267753286222550494},
        {0.4408777675238127577229026, 4.698721506043938773604142935732364},
        {0.5922742754792285575761849, 5.0846177970566136561307591323840082},
    };
    for (auto const& c : published) {
        for (double const size : {1e-9, 1.0, 1e9}) {
            double const expected = size * c.perimeter, tolerance = 1e-7;
            EXPECT_TRUE(
                relatively_near(ellipse(size, size * c.b, 1).perimeter(), expected, tolerance, "Romberg"));
            EXPECT_TRUE(
                relatively_near(ellipse(size * c.b, size, 2).perimeter(), expected, tolerance, "Romberg"));
        }
    }
    EXPECT_EQ(ellipse().perimeter(), 2 * pi);
    EXPECT_NEAR(ellipse(3).perimeter(), 6 * pi, 4e-15);
    EXPECT_NEAR(circle(3, at(1, 2, 3)).perimeter(), 6 * pi, 4e-15);
}

TEST(Ellipse, IsRenderedAsDenselyAsTheToleranceAsks) {
    seeded_random random(35);
    auto const sagitta = [](double r, double half_angle) { return r * (1 - std::cos(half_angle)); };
    for (int trial = 0; trial < 200; ++trial) {
        double const r = random.log_uniform(1e-3, 1e3), tolerance = r * random.log_uniform(1e-5, 0.2);
        ellipse const e(r * random.uniform(0, 1), r, random.uniform(0, 6));
        int const n = e.rendering_density(tolerance);
        EXPECT_LE(sagitta(r, pi / n), tolerance * (1 + 1e-9));
        EXPECT_TRUE(n % 4 == 0 && (n == 8 || sagitta(r, pi / (n - 4)) > tolerance)) << n;
        double const sweep = random.uniform(1, 20);
        int const m = e.rendering_density(tolerance, 3, 3 - sweep);
        EXPECT_LE(sagitta(r, sweep / 2 / m), tolerance * (1 + 1e-9));
        EXPECT_TRUE(m == 8 || sagitta(r, sweep / 2 / (m - 1)) > tolerance) << m;
    }
    // The smallest step is that of 5e-6: acos(1 - 5e-6) = 3.16228e-3 goes 248.4 times into an eighth turn.
    for (double const tolerance : {0.0, -1.0, nan_value, 1e-300}) {
        EXPECT_EQ(ellipse(2).rendering_density(tolerance), 996);
        EXPECT_EQ(ellipse().rendering_density(tolerance), 996);
    }
    EXPECT_EQ(ellipse(2).rendering_density(infinity), 8);
    EXPECT_EQ(ellipse(0).rendering_density(1), 8);
    EXPECT_EQ(ellipse(2).rendering_density(1, 0, nan_value), 8);
    EXPECT_GT(ellipse(2).rendering_density(1, 0, infinity), 2000000000);
    EXPECT_EQ(ellipse(1).render_ellipse(-5).capacity(), 3u);
    EXPECT_EQ(ellipse(1).render_ellipse(1, 0, pi).capacity(), 3u);
}

TEST(Ellipse, ComesFromAConic) {
    struct {
        char const* name;
        double k[6];
        point center, u, v;
    } const cases[] = {
        {"circle", {1, 0, 1, -2, -4, 1}, at(1, 2), at(2, 0), at(0, 2)},
        {"negated, tall", {-4, 0, -1, 0, 0, 4}, at(0, 0), at(0, 2), at(-1, 0)},
        // 5 x² + 4 x y + 5 y²: 3 along (1, -1), 7 along (1, 1).
        {"turned",
         {5, 4, 5, 0, 0, -42},
         at(0, 0),
         at(-std::sqrt(7), std::sqrt(7)),
         at(-std::sqrt(3), -std::sqrt(3))},
        // The terms of 1e8 leave 1, by integers.
        {"far away", {1, 0, 4, -2e4, -8e4, 5e8 - 4}, at(1e4, 1e4), at(2, 0), at(0, 1)},
        {"huge unit", {1e300, 0, 1e300, -2e300, -4e300, 1e300}, at(1, 2), at(2, 0), at(0, 2)},
        {"smallest unit", {5e-324, 0, 5e-324, 0, 0, -5e-324}, at(0, 0), at(1, 0), at(0, 1)},
        {"large size", {1e-200, 0, 1e-200, 0, 0, -1e200}, at(0, 0), at(1e200, 0), at(0, 1e200)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        double const* const k = c.k;
        ellipse const e(k[0], k[1], k[2], k[3], k[4], k[5]);
        ASSERT_TRUE(e.is_2d());
        double const tolerance = 1e-15 * (e.semimajor() + e.center().length2d());
        EXPECT_LE(distance2d(e.center(), c.center), tolerance);
        // An axis is as good as its opposite.
        EXPECT_LE(std::min(distance2d(e.basis(1), c.u), distance2d(e.basis(1), -c.u)), tolerance);
        EXPECT_LE(std::min(distance2d(e.basis(2), c.v), distance2d(e.basis(2), -c.v)), tolerance);
        EXPECT_FALSE(e.is_left_handed());
    }
    double const none[][6] = {{1, 0, -1, 0, 0, -1},      {1, 2, 1, 0, 1, 0}, {1, 0, 1, 0, 0, 1},
                              {1, 0, 1, -2, -2, 2},      {0, 0, 0, 1, 1, 1}, {0, 0, 0, 0, 0, 0},
                              {0, 1, 0, 0, 0, -1},       {1, 0, 0, 0, 1, 0}, {nan_value, 0, 1, 0, 0, -1},
                              {1, 0, 1, 0, 0, -infinity}};
    for (auto const& k : none) EXPECT_TRUE(ellipse(k[0], k[1], k[2], k[3], k[4], k[5]).is_trivial()) << k[0];
}

TEST(Ellipse, SurvivesTheWayThroughItsConic) {
    seeded_random random(36);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, false);
        // With m the inverse linear part and q = m (p - centre), the conic is |q|² - 1.
        point const m1 = e.inverse_basis(1), m2 = e.inverse_basis(2), m0 = e.inverse_center();
        double const f = random.coin() ? 1e-3 : -7;
        ellipse const found(f * sqr(m1), f * 2 * dot(m1, m2), f * sqr(m2), f * 2 * dot(m1, m0),
                            f * 2 * dot(m2, m0), f * (sqr(m0) - 1));
        ASSERT_FALSE(found.is_trivial());
        point u = e.basis(1), v = e.basis(2);
        orthogonalize_ellipse(u, v);
        // The coefficients are rounded: of the constant, (distance / shorter axis)² times 1e-16 is lost.
        double const size = u.length2d(), loss = sqr((e.center().length2d() + size) / v.length2d());
        double const tolerance = 1e-14 * loss * size;
        EXPECT_LE(distance2d(found.center(), e.center()), tolerance);
        for (point const& p : found.render_ellipse(16)) EXPECT_NEAR(sqr(p / e), 1, 1e-14 * loss);
        EXPECT_NEAR(found.dot(1, 2), 0, 1e-15 * size * size);
        EXPECT_GE(found.semimajor(), found.semiminor());
        EXPECT_NEAR(found.semimajor(), size, tolerance);
        EXPECT_NEAR(found.semiminor(), v.length2d(), tolerance);
    }
}

}  // namespace
}  // namespace tvmath
