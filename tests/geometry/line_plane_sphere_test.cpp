#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/line.h"
#include "tvmath/plane.h"
#include "tvmath/scalar.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace {

point along(double x, double y) {
    return point(false, x, y);
}
point along(double x, double y, double z) {
    return point(false, x, y, z);
}

point random_location(seeded_random& random) {
    double const x = random.uniform(-100, 100), y = random.uniform(-100, 100);
    return random.coin() ? at(x, y) : at(x, y, random.uniform(-100, 100));
}

transform random_transform(seeded_random& random) {
    auto const number = [&] { return random.uniform(-3, 3); };
    if (random.coin()) return transform::dilation(0.5, -2).rotate(number()).translate(number(), 8);
    return transform::rotation(number(), number(), number()).dilate(2, 1, 0.8) * transform(1, number(), 3);
}

void expect_near(point const& actual, point const& expected, double tolerance) {
    EXPECT_EQ(actual.dimension(), expected.dimension());
    EXPECT_EQ(actual.is_location(), expected.is_location());
    EXPECT_LE(distance3d(actual, expected), tolerance);
}

TEST(Line, TakesEndsOrAMidpointAndItsHalf) {
    struct {
        char const* name;
        point a, b, middle, half;
    } const cases[] = {
        {"two ends", at(1, 2), at(5, 4), at(3, 3), along(2, 1)},
        {"ends in space are flattened", at(1, 2, 3), at(5, 4, 7), at(3, 3, 5), along(2, 1, 0)},
        {"mixed dimensions", at(1, 2), at(5, 4, 7), at(3, 3, 3.5), along(2, 1, 0)},
        {"upright", at(0, 0, 0), at(0, 0, 2), at(0, 0, 1), along(0, 0, 0)},
        {"location and direction", at(1, 2), along(5, 4), at(1, 2), along(5, 4)},
        {"direction and location", along(5, 4), at(1, 2, 9), at(1, 2, 9), along(5, 4, 0)},
        {"two directions", along(5, 4), along(1, 2), at(1, 2), along(5, 4)},
        {"from nowhere", point(), at(4, 2), at(2, 1), along(2, 1)},
        {"no extent", at(1, 2), at(1, 2), at(1, 2), along(0, 0)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        line const l(c.a, c.b);
        EXPECT_EQ(l.center(), c.middle);
        EXPECT_EQ(l.basis(1), c.half);
        EXPECT_EQ(l.length(), 2 * c.half.length2d());
        bool const regular = c.half.length2d() > 0;
        EXPECT_EQ(_isnan(l, true), !regular);
        if (regular) expect_near((c.middle + c.half) / l, l.is_3d() ? at(1, 0, 0) : at(1, 0), 1e-15);
        if (regular) expect_near((c.middle + l.basis(2)) / l, l.is_3d() ? at(0, 1, 0) : at(0, 1), 1e-15);
        EXPECT_EQ(cross2d(l.basis(1), l.basis(2)), sqr(c.half));
    }
    EXPECT_TRUE(line(point(), point()).is_trivial());
}

TEST(Line, IsDrawnFromEndToEndWhereverItIsMoved) {
    seeded_random random(41);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        line const l(random_location(random), random_location(random));
        transform const t = random_transform(random);
        line const moved(l * t), back(l * t / t);
        int const n = 1 + static_cast<int>(random.below(9));
        curve const drawn = l.render_line(n), image = moved.render_line(n), again = back.render_line(n);
        ASSERT_EQ(drawn.capacity(), static_cast<unsigned int>(n) + 1);
        EXPECT_EQ(drawn[0], l.center() - l.basis(1));
        EXPECT_EQ(drawn.end()[-1], l.center() + l.basis(1));
        for (unsigned int i = 0; i < drawn.capacity(); ++i) {
            expect_near(image[i], drawn[i] * t, 1e-12);
            EXPECT_LE(distance3d(again[i], drawn[i]), 1e-12);
            EXPECT_NEAR(distance3d(drawn[i], drawn[0]), l.length() * i / n, 1e-12);
        }
        // The rectangle is that of the four ends of the parallels after the transform, and of nothing more.
        double const d = random.uniform(-50, 50), offsets[] = {d, -d};
        line seen(moved);
        seen.project2d();
        idioms::array<curve> const sides = seen.render_line(2, vector(2, offsets));
        CRealRect const expected = sides[0].get_bounding_rect() | sides[1].get_bounding_rect();
        CRealRect const actual = l.get_bounding_rect(t, d), thin = l.get_bounding_rect();
        EXPECT_LE(distance2d(actual.TopLeft(), expected.TopLeft()), 1e-12);
        EXPECT_LE(distance2d(actual.BottomRight(), expected.BottomRight()), 1e-12);
        EXPECT_LE(distance2d(thin.TopLeft(), drawn.get_bounding_rect().TopLeft()), 1e-13);
        EXPECT_LE(distance2d(thin.BottomRight(), drawn.get_bounding_rect().BottomRight()), 1e-13);
    }
}

