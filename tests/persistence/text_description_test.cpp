#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "support/nurb_curves.h"
#include "support/shape_points.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

using namespace Persistence;

// Sizes are up to 200, written with 8 digits.
constexpr double tolerance = 2e-5;

template <class kind>
kind read_back(kind const& record) {
    kind read;
    EXPECT_TRUE(to_description(token(0, to_ascii(record).c_str()).c_str(), read))
        << to_utf8(to_ascii(record));
    return read;
}

point random_point(seeded_random& random) {
    return at(random.uniform(-100, 100), random.uniform(-100, 100), random.uniform(-100, 100));
}

transform random_placement(seeded_random& random) {
    return transform::dilation(random.uniform(1, 50), random.uniform(1, 50), random.uniform(1, 50)) *
           transform::rotation(random.uniform(-3, 3), random.uniform(-1, 1), random.uniform(-3, 3)) *
           transform(random_point(random));
}

// Where both place points of the unit shape, and back.
void expect_equal_maps(transform const& a, transform const& b) {
    ASSERT_TRUE(a.is_3d() && b.is_3d());
    for (point const& p : {at(0, 0, 0), at(1, 0, 0), at(0, 1, 0), at(0, 0, 1)}) {
        EXPECT_LT(distance3d(p * a, p * b), tolerance);
        EXPECT_LT(distance3d(p / a, p / b), tolerance);
        EXPECT_LT(distance3d(p * a / b, p), tolerance);
    }
}

template <class kind>
void expect_shape_to_come_back(seeded_random& random) {
    kind record;
    static_cast<transform&>(record.geometry) = random_placement(random);
    expect_equal_maps(read_back(record).geometry, record.geometry);
}

template <class... kind>
void expect_shapes_to_come_back(seeded_random& random) {
    (expect_shape_to_come_back<kind>(random), ...);
}

TEST(RecordTexts, BringTransformShapesBack) {
    seeded_random random(41);
    for (int trial = 0; trial < 20; ++trial) {
        expect_shapes_to_come_back<Transform_Description, Segment_Description, Circle_Description,
                                   Ellipse_Description, Rectangle_Description, Gap_Description,
                                   Slot_Description, Plane_Description, Sphere_Description,
                                   Cylinder_Description, Composite_Description>(random);
    }
}

TEST(RecordTexts, BringTheOtherRecordsBack) {
    seeded_random random(42);
    for (int trial = 0; trial < 20; ++trial) {
        Point_Description position;
        position.position = random_point(random);
        EXPECT_LT(distance3d(read_back(position).position, position.position), tolerance);

        Arc_Description arc;
        static_cast<transform&>(arc.circle) = random_placement(random);
        arc.included_angle = random.uniform(-6, 6);
        expect_equal_maps(read_back(arc).circle, arc.circle);
        EXPECT_NEAR(read_back(arc).included_angle, arc.included_angle, 1e-7);

        ORing_Description o_ring;
        o_ring.placement = random_placement(random);
        o_ring.inner = ring(random.uniform(1, 50));
        o_ring.outer = ring(random.uniform(50, 100));
        ORing_Description const back = read_back(o_ring);
        expect_equal_maps(back.placement, o_ring.placement);
        EXPECT_NEAR(back.inner.radius(), o_ring.inner.radius(), tolerance);
        EXPECT_NEAR(back.outer.radius(), o_ring.outer.radius(), tolerance);

        Cone_Description frustum;
        frustum.geometry =
            cone(random_point(random), random_point(random), random.uniform(0, 9), random.uniform(0, 9));
        cone const read = read_back(frustum).geometry;
        EXPECT_LT(distance3d(read.vertex(), frustum.geometry.vertex()) / distance3d(read.vertex(), point()),
                  1e-3);
        EXPECT_NEAR(dot(read.axis, frustum.geometry.axis), 1, 1e-7);

        Number_Description number;
        Rotation_Description rotation;
        number.value = rotation.value = random.uniform(-100, 100);
        EXPECT_NEAR(read_back(number).value + read_back(rotation).value, 2 * number.value, tolerance);

        PointCloud_Description cloud;
        cloud.points = {random_point(random), point(), point(false, 1, 2), random_point(random)};
        std::vector<point> const points = read_back(cloud).points;
        ASSERT_EQ(points.size(), 4u);
        EXPECT_TRUE(points[1].is_trivial() && points[2] == cloud.points[2]);
        EXPECT_LT(distance3d(points[0], cloud.points[0]) + distance3d(points[3], cloud.points[3]), tolerance);
    }
}

