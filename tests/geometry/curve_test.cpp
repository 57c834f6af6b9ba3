#include "tvmath/curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;
double const nan_value = std::nan("");
point const gap;  // the trivial point

curve path(std::vector<point> const& points) {
    return curve(idioms::array<point>(static_cast<unsigned int>(points.size()), points.data()));
}

// n points (i, 0), so that x tells where a point comes from.
curve ruler(unsigned int n) {
    curve c(n);
    for (unsigned int i = 0; i < n; ++i) c(i) = at(i, 0);
    return c;
}

numbers x_of(curve const& c) {
    numbers x;
    for (point const& p : c) x.push_back(p.x());
    return x;
}

void expect_points(curve const& actual, std::vector<point> const& expected) {
    ASSERT_EQ(actual.capacity(), expected.size());
    for (unsigned int i = 0; i < actual.capacity(); ++i) EXPECT_TRUE(actual[i] == expected[i]) << i;
}

TEST(Curve, ShiftsLocationsOnlyAndKeepsWeights) {
    point weighted = at(1, 1), moved = at(11, 21, 30);
    weighted[0] = moved[0] = 2;
    curve const c = path({at(1, 2), at(1, 2, 3), point(false, 1, 2), gap, weighted});
    expect_points(c + at(10, 20, 30), {at(11, 22, 30), at(11, 22, 33), point(false, 1, 2), gap, moved});
    expect_points(c + point(false, 9, 9) - at(9, 9), {c[0], c[1], c[2], c[3], c[4]});
    curve shifted = ruler(3);
    EXPECT_EQ(x_of(shifted += shifted[1]), (numbers{1, 2, 3}));  // a point of the path itself
}

TEST(Curve, StaysSharedUnderNeutralOperations) {
    curve const c = ruler(5);
    EXPECT_TRUE(c * 1.0 == c && c / 1.0 == c && c * transform() == c && c / transform() == c && c + gap == c);
    EXPECT_TRUE(curve(c).reduce_points_to_number(5, true) == c);
    EXPECT_TRUE(curve(c).reduce_points_to_number_middle(9) == c);
}

TEST(Curve, GivesExtentAndNumbersOfAllPoints) {
    CRealRect const extent = path({at(nan_value, 3), at(4, -1, 9), at(2, nan_value)}).get_bounding_rect();
    EXPECT_TRUE(extent == CRealRect(2, -1, 4, 3) && curve().get_bounding_rect().IsRectNull());
    EXPECT_TRUE(path({at(2, 3), gap}).get_bounding_rect() == CRealRect(0, 0, 2, 3));
    idioms::array<double> const list = path({at(1, 2, 3), at(4, 5)}).to_double_array();
    EXPECT_EQ(numbers(list.begin(), list.end()), (numbers{1, 2, 3, 4, 5, 0}));
}

