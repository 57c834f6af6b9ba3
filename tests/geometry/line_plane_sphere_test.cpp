#include <gtest/gtest.h>

#include <cmath>

#include "support/relative.h"
#include "support/shape_points.h"
#include "support/shape_properties.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/scalar.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace {

point along(double x, double y, double z) {
    return point(false, x, y, z);
}

point random_location(seeded_random& random) {
    double const x = random.uniform(-100, 100), y = random.uniform(-100, 100);
    return random.coin() ? at(x, y) : at(x, y, random.uniform(-100, 100));
}

TEST(Line, TakesEndsOrAMidpointAndItsHalf) {
    point const flat(false, 5, 4), other(false, 1, 2);
    point const cases[][4] = {
        // two points; midpoint, half of the segment
        {at(1, 2), at(5, 4), at(3, 3), point(false, 2, 1)},
        {at(1, 2, 3), at(5, 4, 7), at(3, 3, 5), along(2, 1, 0)},  // flattened
        {at(1, 2), at(5, 4, 7), at(3, 3, 3.5), along(2, 1, 0)},
        {at(0, 0, 0), at(0, 0, 2), at(0, 0, 1), along(0, 0, 0)},
        {at(1, 2), flat, at(1, 2), flat},
        {flat, at(1, 2, 9), at(1, 2, 9), along(5, 4, 0)},
        {flat, other, at(1, 2), flat},
        {point(), at(4, 2), at(2, 1), point(false, 2, 1)},
        {at(1, 2), at(1, 2), at(1, 2), point(false, 0, 0)},
    };
    for (auto const& [a, b, middle, half] : cases) {
        line const l(a, b);
        EXPECT_TRUE(l.center() == middle && l.basis(1) == half && l.length() == 2 * half.length2d());
        EXPECT_EQ(cross2d(l.basis(1), l.basis(2)), sqr(half));  // a left turn of the same length
        EXPECT_EQ(_isnan(l, true), half.length2d() == 0);
        EXPECT_TRUE(_isnan(l, true) || distance3d((middle + l.basis(2)) / l, at(0, 1)) < 1e-15);
    }
    EXPECT_TRUE(line(point(), point()).is_trivial());
}

TEST(Line, IsDrawnFromEndToEndWhereverItIsMoved) {
    seeded_random random(41);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        line const l(random_location(random), random_location(random));
        transform const t = random_map(random);
        line seen(l * t);
        int const n = 1 + static_cast<int>(random.below(9));
        curve const drawn = l.render_line(n), image = seen.render_line(n);
        ASSERT_EQ(drawn.capacity(), static_cast<unsigned int>(n) + 1);
        EXPECT_TRUE(drawn[0] == l.center() - l.basis(1) && drawn.end()[-1] == l.center() + l.basis(1));
        for (unsigned int i = 0; i < drawn.capacity(); ++i) {
            EXPECT_LE(distance3d(image[i], drawn[i] * t), 1e-12);
            EXPECT_LE(distance3d(image[i] / t, drawn[i]), 1e-12);
            EXPECT_NEAR(distance3d(drawn[i], drawn[0]), l.length() * i / n, 1e-12);
        }
        EXPECT_LE(corner_distance(l.get_bounding_rect(), drawn.get_bounding_rect()), 1e-12);
        // With an offset, of the ends of both parallels after the transform.
        double const d = random.uniform(-50, 50), offsets[] = {d, -d};
        seen.project2d();
        idioms::array<curve> const sides = seen.render_line(2, vector(2, offsets));
        CRealRect const expected = sides[0].get_bounding_rect() | sides[1].get_bounding_rect();
        EXPECT_LE(corner_distance(l.get_bounding_rect(t, d), expected), 1e-12);
    }
}

TEST(Line, HasParallelsOnTheLeft) {
    line const l(at(1, 1), at(5, 4));  // of length 5, its left is (-3, 4) / 5
    curve const parallel = l.render_line(3, 10.0);
    point const expected[] = {at(-5, 9), at(-3, 10.5), at(-1, 12)};
    for (unsigned int i = 0; i < 3; ++i) EXPECT_LE(distance2d(parallel[i], expected[i]), 1e-14);
    EXPECT_TRUE(l.render_line(0).capacity() == 2 && l.render_line(-3, 0.5).capacity() == 2);
    // Around (3, 2.5): the half segment (2, 1.5) and 10 (-3, 4) / 5.
    EXPECT_EQ(l.get_bounding_rect(transform(), -10), CRealRect(-5, -7, 11, 12));
    EXPECT_EQ(line().render_line(2)[0], at(-1, 0));
    EXPECT_EQ(line().get_bounding_rect(transform(3, 4), 2), CRealRect(2, 2, 4, 6));
}

