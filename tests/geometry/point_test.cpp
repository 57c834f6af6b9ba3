#include "tvmath/point.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

point along(double x, double y) {
    return point(false, x, y);
}
point along(double x, double y, double z) {
    return point(false, x, y, z);
}

void expect_near(point const& actual, point const& expected, double tolerance) {
    EXPECT_EQ(actual.dimension(), expected.dimension());
    EXPECT_EQ(actual.is_location(), expected.is_location());
    EXPECT_LE(distance3d(actual, expected), tolerance);
}

TEST(Point, SlotsStartWithTheWeight) {
    point p(true, 3, 4);
    EXPECT_EQ(p[0], 1);
    EXPECT_EQ(p[1], 3);
    p(3) = 9;  // z of a 2D point is never read
    EXPECT_TRUE(p == at(3, 4));
    EXPECT_EQ(p.capacity(), 3u);
    EXPECT_EQ(point().capacity(), 0u);
    EXPECT_EQ(sizeof(point), 40u);
}

TEST(Point, ComparesExactly) {
    EXPECT_TRUE(point() == point());
    EXPECT_FALSE(at(1, 2) == at(1, 2, 0));
    EXPECT_FALSE(at(1, 2) == along(1, 2));
    EXPECT_TRUE(at(1, 2) != at(1, std::nextafter(2.0, 3.0)));
    point const nan = at(1, std::nan(""));
    EXPECT_TRUE(nan != nan);
    EXPECT_TRUE(at(0.0, 1) == at(-0.0, 1));
}

TEST(Point, SumsAndDifferencesKeepTrackOfWeightAndDimension) {
    struct {
        char const* name;
        point actual, expected;
    } const cases[] = {
        {"2D and 3D", at(1, 2) + at(1, 1, 1), at(2, 3, 1)},
        {"location - location", at(3, 4) - at(1, 1), along(2, 3)},
        {"location - direction", at(3, 4) - along(1, 1), at(2, 3)},
        {"direction - location", along(3, 4) - at(1, 1), at(2, 3)},
        {"direction + direction", along(1, 2, 3) + along(1, 0), along(2, 2, 3)},
        {"trivial + direction", point() + along(1, 2), at(1, 2)},
        {"trivial + trivial", point() + point(), point()},
        {"minus a location", -at(1, -2), at(-1, 2)},
        {"minus a direction", -along(1, -2, 3), along(-1, 2, -3)},
        {"scaled", 2 * at(1, 2, 3) / 4, at(0.5, 1, 1.5)},
        {"scaled trivial", point() * 3, point()},
        {"moved direction", along(1, 1).translate(5, 5), along(1, 1)},
        {"moved direction in 3D", along(1, 1).translate(5, 5, 5), along(1, 1, 0)},
        {"moved trivial", point().translate(1, 2), at(1, 2)},
        {"dilated trivial", point().dilate(2, 3, 4), at(0, 0, 0)},
        {"dilated in the plane", at(1, 1, 1).dilate(2, 3), at(2, 3, 1)},
    };
    for (auto const& c : cases) EXPECT_TRUE(c.actual == c.expected) << c.name;
    EXPECT_EQ((at(1, 1) / 0.0).x(), infinity);
}

TEST(Point, PromotesAndProjects) {
    point a, b;
    EXPECT_EQ(promote(a, b), 0u);
    EXPECT_TRUE(a.is_trivial() && b.is_trivial());
    b = along(1, 2, 3);
    EXPECT_EQ(promote(a, b), 4u);
    EXPECT_TRUE(a == at(0, 0, 0));
    point c = at(1, 2, 3);
    c.promote2d();
    EXPECT_TRUE(c.is_3d());
    c.project2d();
    EXPECT_TRUE(c == at(1, 2));
    c.project3d();
    EXPECT_TRUE(c == at(1, 2, 0));  // z was forgotten
    point d = along(1, 2);
    d.promote_to(3);
    EXPECT_TRUE(d == along(1, 2));
    d.promote_to(4);
    EXPECT_TRUE(d == along(1, 2, 0));
    d.to_location();
    EXPECT_TRUE(d.is_location());
}

TEST(Point, ProductsTakeTheSmallerDimension) {
    EXPECT_EQ(dot(at(1, 2, 3), at(4, 5, 6)), 32);
    EXPECT_EQ(dot(at(1, 2, 3), at(4, 5)), 14);
    EXPECT_EQ(dot3d(at(1, 2, 3), point()), 0);
    EXPECT_EQ(dot2d(at(1, 2, 3), at(4, 5, 6)), 14);
    EXPECT_EQ(cross2d(at(1, 2), at(3, 4)), -2);
    EXPECT_TRUE(cross(at(1, 2, 3), at(4, 5, 6)) == along(-3, 6, -3));
    EXPECT_TRUE(cross(at(1, 2), at(4, 5, 6)) == along(12, -6, -3));
    EXPECT_TRUE(cross(at(1, 2, 3), at(4, 5)) == along(-15, 12, -3));
    EXPECT_TRUE(cross(at(1, 2), at(3, 4)) == along(0, 0, -2));
    EXPECT_TRUE(cross(point(), at(1, 2)).is_trivial());
}