TEST(RecordTexts, BringSplinesBackWithTheirMeasures) {
    // A square of side 2 with straight Bezier sides, thirds of which are control points.
    ClosedSpline_Description closed;
    std::vector<point> points;
    double const x[] = {5, 7, 7, 5, 5}, y[] = {1, 1, 3, 3, 1};
    for (int i = 0; i < 4; ++i) {
        for (int k = 0; k < 3; ++k)
            points.push_back(at(x[i] + k * (x[i + 1] - x[i]) / 3, y[i] + k * (y[i + 1] - y[i]) / 3));
    }
    points.push_back(points.front());
    closed.path = idioms::array<point>(13, points.data());
    closed.length = closed.area = 99;  // not written
    ClosedSpline_Description const read = read_back(closed);
    EXPECT_NEAR(read.length, 8, 1e-6);
    EXPECT_NEAR(read.area, 4, 1e-6);
    EXPECT_LT(distance2d(read.centroid, at(6, 2)), 1e-6);
    EXPECT_LT(distance2d(read.path[7], closed.path[7]), 1e-7);

    // The older form: the inside of a nurb, here a circle of radius 3.
    OpenSpline_Description open;
    EXPECT_TRUE(to_description(token(0, to_ascii(circle_nurb(at(1, 2, 0), 3), 15).c_str()).c_str(), open));
    EXPECT_NEAR(open.length, 6 * pi, 1e-3);
    EXPECT_NEAR(read_back(open).length, 6 * pi, 1e-3);
    // No Bezier path, and so without measures; those of the record before do not stay.
    EXPECT_TRUE(to_description(u"Bez ((1 2) (3 4))", open));
    EXPECT_TRUE(open.path.capacity() == 2 && open.length == 0);
}

TEST(RecordTexts, BringANurbBackWithItsCenterAsADirection) {
    seeded_random random(43);
    for (int trial = 0; trial < 50; ++trial) {
        Nurb_Description record;
        record.geometry = random_nurb(random);
        record.center = random_point(random);
        Nurb_Description const read = read_back(record);
        EXPECT_TRUE(read.center.is_direction() && distance3d(read.center, record.center) < tolerance);
        double const t = random_parameter(random, record.geometry);
        // Knots are up to 20, spans 0.1 and more, points up to 20.
        EXPECT_LT(distance3d(read.geometry.evaluate(t), record.geometry.evaluate(t)), 1e-3);
    }
}

TEST(RecordTexts, AreWrittenAsByHand) {
    Angle_Description angle;
    angle.arc = circle(2, at(0, 0));
    angle.arc.promote3d();
    angle.included_angle = -0.5;
    angle.start_line_near = 1;
    angle.start_line_far = 2;
    angle.end_line_near = 3;
    angle.end_line_far = 1 / 3.0;
    angle.sign_changed = true;
    std::string const placement = "((2 0 0) (0 2 0) (0 0 1)  (0.5 0 0) (0 0.5 0) (0 0 1))";
    EXPECT_EQ(to_utf8(to_ascii(angle)), "(" + placement + " 0 -0.5 1 2 3 0.33333333 1)");
    Angle_Description const read = read_back(angle);
    EXPECT_TRUE(read.sign_changed && read.included_angle == -0.5 && read.end_line_near == 3 &&
                read.arc == angle.arc);

    Arc_Description arc;
    arc.circle = angle.arc;
    arc.included_angle = pi;
    EXPECT_EQ(to_utf8(to_ascii(arc)), "(" + placement + " 3.1415927)");
    EXPECT_EQ(to_utf8(to_ascii(Nurb_Description())), "(() ())");
    EXPECT_EQ(to_utf8(to_ascii(OpenSpline_Description())), "(Bez ())");
    EXPECT_EQ(to_utf8(to_ascii(Circle_Description()) + to_ascii(Cone_Description())), "()()");
    EXPECT_TRUE(
        (to_ascii(OpenData_Description()) + to_ascii(ClosedData_Description()) + to_ascii(Text_Description()))
            .empty());
}

TEST(RecordTexts, LeaveTheRecordAloneWhenTheyAreNone) {
    wide_string const flat = token(0, to_ascii(circle(2, at(1, 1)), 8).c_str());
    std::string const solid = "((1 0 0) (0 1 0) (0 0 1) (1 0 0) (0 1 0) (0 0 1))";
    struct {
        unsigned long long type;
        std::vector<std::string> texts;
    } const cases[] = {{0x1, {"", "1 2"}},
                       {0x8, {"", to_utf8(flat), solid}},
                       {0x10, {solid, "(" + to_utf8(flat) + ") 1", solid + " 1 2"}},
                       {0x40, {solid + " 1"}},
                       {0x400, {"Bez", "Bez ()", "Bez (1 2) (3 4)", "1 2 3"}},
                       {0x1000, {solid + " 1 2 3 4 5 6", "() 1 2 3 4 5 6 1"}},
                       {0x2000, {" Bez ((1 2))"}},
                       {0x80000, {"(1 2 3)", "(1 2 3) (2 2 1 1 1)"}},
                       {0x40000, {"1 2 3 4 5 6 7 8 9 10"}},
                       {0x2000000, {""}},
                       {0x4000 | 0x8000 | 0x4000000, {"((1 2))", "text"}}};
    for (auto const& [types, texts] : cases) {
        for (unsigned long long type = 1; type <= types; type *= 2) {
            std::unique_ptr<Geometry_Description> const record(Geometry_Description::create(type & types));
            for (std::string const& text : record ? texts : std::vector<std::string>()) {
                wide_string const before = to_ascii(*record);
                EXPECT_FALSE(to_description(to_wide(text).c_str(), *record)) << type << ": " << text;
                EXPECT_EQ(to_ascii(*record), before) << text;
            }
        }
    }
    Number_Description number;
    number.value = 5;
    EXPECT_TRUE(to_description(nullptr, number) && number.value == 0);
    EXPECT_TRUE(to_description(u"no number", number) && number.value == 0);
}

}  // namespace
}  // namespace tvmath
