#include "tvmath/cone_fit.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "geometry/xyz.h"
#include "support/axis_reference.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using triple = axis_reference::triple;

// Within `tolerance` of the reference's radius: the axis at both ends, both radii, and a sum that is no
// larger.
void expect_cone(cone const& fitted, axial_sample const& sample, axis_reference const& expected,
                 double tolerance) {
    ASSERT_FALSE(fitted.is_trivial());
    auto const points = sample.local_points();
    long double low = 0, high = 0;
    for (triple const& p : points) {
        long double const z = axis_reference::dot(axis_reference::sum(p, -1, expected.origin), expected.axis);
        low = std::min(low, z);
        high = std::max(high, z);
    }
    bool const along = axis_reference::dot(axis_reference::of(fitted.axis), expected.axis) > 0;
    auto const expect_end = [&](point const& end, double radius, long double z) {
        long double const true_radius = expected.radius + std::tan(expected.angle) * z;
        triple const place = axis_reference::sum(expected.origin, z, expected.axis);
        triple const gap = axis_reference::sum(sample.local(end), -1, place);
        EXPECT_NEAR(static_cast<double>(radius - true_radius) / sample.radius, 0, tolerance);
        EXPECT_NEAR(static_cast<double>(axis_reference::dot(gap, gap)) / sqr(sample.radius), 0,
                    sqr(tolerance));
    };
    expect_end(fitted.base, fitted.base_radius, along ? low : high);
    expect_end(fitted.top, fitted.top_radius, along ? high : low);
    EXPECT_NEAR(length(xyz(fitted.axis) - unit(xyz(fitted.top - fitted.base))), 0, tolerance);
}

// Slopes from none to nearly flat, of any direction; the tolerance is what rounding the coordinates leaves.
axial_case const cases[] = {
    {"well spread", 30, 1, 1.5, 360, 20, 0.01, 0, 1e-12},
    {"fine noise", 60, 10, 1.5, 360, 30, 1e-5, 100, 1e-12},
    {"exact", 10, 1, 1.5, 360, 30, 0, 0, 1e-11},
    {"slender", 100, 1, 20, 360, 1, 0.01, 0, 1e-11},
    {"cylinder", 100, 1, 3, 360, 0, 0.001, 0, 1e-11},
    {"blunt", 60, 1, 1, 360, 70, 1e-3, 0, 1e-11},
    {"nearly flat", 60, 1, 1, 360, 85, 1e-3, 0, 1e-10},
    {"ninety degrees", 100, 1, 1.5, 90, 20, 1e-3, 0, 1e-10},
    {"thirty degrees", 200, 1, 1, 30, 20, 1e-4, 0, 1e-9},
    {"short", 50, 1, 0.1, 360, 20, 1e-3, 0, 1e-10},
    {"far", 50, 10, 2, 360, 20, 0.01, 1e6, 1e-9},
    {"tiny", 50, 1e-3, 2, 360, 20, 0.01, 10, 1e-9},
    {"huge", 50, 1e5, 1, 200, 30, 0.01, 1e6, 1e-10},
    {"sampled for its start", 2000, 1, 1, 200, 30, 0.01, 1, 1e-12},
};

TEST(ConeFit, IsTheMinimumOfAnIndependentSearch) {
    seeded_random random(20260201);
    for (axial_case const& c : cases) {
        for (int trial = 0; trial < (c.n > 1000 ? 1 : 6); ++trial) {
            SCOPED_TRACE(testing::Message() << c.name << ", " << trial);
            axial_sample const sample(random, c);
            axis_reference best = sample.truth();
            best.minimize(sample.local_points(), {true, true, true, true, true, true});
            expect_cone(cone_fit(sample.points, cone()), sample, best, c.tolerance);
        }
    }
}

TEST(ConeFit, WithAGivenAxisOrCentreIsTheMinimumOfAnIndependentSearch) {
    seeded_random random(20260202);
    for (axial_case const& c : cases) {
        SCOPED_TRACE(c.name);
        axial_sample const sample(random, c);
        auto const points = sample.local_points();
        axis_reference parallel = sample.truth(), centered = parallel, both = parallel;
        parallel.minimize(points, {false, false, true, true, true, true});
        centered.minimize(points, {true, true, false, false, true, true});
        both.minimize(points, {false, false, false, false, true, true});
        expect_cone(cone_parallel_fit(sample.axis * 7, sample.points), sample, parallel, c.tolerance);
        expect_cone(cone_centered_fit(sample.center, sample.points, cone()), sample, centered, c.tolerance);
        // Any point of the axis will do.
        point const center = sample.center + sample.axis * sample.radius;
        cone const fitted = cone_parallel_centered_fit(center, -sample.axis, sample.points);
        expect_cone(fitted, sample, both, c.tolerance);
        EXPECT_LT(dot(fitted.axis, sample.axis), 0);
    }
}