TEST(Line, HasParallelsOnTheLeft) {
    line const l(at(1, 1), at(5, 4));  // of length 5, its left is (-3, 4) / 5
    curve const parallel = l.render_line(3, 10.0);
    ASSERT_EQ(parallel.capacity(), 3u);
    expect_near(parallel[0], at(-5, 9), 1e-14);
    expect_near(parallel[1], at(-3, 10.5), 1e-14);
    expect_near(parallel[2], at(-1, 12), 1e-14);
    EXPECT_EQ(l.render_line(0).capacity(), 2u);
    EXPECT_EQ(l.render_line(-3, 0.5).capacity(), 2u);
    EXPECT_EQ(l.render_line(3, vector()).capacity(), 0u);
    // Around (3, 2.5): the half segment (2, 1.5) and 10 (-3, 4) / 5.
    EXPECT_EQ(l.get_bounding_rect(transform(), -10), CRealRect(-5, -7, 11, 12));
    EXPECT_EQ(line().render_line(2)[0], at(-1, 0));
    EXPECT_EQ(line().get_bounding_rect(transform(3, 4), 2), CRealRect(2, 2, 4, 6));
    EXPECT_EQ(line(at(1, 2), at(1, 2)).get_bounding_rect(transform(), 3), CRealRect(1, 2, 1, 2));
}

