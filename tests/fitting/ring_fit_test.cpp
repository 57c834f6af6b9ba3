#include "tvmath/ring_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/mirrored_points.h"
#include "support/shape_points.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Mirrored points of `radius` + `cosine` cos 3a + `sine` sin 3a at equal steps. By its symmetry of a third of
// a turn the circle of least squares is centred, and mirrored radii leave the series as it is.
std::vector<point> lobes(seeded_random& random, point center, double radius, double cosine, double sine,
                         int n, double noise) {
    mirrored_points points(random, center, 0, 0);
    for (int i = 0; i < n; ++i) {
        double const a = 2 * pi * i / n, r = radius + cosine * std::cos(3 * a) + sine * std::sin(3 * a);
        double const off = noise * std::cos(6 * a);  // the same in each third
        points.add((r + off) * std::cos(a), (r + off) * std::sin(a), 1, 0);
        points.add((r - off) * std::cos(a), (r - off) * std::sin(a), 1, 0);
    }
    return points.shuffled();
}

void expect_series(ring const& fitted, double radius, double cosine, double sine, double tolerance) {
    ASSERT_GE(fitted.capacity(), 7u);
    for (unsigned int i = 0; i < fitted.capacity(); ++i) {
        double const expected = i == 0 ? radius : i == 5 ? cosine : i == 6 ? sine : 0;
        EXPECT_NEAR(fitted[i], expected, tolerance) << "coefficient " << i;
    }
}

TEST(RingFit, RecoversTheSeriesOfAnOutline) {
    seeded_random random(1);
    for (double const far : {0.0, 1e6}) {
        for (int const n : {12, 60, 3000}) {
            SCOPED_TRACE(n);
            point const center = at(far + 3, far / 2 - 4);
            transform placement;
            ring const fitted = ring_fit(as_array(lobes(random, center, 10, 0.3, -0.2, n, 0.05)), placement);
            double const tolerance = far == 0 ? 1e-12 : 1e-9;  // rounding of the coordinates at 1e6: 1.2e-10
            expect_series(fitted, 10, 0.3, -0.2, tolerance);
            EXPECT_LE(distance2d(placement.basis(0), center), tolerance);
            EXPECT_LE(fitted.capacity(), 101u);
        }
    }
}

// Uneven steps; the outline, a circle seen from elsewhere, has no end of harmonics.
TEST(RingFit, FollowsAnOutlineOfUnevenPoints) {
    seeded_random random(2);
    std::vector<point> points;
    for (int i = 0; i < 400; ++i) {
        double const a = 2 * pi * random.unit(), r = 20 + 0.5 * std::cos(2 * a) + 0.2 * std::sin(5 * a);
        points.push_back(at(1, 2) + point(false, r * std::cos(a), r * std::sin(a)));
    }
    transform placement;
    ring const fitted = ring_fit(as_array(points), placement);
    for (point const& p : points) EXPECT_NEAR(fitted.distance(p / placement), 0, 1e-9);
}

TEST(RingFit, FailsWithoutAClosedOutline) {
    seeded_random random(3);
    double const nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<point> const failing[] = {{},
                                          {at(1, 0), at(-1, 1), at(-1, -1)},
                                          circle_points(random, at(0, 0), 5, 0, 3.1, 100),
                                          {at(1, 0), at(0, 1), at(-1, 0), at(0, -1), point()},
                                          {at(1, 0), at(0, 1), at(-1, 0), at(0, -1), at(nan, 0)},
                                          {at(0, 0), at(1, 0), at(2, 0), at(3, 0), at(4, 0)}};
    std::vector<point> const good = circle_points(random, at(0, 0), 2, 0, 6.28, 30);
    for (auto const& points : failing) {
        SCOPED_TRACE(points.size());
        transform placement(7, 8);
        transform const before = placement;
        EXPECT_TRUE(ring_fit(as_array(points), placement).is_trivial());
        EXPECT_TRUE(placement == before);
        ring inner(1.0), outer(2.0);
        EXPECT_TRUE(oring_fit(points, good, inner, outer).is_trivial());
        EXPECT_TRUE(oring_fit(as_array(good), as_array(points), inner, outer).is_trivial());
        EXPECT_TRUE(oring_fit(points, inner, outer).is_trivial());
        EXPECT_TRUE(inner[0] == 1 && outer[0] == 2);
    }
    // One outline, in one list, does not part.
    ring inner, outer;
    EXPECT_TRUE(oring_fit(circle_points(random, at(0, 0), 5, 0, 6.28, 100, 0.01), inner, outer).is_trivial());
}

TEST(ORingFit, GivesBothOutlinesInAllForms) {
    seeded_random random(4);
    point const center = at(50, -20);
    std::vector<point> const inside = lobes(random, center, 10, 0.3, 0.1, 60, 0.05);
    std::vector<point> const outside = lobes(random, center, 14, -0.2, 0.4, 90, 0.05);
    std::vector<point> mixed = outside;
    mixed.insert(mixed.begin() + 40, inside.begin(), inside.end());
    for (int form = 0; form < 4; ++form) {
        SCOPED_TRACE(form);
        ring inner, outer;
        transform const placement = form == 0   ? oring_fit(inside, outside, inner, outer)
                                    : form == 1 ? oring_fit(as_array(inside), as_array(outside), inner, outer)
                                    : form == 2 ? oring_fit(mixed, inner, outer)
                                                : oring_fit(as_array(mixed), inner, outer);
        EXPECT_LE(distance2d(placement.basis(0), center), 1e-12);
        expect_series(inner, 10, 0.3, 0.1, 1e-12);
        expect_series(outer, 14, -0.2, 0.4, 1e-12);
    }
}

// Outlines out of centre by 1: the placement lies midway, and each series holds half of it in (c1, c2).
TEST(ORingFit, ShowsTheEccentricityInTheFirstHarmonics) {
    seeded_random random(5);
    ring inner, outer;
    transform const placement =
        oring_fit(circle_points(random, at(0.5, 2), 5, 0, 2 * pi, 200),
                  circle_points(random, at(-0.5, 2), 9, 1, 2 * pi, 200), inner, outer);
    EXPECT_LE(distance2d(placement.basis(0), at(0, 2)), 1e-14);
    EXPECT_LE(distance2d(inner.center(), at(0.5, 0)), 1e-12);
    EXPECT_LE(distance2d(outer.center(), at(-0.5, 0)), 1e-12);
}

}  // namespace
}  // namespace tvmath
