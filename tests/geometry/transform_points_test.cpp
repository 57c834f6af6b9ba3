#include <gtest/gtest.h>

#include <limits>

#include <cmath>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/transform.h"

inline namespace tvmath {
namespace {

double const quarter = std::acos(0.0);

point along(double x, double y, double z) {
    return point(false, x, y, z);
}

// Same kind and dimension, coordinates within a few ulps of numbers below 10.
void expect_near(point const& actual, point const& expected) {
    ASSERT_EQ(actual.dimension(), expected.dimension());
    if (expected.is_trivial()) return;
    EXPECT_EQ(actual[0], expected[0]);
    EXPECT_LT(distance2d(actual, expected), 1e-14);
    EXPECT_NEAR(expected.is_3d() ? actual.z() : 0, expected.is_3d() ? expected.z() : 0, 1e-14);
}

TEST(PointThroughTransform, FollowsDimensionAndWeight) {
    transform const flat = transform::rotation_90().translate(10, 20);
    transform const solid = transform(1, 2, 3).permute3d(1);  // X to Z, Y to X, Z to Y, then moved
    struct {
        char const* name;
        point p;
        transform t;
        point image;
    } const cases[] = {
        {"trivial stays trivial", point(), transform(), point()},
        {"anything through trivial", at(1, 2, 3), transform(), at(1, 2, 3)},
        {"trivial, 2D", point(), flat, at(10, 20)},
        {"location 2D, 2D", at(1, 2), flat, at(8, 21)},
        {"direction 2D, 2D", point(false, 1, 2), flat, point(false, -2, 1)},
        {"location 3D, 2D", at(1, 2, 3), flat, at(8, 21, 3)},
        {"direction 3D, 2D", along(1, 2, 3), flat, along(-2, 1, 3)},
        {"trivial, 3D", point(), solid, at(1, 2, 3)},
        {"location 2D, 3D", at(5, 6), solid, at(7, 2, 8)},
        {"direction 2D, 3D", point(false, 5, 6), solid, along(6, 0, 5)},
        {"location 3D, 3D", at(5, 6, 7), solid, at(7, 9, 8)},
        {"direction 3D, 3D", along(5, 6, 7), solid, along(6, 7, 5)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.p * c.t, c.image);  // integers, so exact
        EXPECT_EQ(c.p / inverse(c.t), c.image);
    }
    point weighted = at(5, 6, 7), undefined_z = at(5, 6);
    weighted[0] = 2;
    EXPECT_EQ((weighted * solid)[0], 1);
    EXPECT_EQ((weighted * flat)[0], 2);
    undefined_z[3] = std::nan("");
    EXPECT_EQ(undefined_z * solid, at(7, 2, 8));
}

// The loop over a list is another one than that of a single point, with wider registers where there are any.
TEST(PointThroughTransform, GivesTheSameBitsInAList) {
    seeded_random random(12);
    double const infinite = std::numeric_limits<double>::infinity();
    transform const maps[] = {transform(), transform(2, 3).rotate(0.3),
                              transform::rotation(0.1, 0.2, 0.3).translate(1, 2, 3)};
    for (transform const& t : maps) {
        idioms::array<point> list(40);
        for (unsigned int i = 4; i < 40; ++i) {
            double const x = random.normal(), y = random.normal(), z = random.normal();
            list(i) = i % 2 ? point(i % 3 != 0, x, y, z) : point(i % 3 != 0, x, y);
        }
        list(0) = point(true, infinite, 1, 2);
        idioms::array<point> const forward = list * t, back = list / t;
        for (unsigned int i = 0; i < 40; ++i) {
            point p = list[i], q = list[i];
            p *= t;
            q /= t;
            if (i != 0) {
                EXPECT_TRUE(forward[i] == p && back[i] == q) << i;
            }
            EXPECT_EQ(forward[i][0], p[0]) << i;  // infinity must not reach the weight
        }
        EXPECT_EQ(forward == list, t.is_trivial());  // a trivial transform leaves the block shared
    }
}

TEST(Transform, RotatesToImagesWorkedByHand) {
    double const h = std::sqrt(0.5);
    struct {
        char const* name;
        transform t;
        point p, image;
    } const cases[] = {
        {"2D", transform::rotation(quarter / 2), at(1, 0), at(h, h)},
        {"yaw", transform::rotation(quarter, 0, 0), at(1, 0, 0), at(0, 1, 0)},
        {"elevation", transform::rotation(0, quarter / 2, 0), at(1, 0, 0), at(h, 0, h)},
        {"roll", transform::rotation(0, 0, quarter), at(0, 1, 0), at(0, 0, 1)},
        // Y rolls to Z, Z is lifted to -X, -X is turned to -Y.
        {"all three", transform::rotation(quarter, quarter, quarter), at(0, 1, 0), at(0, -1, 0)},
        {"about no axis is about X", transform::rotation(point(), quarter), at(0, 1, 0), at(0, 0, 1)},
        {"about an axis of length 0", transform::rotation(along(0, 0, 0), quarter), at(0, 1, 0), at(0, 0, 1)},
        {"about a 2D axis", transform::rotation(point(false, 0, 5), quarter), at(1, 0, 0), at(0, 0, -1)},
        {"about the diagonal", transform::rotation(along(2, 2, 2), quarter * 4 / 3), at(1, 2, 3),
         at(3, 1, 2)},
        // Close to Z: U = Y x Z = X.
        {"extrusion along Z", transform::extrusion(along(0, 0, 3)), at(1, 2, 3), at(1, 2, 3)},
        // U = Z x X = Y, V = X x Y = Z.
        {"extrusion along X", transform::extrusion(at(2, 0)), at(1, 2, 3), at(3, 1, 2)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_near(c.p * c.t, c.image);
        expect_near(c.image / c.t, c.p);
    }
    transform const turned = transform::rotation(0.3, -0.4, 0.5);
    EXPECT_NEAR(turned.yaw(), 0.3, 1e-15);
    EXPECT_NEAR(turned.pitch(), -0.4, 1e-15);
    EXPECT_NEAR(turned.roll(), 0.5, 1e-15);
    EXPECT_EQ(transform::rotation(0, quarter, 0).yaw(), 0);
    EXPECT_EQ(transform::rotation(2.5).roll(), 0);
}

TEST(Transform, MakesQuarterTurnsExact) {
    EXPECT_EQ(at(3, 4) * transform::rotation_90(), at(-4, 3));
    EXPECT_EQ(at(3, 4) * transform::rotation_180(), at(-3, -4));
    EXPECT_EQ(at(3, 4) * transform::rotation_270(), at(4, -3));
    for (transform const& start :
         {transform(1, 2).shear_x(3), transform(1, 2, 3).shear_x(3, 4), transform()}) {
        transform t = start;
        EXPECT_TRUE(t.rotate_90().rotate_90().rotate_180() == start);
        EXPECT_TRUE(t.rotate_90().rotate_270() == start);
    }
}

TEST(Transform, GivesColumnsOfBothMaps) {
    transform const flat = make_transform(at(1, 2), point(false, 3, 4), point(false, 0, 2));
    transform const solid = make_transform(at(1, 2, 3), along(0, 3, 4), at(0, 2), point());
    struct {
        char const* name;
        point actual, expected;
    } const cases[] = {
        {"trivial 0", transform().basis(0), point()},
        {"trivial 1", transform().inverse_basis(1), point(false, 1, 0)},
        {"trivial 2", transform().basis(2), point(false, 0, 1)},
        {"trivial 3", transform().basis(3), along(0, 0, 1)},
        {"flat 0", flat.center(), at(1, 2)},
        {"flat 1", flat.basis(1), point(false, 3, 4)},
        {"flat 3", flat.basis(3), along(0, 0, 1)},
        {"flat 4", flat.basis(4), point()},
        {"flat, below", flat.basis(-1), point()},
        // x = 1 + 3 u, y = 2 + 4 u + 2 v, so u = (x - 1) / 3, v = (y - 2 - 4 u) / 2.
        {"flat inverse 0", flat.inverse_center(), at(-1.0 / 3, -1.0 / 3)},
        {"flat inverse 1", flat.inverse_basis(1), point(false, 1.0 / 3, -2.0 / 3)},
        {"flat inverse 2", flat.inverse_basis(2), point(false, 0, 0.5)},
        {"unit", flat.direction(1), point(false, 0.6, 0.8)},
        {"solid 1", solid.basis(1), along(0, 3, 4)},
        {"solid 2", solid.basis(2), along(0, 2, 0)},
        {"solid 3 of a trivial point", solid.basis(3), along(0, 0, 0)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_near(c.actual, c.expected);
    }
    EXPECT_EQ(flat.size(1), 5);
    EXPECT_EQ(flat.dot(1, 2), 8);
    EXPECT_EQ(flat.dot(1, 3) + flat.dot(-1, 0) + transform().dot(1, 1), 0);
    EXPECT_EQ(solid.dot(0, 1), 18);
}

TEST(Transform, ReportsASingularMapAndNothingElse) {
    transform flat = make_transform(at(0, 0), at(1, 2), at(2, 4)), solid = transform().dilate(2, 4, 0);
    EXPECT_FALSE(flat.fill_in_inverse());
    EXPECT_FALSE(solid.fill_in_inverse());
    EXPECT_TRUE(!_isnan(flat) && !std::isfinite(flat[7]) && transform().dilate(0)[7] == 1 / 0.0);
    EXPECT_TRUE(_isnan(solid, true) && !_isnan(solid));
    transform regular = transform(1, 2, 3).permute3d(1).dilate(2, 4, 8);
    transform const exact = regular;
    for (unsigned i = 12; i < 24; ++i) regular(i) = 99;
    EXPECT_TRUE(regular.fill_in_inverse());
    for (unsigned i = 12; i < 24; ++i) EXPECT_EQ(regular[i], exact[i]) << i;  // powers of two, so exact
}

TEST(Transform, ProjectsToTwoDimensionsWithAFreshInverse) {
    // Not the inverse's own rows: z takes part in them.
    transform t = transform(1, 2, 3).shear_x(2, 5).shear_z(3, 4);
    t.project2d();
    EXPECT_EQ(at(1, 1) * t, at(1 + 1 + 2 * 3 + 5 * 3, 3));
    expect_near(at(23, 3) / t, at(1, 1));
    EXPECT_TRUE(transform().project2d() == transform::rotation(0.0));
}

TEST(Transform, ReversesOnlyTheOffsetWhenAxisZeroIsFlipped) {
    transform const t = transform::rotation_90().translate(5, 6).flip_axis(0);
    EXPECT_EQ(at(1, 2) * t, at(-7, -5));
    EXPECT_EQ(at(-7, -5) / t, at(1, 2));
}

TEST(Transform, MakesItselfRightHanded) {
    struct {
        transform t;
        int axis;
        bool flipped;
    } const cases[] = {{transform::dilation(-1, 2), 2, true},      {transform::dilation(-1, 2), 0, false},
                       {transform::dilation(1, 2), 1, false},      {transform::dilation(1, 2, -3), 3, true},
                       {transform::dilation(-1, 2, -3), 3, false}, {transform(), 1, false}};
    for (auto const& c : cases) {
        transform t = c.t;
        t.make_right_handed(c.axis);
        transform mirrored = c.t;
        EXPECT_TRUE(t == (c.flipped ? mirrored.flip_axis(c.axis) : c.t));
        EXPECT_TRUE(!c.flipped || (c.t.is_left_handed() && !t.is_left_handed()));
    }
}

TEST(Transform, BecomesOrthogonalWithoutMovingItsCentreOrFirstAxis) {
    seeded_random random(7);
    auto const direction = [&](bool solid) {
        double const x = random.uniform(-3, 3), y = random.uniform(-3, 3);
        return solid ? along(x, y, random.uniform(-3, 3)) : point(false, x, y);
    };
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        bool const solid = trial % 2 == 0;
        point const u = direction(solid), v = direction(solid), w = direction(true);
        transform const t = solid ? make_transform(at(1, 2, 3), u, v, w) : make_transform(at(1, 2), u, v);
        transform const skewless = orthogonalize(t), unit = orthonormalize(t);
        // Rounding of the first steps grows with the angle the columns lack, at worst about 1e4 here.
        double const tolerance = 1e-11;
        for (int i = 1; i <= (solid ? 3 : 2); ++i) {
            EXPECT_NEAR(unit.size(i), 1, tolerance);
            for (int j = 1; j < i; ++j) {
                EXPECT_NEAR(skewless.dot(i, j), 0, tolerance);
                EXPECT_NEAR(unit.dot(i, j), 0, tolerance);
            }
        }
        EXPECT_EQ(skewless.center(), t.center());
        EXPECT_EQ(unit.center(), t.center());
        EXPECT_EQ(skewless.basis(1), u);
        EXPECT_LT(distance3d(unit.basis(1), normalize(u)), 1e-15);
        EXPECT_EQ(skewless.is_left_handed(), t.is_left_handed());
        point const p = at(1, -1, 2);
        EXPECT_LT(distance3d(p * unit / unit, p), tolerance);
        EXPECT_LT(distance3d(p * skewless / skewless, p), 1e-9);  // axes shorter than 0.1 magnify
    }
    EXPECT_TRUE(transform().orthonormalize().is_trivial());
}

TEST(Transform, SharesTheAngularErrorOfProjectedAxes) {
    double const e = 0.01;
    for (double const side : {1.0, -1.0}) {  // of the second axis: right-handed, left-handed
        transform const t =
            make_transform(at(1, 2, 3), along(2 * std::cos(e), -2 * std::sin(e), 7),
                           along(2 * std::sin(3 * e), side * 2 * std::cos(3 * e), 5), along(0, 0, 1));
        transform const square = orthonormalize_2d_projection(t);
        // X is off by -e; Y is off by -3e when right-handed, by +3e when left-handed. Both take the mean.
        double const turned = side > 0 ? -2 * e : e;
        expect_near(square.center(), at(1, 2));
        expect_near(square.basis(1), point(false, std::cos(turned), std::sin(turned)));
        expect_near(square.basis(2), point(false, -side * std::sin(turned), side * std::cos(turned)));
    }
    EXPECT_TRUE(orthonormalize_2d_projection(transform()).is_trivial());
}

TEST(Transform, ProtrudesIntoAPlane) {
    // The plane z = 2 + x / 2 - y.
    transform const plane = make_transform(at(0, 0, 2), along(1, 0, 0.5), along(0, 1, -1), along(0, 0, 3));
    expect_near(protrude(plane, at(4, 1, 99)), at(4, 1, 3));
    expect_near(protrude(plane, at(4, 1)), at(4, 1, 3));
    expect_near(protrude(plane, along(4, 1, 99)), along(4, 1, 1));
    expect_near(protrude(plane, point()), at(0, 0, 2));
    expect_near(protrude(transform(1, 2), at(4, 1, 9)), at(4, 1));

    transform const flat = transform::rotation_90().translate(5, 6);
    for (transform const& subject : {flat, flat * transform(0, 0, 7), transform()}) {
        transform const laid = protrude(subject, plane);
        for (point const& p : {at(1, 2), at(-3, 0.5), at(2, 2, 8)}) {
            expect_near(p * laid, protrude(plane, p * subject));
        }
        EXPECT_TRUE(laid.is_3d());
    }
    EXPECT_TRUE(protrude(flat, transform(1, 2)).address() == flat.address());
    transform const dropped = protrude(transform(1, 2, 3), transform());
    EXPECT_TRUE(dropped.is_2d() && at(4, 4) * dropped == at(5, 6) && at(5, 6) / dropped == at(4, 4));

    // Worked by hand from the identity: columns 1 and 2 lose p and q times column 3, which is then doubled;
    // the offset loses r times that.
    transform const laid = protrude(transform(0, 0, 0), plane);
    expect_near(laid.inverse_basis(0), at(0, 0, -4));
    expect_near(laid.inverse_basis(1), along(1, 0, -0.5));
    expect_near(laid.inverse_basis(2), along(0, 1, 1));
    expect_near(laid.inverse_basis(3), along(0, 0, 2));
}

}  // namespace
}  // namespace tvmath