TEST(Plane, HasARightHandedFrameOfItsNormal) {
    double const e = 1e-7, q = std::sqrt(0.5);
    struct {
        char const* name;
        point normal, u;
    } const cases[] = {
        {"Z", along(0, 0, 2), along(0, 1, 0)},
        {"-Y", at(0, -3), along(0, 0, 1)},
        {"X", along(4, 0, 0), along(0, 0, 1)},
        {"X is most nearly perpendicular", along(0, 1, 1), along(1, 0, 0)},
        {"rounding does not change the choice of Z", along(1 - e, 1, 1 + e), along(-1, -1, 2) / std::sqrt(6)},
        {"nor that of Y before X", along(1 - e, 1, 9), normalize(along(-1, 82, -9))},
        {"Y", along(1, 0, 1), along(0, 1, 0)},
        {"Z of a diagonal", along(q, q, 0), along(0, 0, 1)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        plane const p(at(1, 2, 3), c.normal);
        expect_near(p.basis(1), c.u, 1e-6);
    }
    seeded_random random(42);
    for (int trial = 0; trial < 100; ++trial) {
        point const n = along(random.normal(), random.normal(), random.normal());
        plane const p(at(1, 2, 3), n * random.log_uniform(1e-9, 1e9));
        expect_near(p.normal(), normalize(n), 1e-15);
        expect_near(cross(p.basis(1), p.basis(2)), normalize(n), 1e-15);
        EXPECT_NEAR(p.size(1), 1, 1e-15);
        EXPECT_NEAR(p.dot(1, 2), 0, 1e-15);
        expect_near(at(4, 5, 6) * p / p, at(4, 5, 6), 1e-14);
        EXPECT_NEAR(p.pitch(), std::asin(normalize(n).z()), 1e-13);
        EXPECT_NEAR(p.yaw(), std::atan2(n.y(), n.x()), 1e-14);
    }
    EXPECT_EQ(plane(at(1, 2), along(0, 0, 1)).center(), at(1, 2, 0));
    EXPECT_TRUE(_isnan(plane(at(1, 2, 3), point()), true));
}

TEST(Plane, HasTheYawOfItsFirstAxisWhenItIsLevel) {
    EXPECT_EQ(plane(at(0, 0, 0), along(0, 0, 1)).yaw(), pi / 2);
    EXPECT_EQ(plane(at(0, 0, 0), along(2e-10, 0, -1)).yaw(), 0);
    EXPECT_EQ(plane(at(0, 0, 0), along(-2e-10, 0, -1)).yaw(), pi);
    EXPECT_EQ(plane(make_transform(point(), point(), at(1, 0), along(0, 0, 1))).yaw(), 0);
    EXPECT_EQ(plane().yaw(), 0);
    EXPECT_EQ(plane().pitch(), pi / 2);
}

TEST(Sphere, HasItsMeasures) {
    EXPECT_EQ(sphere(2).radius(), 2);
    EXPECT_TRUE(relatively_near(sphere(2).volume(), 33.510321638291124, 1e-15, "4/3 pi 8"));
    EXPECT_TRUE(relatively_near(sphere(2).surface_area(), 50.26548245743669, 1e-15, "16 pi"));
    EXPECT_EQ(sphere(2, at(1, 5)).get_bounding_rect(), CRealRect(-1, 3, 3, 7));
    EXPECT_EQ(sphere(2, at(1, 5)).center(), at(1, 5, 0));
    EXPECT_EQ(at(1, 5, 9) / sphere(2, at(1, 5, 7)), at(0, 0, 1));
    EXPECT_EQ(sphere(2, point()).center(), at(0, 0, 0));
    EXPECT_EQ(sphere().get_bounding_rect(), CRealRect());
    EXPECT_FALSE(std::isfinite(sphere(0)[13]));
}

TEST(Sphere, DrawsItsOutlineAndTheFrontHalvesOfItsEquators) {
    seeded_random random(43);
    for (int trial = 0; trial < 50; ++trial) {
        SCOPED_TRACE(trial);
        point const center = at(random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9));
        double const r = random.log_uniform(0.1, 10),
                     angle = trial < 4 ? trial * pi / 2 : random.uniform(0, 6);
        transform const turn = transform::rotation(angle, trial < 4 ? 0 : random.uniform(0, 6), angle);
        sphere const s(sphere(r) * turn * transform(center));
        std::vector<curve> paths(1);
        s.render_bezier_equators(paths);
        ASSERT_EQ(paths.size(), 5u);
        ASSERT_EQ(paths[1].capacity(), 13u);
        for (point const& p : {paths[1][0], paths[1][6]}) EXPECT_NEAR(distance2d(p, center), r, 1e-13);
        for (int axis = 1; axis <= 3; ++axis) {
            curve const& half = paths[static_cast<unsigned int>(axis) + 1];
            ASSERT_EQ(half.capacity(), 7u);
            for (point const& p : half) {
                EXPECT_GE(p.z(), center.z() - 1e-12);
                EXPECT_NEAR(dot(p - center, s.direction(axis)), 0, 1e-13 * r + 1e-14);
            }
            for (unsigned int i = 0; i < 7; i += 3) EXPECT_NEAR(distance3d(half[i], center), r, 1e-13);
            EXPECT_NEAR(half[0].z(), center.z(), 1e-13);
            EXPECT_LE(distance3d(midpoint(half[0], half[6]), center), 1e-13);
        }
    }
    std::vector<curve> none;
    sphere().render_bezier_equators(none);
    EXPECT_EQ(none.size(), 4u);
}

}  // namespace
}  // namespace tvmath
