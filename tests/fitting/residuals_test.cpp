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

struct judged {
    point place;
    double error;
};

void expect(Geometry_Description const& feature, unsigned int parameters, std::vector<judged> const& cases) {
    SCOPED_TRACE(feature.type());
    point_list points;
    for (judged const& c : cases) points.push_back(c.place);
    std::vector<double> errors(17, 42.0);
    ASSERT_EQ(calculate_errors(feature, feature.type(), points, errors), parameters);
    ASSERT_EQ(errors.size(), cases.size());
    for (std::size_t i = 0; i < errors.size(); ++i) EXPECT_NEAR(errors[i], cases[i].error, 4e-15) << i;
}

TEST(CalculateErrors, GivesDeviationsInThePlaneWorkedByHand) {
    Point_Description place;
    place.position = at(1, 2, 3);
    expect(place, 1, {{at(1, 2, 3), 0}, {at(2, 4, 1), 3}});
    // Left of the direction is positive, beyond the ends too.
    expect(record_of<Segment_Description>(line(at(0, 0), at(4, 0))), 2, {{at(1, 3), 3}, {at(9, -2, 7), -2}});
    circle const round(5, at(1, 1));
    expect(record_of<Circle_Description>(round), 3, {{at(1, 1), -5}, {at(4, 5, 9), 0}, {at(7, 9), 5}});
    Arc_Description arc;
    arc.circle = round;
    expect(arc, 3, {{at(4, 5), 0}, {at(-5, -7), 5}});
    expect(record_of<Gap_Description>(gap(8, 6, 0, at(0, 1))), 3,
           {{at(0, 1), -3}, {at(99, 5), 1}, {at(0, -2), 0}});
    // Along Y: end centres at (1, -2) and (1, 4), radius 2.
    expect(record_of<Slot_Description>(slot(5, 2, pi / 2, at(1, 1))), 4,
           {{at(1, 1), -2}, {at(4, 0), 1}, {at(1, 9), 3}, {at(-2, -6), 3}, {at(4, 4), 1}});
    expect(record_of<Slot_Description>(slot(2, 2, 0, at(0, 0))), 4, {{at(3, 4), 3}});
    // Its centre is nearest to an end of the shorter axis.
    expect(record_of<Ellipse_Description>(ellipse(5, 3, pi / 2, at(1, 0))), 5,
           {{at(1, 0), -3}, {at(1, 7), 2}, {at(5, 0), 1}, {at(1, -5), 0}, {at(-1, 0), -1}});
    expect(record_of<Ellipse_Description>(ellipse(2, 0, at(0, 0))), 5, {{at(1, 3), 3}, {at(5, 4), 5}});
    // Beyond a corner the corner counts, elsewhere the smaller of both.
    expect(record_of<Rectangle_Description>(rectangle(6, 4, 0, at(10, 0))), 5,
           {{at(10, 0), -2}, {at(16, 6), 5}, {at(10, 3), 1}, {at(13, 1), 0}, {at(12.5, -1), -0.5}});
    Angle_Description angle;  // vertex at (1, 2), legs along +X and +Y, drawn with a dimension radius of 4
    angle.arc = circle(4, at(1, 2));
    angle.included_angle = pi / 2;
    expect(angle, 4, {{at(1, 2), 0}, {at(4, 3), 1}, {at(2, 9), 1}, {at(-1, 9), -2}, {at(3, 4), 2}});
    ORing_Description oring;
    oring.placement = transform(10, 0).rotate(pi / 2);  // centre at (0, 10), its X along +Y
    oring.inner = ring(2);
    double const lobed[] = {5, 0, 0, 1, 0};  // 5 + cos 2a
    oring.outer = ring(idioms::array<double>(5, lobed));
    expect(oring, 8, {{at(0, 13), 1}, {at(0, 17), 1}, {at(5, 10), 1}, {at(0, 14), -2}});
}

TEST(CalculateErrors, GivesDeviationsInSpaceWorkedByHand) {
    expect(record_of<Plane_Description>(plane(at(0, 0, 2), point(false, 0, 3, 4))), 3,
           {{at(9, 0, 2), 0}, {at(0, 5, 12), 11}, {at(0, 0, 0), -1.6}});
    expect(record_of<Sphere_Description>(sphere(3, at(0, 0, 1))), 4,
           {{at(0, 0, 1), -3}, {at(2, 1, 3), 0}, {at(4, 4, 8), 6}});
    // Radius 1 about an axis along X; points on the axis count as such, however far out.
    expect(record_of<Cylinder_Description>(cylinder(1, 6, at(5, 5, 5), point(false, 3, 0, 0))), 5,
           {{at(5, 5, 5), -1}, {at(99, 5, 5), -1}, {at(-7, 8, 9), 4}});
    // The slant line falls by 3 over 4; the apex lies at z = 20/3, and the base's centre 5 * 4/5 inside.
    expect(record_of<Cone_Description>(cone(at(0, 0, 0), at(0, 0, 4), 5, 2)), 6,
           {{at(0, 2, 4), 0},
            {at(0, 0, 0), -4},
            {at(8, 4, 4), (std::sqrt(80.0) - 2) * 0.8},
            {at(0, 0, 20.0 / 3), 0}});
    expect(Circle_Description(), 3, {{at(3, 4), 5}});
    expect(Cone_Description(), 6, {{at(3, 4, 9), 5}});
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
    auto const number = [&] { return random.uniform(-3, 3); };
    for (int trial = 0; trial < 300; ++trial) {
        double const size = random.log_uniform(1e-3, 1e3), far = trial % 2 ? random.uniform(-1e6, 1e6) : 0;
        double const a = size * random.uniform(1, 4), b = size * random.uniform(1, 4);
        transform const place = transform::rotation(number(), number(), number()) * transform(far, -far, far);
        transform const flat = transform::rotation(number()) * transform(far, -far);
        point_list on_cylinder, on_cone, on_ellipse;
        std::vector<double> built, errors;
        for (int i = 0; i < 20; ++i) {
            double const e = size * random.uniform(-1e-3, 1e-3), t = number(),
                         z = size * random.uniform(1, 20);
            built.push_back(e);
            on_cylinder.push_back(at((a + e) * cos(t), (a + e) * sin(t), z) * place);
            // Half a right angle: e along the normal (1, -1) / sqrt 2.
            double const step = e / std::sqrt(2.0), r = a + z + step;
            on_cone.push_back(at(r * cos(t), r * sin(t), z - step) * place);
            point const normal = normalize(point(false, cos(t) / a, sin(t) / b));
            on_ellipse.push_back((at(a * cos(t), b * sin(t)) + e * normal) * flat);
        }
        auto const compare = [&](auto record, transform const& t, point_list const& points,
                                 double tolerance) {
            record.apply_transform(t);
            calculate_errors(record, points, errors);
            for (unsigned int i = 0; i < 20; ++i) EXPECT_NEAR(errors[i], built[i], tolerance) << trial;
        };
        double const rounding = 1e-13 * size + 2e-15 * std::fabs(far);
        compare(record_of<Cylinder_Description>(cylinder(a, size, at(0, 0, 0), point(false, 0, 0, 1))), place,
                on_cylinder, rounding);
        cone const wide(at(0, 0, 0), at(0, 0, size), a, a + size);
        compare(record_of<Cone_Description>(wide), place, on_cone,
                3 * rounding);  // the place along it counts too
        // Two rounds of the walk, a thousandth of the size off the ellipse.
        compare(record_of<Ellipse_Description>(ellipse(a, b, 0.0)), flat, on_ellipse, size * 1e-9 + rounding);
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
