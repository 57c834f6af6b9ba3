#include "tvmath/quick_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

void expect_circle(std::vector<point> const& points, point center, double radius, double tolerance) {
    point fitted, fitted_array;
    double fitted_radius = 0, radius_array = 0;
    ASSERT_TRUE(circle_quick_fit(points, fitted, fitted_radius));
    EXPECT_LE(distance3d(fitted, center), tolerance);
    EXPECT_NEAR(fitted_radius, radius, tolerance);
    EXPECT_EQ(fitted.dimension(), center.dimension());
    ASSERT_TRUE(circle_quick_fit(as_array(points), fitted_array, radius_array));
    EXPECT_TRUE(fitted_array == fitted && radius_array == fitted_radius);  // to the last bit
}

TEST(PointFit, GivesTheCentroidByDimension) {
    struct {
        char const* name;
        std::vector<point> points;
        point centroid;
    } const cases[] = {
        {"empty", {}, point()},
        {"plane", {at(1, 2), at(3, 6)}, at(2, 4)},
        {"space", {at(1, 2, 3), at(3, 6, 9)}, at(2, 4, 6)},
        {"mixed drops z", {at(1, 2, 3), at(3, 6)}, at(2, 4)},
        {"directions count as positions", {point(false, 1, 2), at(3, 6)}, at(2, 4)},
        {"trivial point inside", {at(1, 2), point(), at(3, 6)}, point()},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(point_fit(c.points) == c.centroid);
        EXPECT_TRUE(point_fit(as_array(c.points)) == c.centroid);
    }
}

// n/2 pairs about an exact centre: the true mean is the centre, to the last bit.
TEST(PointFit, OfAMillionFarPointsKeepsTheirLastDigit) {
    seeded_random random(5);
    double const far = 1e6 + 0.1;
    std::vector<point> points;
    for (int i = 0; i < 500000; ++i) {
        double const x = std::ldexp(std::floor(random.uniform(0, 4096)), -12), y = x / 2;
        points.push_back(at(far + x, far - y));
        points.push_back(at(far - x, far + y));
    }
    point const centroid = point_fit(points);
    // Pairs are symmetric about `far` but for the rounding of each coordinate, half an ulp of 1.2e-10,
    // averaged.
    EXPECT_NEAR(centroid.x(), far, 1.2e-10);
    EXPECT_NEAR(centroid.y(), far, 1.2e-10);
}