TEST(CurveReduction, KeepsThePointsWorkedByHand) {
    // A step of 5 at 6: 0-9 fails, 0-4 fits; 4-9, 4-6 fail, 4-5; 5-9, 5-7 fail, 5-6; 6-9 fits.
    curve step = ruler(10);
    for (unsigned int i = 6; i < 10; ++i) step(i).y() = 5;
    curve const tent = path({at(0, 0), at(1, 1), at(2, 0)}),
                hole = path({at(0, 0), at(1, nan_value), at(2, 0)});
    struct {
        char const* name;
        curve actual;
        numbers expected;
    } const cases[] = {
        {"open interval", ruler(9).reduce_points_by_interval(3, false), {0, 3, 6, 8}},
        {"interval ends on the last", ruler(7).reduce_points_by_interval(3, false), {0, 3, 6}},
        {"closed interval", ruler(9).reduce_points_by_interval(3, true), {0, 3, 6}},
        {"interval beyond the path", ruler(9).reduce_points_by_interval(99, false), {0, 8}},
        {"interval, none", curve().reduce_points_by_interval(3, false), {}},
        {"open number", ruler(10).reduce_points_to_number(4, false), {0, 3, 6, 9}},
        {"halves round up", ruler(6).reduce_points_to_number(3, false), {0, 3, 5}},
        {"closed number", ruler(10).reduce_points_to_number(4, true), {0, 3, 5, 8}},  // 0, 2.5, 5, 7.5
        {"a single one, open", ruler(10).reduce_points_to_number(1, false), {0}},
        {"none, open", ruler(10).reduce_points_to_number(0, false), {}},
        {"none, closed", ruler(10).reduce_points_to_number(0, true), {}},
        {"middle", ruler(10).reduce_points_to_number_middle(4), {3, 4, 5, 6}},
        {"odd rest", ruler(10).reduce_points_to_number_middle(3), {3, 4, 5}},
        {"spans of a hundred", ruler(251).reduce_points_by_tolerance(0, true), {0, 100, 200, 250}},
        {"halved spans", step.reduce_points_by_tolerance(0.5, false), {0, 4, 5, 6, 9}},
        {"tolerance met", curve(tent).reduce_points_by_tolerance(1, false), {0, 2}},
        {"tolerance missed", curve(tent).reduce_points_by_tolerance(1 - 1e-15, false), {0, 1, 2}},
        {"a stack of equal points", curve(9, at(1, 0)).reduce_points_by_tolerance(0, false), {1, 1}},
        {"NaN stays", curve(hole).reduce_points_by_tolerance(1, false), {0, 1, 2}},
        {"NaN tolerance", ruler(3).reduce_points_by_tolerance(nan_value, false), {0, 1, 2}},
    };
    for (auto const& c : cases) EXPECT_EQ(x_of(c.actual), c.expected) << c.name;
}

// Property, also around closed loops, whose first span has no chord, and far from the origin.
TEST(CurveReduction, ByToleranceNeverDropsAPointThatIsFartherAway) {
    seeded_random random(31);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        double const t = random.log_uniform(1e-4, 3), far = trial % 3 ? 0 : 1e6;
        auto points = circle_points(random, at(far, far), random.uniform(0.5, 20), 0, random.uniform(0.1, 14),
                                    2 + static_cast<int>(random.below(400)), trial % 2 ? 0 : t / 2);
        for (std::size_t i = 100; i < points.size(); i += 100) points[i] = points[0];
        curve reduced = path(points);
        reduced.reduce_points_by_tolerance(t, false);
        ASSERT_TRUE(reduced[0] == points[0]);
        auto from = points.begin();
        for (unsigned int i = 1; i < reduced.capacity(); ++i) {
            point const b = reduced[i];
            auto const to = std::find(from + 1, points.end(), b);
            ASSERT_TRUE(to != points.end() && to - from <= 100);
            double const ux = b.x() - from->x(), uy = b.y() - from->y(), length = std::hypot(ux, uy);
            for (auto p = from; p != to; ++p) {
                double const dx = p->x() - from->x(), dy = p->y() - from->y();
                EXPECT_LE(
                    length > 0 ? std::fabs(dx * (uy / length) - dy * (ux / length)) : std::hypot(dx, dy),
                    t * (1 + 1e-9));
            }
            from = to;
        }
        EXPECT_TRUE(from == points.end() - 1);
    }
}

