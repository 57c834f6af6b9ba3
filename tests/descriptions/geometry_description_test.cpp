#include "tvmath/geometry_description.h"

#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

// The member that says most about a record.
template <class kind>
auto& content(kind& r) {
    if constexpr (requires { r.placement; }) {
        return r.placement;
    } else if constexpr (requires { r.position; }) {
        return r.position;
    } else if constexpr (requires { r.path; }) {
        return r.path;
    } else if constexpr (requires { r.points; }) {
        return r.points;
    } else if constexpr (requires { r.value; }) {
        return r.value;
    } else if constexpr (requires { r.circle; }) {
        return r.circle;
    } else if constexpr (requires { r.arc; }) {
        return r.arc;
    } else {
        return r.geometry;
    }
}

// Gives it what no default record has: most are null by default.
template <class member>
void mark(member& m) {
    if constexpr (std::same_as<member, double>) m = 7;
    if constexpr (std::same_as<member, std::vector<point>>) m = {at(1, 2)};
    if constexpr (std::same_as<member, cone>) m = cone(at(1, 2), at(3, 4), 5, 6);
    if constexpr (std::same_as<member, nurb>) m = nurb(3, 4);
    if constexpr (std::constructible_from<member, point>) m = member(at(1, 2));
    if constexpr (std::constructible_from<member, transform>) m = member(transform(1, 2));
}

template <class kind>
bool is_marked(kind const& r) {
    auto const& m = content(r);
    if constexpr (requires { m.is_trivial(); }) return !m.is_trivial();
    if constexpr (requires { m.size(); }) return m.size() == 1;
    if constexpr (requires { m + 0; }) return m == 7;
}

template <class kind>
void expect_uniform_record(unsigned long long type, char16_t const* id) {
    SCOPED_TRACE(to_utf8(as_wide(id)) + " " + std::to_string(type));
    std::unique_ptr<Geometry_Description> const made(Geometry_Description::create(type));
    ASSERT_TRUE(made);
    auto* const record = dynamic_cast<kind*>(made.get());
    ASSERT_TRUE(record && made->type() == type && !is_marked(*record));
    EXPECT_TRUE(dynamic_cast<kind*>(Geometry_Description::create_ref(type).address()));

    mark(content(*record));
    std::unique_ptr<Geometry_Description> const copy(made->create_copy());
    EXPECT_TRUE(is_marked(dynamic_cast<kind const&>(*copy)));
    kind taken, kept;
    EXPECT_TRUE(taken.assign(*made) && is_marked(taken));

    struct derived : kind {};
    derived other;
    EXPECT_FALSE(taken.assign(other) || other.assign(*made) || !is_marked(taken) || is_marked<kind>(other));
    auto const stranger = Geometry_Description::create_ref(type == 0x8 ? 0x10 : 0x8);
    EXPECT_FALSE(taken.assign(*stranger) || !is_marked(taken));

    // A number takes the shift; whatever else holds a mark keeps it.
    made->apply_scalar_translation(1.5);
    bool const is_number = type == 0x800000 || type == 0x1000000;
    EXPECT_EQ(is_marked(*record), !is_number);
    record->apply_scalar_translation(-1.5);
    EXPECT_TRUE(is_marked(*record));

    EXPECT_EQ(to_utf8(Geometry_Type_to_ID(type)), to_utf8(as_wide(id)));
    EXPECT_EQ(Geometry_ID_to_Type(id), *id ? type : 0);
}

