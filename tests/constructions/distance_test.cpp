#include "tvmath/distance.h"

#include <gtest/gtest.h>

#include <limits>

#include "distance_features.h"
#include "tvmath/circle.h"

inline namespace tvmath {
namespace {

TEST(Distance, OfTwoPointsHasTheFrameTold) {
    struct {
        point a, b, middle, axes[3];
    } const cases[] = {
        {at(1, 1), at(7, 9), at(4, 5), {point(false, 3, 4), point(false, -4, 3), point()}},
        {at(0, 0, 0),
         at(4, 0, 0),
         at(2, 0, 0),
         {point(false, 2, 0, 0), point(false, 0, 2, 0), point(false, 0, 0, 2)}},
        // Half (3, 4, 12) of length 13: second axis (-4, 3, 0) 13 / 5.
        {at(0, 0),
         at(6, 8, 24),
         at(3, 4, 12),
         {point(false, 3, 4, 12), point(false, -10.4, 7.8, 0), point(false, -7.2, -9.6, 5)}},
        {at(1, 2, 9),
         at(1, 2, 3),
         at(1, 2, 6),
         {point(false, 0, 0, -3), point(false, 1, 0, 0), point(false, 0, -3, 0)}},
        {at(5, 6), at(5, 6), at(5, 6), {point(false, 0, 0), point(false, 0, 0), point()}},
        {at(5, 6, 7),
         at(5, 6, 7),
         at(5, 6, 7),
         {point(false, 0, 0, 0), point(false, 1, 0, 0), point(false, 0, 0, 0)}},
    };
    for (auto const& c : cases) {
        line const l = distance_fit(c.a, c.b);
        EXPECT_TRUE(l.basis(0) == c.middle);
        for (int i = 0; i < 3 && !c.axes[i].is_trivial(); ++i) {
            EXPECT_EQ(l.basis(i + 1).dimension(), c.axes[i].dimension());
            EXPECT_LE(distance3d(l.basis(i + 1), c.axes[i]), 1e-14);
        }
        if (distance3d(c.a, c.b) == 0) continue;
        EXPECT_FALSE(l.is_left_handed());
        EXPECT_LE(distance3d(c.a / l, point(true, -1, 0)), 1e-15);  // the inverse map is the inverse
    }
}

TEST(Distance, WithoutAPlaceIsEmpty) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<point> const solid = {at(0, 0, 0), at(1, 2, 3)}, mixed = {at(0, 0, 0), at(1, 1)}, none;
    curve const c = ellipse(1, at(0, 0)).render_bezier();
    line const l(at(0, 0), at(1, 1));
    struct {
        char const* name;
        line found;
    } const cases[] = {
        {"trivial point", distance_fit(point(), at(1, 1))},
        {"not a number", distance_fit(at(1, 1), at(nan, 1))},
        {"one 2D point in a list", distance_near_3d(solid, mixed)},
        {"in the other", distance_far_3d(mixed, solid)},
        {"empty list", distance_near_3d(none, solid)},
        {"list of nothing", distance_near_2d(std::vector<point>{point()}, at(1, 1))},
        {"trivial line", distance_fit(at(1, 1), line())},
        {"trivial plane", distance_far_3d(plane(), solid)},
        {"2D point and path", distance_near(c, at(5, 5))},
        {"2D list and path", distance_far_2d(c, {at(5, 5), at(6, 6)})},
        {"path of 5 points", distance_near(l, curve(5, at(1, 1)))},
        {"path of one point", distance_near(c, curve(1, at(1, 1)))},
        {"null ellipse", distance_near(ellipse(), ellipse(1))},
        {"ellipse of NaN", distance_far(ellipse(nan), ellipse(1))},
        {"null ellipse and line", distance_far(l, ellipse())},
    };
    for (auto const& c2 : cases) EXPECT_TRUE(c2.found.is_trivial()) << c2.name;
    EXPECT_FALSE(distance_near_3d(solid, solid).is_trivial());  // a distance of 0 is one
    EXPECT_EQ(distance_near_3d(solid, solid).length(), 0);
}

// Both lines, to the last bit of the coordinates.
void expect_reversed(line const& l, line const& other, char const* name) {
    ASSERT_FALSE(l.is_trivial()) << name;
    EXPECT_TRUE(l.basis(0) == other.basis(0) && l.basis(1) == -other.basis(1)) << name;
}

#define EXPECT_BOTH_ORDERS(function, a, b) \
    expect_reversed(function(a, b), function(b, a), #function "(" #a ", " #b ")")

TEST(Distance, InTheOtherOrderIsTheSameReversed) {
    for_random_features(4, 200, [](random_features make) {
        point const p = make.place(true);
        line const l(make.place(), make.place());
        plane const s(make.place(true), point(false, 1, make.random.unit(), 1));
        ellipse const e = make.oval(), other_e = make.oval();
        curve const c = make.path(3), other_c = make.path(2);
        std::vector<point> list;
        for (int i = 0; i < 5; ++i) list.push_back(make.place(true));
        EXPECT_BOTH_ORDERS(distance_fit, p, l);
        EXPECT_BOTH_ORDERS(distance_fit, p, s);
        EXPECT_BOTH_ORDERS(distance_fit3d, p, l);
        EXPECT_BOTH_ORDERS(distance_near_3d, list, p);
        EXPECT_BOTH_ORDERS(distance_far_3d, list, p);
        EXPECT_BOTH_ORDERS(distance_near_3d, list, l);
        EXPECT_BOTH_ORDERS(distance_far_3d, list, l);
        EXPECT_BOTH_ORDERS(distance_near_3d, list, s);
        EXPECT_BOTH_ORDERS(distance_far_3d, list, s);
        EXPECT_BOTH_ORDERS(distance_near_2d, list, p);
        EXPECT_BOTH_ORDERS(distance_far_2d, list, p);
        EXPECT_BOTH_ORDERS(distance_near_2d, list, l);
        EXPECT_BOTH_ORDERS(distance_far_2d, list, l);
        EXPECT_BOTH_ORDERS(distance_near_2d, list, c);
        EXPECT_BOTH_ORDERS(distance_far_2d, list, c);
        EXPECT_BOTH_ORDERS(distance_near, p, c);
        EXPECT_BOTH_ORDERS(distance_far, p, c);
        EXPECT_BOTH_ORDERS(distance_near, l, c);
        EXPECT_BOTH_ORDERS(distance_far, l, c);
        EXPECT_BOTH_ORDERS(distance_near, l, e);
        EXPECT_BOTH_ORDERS(distance_far, l, e);
        EXPECT_BOTH_ORDERS(distance_near, p, e);
        EXPECT_BOTH_ORDERS(distance_far, p, e);
        EXPECT_BOTH_ORDERS(distance_near, e, other_e);
        EXPECT_BOTH_ORDERS(distance_far, e, other_e);
        EXPECT_BOTH_ORDERS(distance_near, c, other_c);
        // Each line starts on its first argument: the list's own points, and the point itself.
        double const rounding = 1e-14 * 30 * make.scale;
        EXPECT_LE(distance3d(start_of(distance_far(p, c)), p), rounding);
        EXPECT_LE(distance3d(end_of(distance_near_3d(s, list)), point_nearest_on_3d(s, list)), rounding);
        EXPECT_LE(distance3d(end_of(distance_far_2d(l, list)), point_farthest_on_2d(l, list)), rounding);
        EXPECT_LE(distance3d(start_of(distance_near(e, other_e)),
                             point_nearest3d_on(start_of(distance_near(e, other_e)), e)),
                  rounding);
    });
}

TEST(Distance, OfTwoListsIsThatOfAllPairs) {
    for_random_features(5, 200, [](random_features make) {
        std::vector<point> lists[2];
        for (auto& list : lists) {
            unsigned int const n = 1 + make.random.below(40);
            for (unsigned int i = 0; i < n; ++i) list.push_back(make.place(true));
        }
        double least = 1e300, greatest = 0;
        for (point const& p : lists[0]) {
            least = std::min(least, extreme_distance(p, lists[1], true, distance3d));
            greatest = std::max(greatest, extreme_distance(p, lists[1], false, distance3d));
        }
        EXPECT_NEAR(distance_near_3d(lists[0], lists[1]).length(), least, 1e-14 * greatest);
        EXPECT_NEAR(distance_far_3d(lists[0], lists[1]).length(), greatest, 1e-14 * greatest);
    });
    // Of equal pairs that of the first walked point: the lists are equally long, so the second is walked.
    std::vector<point> const a = {at(0, 0, 0), at(10, 0, 0)}, b = {at(11, 0, 0), at(0, 1, 0)};
    EXPECT_TRUE(distance_near_3d(a, b).basis(0) == at(10.5, 0, 0));
    EXPECT_TRUE(distance_near_3d(b, a).basis(0) == at(0, 0.5, 0));
}

// A figure of two features, moved by a rigid motion, keeps its distance, and sampling does not beat it.
template <class shape>
void expect_nearest(shape const& a, shape const& b, line const& found, std::vector<point> const& on_a,
                    std::vector<point> const& on_b, bool near, double size) {
    ASSERT_FALSE(found.is_trivial());
    double best = near ? 1e300 : 0;
    for (point const& p : on_a) {
        double const d = extreme_distance(p, on_b, near, distance3d);
        best = near ? std::min(best, d) : std::max(best, d);
    }
    double const d = found.length();
    EXPECT_TRUE(near ? d <= best + 1e-12 * size : d >= best - 1e-12 * size) << d << " against " << best;
    transform const motion = transform::rotation(0.3, -1, 2).translate(size, -size, size / 2);
    shape const moved_a(a * motion), moved_b(b * motion);
    double const again = [&] {
        if constexpr (std::is_same_v<shape, curve>)
            return distance_near(moved_a, moved_b).length();
        else
            return near ? distance_near(moved_a, moved_b).length() : distance_far(moved_a, moved_b).length();
    }();
    EXPECT_NEAR(again, d, 1e-12 * size);
}

TEST(Distance, OfTwoEllipsesIsNotBeatenStationaryAndMovesWithThem) {
    for_random_features(6, 600, [](random_features make) {
        ellipse const a = make.oval(), b = make.oval();
        auto const on_a = samples(a, 80), on_b = samples(b, 80);
        double const size = 30 * make.scale;
        line const near = distance_near(a, b), far = distance_far(a, b);
        expect_nearest(a, b, near, on_a, on_b, true, size);
        expect_nearest(a, b, far, on_a, on_b, false, size);
        // Each end is the nearest place to the other one, which is an independent search.
        EXPECT_NEAR(distance3d(end_of(near), point_nearest3d_on(end_of(near), a)), near.length(),
                    1e-12 * size);
        EXPECT_NEAR(distance3d(start_of(near), point_nearest3d_on(start_of(near), b)), near.length(),
                    1e-12 * size);
        if (!make.solid) {
            EXPECT_NEAR(distance2d(end_of(far), point_farthest_on(end_of(far), a)), far.length(),
                        1e-12 * size);
        }
    });
}

TEST(Distance, OfTwoPathsIsNotBeatenAndMovesWithThem) {
    for_random_features(7, 400, [](random_features make) {
        curve const a = make.path(1 + make.random.below(5)), b = make.path(1 + make.random.below(5));
        line const near = distance_near(a, b);
        double const size = 50 * make.scale;
        expect_nearest(a, b, near, samples(a, 30), samples(b, 30), true, size);
        point p = start_of(near);
        p.promote3d();
        EXPECT_NEAR(distance3d(p, point_nearest_on(p, b)), near.length(), 1e-12 * size);
    });
}

TEST(Distance, OfCirclesAndConcentricEllipsesInClosedForm) {
    circle const big(5, at(1, 2)), small(2, at(1, 2));
    struct {
        char const* name;
        line found;
        double length;
    } const cases[] = {
        {"concentric", distance_near(big, small), 3},
        {"concentric, farthest", distance_far(small, big), 7},
        {"apart", distance_near(big, circle(2, at(1, 12))), 3},
        {"within", distance_near(circle(1, at(1, 5)), big), 1},
        {"within, farthest", distance_far(circle(1, at(1, 5)), big), 9},
        {"crossing", distance_near(big, circle(5, at(4, 2))), 0},
        {"touching", distance_near(big, circle(2, at(8, 2))), 0},
        {"in parallel planes", distance_near(big, circle(small * transform(0, 0, 4))), 5},
        {"equal", distance_near(big, big), 0},
        {"confocal: least at the ends of the long axis",
         distance_near(ellipse(5, 3, 0, at(0, 0)), ellipse(std::sqrt(20.0), 2, 0, at(0, 0))),
         5 - std::sqrt(20.0)},
        // The squared distance is 16 + 32 (1 + cos s) (1 - cos t).
        {"each through the centre of the other",
         distance_near(circle(4), circle(circle(4) * transform::rotation(0, 0, pi / 2) * transform(4, 0, 0))),
         4},
        {"points", distance_far(ellipse(0, 0, at(0, 0)), ellipse(0, 0, at(3, 4))), 5},
    };
    for (auto const& c : cases) {
        ASSERT_FALSE(c.found.is_trivial()) << c.name;
        EXPECT_NEAR(c.found.length(), c.length, 2e-12) << c.name;
    }
}

}  // namespace
}  // namespace tvmath
