#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/curve.h"

inline namespace tvmath {
namespace {

curve path(std::vector<point> const& points) {
    return curve(idioms::array<point>(static_cast<unsigned int>(points.size()), points.data()));
}

point between(point const& a, point const& b, double t) {
    return a + (b - a) * t;
}

// The independent evaluation of this file: de Casteljau's corner cutting.
struct cut {
    point where, velocity;
};

cut de_casteljau(point const* p, double t) {
    point const a = between(p[0], p[1], t), b = between(p[1], p[2], t), c = between(p[2], p[3], t);
    point const d = between(a, b, t), e = between(b, c, t);
    return {between(d, e, t), 3 * (e - d)};
}

curve random_path(seeded_random& random, unsigned int segments, double size, point const& center,
                  bool solid) {
    curve c(3 * segments + 1);
    for (unsigned int i = 0; i < c.capacity(); ++i) {
        double const x = random.uniform(-size, size), y = random.uniform(-size, size);
        c(i) = center + (solid ? point(false, x, y, x * y / size) : point(false, x, y));
    }
    return c;
}

TEST(BezierRender, GivesThePointsOfDeCasteljau) {
    seeded_random random(41);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        unsigned int const segments = 1 + random.below(5), n = 1 + random.below(9);
        bool const solid = trial % 3 != 0, closed = random.coin();
        curve c = random_path(random, segments, 5, at(3, -2), solid);
        if (trial % 3 == 1) c(0).project2d();  // a flat point among solid ones
        curve const polyline = render(c, closed, n);
        ASSERT_EQ(polyline.capacity(), n * segments + (closed ? 0 : 1));
        for (unsigned int i = 0; i < polyline.capacity(); ++i) {
            unsigned int const segment = std::min(i / n, segments - 1);
            double const t = static_cast<double>(i - segment * n) / n;
            EXPECT_TRUE(polyline[i].is_location() && polyline[i].is_3d() == solid);
            EXPECT_LT(distance3d(polyline[i], de_casteljau(&c[3 * segment], t).where), 1e-14);
            EXPECT_TRUE(i % n != 0 || distance3d(polyline[i], c[3 * (i / n)]) == 0);  // joints are exact
        }
    }
}

TEST(BezierRender, CountsSizesAndDegenerateInput) {
    struct {
        unsigned int size;
        bool closed;
        unsigned int n, count;
    } const cases[] = {{4, false, 1, 2}, {4, false, 0, 2},          {4, true, 0, 1},  {1, false, 9, 1},
                       {1, true, 9, 0},  {1, false, ~0u, 1},        {3, false, 2, 0}, {2, false, 2, 0},
                       {0, false, 2, 0}, {7, false, ~0u / 2 + 1, 0}};
    for (auto const& c : cases) {
        EXPECT_EQ(render(curve(c.size), c.closed, c.n).capacity(), c.count) << c.size << ' ' << c.n;
    }
    // Trivial points are the origin, directions locations; the second point has the weight 3/8 at 1/2.
    curve const odd = render(path({point(), point(false, 8, 8), at(0, 0), point()}), false, 2);
    EXPECT_TRUE(odd[0] == at(0, 0) && odd[1] == at(3, 3) && odd[2] == at(0, 0));
    // Infinity must not reach the weight, nor an undefined z a result.
    point wild = at(1 / 0.0, 1);
    wild.z() = std::nan("");
    curve const far = render(path({wild, at(0, 0, 1), at(0, 0, 1), at(0, 0, 1)}), false, 2);
    EXPECT_TRUE(far[1][0] == 1 && far[1].z() == 0.875 && render(curve(4, wild), false, 2)[1].z() == 0);
}

// Property: every point lies inside, and every side is touched as closely as samples can tell.
TEST(BezierExtent, HoldsThePathTightly) {
    seeded_random random(42);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        double const size = random.log_uniform(1e-3, 1e3), far = trial % 2 ? 0 : 1e3 * size;
        curve const c = random_path(random, 1 + random.below(3), size, at(far, -far), trial % 3 == 0);
        CRealRect const extent = bezier_bounding_rect(c),
                        samples = render(c, false, 2000).get_bounding_rect();
        double const rounding = 4e-15 * (size + far);
        for (double const gap : {samples.left - extent.left, samples.bottom - extent.bottom,
                                 extent.right - samples.right, extent.top - samples.top}) {
            // A sample is within h / 2 of the extreme: at most h² / 8 times the second derivative of 48 size.
            EXPECT_TRUE(gap >= -rounding && gap <= 2e-6 * size + rounding) << gap / size;
        }
    }
}