// Source: PointCloudLibrary/pcl, test/sample_consensus/test_sample_consensus_quadric_models.cpp; minimum by a
// 60-digit Newton search from many starts.
TEST(ConeFit, OfPublishedPointsAgreesWithVerifiedDigits) {
    std::vector<point> const points = {
        at(-0.011247, 0.2, 0.965384),   at(0, 0.2, 0.963603),           at(0.011247, 0.2, 0.965384),
        at(-0.016045, 0.175, 0.977916), at(-0.008435, 0.175, 0.974038), at(0.004218, 0.175, 0.97337),
        at(0.016045, 0.175, 0.977916),  at(-0.02542, 0.2, 0.97458),     at(0.02542, 0.2, 0.97458),
        at(-0.01271, 0.15, 0.98729),    at(-0.005624, 0.15, 0.982692),  at(0.002812, 0.15, 0.982247),
        at(0.01271, 0.15, 0.98729),     at(-0.022084, 0.175, 0.983955), at(0.022084, 0.175, 0.983955),
        at(-0.034616, 0.2, 0.988753),   at(0.034616, 0.2, 0.988753),    at(-0.006044, 0.125, 0.993956),
        at(0.004835, 0.125, 0.993345),  at(-0.017308, 0.15, 0.994376),  at(0.017308, 0.15, 0.994376),
        at(-0.025962, 0.175, 0.991565), at(0.025962, 0.175, 0.991565),  at(-0.009099, 0.125, 1),
        at(0.009099, 0.125, 1),         at(-0.018199, 0.15, 1),         at(0.018199, 0.15, 1),
        at(-0.027298, 0.175, 1),        at(0.027298, 0.175, 1),         at(-0.036397, 0.2, 1),
        at(0.036397, 0.2, 1),
    };
    cone const fitted = cone_fit(points, cone());
    EXPECT_NEAR(std::fabs(fitted.angle()), 0.348511378212384049, 1e-12);
    EXPECT_NEAR(std::fabs(fitted.axis.x()), 4.649533987588199503e-04, 1e-12);
    EXPECT_NEAR(std::fabs(fitted.axis.z()), 6.286383476601944209e-03, 1e-12);
    point const apex = at(-5.137036402902298394e-05, 0.09985796276377894417, 1.000735791961415234586);
    EXPECT_NEAR(distance3d(fitted.vertex(), apex), 0, 1e-13);
}

TEST(ConeFit, TakesTheSenseOfTheNominalConeAndNoHarmFromAWrongOne) {
    seeded_random random(20260203);
    for (int trial = 0; trial < 20; ++trial) {
        SCOPED_TRACE(trial);
        axial_sample const sample(random, {"", 40, 1, 1.5, 360, 25, 0.01, 5, 0});
        cone const own = cone_fit(sample.points, cone());
        ASSERT_FALSE(own.is_trivial());
        EXPECT_GT(own.base_radius, own.top_radius) << "without a nominal cone the base is the wider end";
        point const aside = normalize(cross(sample.axis, point(false, 1, 2, 3)));
        cone const nominals[] = {cone(sample.center, sample.center + sample.axis, 1, 1.4),
                                 cone(sample.center, sample.center - sample.axis, 1, 1.4),
                                 cone(sample.center, sample.center + aside + 0.2 * sample.axis, 5, 0.1)};
        for (cone const& nominal : nominals) {
            cone const fitted = cone_fit(sample.points, nominal);
            ASSERT_FALSE(fitted.is_trivial());
            EXPECT_GT(dot(fitted.axis, nominal.axis), 0);
            EXPECT_NEAR(fitted.base_radius + fitted.top_radius, own.base_radius + own.top_radius, 1e-12);
            EXPECT_NEAR(distance3d(fitted.center(), own.center()), 0, 1e-12);
        }
    }
}

// Noise at the tip carries points beyond it, where a frustum would need a negative radius.
TEST(ConeFit, OfAFullConeEndsAtItsTip) {
    seeded_random random(20260204);
    int tips = 0;
    for (int trial = 0; trial < 20; ++trial) {
        axial_sample const sample(random,
                                  {"", 200, 1, 1.999 / std::sin(0.5), 360, 0.5 * 180 / pi, 0.02, 0, 0});
        cone const fitted = cone_fit(sample.points, cone());
        ASSERT_FALSE(fitted.is_trivial());
        EXPECT_GE(fitted.top_radius, 0);
        EXPECT_NEAR(std::fabs(fitted.angle()), 0.5, 0.02);
        if (fitted.top_radius == 0.0) ++tips;
    }
    EXPECT_GT(tips, 0);
}

TEST(ConeFit, OfPointsThatShowNoneIsNull) {
    seeded_random random(20260205);
    axial_sample const good(random, {"", 20, 1, 1.5, 360, 20, 0.001, 0, 0});
    auto const failing = hopeless_lists(random, good.points, 6);
    point const up(false, 0, 0, 1), origin = at(0, 0, 0);
    for (auto const& c : failing) {
        EXPECT_TRUE(cone_fit(c.points, cone()).is_trivial()) << c.name;
        EXPECT_TRUE(cone_fit(c.points, cone(origin, at(0, 0, 1), 1, 2)).is_trivial()) << c.name;
    }
    EXPECT_TRUE(cone_parallel_fit(up, failing.back().points).is_trivial()) << "one circle";
    EXPECT_TRUE(cone_parallel_fit(point(), good.points).is_trivial());
    EXPECT_TRUE(cone_parallel_centered_fit(point(), up, good.points).is_trivial());
    EXPECT_TRUE(cone_centered_fit(at(std::nan(""), 0, 0), good.points, cone()).is_trivial());
    cone const broken(origin, at(0, 0, 1), std::nan(""), 2);
    EXPECT_FALSE(cone_fit(good.points, broken).is_trivial()) << "a broken nominal cone is passed over";
}

}  // namespace
}  // namespace tvmath
