#include "tvmath/feature_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using point_list = std::vector<point>;

idioms::array<point> as_array(point_list const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

TEST(LineFit, SpansTheDataFromTheFirstPointTowardsTheLast) {
    struct {
        char const* name;
        point_list points;
        point middle, half;
    } const cases[] = {
        {"two points", {at(1, 2), at(5, 4)}, at(3, 3), point(false, 2, 1)},
        {"right to left", {at(4, 1), at(3, 1), at(-2, 1)}, at(1, 1), point(false, -3, 0)},
        // Mean x is 1; the data reach from -1 to 4 about it, so that the middle is not the mean.
        {"middle of the span",
         {at(0, 0), at(0, 0), at(0, 0), at(0, 0), at(5, 0)},
         at(2.5, 0),
         point(false, 2.5, 0)},
        {"symmetric scatter", {at(0, 1), at(0, -1), at(9, -1), at(9, 1)}, at(4.5, 0), point(false, 4.5, 0)},
        {"space, at the mean z", {at(0, 0, 1), at(0, 2, 2), at(0, 4, 6)}, at(0, 2, 3), point(false, 0, 2, 0)},
    };
    for (auto const& c : cases) {
        line const l = line_fit(as_array(c.points));
        EXPECT_LE(distance3d(l.basis(0), c.middle) + distance3d(l.basis(1), c.half), 1e-15) << c.name;
        EXPECT_EQ(l.is_3d(), c.points[0].is_3d()) << c.name;
    }
}

TEST(FeatureFits, GiveTheNullFeature) {
    point_list const square = {at(0, 0), at(1, 0), at(1, 1), at(0, 1)};
    point_list const with_null = {at(0, 0), at(1, 0), at(3, 1), point(), at(0, 5), at(2, 7)};
    point_list const with_nan = {at(0, 0, 1), at(1, std::nan(""), 0), at(3, 1, 0), at(0, 5, 1), at(2, 7, 1)};
    point_list const two_places = {at(0, 0, 1), at(1, 0, 0), at(0, 0, 1), at(1, 0, 0), at(0, 0, 1)};
    point_list const too_large = {at(0, 0, 0), at(1e300, 0, 0), at(0, 1e300, 0), at(0, 0, 1e300),
                                  at(1, 2, 3)};
    double sweep = 7, a = 7, b = 7, r = 7;
    point center = at(7, 7);
    for (auto const& bad : {point_list(), with_null, with_nan}) {
        EXPECT_TRUE(line_fit(as_array(bad)).is_trivial());
        EXPECT_TRUE(circle_centered_fit(at(0, 0), bad).is_trivial());
        EXPECT_TRUE(sphere_centered_fit(at(0, 0, 0), bad).is_trivial());
        EXPECT_TRUE(plane_centered_fit(at(0, 0, 0), as_array(bad)).is_trivial());
        EXPECT_TRUE(plane_parallel_fit(plane(at(0, 0, 0), at(0, 0, 1)), as_array(bad)).is_trivial());
        EXPECT_TRUE(arc_centered_fit(at(0, 0), as_array(bad), sweep).is_trivial());
        EXPECT_TRUE(circle_to_arc(circle(1), bad, sweep).is_trivial());
        EXPECT_FALSE(arc_quick_fit(as_array(bad), center, r, a, b));
    }
    for (auto const& bad : {point_list(), with_null, with_nan, two_places, too_large}) {
        EXPECT_TRUE(circle_fit(bad).is_trivial());
        EXPECT_TRUE(circle_2pt_fit(as_array(bad)).is_trivial());
        EXPECT_TRUE(sphere_fit(bad).is_trivial());
        EXPECT_TRUE(plane_fit(as_array(bad)).is_trivial());
        EXPECT_TRUE(arc_fit(as_array(bad), sweep).is_trivial());
    }
    EXPECT_TRUE(line_fit(as_array(square)).is_trivial());
    EXPECT_TRUE(plane_fit(as_array(square)).is_trivial());  // has no z
    EXPECT_TRUE(circle_fit({at(0, 2), at(1, 2), at(4, 2)}).is_trivial());
    EXPECT_TRUE(circle_2pt_fit(as_array({at(1, 1), point()})).is_trivial());
    EXPECT_TRUE(circle_centered_fit(point(), square).is_trivial());
    EXPECT_TRUE(circle_to_arc(circle(), square, sweep).is_trivial());
    EXPECT_TRUE(plane_parallel_fit(plane(), as_array(two_places)).is_trivial());
    EXPECT_TRUE(plane_centered_fit(at(2, 0, -1), as_array(two_places)).is_trivial());  // on one line with it
    EXPECT_TRUE(sweep == 7 && a == 7 && b == 7 && r == 7 && center == at(7, 7));
}

TEST(CircleFit, PassesThroughThreeDifferentPointsWithTheirRepeats) {
    point_list const points = {at(2, 0), at(2, 0), at(0, 2), at(2, 0),
                               at(0, 0), at(0, 2), at(0, 0), at(0, 0)};
    circle const c = circle_fit(points);
    EXPECT_TRUE(c.is_2d());
    EXPECT_NEAR(c.radius(), std::sqrt(2.0), 1e-15);
    EXPECT_LE(distance2d(c.basis(0), at(1, 1)), 1e-15);
}

// Points of a regular polygon, in turn a little outside and inside of the circle: by its symmetry the circle
// of least squares is the one in between, exactly.
TEST(CircleFit, FindsTheCircleBetweenTwoPolygons) {
    for (double const far : {0.0, 1e6}) {
        point_list plane_points, space_points;
        for (int i = 0; i < 12; ++i) {
            double const a = pi / 6 * i, r = i % 2 ? 5.25 : 4.75;
            plane_points.push_back(at(far + r * cos(a), r * sin(a) - far));
            space_points.push_back(at(far + r * cos(a), r * sin(a) - far, 3 + i % 2));
        }
        double const rounding = far * 3e-16 + 2e-15;  // of the coordinates
        circle const in_plane = circle_fit(plane_points), in_space = circle_fit(as_array(space_points));
        EXPECT_TRUE(in_plane.is_2d() && in_space.is_3d());
        EXPECT_LE(distance2d(in_plane.basis(0), at(far, -far)), rounding);
        EXPECT_LE(distance3d(in_space.basis(0), at(far, -far, 3.5)), rounding);
        EXPECT_NEAR(in_plane.radius(), 5, rounding);
        EXPECT_NEAR(in_space.radius(), 5, rounding);
    }
}

TEST(CircleAndSphereFits, OfAGivenCentreTakeTheMeanDistance) {
    point_list const points = {at(4, 4, 0), at(1, 2, 9), at(-1, 4, 4)};  // 3, 2 and 2 from (1, 4) in XY
    circle const c = circle_centered_fit(at(1, 4), points);
    EXPECT_NEAR(c.radius(), 7.0 / 3, 1e-15);
    EXPECT_TRUE(c.is_2d() && c.basis(0) == at(1, 4));
    circle const diameter = circle_2pt_fit(as_array({at(1, 1), at(4, 5)}));
    EXPECT_TRUE(diameter.basis(0) == at(2.5, 3) && diameter.radius() == 2.5);
    EXPECT_EQ(sphere_centered_fit(at(1, 4, 0), {points[0]}).radius(), 3);
    EXPECT_EQ(sphere_centered_fit(at(1, 4, 0), {at(1, 7, 4), at(4, 0, 12)}).radius(), 9);  // of 5 and 13
}

TEST(SphereFit, PassesThroughFourPointsAndBetweenTwoShells) {
    sphere const exact = sphere_fit({at(2, 0, 0), at(0, 2, 0), at(0, 2, 0), at(0, 0, 2), at(0, 0, 0)});
    EXPECT_NEAR(exact.radius(), std::sqrt(3.0), 1e-15);
    EXPECT_LE(distance3d(exact.basis(0), at(1, 1, 1)), 1e-15);
    // Corners of a cube outside and of an octahedron inside: the centre is that of symmetry, and the radius
    // the mean of the distances.
    point_list points;
    for (int i = 0; i < 8; ++i) points.push_back(at(i & 1 ? 9 : 7, i & 2 ? 3 : 1, i & 4 ? 6 : 4));
    for (double const r : {1.5, -1.5}) {
        points.insert(points.end(), {at(8 + r, 2, 5), at(8, 2 + r, 5), at(8, 2, 5 + r)});
    }
    sphere const between = sphere_fit(points);
    EXPECT_NEAR(between.radius(), (8 * std::sqrt(3.0) + 6 * 1.5) / 14, 1e-14);
    EXPECT_LE(distance3d(between.basis(0), at(8, 2, 5)), 1e-14);
}

void expect_plane(plane const& p, point center, point first, point second, point normal) {
    ASSERT_TRUE(p.is_3d());
    EXPECT_LE(distance3d(p.basis(0), center) + distance3d(p.basis(1), first), 1e-15);
    EXPECT_LE(distance3d(p.basis(2), second) + distance3d(p.basis(3), normal), 1e-15);
}

// Worked by hand: the seed axis e is the one least along the normal n, of equal ones the last; the second
// axis runs along n x e, the first one across both, right-handed.
TEST(PlaneFit, HasTheExtentsOfTheData) {
    auto const three = as_array({at(0, 0, 4), at(6, 0, 4), at(0, 3, 4)});
    point const z(false, 0, 0, 1);
    expect_plane(plane_fit(three), at(3, 1.5, 4), point(false, 0, 1.5, 0), point(false, -3, 0, 0), z);
    // A given centre stays, and the axes reach to the farther end; an extent of two points is at least 0.005.
    expect_plane(plane_centered_fit(at(1, 0, 4), three), at(1, 0, 4), point(false, 0, 3, 0),
                 point(false, -5, 0, 0), z);
    expect_plane(plane_centered_fit(at(0, 0, 0), as_array({at(0, 2, 0), at(0, 0, -0.001)})), at(0, 0, 0),
                 point(false, 0, 0, 0.005), point(false, 0, -2, 0), point(false, 1, 0, 0));
    // One point takes the size of the given plane, but its own sense of the normal.
    plane const sloping(at(9, 9, 9), point(false, 0, 3, -4));
    expect_plane(plane_parallel_fit(sloping, as_array({at(1, 2, 3)})), at(1, 2, 3), sloping.basis(1),
                 -sloping.basis(2), point(false, 0, -0.6, 0.8));
}

// Values of 60-digit arithmetic for published points (OSGeoLab, 5 by 5 grid).
TEST(PlaneFit, ReproducesThePublishedPlane) {
    double const z[] = {1.33, 2,    2.67, 3.33, 4,    1.67, 2.33, 3,    3.67, 4.33, 2,    2.67, 3.33,
                        4,    4.67, 2.33, 3,    3.67, 4.33, 5,    2.67, 3.33, 4,    4.67, 5.33};
    point_list points;
    for (int i = 0; i < 25; ++i) points.push_back(at(i % 5, i / 5, z[i]));
    plane const p = plane_fit(as_array(points));
    point const normal(false, -0.5344774960438005620, -0.2673189276642710865, 0.8017944855978827178);
    EXPECT_LE(distance3d(p.basis(3), normal), 1e-15);
    EXPECT_NEAR(dot(at(2, 2, 3.3332) - p.basis(0), normal), 0, 2e-15);  // the centroid is on it
}

// Points in pairs on both sides of a plane, across from each other: it is the plane of least squares. Strips
// down to a millionth of their length and far from the origin, where plain sums have lost the normal.
TEST(PlaneFit, FindsThePlaneBetweenPairs) {
    seeded_random random(12);
    for (int trial = 0; trial < 400; ++trial) {
        transform const turn =
            transform::rotation(random.uniform(-3, 3), random.uniform(-1, 1), random.uniform(-3, 3));
        double const length = random.log_uniform(1e-3, 1e5), width = length * random.log_uniform(1e-6, 1);
        double const noise = width * random.log_uniform(1e-6, 0.1), far = trial % 2 ? 10 * length : 0;
        point const u = turn.basis(1), v = turn.basis(2), n = turn.basis(3), origin = at(far, -far, far);
        point_list points;
        for (int i = 0; i < 30; ++i) {
            double const x = length * random.uniform(-1, 1), y = width * random.uniform(-1, 1);
            for (double const d : {noise, -noise}) points.push_back(origin + x * u + y * v + d * n);
        }
        plane const p = plane_fit(as_array(points));
        ASSERT_TRUE(p.is_3d()) << trial;
        EXPECT_GT(std::max({p.basis(3).x(), p.basis(3).y(), p.basis(3).z()}), 0.577);  // 1 / sqrt 3
        // Rounding of the coordinates, some 1e-16 of the largest, over the width.
        EXPECT_LE(cross(p.basis(3), n).length3d(), 2e-15 * (length + far) / width)
            << trial << ' ' << width / length;
        EXPECT_LE(std::fabs(dot(p.basis(0) - origin, n)), 2e-15 * (length + far)) << trial;
    }
}

TEST(PlaneFit, OfPointsOnOneLineIsNull) {
    seeded_random random(13);
    for (int trial = 0; trial < 300; ++trial) {
        point const step(false, random.normal(), random.normal(), random.normal());
        point const origin = at(random.uniform(-1e3, 1e3), random.uniform(-1, 1), random.uniform(-1e3, 1e3));
        point_list points;
        for (unsigned int n = 3 + random.below(5); n > 0; --n)
            points.push_back(origin + random.normal() * step);
        EXPECT_TRUE(plane_fit(as_array(points)).is_trivial()) << trial;
    }
    EXPECT_FALSE(plane_fit(as_array({at(0, 0, 0), at(1, 0, 0), at(2, 1e-9, 0)})).is_trivial());
}

TEST(ArcFits, TakeTheComplementOfTheLargestGap) {
    struct {
        char const* name;
        std::vector<double> degrees;
        double middle, sweep;
    } const cases[] = {
        {"quarter", {20, 110, 50, 80}, 65, 90},
        {"across the negative X axis", {170, -100, -150, 180}, -145, 90},
        {"even all round", {0, 90, 180, -90}, 45, 270},  // equal gaps: the one over 180 degrees comes first
        {"full turn less the gap", {10, 100, 220, 300, 330}, -20, 240},
        {"one", {30}, 30, 0},
    };
    circle const nominal(2, at(5, 6));
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        point_list points;
        for (double const d : c.degrees)
            points.push_back(at(5 + 2 * cos(d * pi / 180), 6 + 2 * sin(d * pi / 180)));
        double sweep = -1, fitted_sweep = -1, start = 0, end = 0, radius = 0;
        auto const expect_middle = [&](double a) {
            EXPECT_NEAR(std::remainder(a * 180 / pi - c.middle, 360), 0, 1e-12);
        };
        circle const arc = circle_to_arc(nominal, points, sweep);
        EXPECT_NEAR(sweep * 180 / pi, c.sweep, 1e-12);
        expect_middle(arc.basis(1).angle2d());
        EXPECT_NEAR(arc.radius(), 2, 1e-15);
        EXPECT_TRUE(arc.basis(0) == nominal.basis(0));
        expect_middle(arc_centered_fit(at(5, 6), as_array(points), sweep).basis(1).angle2d());
        if (points.size() < 3) continue;
        point center;
        expect_middle(arc_fit(as_array(points), fitted_sweep).basis(1).angle2d());
        ASSERT_TRUE(arc_quick_fit(as_array(points), center, radius, start, end));
        expect_middle((start + end) / 2);
        EXPECT_NEAR(fitted_sweep, sweep, 1e-14);
        EXPECT_NEAR(end - start, sweep, 1e-14);
    }
}

// From few points to more than a coarse look at them can tell apart, with gaps and dense all round.
TEST(ArcFits, FindTheGapThatSortingFinds) {
    seeded_random random(20250607);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        std::size_t const n = 2 + static_cast<std::size_t>(random.log_uniform(1, trial < 280 ? 3000 : 40000));
        double const first = random.uniform(-pi, pi), range = random.coin() ? 2 * pi : random.uniform(0, 6.2);
        point_list points;
        std::vector<double> angles;
        for (std::size_t i = 0; i < n; ++i) {
            double const even = static_cast<double>(i) / static_cast<double>(n),
                         a = first + range * (trial % 3 == 0 ? even : random.uniform(0, 1));
            points.push_back(at(std::cos(a), std::sin(a)));
            angles.push_back(points.back().angle2d());
        }
        std::sort(angles.begin(), angles.end());
        double gap = angles.front() - (angles.back() - 2 * pi);
        for (std::size_t i = 1; i < n; ++i) gap = std::max(gap, angles[i] - angles[i - 1]);
        double sweep = 0;
        circle_to_arc(circle(1, at(0, 0)), points, sweep);
        EXPECT_NEAR(sweep, 2 * pi - gap, 1e-14);
    }
}

}  // namespace
}  // namespace tvmath