TEST(BezierExtent, IsThatWorkedByHand) {
    // 3 u² t + 3 u t² = 3 u t has its maximum 3/4 at 1/2. A last point off by 1e-15 makes the derivative
    // nearly linear, where the textbook formula for its roots is off by 10 %.
    struct {
        char const* name;
        double v[4], low, high;
    } const cases[] = {
        {"linear derivative", {0, 1, 1, 0}, 0, 0.75},
        {"nearly linear derivative", {0, 1, 1, 1e-15}, 0, 0.75},
        {"the same, turned round and downward", {-1e-15, -1, -1, 0}, -0.75, 0},
        {"both extremes", {0, 1, -1, 0}, -std::sqrt(3.0) / 6, std::sqrt(3.0) / 6},  // 3 u t (1 - 2 t)
        {"extremes on the ends", {0, 0, 1, 1}, 0, 1},
        {"constant", {2, 2, 2, 2}, 2, 2},
    };
    for (auto const& c : cases) {
        for (double const scale : {1.0, 0x1p-700, 0x1p700}) {
            SCOPED_TRACE(c.name);
            curve upright(4), level(4);
            for (unsigned int i = 0; i < 4; ++i) {
                upright(i) = at(0, c.v[i] * scale);
                level(i) = at(c.v[i] * scale, 7, 7);
            }
            CRealRect const a = bezier_bounding_rect(upright), b = bezier_bounding_rect(level);
            EXPECT_NEAR(a.bottom / scale, c.low, 1e-15);
            EXPECT_NEAR(a.top / scale, c.high, 1e-15);
            EXPECT_TRUE(a.left == 0 && a.right == 0 && b == CRealRect(a.bottom, 7, a.top, 7));
        }
    }
    EXPECT_TRUE(bezier_bounding_rect(path({at(2, 3)})) == CRealRect(2, 3, 2, 3));
    EXPECT_TRUE(bezier_bounding_rect(path({at(2, 3), at(1, 1), at(1, 1), point()})) == CRealRect(0, 0, 2, 3));
    for (unsigned int size : {0u, 2u, 3u})
        EXPECT_TRUE(bezier_bounding_rect(curve(size, at(2, 3))).IsRectNull());
}

// Property. A refinement may be small by chance where the error is not yet.
TEST(BezierLength, IsThatOfDenseChords) {
    seeded_random random(43);
    for (int trial = 0; trial < 200; ++trial) {
        curve const c = random_path(random, 2, random.log_uniform(0.1, 10), at(4e3, 1e3), false);
        curve const dense = render(c, false, 1000);
        double chords = 0, length = 0;
        for (unsigned int i = 1; i < dense.capacity(); ++i) chords += distance2d(dense[i - 1], dense[i]);
        ASSERT_TRUE(calculate_bezier_length(c, length));
        EXPECT_NEAR(length / chords, 1, 2e-4) << trial;
    }
}

TEST(BezierLength, IsThatWorkedByHand) {
    double length = 9;
    EXPECT_FALSE(calculate_bezier_length(curve(3), length) || calculate_bezier_length(curve(), length));
    EXPECT_EQ(length, 9);
    EXPECT_TRUE(calculate_bezier_length(path({at(2, 3)}), length) && length == 0);
    curve const down = path({at(0, 3, 9), at(0, 2), at(0, 1), point()});
    EXPECT_TRUE(calculate_bezier_length(down, length) && length == 3);
    // A speed of 1 - b/6 + b u t along a chord of 1: n panels lack b / 6n², a change of b / 2n² from n / 2
    // panels. With b of 0.0024 the change is below 1e-5 at 16 panels; with 6 it never is, up to 256.
    for (auto const& [b, panels] : {std::pair(0.0024, 16.0), std::pair(6.0, 256.0)}) {
        double const first = (1 - b / 6) / 3;  // 3 times this is the speed at both ends
        curve const c = path({at(0, 1), at(0.6 * first, 1 + 0.8 * first),
                              at(0.6 - 0.6 * first, 1.8 - 0.8 * first), at(0.6, 1.8)});
        EXPECT_TRUE(calculate_bezier_length(c, length));
        EXPECT_NEAR(length, 1 - b / (6 * panels * panels), 1e-14);
    }
}