TEST(Records, AreUniformInEveryKind) {
    expect_uniform_record<Point_Description>(0x1, u"Pnt");
    expect_uniform_record<Transform_Description>(0x2, u"Trans");
    expect_uniform_record<Segment_Description>(0x4, u"Line");
    expect_uniform_record<Circle_Description>(0x8, u"Cir");
    expect_uniform_record<Arc_Description>(0x10, u"Arc");
    expect_uniform_record<Ellipse_Description>(0x20, u"Ellp");
    expect_uniform_record<ORing_Description>(0x40, u"ORing");
    expect_uniform_record<Rectangle_Description>(0x80, u"Rect");
    expect_uniform_record<Gap_Description>(0x100, u"Gap");
    expect_uniform_record<Slot_Description>(0x200, u"Slot");
    expect_uniform_record<OpenSpline_Description>(0x400, u"OpSpline");
    expect_uniform_record<Plane_Description>(0x800, u"Pln");
    expect_uniform_record<Angle_Description>(0x1000, u"Ang");
    expect_uniform_record<ClosedSpline_Description>(0x2000, u"ClSpline");
    expect_uniform_record<OpenData_Description>(0x4000, u"OpDat");
    expect_uniform_record<ClosedData_Description>(0x8000, u"ClDat");
    expect_uniform_record<Sphere_Description>(0x10000, u"");
    expect_uniform_record<Cylinder_Description>(0x20000, u"");
    expect_uniform_record<Cone_Description>(0x40000, u"");
    expect_uniform_record<Nurb_Description>(0x80000, u"Nurb");
    expect_uniform_record<Composite_Description>(0x100000, u"Comp");
    expect_uniform_record<Number_Description>(0x800000, u"");
    expect_uniform_record<Rotation_Description>(0x1000000, u"");
    expect_uniform_record<PointCloud_Description>(0x2000000, u"PtCld");
    expect_uniform_record<Text_Description>(0x4000000, u"Text");
}

TEST(Records, AreMadeOfNoOtherValue) {
    for (unsigned long long const type : {0x0ull, 0x3ull, 0x200000ull, 0x400000ull, 0x600001ull, 0x7ffffffull,
                                          0x8000000ull, 0x100000000ull, 0x100000001ull, ~0ull}) {
        EXPECT_EQ(Geometry_Description::create(type), nullptr) << type;
        EXPECT_TRUE(!Geometry_Description::create_ref(type)) << type;
    }
    EXPECT_EQ(to_utf8(Geometry_Type_to_ID(0x3)), "");
}

TEST(RecordNames, AreFoundInBothDirectionsFromAnyThread) {
    EXPECT_EQ(Geometry_ID_to_Type(u"SegClSpline"), 0x200000u);
    EXPECT_EQ(Geometry_ID_to_Type(u"SegOpSpline"), 0x400000u);
    EXPECT_EQ(Geometry_ID_to_Type(u"All"), 0x7ffffffu);
    EXPECT_EQ(to_utf8(Geometry_Type_to_ID(0)), "None");
    for (char16_t const* const none :
         {u"None", u"pnt", u"Pn", u"Pnt ", u"", static_cast<char16_t const*>(nullptr)}) {
        EXPECT_EQ(Geometry_ID_to_Type(none), 0u);
    }
    EXPECT_EQ(Geometry_ID_to_Type(static_cast<unsigned short const*>(nullptr)), 0u);
    auto const look_up = [] {
        for (unsigned long long bit = 1; bit <= 0x4000000; bit *= 2) {
            wide_char const* const id = Geometry_Type_to_ID(bit);
            EXPECT_TRUE(!*id || Geometry_ID_to_Type(id) == bit);
        }
    };
    std::jthread const threads[] = {std::jthread(look_up), std::jthread(look_up), std::jthread(look_up)};
}

template <class... kind>
void expect_right_handed_after_mirroring() {
    auto const check = []<class k>(k r) {
        r.geometry = decltype(r.geometry)(transform(5, 1, 0));
        r.apply_transform(transform::dilation(-2, 3, 4));
        EXPECT_TRUE(!r.geometry.is_left_handed() && r.geometry.center() == at(-10, 3, 0)) << r.type();
        EXPECT_EQ(r.geometry.basis(1), point(false, -2, 0, 0)) << r.type();
        EXPECT_EQ(r.geometry.basis(2), point(false, 0, -3, 0)) << r.type();
        EXPECT_EQ(r.geometry.basis(3), point(false, 0, 0, 4)) << r.type();
    };
    (check(kind()), ...);
}