TEST(Plane, HasARightHandedFrameOfItsNormal) {
    double const e = 1e-7;
    point const first_axes[][2] = {
        {along(0, 0, 2), along(0, 1, 0)},
        {at(0, -3), along(0, 0, 1)},
        {along(0, 1, 1), along(1, 0, 0)},                       // X alone is perpendicular
        {along(1 - e, 1, 1 + e), normalize(along(-1, -1, 2))},  // equal but for rounding: Z
        {along(1 - e, 1, 9), normalize(along(-1, 82, -9))},     // Y before X
    };
    for (auto const& [normal, u] : first_axes) {
        EXPECT_LE(distance3d(plane(at(1, 2, 3), normal).basis(1), u), 1e-6);
    }
    seeded_random random(42);
    for (int trial = 0; trial < 100; ++trial) {
        point const n = normalize(along(random.normal(), random.normal(), random.normal()));
        plane const p(at(1, 2, 3), n * random.log_uniform(1e-9, 1e9));
        EXPECT_LE(distance3d(p.normal(), n) + distance3d(cross(p.basis(1), p.basis(2)), n), 1e-15);
        EXPECT_LE(std::fabs(p.size(1) - 1) + std::fabs(p.dot(1, 2)), 1e-15);
        EXPECT_LE(distance3d(at(4, 5, 6) * p / p, at(4, 5, 6)), 1e-14);
        EXPECT_NEAR(p.pitch(), std::asin(n.z()), 1e-13);
        EXPECT_NEAR(p.yaw(), std::atan2(n.y(), n.x()), 1e-14);
    }
    EXPECT_EQ(plane(at(0, 0, 0), along(0, 0, 1)).yaw(), pi / 2);    // of the first axis, Y
    EXPECT_EQ(plane(at(0, 0, 0), along(-2e-10, 0, -1)).yaw(), pi);  // of the normal
    EXPECT_TRUE(plane().yaw() == 0 && plane().pitch() == pi / 2);
    EXPECT_TRUE(_isnan(plane(at(1, 2, 3), point()), true));
}

TEST(Sphere, HasItsMeasuresAndDrawsTheFrontHalvesOfItsEquators) {
    EXPECT_TRUE(relatively_near(sphere(2).volume(), 33.510321638291124, 1e-15, "4/3 pi 8"));
    EXPECT_TRUE(relatively_near(sphere(2).surface_area(), 50.26548245743669, 1e-15, "16 pi"));
    EXPECT_EQ(sphere(2, at(1, 5)).get_bounding_rect(), CRealRect(-1, 3, 3, 7));
    EXPECT_EQ(at(1, 5, 9) / sphere(2, at(1, 5, 7)), at(0, 0, 1));
    seeded_random random(43);
    for (int trial = 0; trial < 50; ++trial) {
        SCOPED_TRACE(trial);
        point const center = at(random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9));
        double const r = random.log_uniform(0.1, 10);
        double const angle = trial < 4 ? trial * pi / 2 : random.uniform(0, 6);
        transform const turn = transform::rotation(angle, trial < 4 ? 0 : random.uniform(0, 6), angle);
        sphere const s(sphere(r) * turn * transform(center));
        std::vector<curve> paths(1);
        s.render_bezier_equators(paths);
        ASSERT_TRUE(paths.size() == 5 && paths[1].capacity() == 13);
        EXPECT_NEAR(distance2d(paths[1][0], center) + distance2d(paths[1][6], center), 2 * r, 1e-13);
        for (unsigned int axis = 1; axis <= 3; ++axis) {
            curve const& half = paths[axis + 1];
            ASSERT_EQ(half.capacity(), 7u);
            for (point const& p : half) {
                EXPECT_GE(p.z(), center.z() - 1e-13);
                EXPECT_NEAR(dot(p - center, s.direction(static_cast<int>(axis))), 0, 1e-13);
            }
            for (unsigned int i = 0; i < 7; i += 3) EXPECT_NEAR(distance3d(half[i], center), r, 1e-13);
            EXPECT_LE(distance3d(midpoint(half[0], half[6]), center), 1e-13);
        }
    }
}

}  // namespace
}  // namespace tvmath
