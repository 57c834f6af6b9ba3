#include "tvmath/residuals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using point_list = std::vector<point>;

template <class kind, class shape>
kind record_of(shape const& s) {
    kind record;
    record.geometry = s;
    return record;
}

Arc_Description arc_record(circle const& c) {
    Arc_Description record;
    record.circle = c;
    return record;
}

Point_Description point_record(point const& p) {
    Point_Description record;
    record.position = p;
    return record;
}

// Vertex at (1, 2), legs at 0 and 90 degrees, drawn with a dimension radius of 4.
Angle_Description right_angle() {
    Angle_Description record;
    record.arc = circle(4, at(1, 2));
    record.included_angle = pi / 2;
    return record;
}

ORing_Description oring() {
    ORing_Description record;
    record.placement = transform(10, 0).rotate(pi / 2);  // centre at (0, 10), its X along +Y
    record.inner = ring(2);
    double const lobed[] = {5, 0, 0, 1, 0};  // 5 + cos 2a
    record.outer = ring(idioms::array<double>(5, lobed));
    return record;
}

TEST(CalculateErrors, GivesDeviationsWorkedByHand) {
    transform const upright = make_transform(at(5, 5, 5), point(false, 0, 1, 0), point(false, 0, 0, 1),
                                             point(false, 3, 0, 0));  // Z axis along X, 3 long
    auto const in_plane = record_of<Plane_Description>(plane(at(0, 0, 2), point(false, 0, 3, 4)));
    auto const tilted = record_of<Slot_Description>(slot(5, 2, pi / 2, at(1, 1)));
    auto const box = record_of<Rectangle_Description>(rectangle(6, 4, 0, at(10, 0)));
    auto const frustum = record_of<Cone_Description>(cone(at(0, 0, 0), at(0, 0, 4), 5, 2));
    struct {
        char const* name;
        ctl::ref<Geometry_Description> feature;
        unsigned int parameters;
        point_list points;
        std::vector<double> errors;
    } const cases[] = {
        {"point",
         ctl::make_ref<Point_Description>(point_record(at(1, 2, 3))),
         1,
         {at(1, 2, 3), at(2, 4, 1)},
         {0, 3}},
        // From (0, 0) to (4, 0): left of the direction is positive, beyond the ends too.
        {"segment",
         ctl::make_ref<Segment_Description>(record_of<Segment_Description>(line(at(0, 0), at(4, 0)))),
         2,
         {at(1, 3), at(9, -2, 7)},
         {3, -2}},
        {"circle",
         ctl::make_ref<Circle_Description>(record_of<Circle_Description>(circle(5, at(1, 1)))),
         3,
         {at(1, 1), at(4, 5, 9), at(7, 9)},
         {-5, 0, 5}},
        {"arc",
         ctl::make_ref<Arc_Description>(arc_record(circle(5, at(1, 1)))),
         3,
         {at(4, 5), at(-5, -7)},
         {0, 5}},
        {"plane",
         ctl::make_ref<Plane_Description>(in_plane),
         3,
         {at(9, 0, 2), at(0, 5, 12), at(0, 0, 0)},
         {0, 11, -1.6}},
        {"gap",
         ctl::make_ref<Gap_Description>(record_of<Gap_Description>(gap(8, 6, 0, at(0, 1)))),
         3,
         {at(0, 1), at(99, 5), at(0, -2)},
         {-3, 1, 0}},
        {"sphere",
         ctl::make_ref<Sphere_Description>(record_of<Sphere_Description>(sphere(3, at(0, 0, 1)))),
         4,
         {at(0, 0, 1), at(2, 1, 3), at(4, 4, 8)},
         {-3, 0, 6}},
        // Along Y: end centres at (1, -2) and (1, 4), radius 2.
        {"slot",
         ctl::make_ref<Slot_Description>(tilted),
         4,
         {at(1, 1), at(4, 0), at(1, 9), at(-2, -6), at(4, 4)},
         {-2, 1, 3, 3, 1}},
        // The centre is nearest to the end of the shorter axis; on the axes the distance is that to their
        // ends.
        {"ellipse",
         ctl::make_ref<Ellipse_Description>(record_of<Ellipse_Description>(ellipse(5, 3, pi / 2, at(1, 0)))),
         5,
         {at(1, 0), at(1, 7), at(5, 0), at(1, -5), at(-1, 0)},
         {-3, 2, 1, 0, -1}},
        // Inside the nearer side counts, beyond a corner the corner, elsewhere the smaller of both.
        {"rectangle",
         ctl::make_ref<Rectangle_Description>(box),
         5,
         {at(10, 0), at(16, 6), at(10, 3), at(13, 1), at(12.5, -1)},
         {-2, 5, 1, 0, -0.5}},
        {"cylinder",
         ctl::make_ref<Cylinder_Description>(record_of<Cylinder_Description>(cylinder(upright))),
         5,
         {at(5, 5, 5), at(99, 5, 5), at(-7, 8, 9)},
         {-1, -1, 4}},
        // The slant line falls by 3 over 4; (2, 0, 4) is on it, (0, 0, 0) 5 * 4/5 from it, the apex at z =
        // 20/3.
        {"cone",
         ctl::make_ref<Cone_Description>(frustum),
         6,
         {at(0, 2, 4), at(0, 0, 0), at(8, 4, 4), at(0, 0, 20.0 / 3)},
         {0, -4, (std::sqrt(80.0) - 2) * 0.8, 0}},
        // (0, 13) is 3 along the placement's X: 1 from the inner, -3 from the outer ring.
        {"o-ring",
         ctl::make_ref<ORing_Description>(oring()),
         8,
         {at(0, 13), at(0, 17), at(5, 10), at(0, 14)},
         {1, 1, 1, -2}},
        {"angle",
         ctl::make_ref<Angle_Description>(right_angle()),
         4,
         {at(1, 2), at(4, 3), at(2, 9), at(-1, 9), at(3, 4)},
         {0, 1, 1, -2, 2}},
        {"null circle", ctl::make_ref<Circle_Description>(), 3, {at(3, 4)}, {5}},
        {"null cone", ctl::make_ref<Cone_Description>(), 6, {at(3, 4, 9)}, {5}},
        {"flat ellipse",
         ctl::make_ref<Ellipse_Description>(record_of<Ellipse_Description>(ellipse(2, 0, at(0, 0)))),
         5,
         {at(1, 3), at(5, 4)},
         {3, 5}},
        {"slot of no length",
         ctl::make_ref<Slot_Description>(record_of<Slot_Description>(slot(2, 2, 0, at(0, 0)))),
         4,
         {at(3, 4)},
         {3}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<double> errors(17, 42.0);
        ASSERT_EQ(calculate_errors(*c.feature, c.feature->type(), c.points, errors), c.parameters);
        ASSERT_EQ(errors.size(), c.errors.size());
        for (std::size_t i = 0; i < errors.size(); ++i) EXPECT_NEAR(errors[i], c.errors[i], 4e-15) << i;
    }
}

TEST(CalculateErrors, AsksForOneKindOfResiduals) {
    std::vector<double> errors = {1, 2};
    Circle_Description const circle_record = record_of<Circle_Description>(circle(5, at(1, 1)));
    // No such bit, several bits, a bit without residuals, that of another kind.
    for (unsigned long long const type : {0ull, 0x18ull, 0x2ull, 0x80000ull, 0x10ull, ~0ull}) {
        EXPECT_EQ(calculate_errors(circle_record, type, {at(0, 0)}, errors), 0u) << type;
        EXPECT_EQ(errors, (std::vector<double>{1, 2}));
    }
}

// A deviation built into each point comes back, far from the origin too, to the rounding of the coordinates.
TEST(CalculateErrors, ReturnsTheDeviationBuiltIn) {
    seeded_random random(21);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        double const size = random.log_uniform(1e-3, 1e3), far = trial % 2 ? random.uniform(-1e6, 1e6) : 0;
        double const a = size * random.uniform(1, 4), b = size * random.uniform(1, 4),
                     angle = random.uniform(-3, 3);
        transform const place = transform::rotation(angle, random.uniform(-1, 1), random.uniform(-3, 3)) *
                                transform(far, -far, far);
        transform const flat = transform::rotation(angle) * transform(far, -far);
        point_list on_cylinder, on_cone, on_ellipse;
        std::vector<double> built, errors;
        for (int i = 0; i < 20; ++i) {
            double const e = size * random.uniform(-1e-3, 1e-3), t = random.uniform(-3, 3),
                         h = random.uniform(-9, 9);
            built.push_back(e);
            on_cylinder.push_back(at((a + e) * cos(t), (a + e) * sin(t), size * h) * place);
            // Half a right angle: e outside along the normal (1, -1) / sqrt 2.
            double const out = a + size * (h + 10) + e / std::sqrt(2.0);
            on_cone.push_back(at(out * cos(t), out * sin(t), size * (h + 10) - e / std::sqrt(2.0)) * place);
            point const normal = normalize(point(false, cos(t) / a, sin(t) / b));
            on_ellipse.push_back((at(a * cos(t), b * sin(t)) + e * normal) * flat);
        }
        auto const expect = [&](unsigned int, double tolerance) {
            for (std::size_t i = 0; i < built.size(); ++i) EXPECT_NEAR(errors[i], built[i], tolerance) << i;
        };
        double const rounding = 1e-14 * size + 5e-16 * std::fabs(far);
        auto const shape = cylinder(a, size, at(0, 0, 0), point(false, 0, 0, 1)) * place;
        expect(calculate_errors(record_of<Cylinder_Description>(cylinder(shape)), on_cylinder, errors),
               4 * rounding);
        cone wide(at(0, 0, 0), at(0, 0, size), a, a + size);
        wide *= place;
        expect(calculate_errors(record_of<Cone_Description>(wide), on_cone, errors), 20 * rounding);
        expect(
            calculate_errors(record_of<Ellipse_Description>(ellipse(ellipse(a, b, 0.0) * flat)), on_ellipse,
                             errors),
            size * 1e-9 + rounding);  // two rounds of the walk, at a thousandth of the size off the ellipse
    }
}

TEST(Figures, ReduceDeviations) {
    struct {
        std::vector<double> errors;
        double form, profile, stdev;
    } const cases[] = {{{}, 0, 0, domain_error_value},
                       {{-2}, 0, 4, domain_error_value},
                       {{-3, 1}, 4, 6, domain_error_value},
                       {{1, 2, -1}, 3, 4, domain_error_value},
                       {{1, 2, 2, 4}, 3, 8, 5},
                       {{-3, 0, 0, 0, 4}, 7, 8, std::sqrt(12.5)},
                       {{1, std::nan(""), 7, 7}, domain_error_value, domain_error_value, domain_error_value}};
    auto const same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (auto const& c : cases) {
        EXPECT_TRUE(same(get_form(c.errors), c.form)) << get_form(c.errors);
        EXPECT_TRUE(same(get_profile_error(c.errors), c.profile)) << get_profile_error(c.errors);
        EXPECT_TRUE(same(get_stdev(c.errors, 3), c.stdev)) << get_stdev(c.errors, 3);
    }
    EXPECT_TRUE(std::isnan(get_stdev({1, 2}, 4000000000u)));
}

}  // namespace
}  // namespace tvmath