TEST(LineQuickFit, FollowsThePrincipalAxis) {
    double const h = std::sqrt(0.5);
    struct {
        char const* name;
        std::vector<point> points;
        point center, direction;
    } const cases[] = {
        {"two points, first to second", {at(3, 4), at(0, 0)}, at(1.5, 2), point(false, -0.6, -0.8)},
        {"two equal points", {at(1, 1), at(1, 1)}, at(1, 1), point(false, 0, 0)},
        {"along x", {at(0, 1), at(1, 1), at(2, 1)}, at(1, 1), point(false, 1, 0)},
        {"along y", {at(1, 0), at(1, 1), at(1, 2)}, at(1, 1), point(false, 0, 1)},
        {"rising", {at(0, 0), at(1, 1), at(2, 2)}, at(1, 1), point(false, h, h)},
        {"falling", {at(0, 2), at(1, 1), at(2, 0)}, at(1, 1), point(false, h, -h)},
        {"space, by x and y", {at(0, 0, 5), at(1, 1, 9), at(2, 2, 1)}, at(1, 1, 5), point(false, h, h)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        point center, direction;
        ASSERT_TRUE(line_quick_fit(c.points, center, direction));
        EXPECT_TRUE(center == c.center);
        EXPECT_TRUE(direction.is_2d() && direction.is_direction());
        // The sense of an axis is free, except between two points.
        double const sign = c.points.size() > 2 && dot2d(direction, c.direction) < 0 ? -1 : 1;
        EXPECT_LE(distance2d(sign * direction, c.direction), 1e-15);
        point center_array, direction_array;
        ASSERT_TRUE(line_quick_fit(as_array(c.points), center_array, direction_array));
        EXPECT_TRUE(center_array == center && direction_array == direction);
    }
}

// Pearson's points of 1901; the direction from the eigenvector of the scatter matrix in 60 digits.
TEST(LineQuickFit, ReproducesPearsonsLine) {
    double const xs[] = {0, 0.9, 1.8, 2.6, 3.3, 4.4, 5.2, 6.1, 6.5, 7.4};
    double const ys[] = {5.9, 5.4, 4.4, 4.6, 3.5, 3.7, 2.8, 2.8, 2.4, 1.5};
    std::vector<point> points;
    for (int i = 0; i < 10; ++i) points.push_back(at(xs[i], ys[i]));
    point center, direction;
    ASSERT_TRUE(line_quick_fit(points, center, direction));
    EXPECT_NEAR(direction.y() / direction.x(), -0.5455611975209647, 1e-15);  // a few ulp of 0.5
    EXPECT_NEAR(center.x(), 3.82, 1e-15);
    EXPECT_NEAR(center.y(), 3.7, 1e-15);
}

TEST(LineQuickFit, FailsWithoutAPrincipalAxis) {
    std::vector<point> const failing[] = {{},
                                          {at(1, 1)},
                                          {at(0, 0), at(1, 0), at(1, 1), at(0, 1)},
                                          {at(0, 0), point(), at(1, 1)},
                                          {at(2, 2), at(2, 2), at(2, 2)}};
    for (auto const& points : failing) {
        point center = at(7, 8), direction = at(9, 9);
        EXPECT_FALSE(line_quick_fit(points, center, direction)) << points.size() << " points";
        EXPECT_TRUE(center == at(7, 8) && direction == at(9, 9));
    }
}

TEST(CircleQuickFit, GivesCentreAndRadiusWorkedByHand) {
    struct {
        char const* name;
        std::vector<point> points;
        point center;
        double radius;
    } const cases[] = {
        {"hypotenuse is a diameter", {at(0, 0), at(2, 0), at(0, 2)}, at(1, 1), std::sqrt(2.0)},
        {"rectangle", {at(0, 0), at(4, 0), at(4, 2), at(0, 2)}, at(2, 1), std::sqrt(5.0)},
        // On no circle: a = b = 0 by symmetry, so r² is the mean square (4 + 4 + 1 + 1) / 4.
        {"unequal arms", {at(2, 0), at(-2, 0), at(0, 1), at(0, -1)}, at(0, 0), std::sqrt(2.5)},
        {"space, at the mean z", {at(0, 0, 1), at(2, 0, 2), at(0, 2, 6)}, at(1, 1, 3), std::sqrt(2.0)},
        // Sums of raw squares give a radius of 41 here.
        {"far away", {at(1e6 + 5, 0), at(1e6 + 4, 3), at(1e6 + 3, 4), at(1e6, 5)}, at(1e6, 0), 5},
        // Algebraic circle of the points of Gander, Golub and Strebel (1994), in exact rational arithmetic.
        {"published",
         {at(1, 7), at(2, 6), at(5, 8), at(7, 7), at(9, 5), at(3, 7)},
         at(4.742331288343558, 3.8351226993865031),
         4.1087615223454492},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_circle(c.points, c.center, c.radius,
                      1e-12);  // some ulps at 1; the far case is exact in binary
    }
}

TEST(CircleQuickFit, LeavesOutputsAloneWhenItFails) {
    std::vector<point> const failing[] = {
        {}, {at(0, 0), at(1, 1)}, {at(0, 0), point(), at(0, 1)}, {at(0, 0), at(1, 0), at(2, 0)}};
    for (auto const& points : failing) {
        point center = at(7, 8);
        double radius = 9;
        EXPECT_FALSE(circle_quick_fit(points, center, radius)) << points.size() << " points";
        EXPECT_FALSE(circle_quick_fit(as_array(points), center, radius));
        EXPECT_TRUE(center == at(7, 8) && radius == 9);
    }
}

// Property: noise-free points of any arc of half a radian or more give their circle back, at any size and
// distance.
TEST(CircleQuickFit, RecoversTheCircleOfAnArc) {
    seeded_random random(20250101);
    for (int trial = 0; trial < 500; ++trial) {
        SCOPED_TRACE(trial);
        double const radius = random.log_uniform(1e-3, 1e5), far = random.log_uniform(1e-3, 1e6);
        point const center = at(random.uniform(-far, far), random.uniform(-far, far));
        std::vector<point> points =
            circle_points(random, center, radius, random.uniform(0, 6), random.uniform(0.5, 6), 40);
        // Coordinates are rounded by an ulp of their size; half a radian of arc magnifies that a few hundred
        // times.
        expect_circle(points, center, radius, (far + radius) * 1.1e-16 * 1000);
    }
}

// A form of three lobes is orthogonal to all that a circle can follow (constant, cos, sin): over equal steps
// of a full turn the algebraic centre is the true one, and r² is the mean square of the radii.
TEST(CircleQuickFit, OfAMillionLobedPointsFarAwayKeepsTheDigitsOfTheData) {
    constexpr int n = 1000000;
    point const center = at(1e6, -1e6);
    double const radius = 5, lobe = 0.01;
    std::vector<point> points;
    for (int i = 0; i < n; ++i) {
        double const angle = 2 * 3.141592653589793 * i / n, r = radius + lobe * std::cos(3 * angle);
        points.push_back(center + point(false, r * std::cos(angle), r * std::sin(angle)));
    }
    // 2e-10: a coordinate of 1e6 is rounded by 6e-11.
    expect_circle(points, center, std::sqrt(radius * radius + lobe * lobe / 2), 2e-10);
}

TEST(SphereQuickFit, GivesCentreAndRadiusWorkedByHand) {
    point center;
    double radius = 0;
    // Octahedron: all six on the sphere of radius 2 about (1, 2, 3).
    std::vector<point> const octahedron = {at(3, 2, 3), at(-1, 2, 3), at(1, 4, 3),
                                           at(1, 0, 3), at(1, 2, 5),  at(1, 2, 1)};
    ASSERT_TRUE(sphere_quick_fit(octahedron, center, radius));
    EXPECT_LE(distance3d(center, at(1, 2, 3)), 1e-15);
    EXPECT_NEAR(radius, 2, 1e-15);
    // Four corners of a cube of side 2: the sphere about its middle.
    ASSERT_TRUE(sphere_quick_fit({at(0, 0, 0), at(2, 2, 0), at(2, 0, 2), at(0, 2, 2)}, center, radius));
    EXPECT_LE(distance3d(center, at(1, 1, 1)), 1e-15);
    EXPECT_NEAR(radius, std::sqrt(3.0), 1e-15);
}

TEST(SphereQuickFit, RecoversTheSphereAtAnySizeAndDistance) {
    seeded_random random(9);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        double const r = random.log_uniform(1e-3, 1e5), far = random.log_uniform(1e-3, 1e6);
        point const c = at(random.uniform(-far, far), random.uniform(-far, far), random.uniform(-far, far));
        point center;
        double radius = 0;
        ASSERT_TRUE(sphere_quick_fit(sphere_points(random, c, r, 30), center, radius));
        double const ulps = (far + r) * 1.1e-16;  // rounding of the points; 30 of them are well spread
        EXPECT_LE(distance3d(center, c), 30 * ulps);
        EXPECT_TRUE(near_at_scale(radius, r, 1, 30 * ulps, "rounding of the points"));
    }
}

TEST(SphereQuickFit, LeavesOutputsAloneWhenItFails) {
    std::vector<point> const failing[] = {
        {at(0, 0, 0), at(1, 0, 0), at(0, 1, 0)},
        {at(0, 0), at(1, 0), at(0, 1), at(1, 1)},
        {at(0, 0, 0), at(1, 0, 0), at(0, 1, 0), at(1, 1)},
        {at(0, 0, 0), at(2, 0, 0), at(0, 2, 0), at(2, 2, 0)},
        {at(1, 1, 1), at(1, 1, 1), at(1, 1, 1), at(1, 1, 1)},
    };
    for (auto const& points : failing) {
        point center = at(7, 8);
        double radius = 9;
        EXPECT_FALSE(sphere_quick_fit(points, center, radius));
        EXPECT_TRUE(center == at(7, 8) && radius == 9);
    }
}

}  // namespace
}  // namespace tvmath