// Area and its first moments by Gauss's rule with 5 points, exact up to degree 9; the integrands have 8.
// Other forms of Green's theorem than in the library, with the closing line as a cubic of its own.
std::vector<double> integrate_region(curve c) {
    point const a = c.end()[-1], b = c[0];
    c.append(curve(between(a, b, 1.0 / 3), between(a, b, 2.0 / 3), b));
    double const r = 2 * std::sqrt(10.0 / 7), w = 13 * std::sqrt(70.0) / 900;
    double const inner = std::sqrt(5 - r) / 3, outer = std::sqrt(5 + r) / 3;
    double const nodes[] = {0, inner, -inner, outer, -outer};
    double const weights[] = {128 / 225.0, 322 / 900.0 + w, 322 / 900.0 + w, 322 / 900.0 - w,
                              322 / 900.0 - w};
    std::vector<double> sums(3);
    for (unsigned int start = 0; start + 3 < c.capacity(); start += 3) {
        for (int k = 0; k < 5; ++k) {
            cut const at_node = de_casteljau(&c[start], (1 + nodes[k]) / 2);
            double const x = at_node.where.x(), y = at_node.where.y();
            sums[0] += weights[k] / 2 * x * at_node.velocity.y();
            sums[1] += weights[k] / 4 * x * x * at_node.velocity.y();
            sums[2] -= weights[k] / 4 * y * y * at_node.velocity.x();
        }
    }
    return sums;
}

TEST(BezierMoments, AreThoseOfGaussQuadrature) {
    seeded_random random(44);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        curve c = random_path(random, 1 + random.below(4), 1, at(0.5, -0.25), trial % 3 == 0);
        if (trial % 2) c(c.capacity() - 1) = c[0];
        std::vector<double> const expected = integrate_region(c);
        double area = 0;
        point centroid;
        ASSERT_TRUE(calculate_closed_bezier_moments(c, area, centroid));
        EXPECT_TRUE(centroid.is_2d() && centroid.is_location());
        EXPECT_NEAR(area, expected[0], 1e-14);
        EXPECT_NEAR(centroid.x() * area, expected[1], 1e-14);
        EXPECT_NEAR(centroid.y() * area, expected[2], 1e-14);
    }
}

TEST(BezierMoments, KeepTheirDigitsFarAwayAndFailByValue) {
    // A quarter of the unit disc, its control length k = 4/3 (sqrt 2 - 1) in 2^-12, so that the shift is
    // exact.
    double const k = std::round((std::sqrt(2.0) - 1) * 4 / 3 * 4096) / 4096, shift = 0x1p20;
    curve quarter = path({at(1, 0), at(1, k), at(k, 1), at(0, 1), at(0, 1), at(0, 0), at(0, 0)});
    double area = 0, far_area = 0;
    point centroid;
    ASSERT_TRUE(calculate_closed_bezier_moments(quarter, area, centroid));
    EXPECT_LT(distance2d(centroid, at(1, 1) * (4 / (3 * std::acos(-1.0)))), 3e-4);  // of the true disc
    quarter += at(shift, -shift);
    ASSERT_TRUE(calculate_closed_bezier_moments(quarter, far_area, quarter(0)));  // an input as the output
    EXPECT_EQ(far_area, area);
    EXPECT_LT(distance2d(quarter[0] - at(shift, -shift), centroid), 1e-9);
    for (unsigned int size : {0u, 3u})
        EXPECT_FALSE(calculate_closed_bezier_moments(curve(size), area, centroid));
    EXPECT_TRUE(area == far_area && centroid.is_location());
    curve const line = path({at(1, 1), at(2, 1), at(3, 1), at(4, 1)});
    EXPECT_TRUE(calculate_closed_bezier_moments(line, area, centroid) && area == 0 && centroid.is_trivial());
}

}  // namespace
}  // namespace tvmath
