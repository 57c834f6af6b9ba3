#include "tvmath/cylinder_fit.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "geometry/xyz.h"
#include "support/axis_reference.h"
#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using triple = axis_reference::triple;

idioms::array<point> list_of(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// Within `tolerance` of the reference's radius: radius, axis line and direction, and a sum that is no larger.
void expect_cylinder(cylinder const& fitted, axial_sample const& sample, axis_reference const& expected,
                     double tolerance) {
    ASSERT_FALSE(fitted.is_trivial());
    axis_reference ours;
    ours.origin = sample.local(fitted.basis(0));
    ours.set_axis(axis_reference::of(fitted.basis(3)));
    ours.radius = fitted.radius();
    auto const points = sample.local_points();
    long double const cosine = axis_reference::dot(ours.axis, expected.axis);
    triple const turn = axis_reference::sum(ours.axis, cosine < 0 ? 1 : -1, expected.axis);
    triple const gap = axis_reference::sum(ours.origin, -1, expected.origin);
    triple const across = axis_reference::sum(gap, -axis_reference::dot(gap, expected.axis), expected.axis);
    double const size = sample.radius;
    EXPECT_NEAR(static_cast<double>(ours.radius - expected.radius) / size, 0, tolerance);
    EXPECT_NEAR(static_cast<double>(axis_reference::dot(turn, turn)), 0, tolerance * tolerance);
    EXPECT_NEAR(static_cast<double>(axis_reference::dot(across, across)) / (size * size), 0,
                tolerance * tolerance);
    // Beyond the minimum only by what rounding the coordinates and the answer adds to each distance.
    long double const grain = 1e-15L * (static_cast<long double>(size) + length(xyz(sample.center)));
    long double const allowed = grain * std::sqrt(static_cast<long double>(points.size()));
    EXPECT_LE(std::sqrt(ours.squares(points)), std::sqrt(expected.squares(points)) * (1 + 5e-13L) + allowed);

    // The ends are where the points end.
    double low = 0, high = 0;
    for (point const& p : sample.points) {
        double const z = dot(p - fitted.basis(0), normalize(fitted.basis(3)));
        low = std::min(low, z);
        high = std::max(high, z);
    }
    EXPECT_NEAR(high / size, fitted.height() / 2 / size, 1e-9);
    EXPECT_NEAR(low / size, -fitted.height() / 2 / size, 1e-9);
}

// Shapes from wires to hoops, of any direction, near and far; the tolerance is what rounding the coordinates
// leaves of the parameters.
axial_case const cases[] = {
    {"well spread", 20, 1, 2, 360, 0, 0.01, 0, 1e-12},
    {"fine noise", 60, 10, 3, 360, 0, 1e-5, 100, 1e-12},
    {"exact", 8, 1, 2, 360, 0, 0, 0, 1e-11},
    {"seven points", 7, 1, 2, 360, 0, 1e-4, 0, 1e-10},
    {"wire", 100, 1, 1000, 360, 0, 0.01, 0, 1e-10},
    {"hoop", 100, 1, 0.1, 360, 0, 1e-3, 0, 1e-11},
    {"sixty degrees", 100, 1, 1, 60, 0, 1e-3, 0, 1e-10},
    {"five degrees", 200, 1, 0.1, 5, 0, 1e-6, 0, 1e-9},
    {"far", 50, 10, 2, 360, 0, 0.01, 1e6, 1e-9},
    {"tiny", 50, 1e-3, 2, 360, 0, 0.01, 10, 1e-9},
    {"huge", 50, 1e5, 1, 120, 0, 0.01, 1e6, 1e-10},
    {"sampled for its start", 2000, 1, 1, 200, 0, 0.01, 1, 1e-12},
};

TEST(CylinderFit, IsTheMinimumOfAnIndependentSearch) {
    seeded_random random(20260101);
    for (axial_case const& c : cases) {
        for (int trial = 0; trial < (c.n > 1000 ? 1 : 8); ++trial) {
            SCOPED_TRACE(testing::Message() << c.name << ", " << trial);
            axial_sample const sample(random, c);
            axis_reference best = sample.truth();
            best.minimize(sample.local_points(), {true, true, true, true, false, true});
            expect_cylinder(cylinder_fit(list_of(sample.points)), sample, best, c.tolerance);
        }
    }
}

TEST(CylinderFit, WithAGivenAxisIsTheMinimumOfAnIndependentSearch) {
    seeded_random random(20260102);
    for (axial_case const& c : cases) {
        SCOPED_TRACE(c.name);
        axial_sample const sample(random, c);
        axis_reference parallel = sample.truth(), centered = sample.truth();
        parallel.minimize(sample.local_points(), {false, false, true, true, false, true});
        centered.minimize(sample.local_points(), {false, false, false, false, false, true});
        expect_cylinder(cylinder_parallel_fit(sample.axis * 7, sample.points), sample, parallel, c.tolerance);
        // Any point of the axis will do.
        point const center = sample.center + sample.axis * sample.radius;
        cylinder const fitted = cylinder_parallel_centered_fit(center, -sample.axis, list_of(sample.points));
        expect_cylinder(fitted, sample, centered, c.tolerance);
        EXPECT_LT(dot(fitted.basis(3), sample.axis), 0);
    }
}

// Source: PointCloudLibrary/pcl, test/sample_consensus/test_sample_consensus_quadric_models.cpp; minimum by a
// 60-digit Newton search from many starts.
TEST(CylinderFit, OfPublishedPointsAgreesWithVerifiedDigits) {
    std::vector<point> const points = {
        at(-0.499902, 2.199701, 8e-06),    at(-0.875397, 2.030177, 0.050104),
        at(-0.995875, 1.635973, 0.099846), at(-0.779523, 1.285527, 0.149961),
        at(-0.373285, 1.216488, 0.199959), at(-0.052893, 1.475973, 0.250101),
        at(-0.036558, 1.887591, 0.299839), at(-0.335048, 2.171994, 0.350001),
        at(-0.745456, 2.135528, 0.400072), at(-0.989282, 1.803311, 0.449983),
        at(-0.900651, 1.400701, 0.500126), at(-0.539658, 1.201468, 0.550079),
        at(-0.151875, 1.340951, 0.599983), at(-0.000724, 1.724373, 0.649882),
        at(-0.188573, 2.090983, 0.699854), at(-0.587925, 2.192257, 0.749956),
        at(-0.927724, 1.958846, 0.800008), at(-0.976888, 1.549655, 0.84997),
        at(-0.702003, 1.242707, 0.899954), at(-0.289916, 1.246296, 0.950075),
    };
    cylinder const fitted = cylinder_fit(list_of(points));
    point const axis = normalize(fitted.basis(3));
    EXPECT_NEAR(fitted.radius(), 0.4999716205752800559, 1e-13);
    EXPECT_NEAR(axis.x(), -7.291955204190030080e-05, 1e-13);
    EXPECT_NEAR(axis.y(), 8.186765765760336310e-05, 1e-13);
    point const verified = at(-0.50002160835426253053, 1.69995217659056495407, 0.47499065537733758880);
    EXPECT_NEAR(length(cross(xyz(verified - fitted.basis(0)), xyz(axis))), 0, 1e-13);
}

TEST(CylinderFit, OfFivePointsPassesThroughThem) {
    seeded_random random(20260103);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        axial_sample const sample(random, {"", 5, 1, random.uniform(0.5, 3), 360, 0, 0, 0, 0});
        cylinder const fitted = cylinder_fit(list_of(sample.points));
        ASSERT_FALSE(fitted.is_trivial());
        for (point const& p : sample.points) {
            double const rho = length(cross(xyz(p - fitted.basis(0)), xyz(normalize(fitted.basis(3)))));
            EXPECT_NEAR(rho / fitted.radius(), 1, 1e-13);
        }
    }
}