TEST(Records, OfShapesStayRightHanded) {
    expect_right_handed_after_mirroring<Transform_Description, Segment_Description, Circle_Description,
                                        Ellipse_Description, Rectangle_Description, Gap_Description,
                                        Slot_Description, Plane_Description, Sphere_Description,
                                        Cylinder_Description, Composite_Description>();
}

// Property: the ends of an arc and of an angle's dimension line move as points do.
TEST(Records, OfArcsAndAnglesKeepTheirEndsWhenMovedOrMirrored) {
    seeded_random random(61);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        double const side = random.coin() ? 1 : -1, included = random.uniform(-6, 6);
        transform const t =
            transform::dilation(2, 2 * side).rotate(random.uniform(0, 6)).translate(3, random.unit());
        Arc_Description arc;
        arc.circle = circle(transform::dilation(2).rotate(random.uniform(0, 6)).translate(1, 2));
        arc.included_angle = included;
        Angle_Description angle;
        angle.arc = arc.circle;
        angle.start_angle = random.uniform(-4, 4);
        angle.included_angle = included;
        angle.end_line_far = 1.5;
        auto const end_of_arc = [&arc](double s) {
            double const a = s * arc.included_angle / 2;
            return point(true, std::cos(a), std::sin(a)) * arc.circle;
        };
        point const arc_start = end_of_arc(-1), arc_end = end_of_arc(1);
        point start[2], end[2], moved[4];
        angle.render_start_line(start[0], start[1]);
        angle.render_end_line(end[0], end[1]);
        arc.apply_transform(t);
        angle.apply_transform(t);
        angle.render_start_line(moved[0], moved[1]);
        angle.render_end_line(moved[2], moved[3]);
        double const tolerance = 1e-14;  // some ulps of lengths below 20
        EXPECT_LT(distance2d(end_of_arc(-1), arc_start * t), tolerance);
        EXPECT_LT(distance2d(end_of_arc(1), arc_end * t), tolerance);
        EXPECT_LT(distance2d(moved[1], start[1] * t) + distance2d(moved[3], end[1] * t), tolerance);
        EXPECT_EQ(arc.included_angle, side * included);
        EXPECT_FALSE(arc.circle.is_left_handed() || angle.arc.is_left_handed());
    }
}

TEST(Records, MoveWhatHasAPlaceAndKeepStoredMeasures) {
    transform const t = transform::dilation(-2, 2).translate(1, 0);
    auto const moved = [&t](auto record, auto fill) {
        fill(record);
        record.apply_transform(t);
        return record;
    };
    auto const place = [](auto& r) { r.placement = transform(3, 4); };
    for (transform const& p :
         {moved(ORing_Description(), place).placement, moved(Text_Description(), place).placement}) {
        EXPECT_TRUE(p.is_left_handed() && p.center() == at(-5, 8));
    }
    auto const closed = moved(ClosedSpline_Description(), [](auto& r) {
        r.path = curve(at(1, 1)), r.centroid = at(1, 2), r.length = 5, r.area = 6;
    });
    EXPECT_TRUE(closed.path[0] == at(-1, 2) && closed.centroid == at(-1, 4));
    EXPECT_TRUE(closed.length == 5 && closed.area == 6);
    auto const open =
        moved(OpenSpline_Description(), [](auto& r) { r.path = curve(at(1, 1)), r.length = 5; });
    EXPECT_TRUE(open.path[0] == at(-1, 2) && open.length == 5);
    auto const solid =
        moved(Cone_Description(), [](auto& r) { r.geometry = cone(at(1, 0, 1), at(0, 0, 5), 1, 2); });
    EXPECT_TRUE(solid.geometry.base == at(-1, 0, 1) && solid.geometry.top_radius == 4);
    auto const path = moved(Nurb_Description(), [](auto& r) {
        r.geometry = nurb(2, 2), r.center = at(1, 2);
        r.geometry.set_control_point(1, {1, 2, 0, 0.5});
    });
    EXPECT_TRUE(point(path.geometry.get_control_point(1)) == at(-3, 8, 0) && path.center == at(-1, 4));
    auto const fill = [](auto& r) { r.points = {at(1, 1), at(0, 0, 7)}; };
    for (auto const& list :
         {moved(OpenData_Description(), fill).points, moved(ClosedData_Description(), fill).points,
          moved(PointCloud_Description(), fill).points}) {
        EXPECT_TRUE(list[0] == at(-1, 2) && list[1] == at(1, 0, 7));
    }
    EXPECT_EQ(moved(Number_Description(), [](auto& r) { r.value = 2; }).value, 2);
}

