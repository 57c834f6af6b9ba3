#include "tvmath/angle.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/seeded_random.h"
#include "tvmath/scalar.h"

namespace {

point at(double x, double y) {
    return point(true, x, y);
}
point turned(double angle) {
    return point(false, std::cos(angle), std::sin(angle));
}
// From `near` to `far` along a ray.
line on_ray(point const& vertex, double angle, double near, double far) {
    return line(vertex + turned(angle) * near, vertex + turned(angle) * far);
}
double wrapped(double angle) {
    return std::remainder(angle, 2 * pi);
}
point ray(Angle_Description const& a, double angle) {
    return normalize(turned(angle) * a.arc);
}
// Heading in XY of the start and the end, in the plane of the drawing.
double heading(Angle_Description const& a, bool end) {
    return ray(a, a.start_angle + (end ? a.included_angle : 0)).angle2d();
}

// A random vertex and two rays, all four combinations of order and of the direction of the lines.
TEST(AngleIntersect, RunsBetweenTheRaysTowardsTheMiddles) {
    seeded_random random(1);
    for (int trial = 0; trial < 500; ++trial) {
        SCOPED_TRACE(trial);
        double const s = random.log_uniform(1e-3, 1e5), a = random.uniform(-pi, pi);
        double const between = random.uniform(0.02, pi - 0.02) * (random.coin() ? 1 : -1);
        point const vertex = at(s * random.uniform(-2, 2), s * random.uniform(-2, 2));
        double const n1 = s * random.uniform(-0.4, 1), n2 = s * random.uniform(-0.4, 1);
        double const f1 = n1 + s * random.uniform(1, 2), f2 = n2 + s * random.uniform(1, 2);
        line const first = random.coin() ? on_ray(vertex, a, n1, f1) : on_ray(vertex, a, f1, n1);
        line const second = on_ray(vertex, a + between, n2, f2);
        Angle_Description angle;
        ASSERT_TRUE(angle_intersect(first, second, angle));
        EXPECT_LE(distance3d(angle.arc.basis(0), vertex), 1e-11 * s);
        EXPECT_NEAR(angle.included_angle, std::fabs(between), 1e-12);
        EXPECT_EQ(angle.sign_changed, between < 0);
        EXPECT_NEAR(wrapped(heading(angle, between < 0) - a), 0, 1e-12);
        EXPECT_NEAR(wrapped(heading(angle, between > 0) - a - between), 0, 1e-12);
        double const radius = std::max({f1, f2, (n1 + f1) / 2 + (n2 + f2) / 2}) / 2;
        EXPECT_NEAR(angle.arc.radius(), radius, 1e-11 * s);
        bool const swapped = between < 0;
        EXPECT_NEAR(angle.start_line_near * radius, swapped ? n2 : n1, 1e-11 * s);
        EXPECT_NEAR(angle.start_line_far * radius, swapped ? f2 : f1, 1e-11 * s);
        EXPECT_NEAR(angle.end_line_near * radius, swapped ? n1 : n2, 1e-11 * s);
        EXPECT_NEAR(angle.end_line_far * radius, swapped ? f1 : f2, 1e-11 * s);
        EXPECT_NEAR(angle.arc.direction(3).z(), 1, 1e-15);
    }
}

TEST(AngleIntersect, FailsByADefaultRecord) {
    line const x(at(1, 0), at(3, 0)), parallel(at(0, 1), at(1, 1)), nowhere(at(1, 1), at(1, 1));
    for (line const& other : {line(), parallel, nowhere, line(at(0, 0), at(std::nan(""), 1))}) {
        Angle_Description angle, reference;
        angle.included_angle = 3;
        EXPECT_FALSE(angle_intersect(x, other, angle));
        EXPECT_TRUE(angle.included_angle == 0 && angle.arc.is_trivial());
        EXPECT_FALSE(angle_intersect(other, x, reference, angle));
    }
}

TEST(ChangeSign, TwiceIsTheSameAngle) {
    Angle_Description angle;
    ASSERT_TRUE(angle_intersect(on_ray(at(1, 2), 0.3, 1, 3), on_ray(at(1, 2), 2.5, 2, 5), angle));
    double const start = heading(angle, false), end = heading(angle, true);
    Angle_Description changed = angle;
    change_sign(changed);
    EXPECT_NEAR(heading(changed, false), end, 1e-15);
    EXPECT_NEAR(heading(changed, true), start, 1e-15);
    EXPECT_EQ(changed.start_line_far, angle.end_line_far);
    change_sign(changed);
    EXPECT_NEAR(changed.start_angle, angle.start_angle, 1e-15);
    EXPECT_EQ(changed.included_angle, angle.included_angle);
    EXPECT_FALSE(changed.sign_changed);
}

TEST(GetAngleSolutions, GivesTheFourAnglesOfTwoLines) {
    for (double const between : {0.5, pi / 2, 2.5, -0.5, -2.5}) {
        SCOPED_TRACE(between);
        double const size = std::fabs(between);
        Angle_Description angle;
        ASSERT_TRUE(
            angle_intersect(on_ray(at(1, 2), 0.3, 1, 3), on_ray(at(1, 2), 0.3 + between, 2, 5), angle));
        std::vector<Angle_Description> four(9);
        get_angle_solutions(angle, four);
        ASSERT_EQ(four.size(), 4u);
        double const sizes[] = {size, pi - size, size, 2 * pi - size};
        double const low = std::min(0.3, 0.3 + between), middle = low + size / 2;
        // The supplement lies between the reversed start and the end.
        double const bisectors[] = {middle, low + size + (pi - size) / 2, middle + pi, middle + pi};
        for (unsigned int i = 0; i < 4; ++i) {
            SCOPED_TRACE(i);
            EXPECT_NEAR(four[i].included_angle, sizes[i], 1e-14);
            EXPECT_NEAR(four[i].start_angle, -sizes[i] / 2, 1e-14);
            EXPECT_NEAR(wrapped(four[i].arc.basis(1).angle2d() - bisectors[i]), 0, 1e-14);
            EXPECT_NEAR(four[i].arc.radius(), angle.arc.radius(), 1e-14);
        }
    }
}

// A part that is turned and measured again and again keeps each of its four angles, in both senses, while the
// lines are taken from either end and the angle itself drifts.
TEST(AngleIntersect, KeepsTheChosenAngleThroughMeasurements) {
    seeded_random random(2);
    for (unsigned int choice = 0; choice < 8; ++choice) {
        SCOPED_TRACE(choice);
        double turn = 0.1, between = 1.0;
        Angle_Description angle;
        ASSERT_TRUE(
            angle_intersect(on_ray(at(0, 0), turn, 1, 3), on_ray(at(0, 0), turn + between, 2, 4), angle));
        std::vector<Angle_Description> four;
        get_angle_solutions(angle, four);
        angle = four[choice % 4];
        if (choice >= 4) change_sign(angle);
        double const sense = angle.included_angle < 0 ? -1 : 1;
        for (int step = 0; step < 300; ++step) {
            turn += random.uniform(0, 0.1);
            between = 1 + 0.5 * std::sin(0.03 * step);
            point const vertex = at(random.uniform(-9, 9), random.uniform(-9, 9));
            bool const reversed = random.coin();
            line const first = on_ray(vertex, turn, reversed ? 3 : 1, reversed ? 1 : 3);
            line const second = on_ray(vertex, turn + between, 2, 4);
            ASSERT_TRUE(angle_intersect(first, second, angle, angle));
            double const sizes[] = {between, pi - between, between, 2 * pi - between};
            double const starts[] = {turn, turn + between, turn + pi, turn + between};
            double const start = starts[choice % 4] + (sense < 0 ? sizes[choice % 4] : 0);
            ASSERT_NEAR(angle.included_angle, sense * sizes[choice % 4], 1e-12) << step;
            ASSERT_NEAR(wrapped(heading(angle, false) - start), 0, 1e-12) << step;
        }
    }
}

}  // namespace