TEST(CylinderFit, IgnoresOrderAndRepeats) {
    seeded_random random(20260104);
    axial_sample const sample(random, {"", 50, 1, 2, 200, 0, 0.01, 10, 0});
    cylinder const first = cylinder_fit(list_of(sample.points));
    std::vector<point> twice(sample.points.rbegin(), sample.points.rend());
    twice.insert(twice.end(), sample.points.begin(), sample.points.end());
    cylinder const second = cylinder_fit(list_of(twice));
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(distance3d(first.basis(i), second.basis(i)), 0, 1e-13);
    EXPECT_GT(dot(cross(first.basis(1), first.basis(2)), first.basis(3)), 0);
}

TEST(CylinderFit, OfPointsThatShowNoneIsNull) {
    seeded_random random(20260105);
    axial_sample const good(random, {"", 20, 1, 2, 360, 0, 0.001, 0, 0});
    auto const failing = hopeless_lists(random, good.points, 5);
    for (auto const& c : failing) {
        EXPECT_TRUE(cylinder_fit(list_of(c.points)).is_trivial()) << c.name;
    }
    point const up(false, 0, 0, 1), origin = at(0, 0, 0);
    std::vector<point> const ring(failing.back().points), two(good.points.data(), good.points.data() + 2);
    EXPECT_TRUE(cylinder_parallel_fit(up, two).is_trivial());
    EXPECT_TRUE(cylinder_parallel_fit(up, ring).is_trivial()) << "of no height";
    EXPECT_TRUE(cylinder_parallel_centered_fit(origin, up, ring).is_trivial()) << "of no height";
    EXPECT_TRUE(cylinder_parallel_fit(point(), good.points).is_trivial());
    EXPECT_TRUE(cylinder_parallel_fit(point(false, 0, 0, 0), good.points).is_trivial());
    EXPECT_TRUE(cylinder_parallel_centered_fit(point(), up, good.points).is_trivial());
}

}  // namespace
}  // namespace tvmath
