#include "tvmath/ellipse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/relative.h"
#include "support/shape_points.h"
#include "support/shape_properties.h"
#include "tvmath/circle.h"

inline namespace tvmath {
namespace {

double const nan_value = std::nan("");

// Oblique half-diameters of a ratio up to 3, in either handedness, in the plane or in space.
ellipse random_ellipse(seeded_random& random, bool solid) {
    auto const vector_of = [&](double size) {
        double const x = random.normal(), y = random.normal();
        return normalize(solid ? point(false, x, y, random.normal()) : point(false, x, y)) * size;
    };
    for (;;) {
        double const size = random.log_uniform(0.01, 100);
        point const u = vector_of(size), v = vector_of(size * random.uniform(0.3, 3)), n = cross(u, v);
        if (n.length3d() < 0.2 * size * size) continue;
        point const center = at(random.uniform(-100, 100), random.uniform(-100, 100), 30);
        return ellipse(solid ? make_transform(center, u, v, normalize(n)) : make_transform(center, u, v));
    }
}

// On the parallel at a distance, by the definition: at right angles to the tangent, in the plane.
point parallel_point(ellipse const& e, double t, double distance) {
    point const u = e.basis(1), v = e.basis(2), tangent = std::cos(t) * v - std::sin(t) * u;
    point const on_ellipse = e.center() + std::cos(t) * u + std::sin(t) * v;
    return distance == 0 ? on_ellipse : on_ellipse + normalize(cross(tangent, cross(u, v))) * distance;
}

void expect_same_points(curve const& a, curve const& b, double tolerance) {
    ASSERT_EQ(a.capacity(), b.capacity());
    for (unsigned int i = 0; i < a.capacity(); ++i) EXPECT_LT(distance3d(a[i], b[i]), tolerance) << i;
}

TEST(Ellipse, IsDrawnThroughATransformAsItsDrawingIs) {
    seeded_random random(31);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        transform const t = random_map(random);
        ellipse const moved(e * t);
        double const a1 = random.uniform(-7, 7), a2 = random.uniform(-7, 7), d = random.uniform(-5, 5);
        // Rounding at coordinates of 1e3, and n² 1e-16 of the size, by the recurrence over 100 points.
        double const tolerance = 1e-12 * (3 + e.semimajor() + e.semiminor());
        expect_same_points(moved.render_ellipse(100), e.render_ellipse(100) * t, tolerance);
        expect_same_points(moved.render_ellipse(100, a1, a2), e.render_ellipse(100, a1, a2) * t, tolerance);
        expect_same_points(moved.render_bezier(a1, a2), e.render_bezier(a1, a2) * t, tolerance);
        expect_same_points(ellipse(e * t / t).render_ellipse(9), e.render_ellipse(9), tolerance);

        double const both[] = {0, d};
        idioms::array<curve> const parallels = e.render_ellipse(100, vector(2, both), a1, a2);
        expect_same_points(parallels[0], e.render_ellipse(100, a1, a2, 0.0), 1e-13);
        expect_same_points(parallels[1], e.render_ellipse(100, a1, a2, d), 1e-13);
        for (unsigned int i = 0; i <= 100; ++i) {
            point const expected = parallel_point(e, a1 + (a2 - a1) * i / 100, d);
            EXPECT_LT(distance3d(parallels[1][i], expected), 20 * tolerance);  // the normal turns faster
        }
    }
}

TEST(Ellipse, IsDrawnWithoutAnExtentOrANormal) {
    EXPECT_TRUE(ellipse().render_ellipse(-5)[0] == at(1, 0) && ellipse().render_ellipse(0).capacity() == 3);
    EXPECT_EQ(ellipse(1).render_ellipse(1, 0, pi).capacity(), 3u);
    EXPECT_EQ(circle(3).render_ellipse(16, 0.0)[0], at(3, 0));  // in the plane
    for (ellipse const& e : {ellipse(0), ellipse(make_transform(at(0, 0), at(1, 2), at(2, 4)))}) {
        EXPECT_EQ(e.render_ellipse(5, 2.0)[0], point(true, e.basis(1).x(), e.basis(1).y(), 0));
    }
    EXPECT_NEAR(ellipse(1e-120, 2e-120, 0.0).render_ellipse(4, 3.0)[1].y(), 3, 1e-15);  // squares underflow
}

TEST(Ellipse, LiesInItsRectangleAndTouchesAllSides) {
    seeded_random random(33);
    for (int trial = 0; trial < 40; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        double const size = std::max(e.semimajor(), e.semiminor()), d = size * random.uniform(-2, 2);
        double const a1 = random.uniform(-7, 7), a2 = a1 + random.uniform(-6.2, 6.2);
        transform const t = random_map(random), still;
        auto const sampled = [&](double to, double inner, double outer, transform const& view) {
            curve c(8000);
            for (unsigned int i = 0; i < 4000; ++i) {
                double const angle = a1 + (to - a1) * i / 3999;
                c(2 * i) = parallel_point(e, angle, inner) * view;
                c(2 * i + 1) = parallel_point(e, angle, outer) * view;
            }
            return c.get_bounding_rect();
        };
        CRealRect const band = e.get_bounding_rect(t, d), arc_band = e.get_bounding_rect(a1, a2, t, d);
        double const out = std::fabs(d), whole = a1 + 2 * pi;
        CRealRect const pairs[][2] = {{e.get_bounding_rect(), sampled(whole, 0, 0, still)},
                                      {e.get_bounding_rect(a1, a2), sampled(a2, 0, 0, still)},
                                      {band, sampled(whole, out, out, t)},
                                      {band, band | sampled(whole, -out, -out, t)},
                                      {arc_band, sampled(a2, -out, out, t)}};
        for (auto const& [actual, expected] : pairs) {
            // Between samples the normal turns by up to 15 steps of 1.6e-3, and half its square is missed.
            EXPECT_LE(corner_distance(actual, expected), 6e-4 * (size + out));
            EXPECT_LE(corner_distance(actual | expected, actual), 1e-12 * (300 + 4 * size));  // rounding only
        }
        EXPECT_EQ(e.get_bounding_rect(a2, a1, t, -d), arc_band);
    }
}

TEST(Ellipse, HasRectanglesOfArcsWorkedByHand) {
    double const h = std::sqrt(2.0), s1 = std::sin(1), c1 = std::cos(1), c2 = std::cos(2), turns = 2e6 * pi;
    double const cases[][7] = {
        // from, to, offset; left, bottom, right, top, of a circle of radius 2
        {0, pi / 2, 0, 0, 0, 2, 2},                            // between two tangents
        {7 * pi / 4, 9 * pi / 4, 0, h, -h, 2, h},              // across the wrap of angles
        {pi, 5 * pi / 4, 0, -2, -h, -h, 0},                    // a tangent at the start only
        {pi + 1e-12, pi, 0, -2, -2e-12, -2, 0},                // next to none
        {turns + 1, turns + 2, 0, 2 * c2, 2 * s1, 2 * c1, 2},  // far round
        {0, infinity, 0, -2, -2, 2, 2},                        // whole
        {pi / 4, 3 * pi / 4, 4, -3 * h, -2, 3 * h, 6},         // the inner parallel across the centre
    };
    for (auto const& c : cases) {
        CRealRect const actual = circle(2).get_bounding_rect(c[0], c[1], transform(), c[2]);
        EXPECT_LE(corner_distance(actual, CRealRect(c[3], c[4], c[5], c[6])), 1e-9) << c[0];
    }
    EXPECT_TRUE(std::isnan(circle(2).get_bounding_rect(0, nan_value).left));
    EXPECT_EQ(ellipse().get_bounding_rect(transform(3, 4), 1), CRealRect(1, 2, 5, 6));
    // The inner parallel at 1 turns back where it meets the evolute (3 / 2 cos³ t, -3 sin³ t), at a curvature
    // radius (1 + 3 sin² t)^(3/2) / 2 of 1.
    double const s = std::sqrt((std::cbrt(4.0) - 1) / 3);
    EXPECT_NEAR(ellipse(2, 1, 0.0).get_bounding_rect(0.3, 0.6, transform(), 1).bottom, -3 * s * s * s, 1e-15);
}

TEST(Ellipse, BecomesBezierPathsCloseToTheCircle) {
    double const cases[][3] = {{1, 1, 1},         {0.3, 0.3 + 1e-9, 4}, {0, pi / 2, 4},   {-1, 1, 7},
                               {2, -2.7, 10},     {-5, 1.2, 13},        {0, -2 * pi, 13}, {0, 7, 13},
                               {0, nan_value, 0}, {0, infinity, 13}};
    for (auto const& [a1, a2, size] : cases) {
        SCOPED_TRACE(testing::Message() << a1 << " to " << a2);
        curve const path = circle(1).render_bezier(a1, a2);
        unsigned int const n = path.capacity();
        ASSERT_EQ(n, size);
        bool const arc = std::fabs(a2 - a1) < 2 * pi;
        EXPECT_TRUE(!arc || distance2d(path[0], make_polar_point(1, a1)) < 1e-15);
        EXPECT_TRUE(!arc || distance2d(path[n - 1], make_polar_point(1, a2)) < 2e-15);
        for (unsigned int k = 0; k + 3 < n; k += 3) {
            for (double t = 0; t <= 1; t += 0.125) {  // Bernstein's form
                double const q = 1 - t, b[] = {q * q * q, 3 * q * q * t, 3 * q * t * t, t * t * t};
                point p = b[0] * path[k];
                for (unsigned int i = 1; i < 4; ++i) p += b[i] * path[k + i];
                EXPECT_NEAR(p.length2d(), 1, t == 0.5 ? 2e-15 : 2.8e-4);
            }
        }
    }
    curve const whole = ellipse().render_bezier();
    EXPECT_TRUE(whole[0] == at(-1, 0) && whole[3] == at(0, 1) && whole[6] == at(1, 0));
}

TEST(Ellipse, HasFociOfConstantSumAndItsPolygonsArea) {
    seeded_random random(34);
    point f1, f2;
    double a = 0, b = 0;
    for (int trial = 0; trial < 200; ++trial) {
        ellipse const e = random_ellipse(random, trial % 2 == 0);
        e.calc_ellipse_foci(f1, f2, a, b);
        curve const polygon = e.render_ellipse(12);
        double twice = 0;
        for (unsigned int i = 0; i < 12; ++i) {
            EXPECT_NEAR(distance3d(polygon[i], f1) + distance3d(polygon[i], f2), 2 * a, 1e-12 * (100 + a));
            twice += cross(polygon[i] - e.center(), polygon[(i + 1) % 12] - e.center()).length3d();
        }
        // A polygon inscribed at equal parameters has n / (2 pi) sin(2 pi / n) of the area.
        EXPECT_TRUE(relatively_near(twice / 2, e.area() * 3 / pi, 1e-10, "far centre"));
        EXPECT_TRUE(relatively_near(e.area(), pi * a * b, 1e-13, "products of the same vectors"));
    }
    ellipse(3, 5, at(1, 2)).calc_ellipse_foci(f1, f2, a, b);
    EXPECT_LT(distance2d(f1, at(1, -2)) + distance2d(f2, at(1, 6)), 1e-14);
    EXPECT_TRUE(a == 5 && b == 3);
}

TEST(Ellipse, HasThePublishedPerimeter) {
    // Half-axes 1 and sqrt(1 - k²), 4 E(k), from the elliptic integral tables of Boost.Math (ellint_e_data).
    double const published[][2] = {{0.1379941979296999510434332, 4.1098110754286748120199128909184213},
                                   {0.3511097495690043509293566, 4.4931498223668088267753286222550494},
                                   {0.5922742754792285575761849, 5.0846177970566136561307591323840082}};
    for (auto const& [b, perimeter] : published) {
        for (ellipse const& e : {ellipse(1, b, 1), ellipse(b, 1, at(4, 5))}) {
            EXPECT_TRUE(relatively_near(e.perimeter(), perimeter, 1e-7, "quadrature"));
        }
    }
    EXPECT_EQ(ellipse().perimeter(), 2 * pi);
    EXPECT_NEAR(ellipse(3).perimeter(), 6 * pi, 4e-15);
}

TEST(Ellipse, IsRenderedAsDenselyAsTheToleranceAsks) {
    seeded_random random(35);
    for (int trial = 0; trial < 200; ++trial) {
        double const r = random.log_uniform(1e-3, 1e3), tolerance = random.log_uniform(1e-5, 0.2);
        double const sweep = random.uniform(1, 20);
        ellipse const e(r * random.uniform(0, 1), r, random.uniform(0, 6));
        int const n = e.rendering_density(tolerance * r);
        int const m = e.rendering_density(tolerance * r, 3, 3 - sweep);
        auto const sagitta = [](double chord, int count) { return 1 - std::cos(chord / 2 / count); };
        EXPECT_LE(sagitta(2 * pi, n), tolerance * (1 + 1e-9));
        EXPECT_LE(sagitta(sweep, m), tolerance * (1 + 1e-9));
        EXPECT_TRUE(n % 4 == 0 && (n == 8 || sagitta(2 * pi, n - 4) > tolerance)) << n;
        EXPECT_TRUE(m == 8 || sagitta(sweep, m - 1) > tolerance) << m;
    }
    // The smallest step is that of 5e-6: acos(1 - 5e-6) = 3.16228e-3 goes 248.4 times into an eighth turn.
    EXPECT_TRUE(ellipse().rendering_density(0) == 996 && ellipse(2).rendering_density(nan_value) == 996);
    EXPECT_EQ(ellipse(2).rendering_density(infinity), 8);
    EXPECT_GT(ellipse(2).rendering_density(1, 0, infinity), 2000000000);
}

TEST(Ellipse, ComesFromAConic) {
    double const r3 = std::sqrt(3), r7 = std::sqrt(7), r10 = std::sqrt(10) / 3;
    double const cases[][12] = {
        // A to F; centre, half-axes, each as good as its opposite
        {1, 0, 1, -2, -4, 1, 1, 2, 2, 0, 0, 2},
        {-4, 0, -1, 0, 0, 4, 0, 0, 0, 2, 1, 0},                       // negated, tall
        {5, 4, 5, 0, 0, -42, 0, 0, r7, -r7, r3, r3},                  // 3 along (1, -1), 7 along (1, 1)
        {3, 0, 3, -4e4, 0, 133333330, 2e4 / 3, 0, r10, 0, 0, r10},    // 1e8 cancels to 10 / 9, centre inexact
        {1, 0, 1e20, 0, 0, -1e20, 0, 0, 1e10, 0, 0, 1},               // thin
        {5e-324, 0, 5e-324, 0, 0, -5e-324, 0, 0, 1, 0, 0, 1},         // smallest unit
        {1e-200, 0, 1e-200, 0, 0, -1e200, 0, 0, 1e200, 0, 0, 1e200},  // large size
    };
    for (auto const& k : cases) {
        SCOPED_TRACE(testing::PrintToString(k));
        ellipse const e(k[0], k[1], k[2], k[3], k[4], k[5]);
        ASSERT_TRUE(e.is_2d() && !e.is_left_handed());
        double const tolerance = 1e-15 * (e.semimajor() + e.center().length2d());
        EXPECT_LE(distance2d(e.center(), at(k[6], k[7])), tolerance);
        for (int i = 1; i <= 2; ++i) {
            point const axis(false, k[6 + 2 * i], k[7 + 2 * i]);
            EXPECT_LE(std::min((e.basis(i) - axis).length2d(), (e.basis(i) + axis).length2d()), tolerance);
        }
    }
    // Hyperbola, parabola, imaginary, a point, lines, nothing, no numbers.
    double const none[][6] = {{1, 0, -1, 0, 0, -1}, {1, 2, 1, 0, 1, 0},         {1, 0, 1, 0, 0, 1},
                              {1, 0, 1, -2, -2, 2}, {0, 1, 0, 0, 0, 0},         {0, 0, 0, 1, 1, 1},
                              {0, 0, 0, 0, 0, 0},   {1, 0, 1, 0, 0, nan_value}, {1, 0, 1, 0, 0, -infinity}};
    for (auto const& k : none) EXPECT_TRUE(ellipse(k[0], k[1], k[2], k[3], k[4], k[5]).is_trivial()) << k[0];

    seeded_random random(36);
    for (int trial = 0; trial < 300; ++trial) {
        ellipse const e = random_ellipse(random, false);
        // |q|² = 1 of q = m1 x + m2 y + m0, the point taken back to the unit circle.
        point const m1 = e.inverse_basis(1), m2 = e.inverse_basis(2), m0 = e.inverse_center();
        double const f = random.coin() ? 1e-3 : -7;
        ellipse const found(f * sqr(m1), f * 2 * dot(m1, m2), f * sqr(m2), f * 2 * dot(m1, m0),
                            f * 2 * dot(m2, m0), f * (sqr(m0) - 1));
        point u = e.basis(1), v = e.basis(2);
        orthogonalize_ellipse(u, v);
        // The coefficients are rounded: of the constant, (distance / shorter axis)² times 1e-16 is lost.
        double const tolerance = 1e-14 * sqr((e.center().length2d() + u.length2d()) / v.length2d());
        for (point const& p : found.render_ellipse(16)) EXPECT_NEAR(sqr(p / e), 1, tolerance);
        EXPECT_NEAR(found.semimajor(), u.length2d(), tolerance * u.length2d());
    }
}

}  // namespace
}  // namespace tvmath