TEST(Point, MeasuresByDimension) {
    EXPECT_EQ(at(3, 4, 12).length2d(), 5);
    EXPECT_EQ(at(3, 4, 12).length3d(), 13);
    EXPECT_EQ(at(3, 4).length3d(), 5);
    EXPECT_EQ(sqr(at(1, 2, 2)), 9);
    EXPECT_EQ(point().length3d() + point().angle2d() + point().latitude(), 0);
    EXPECT_EQ(distance2d(at(0, 0, 9), at(3, 4, 1)), 5);
    EXPECT_EQ(distance3d(at(3, 4), at(0, 0, 12)), 13);
    EXPECT_EQ(distance3d(point(), at(2, 3, 6)), 7);
    EXPECT_EQ(at(0, 2).angle2d(), pi / 2);
    EXPECT_EQ(at(7, 2).latitude(), pi / 2);
    EXPECT_EQ(at(0, 0, -2).latitude(), pi);
    EXPECT_FALSE(_isnan(point()));
    point flat = at(1, 2);
    flat(3) = flat(0) = std::nan("");
    EXPECT_FALSE(_isnan(flat));
    EXPECT_TRUE(_isnan(at(1, 2, std::nan(""))));
}

TEST(Point, IsMadeFromPolarCoordinates) {
    expect_near(make_polar_point(2, pi / 2), at(0, 2), 1e-15);
    expect_near(make_cylindrical_point(2, pi, 3), at(-2, 0, 3), 1e-15);
    expect_near(make_spherical_point(2, pi / 2, pi / 6), at(0, 1, std::sqrt(3.0)), 1e-15);
}

TEST(Point, NormalizeLeavesWhatHasNoLengthAndWhatIsUnit) {
    EXPECT_TRUE(normalize(along(0, 0)) == along(0, 0));
    EXPECT_TRUE(normalize(at(3, 4)) == at(3.0 / 5, 4.0 / 5));
    EXPECT_TRUE(normalize(along(0, 3, 4)) == along(0, 0.6, 0.8));
    EXPECT_TRUE(normalize(point()).is_trivial());
    EXPECT_TRUE(normalize(along(1, std::nan(""))).x() == 1);
}

TEST(Point, TurnsAnticlockwise) {
    EXPECT_TRUE(at(1, 2).rotate_90() == at(-2, 1));
    EXPECT_TRUE(at(1, 2).rotate_180() == at(-1, -2));
    EXPECT_TRUE(at(1, 2, 3).rotate_270() == at(2, -1, 3));
    expect_near(at(1, 2, 3).rotate(pi / 2), at(-2, 1, 3), 1e-15);
    // A third of a turn about the diagonal carries X to Y to Z to X.
    expect_near(at(1, 2, 3).rotate(along(1, 1, 1), 2 * pi / 3), at(3, 1, 2), 1e-14);
    // The axis is a direction whatever its weight, and the weight of what is turned stays.
    expect_near(along(1, 0).rotate(at(0, 0, 5), pi / 2), along(0, 1, 0), 1e-15);
    expect_near(at(1, 0).rotate(along(0, 0, 0), pi / 2), at(0, 1, 0), 1e-15);
}

TEST(Point, TurnAboutAnAxisKeepsLengthAndTheAxis) {
    seeded_random random(3);
    for (int i = 0; i < 200; ++i) {
        point const axis = along(random.normal(), random.normal(), random.normal());
        point const p = at(random.normal(), random.normal(), random.normal());
        double const angle = random.uniform(-7, 7);
        point const turned = point(p).rotate(axis, angle);
        EXPECT_NEAR(turned.length3d(), p.length3d(), 1e-14);
        EXPECT_NEAR(dot(turned, axis), dot(p, axis), 1e-13);
        expect_near(point(turned).rotate(axis, -angle), p, 1e-14);
    }
}

TEST(Point, Shears) {
    EXPECT_TRUE(at(1, 2).shear_x(3) == at(7, 2));
    EXPECT_TRUE(at(1, 2).shear_y(3) == at(1, 5));
    EXPECT_TRUE(at(1, 2, 3).shear_x(2, 3) == at(14, 2, 3));
    EXPECT_TRUE(at(1, 2).shear_y(2, 3) == at(1, 4, 0));
    EXPECT_TRUE(at(1, 2).shear_z(2, 3) == at(1, 2, 8));
    EXPECT_TRUE(point().shear_z(2, 3).is_trivial());
}

TEST(Point, MidpointPrefersDirectionsAndKnowsSpaceOnly) {
    struct {
        char const* name;
        point actual, expected;
    } const cases[] = {
        {"two in the plane", midpoint(at(0, 0), at(2, 4)), point()},
        {"two in space", midpoint(at(0, 0, 2), at(2, 4, 4)), at(1, 2, 3)},
        {"raised", midpoint(at(0, 0, 2), at(2, 4)), at(1, 2, 1)},
        {"a direction as it is", midpoint(at(1, 1), along(0, 5)), along(0, 5)},
        {"a direction as it is, first", midpoint(along(0, 5), at(1, 1)), along(0, 5)},
        {"with nothing", midpoint(point(), at(2, 4, 6)), at(1, 2, 3)},
        {"in the plane", midpoint2d(at(0, 0), at(2, 4)), at(1, 2)},
        {"projected", midpoint2d(at(0, 0, 9), at(2, 4)), at(1, 2)},
        {"a projected direction", midpoint2d(at(1, 1), along(0, 5, 7)), along(0, 5)},
    };
    for (auto const& c : cases) EXPECT_TRUE(c.actual == c.expected) << c.name;
    double const half = std::sqrt(0.5);
    expect_near(midpoint(along(7, 0, 0), along(0, 0, 2)), along(half, 0, half), 1e-15);
    expect_near(midpoint2d(along(7, 0), along(0, 2)), along(half, half), 1e-15);
}

}  // namespace
}  // namespace tvmath