TEST(AngleDimension, IsDrawnAsWorkedByHand) {
    Angle_Description quarter;  // radius 2 about (1, 1), from (3, 1) to (1, 3)
    quarter.arc = circle(transform::dilation(2).translate(1, 1));
    quarter.included_angle = pi / 2;
    quarter.start_line_near = -0.5, quarter.start_line_far = 3;
    quarter.end_line_near = 0.5, quarter.end_line_far = 0.25;  // drawn from 0 to 1 all the same
    Angle_Description sliver = quarter;
    sliver.included_angle = -0.01;
    auto const expect_near = [](point const& actual, point const& expected) {
        EXPECT_LT(distance2d(actual, expected), 2e-15) << actual.x() << " " << actual.y();
    };
    point p, q, tip, left, right;
    quarter.render_start_line(p, q);
    expect_near(p, at(0, 1));
    expect_near(q, at(7, 1));
    quarter.render_end_line(p, q);
    expect_near(p, at(1, 1));
    expect_near(q, at(1, 3));
    quarter.render_arrow_head(tip, left, right);
    expect_near(tip, at(1, 3));
    expect_near(left, at(1 + pi / 10, 3 + pi / 10));  // pi / 20 of the radius, diagonally
    expect_near(right, at(1 + pi / 10, 3 - pi / 10));
    sliver.render_arrow_head(tip, left, right);
    double const c = std::cos(0.01), s = -std::sin(0.01);
    expect_near(left, tip + point(false, c + s, s - c) * -0.01);  // half of the sliver, times the radius
    expect_near(right, tip + point(false, s - c, -s - c) * -0.01);
}

TEST(AngleDimension, StaysInsideItsBoundingRectangle) {
    seeded_random random(62);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        Angle_Description angle;
        angle.arc = circle(transform::dilation(2).rotate(random.uniform(0, 6)).translate(1, 1));
        angle.start_angle = random.uniform(-7, 7);
        angle.included_angle = random.uniform(-7, 7);
        for (double* const extent :
             {&angle.start_line_near, &angle.start_line_far, &angle.end_line_near, &angle.end_line_far}) {
            *extent = random.uniform(-2, 2);
        }
        idioms::array<point> drawn(4);
        angle.render_start_line(drawn(0), drawn(1));
        angle.render_end_line(drawn(2), drawn(3));
        drawn.append(render(curve(angle.render_bezier()), false, 100));
        CRealRect const extent = angle.get_bounding_rect(), seen = curve(drawn).get_bounding_rect();
        double const tolerance = 1e-3;  // the Bezier arc is 2.8e-4 of the radius off, and its samples 1e-4
        EXPECT_NEAR(extent.left, seen.left, tolerance);
        EXPECT_NEAR(extent.right, seen.right, tolerance);
        EXPECT_NEAR(extent.bottom, seen.bottom, tolerance);
        EXPECT_NEAR(extent.top, seen.top, tolerance);
    }
}

}  // namespace
}  // namespace tvmath