TEST(ClosestOnCurve, FollowsVertexAndSegmentsWorkedByHand) {
    curve const corner = path({at(0, 0), at(10, 0), at(10, 10)});
    struct {
        char const* name;
        curve c;
        point p, vertex, foot;
    } const cases[] = {
        {"before the vertex", corner, at(7, -1), at(10, 0), at(7, 0)},
        {"after the vertex", corner, at(11, 3), at(10, 0), at(10, 3)},
        {"outside both", corner, at(12, -2), at(10, 0), at(10, 0)},
        {"upon both, after is nearer", corner, at(9, 2), at(10, 0), at(10, 2)},
        {"upon both, before is nearer", corner, at(8, 1), at(10, 0), at(8, 0)},
        {"first of equals", corner, at(5, -1), at(0, 0), at(5, 0)},
        {"trivial p is the origin", corner + at(1, 0), point(), at(1, 0), at(1, 0)},
        {"over a gap", path({gap, at(0, 0), gap, gap, at(10, 0), gap}), at(7, 2), at(10, 0), at(7, 0)},
        {"over a gap ahead", path({at(10, 0), gap, at(0, 0)}), at(7, 2), at(10, 0), at(7, 0)},
        {"hardly a length", path({at(0, 0), at(1e-170, 0)}), at(1, 1), at(0, 0), at(0, 0)},
        {"no length", path({at(3, 4), at(3, 4)}), at(9, 9), at(3, 4), at(3, 4)},
        {"NaN, infinity", path({at(nan_value, 0), at(3, 4), at(1 / 0.0, 0)}), at(9, 9), at(3, 4), at(3, 4)},
        {"nothing", curve(3), at(1, 1), point(), point()},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(closest2d(c.c, c.p, false) == c.vertex && closest3d(c.c, c.p, false) == c.vertex);
        point const flat = closest2d(c.c, c.p, true), solid = closest3d(c.c, c.p, true);
        ASSERT_EQ(flat.dimension(), c.foot.dimension());
        EXPECT_LT(distance3d(flat, c.foot) + distance3d(solid, c.foot), 1e-14);
    }
    // In XY the first segment is nearest, its z carried along; in space the last one.
    curve const stair = path({at(0, 0, 9), at(10, 0, 5), at(10, 3, 0), at(4, 3, 0)});
    EXPECT_LT(distance3d(closest2d(stair, at(7.5, 0.5, 0), true), at(7.5, 0, 6)), 1e-14);
    EXPECT_LT(distance3d(closest3d(stair, at(7.5, 0.5, 0), true), at(7.5, 3, 0)), 1e-14);
}

TEST(CurveList, GivesTheFirstPathOfTheNearest) {
    idioms::array<curve> list(4);
    list(0) = curve(2);
    list(1) = path({at(0, 0, 8), at(10, 0, 8)});
    list(2) = path({at(4, 3), at(6, 3)});
    list(3) = path({at(4, -3), at(6, -3)});
    EXPECT_TRUE(closest2d(list, at(5, 0), true) == list[1] && closest2d(list, at(5, 0), false) == list[2]);
    EXPECT_TRUE(closest3d(list, at(0, 0), true) == list[2]);
    EXPECT_TRUE(closest2d(idioms::array<curve>(2), at(0, 0), true).is_trivial());
    idioms::array<curve> moved = list;
    EXPECT_TRUE((moved *= transform()) == list && (moved *= transform(1, 2))[3][0] == at(5, -1));
}

TEST(CurvePoints, AreAveragedAndMeasured) {
    EXPECT_TRUE(centroid2d(path({at(1, 2, 3), gap, at(5, 0)})) == at(3, 1));
    EXPECT_TRUE(centroid3d(path({at(1, 2, 3), gap, at(5, 0)})) == at(3, 1, 1.5));
    EXPECT_TRUE(centroid2d(path({point(false, 1, 2), at(3, 4)})) == point(false, 2, 3));
    EXPECT_TRUE(centroid3d(curve(2)).is_trivial());
    double const far = 0x1p40 + 0x1.555p-2;  // a plain sum of 3000 of these is rounded
    EXPECT_EQ(centroid2d(curve(3000, at(far, 0))).x(), far);

    curve const c = path({at(3, 4), at(3, 4, 12), gap});
    double const in_plane[] = {5, 5, 0}, in_space[] = {5, 13, 0};
    EXPECT_TRUE(distance2d(c, at(0, 0)) == vector(3, in_plane));
    EXPECT_TRUE(distance3d(at(0, 0), c) == vector(3, in_space));
    expect_points(midpoint(path({at(0, 0, 2), at(0, 0)}), path({at(4, 2), at(4, 2)})), {at(2, 1, 1), gap});
    EXPECT_TRUE(midpoint(curve(2), curve(3)).is_trivial());
}

}  // namespace
}  // namespace tvmath
