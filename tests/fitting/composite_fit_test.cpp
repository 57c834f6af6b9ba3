#include "tvmath/composite_fit.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/shape_points.h"
#include "tvmath/residuals.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using feature_list = std::vector<ctl::ref<Geometry_Description>>;
using data_lists = std::vector<std::vector<point>>;

template <class kind, class shape>
ctl::ref<Geometry_Description> feature(shape const& s) {
    auto record = ctl::make_ref<kind>();
    record->geometry = s;
    return record;
}

struct measured {
    feature_list features;
    data_lists points;
};

// A plate with two holes of different sizes and an edge, and points of their outlines.
measured plate(seeded_random& random) {
    data_lists points = {
        circle_points(random, at(0, 0), 5, 0, 6, 9), circle_points(random, at(40, 5), 2, 1, 6, 7), {}};
    for (int i = 0; i < 6; ++i) points[2].push_back(at(10 * i, -20));
    return {
        {feature<Circle_Description>(circle(5, at(0, 0))), feature<Circle_Description>(circle(2, at(40, 5))),
         feature<Segment_Description>(line(at(0, -20), at(50, -20)))},
        points};
}

measured body(seeded_random& random) {
    data_lists points = {{}, {}, sphere_points(random, at(-15, 20, 5), 3, 12)};
    for (int i = 0; i < 12; ++i) {
        double const angle = random.uniform(-3, 3);
        points[0].push_back(at(random.uniform(-30, 30), random.uniform(-30, 30), 0));
        points[1].push_back(at(10 + 4 * cos(angle), 4 * sin(angle), random.uniform(0, 20)));
    }
    point const z(false, 0, 0, 1);
    return {{feature<Plane_Description>(plane(at(0, 0, 0), z)),
             feature<Cylinder_Description>(cylinder(4, 20, at(10, 0, 10), z)),
             feature<Sphere_Description>(sphere(3, at(-15, 20, 5)))},
            points};
}

double sum_of_squares(feature_list const& features, data_lists const& data, transform const& placement) {
    double sum = 0;
    std::vector<double> errors;
    for (std::size_t i = 0; i < features.size(); ++i) {
        std::vector<point> seen = data[i];
        for (point& p : seen) p /= placement;
        calculate_errors(*features[i], features[i]->type(), seen, errors);
        for (double const e : errors) sum += e * e;
    }
    return sum;
}

// Exact points give the motion back, whatever it was; of noisy ones no neighbouring placement fits better.
void check(measured const& part, transform const& motion, seeded_random& random) {
    feature_list const& features = part.features;
    data_lists data = part.points;
    for (auto& list : data) {
        for (point& p : list) p *= motion;
    }
    transform const exact = fit_composite(features, data);
    ASSERT_EQ(exact.capacity(), motion.capacity());
    double difference = 0;
    for (int i = 0; i < 3; ++i) difference += distance3d(exact.basis(i), motion.basis(i));
    double const far = motion.basis(0).length3d();
    EXPECT_LE(difference, 1e-12 + 1e-14 * far);
    EXPECT_LE(calc_composite_profile_error(features, data, exact), 1e-12 + 1e-15 * far);

    for (auto& list : data) {
        for (point& p : list) p += 0.01 * point(false, random.normal(), random.normal());
    }
    transform const best = fit_composite(features, data);
    double const least = sum_of_squares(features, data, best);
    point const origin = data[0][0];
    for (int trial = 0; trial < 20; ++trial) {
        auto const small = [&] { return 1e-5 * random.normal(); };
        transform moved = best * transform::translation(-origin);
        moved *=
            motion.is_3d() ? transform::rotation(small(), small(), small()) : transform::rotation(small());
        moved *= transform::translation(origin + (motion.is_3d() ? point(false, small(), small(), small())
                                                                 : point(false, small(), small())));
        EXPECT_GE(sum_of_squares(features, data, moved), least * (1 - 1e-12));
    }
}

TEST(FitComposite, BringsThePartInPlace) {
    seeded_random random(41);
    for (int trial = 0; trial < 30; ++trial) {
        double const far = trial % 3 ? 0 : 1e4, a = random.uniform(-3, 3), b = random.uniform(-0.3, 0.3);
        check(plate(random), transform::rotation(a).translate(9 * b, far), random);
        check(body(random), transform::rotation(a / 6, b, -b) * transform(10, 9 * b, -30), random);
    }
}

TEST(FitComposite, MovesOnlyWhatTheFeaturesHold) {
    feature_list const one = {feature<Circle_Description>(circle(5, at(1, 2)))};
    // 0.3 outside on X, 0.1 inside on Y, about (4, 6): by symmetry that is the centre, and nothing turns.
    data_lists const data = {{at(9.3, 6), at(-1.3, 6), at(4, 10.9), at(4, 1.1)}};
    transform const t = fit_composite(one, data);
    EXPECT_LE(distance2d(at(1, 2) * t, at(4, 6)), 1e-12);
    EXPECT_NEAR(t.yaw(), 0, 1e-12);
    EXPECT_NEAR(calc_composite_profile_error(one, data, t), 0.6, 1e-12);
}

TEST(FitComposite, IsTrivialWithoutAnAnswer) {
    feature_list const one = {feature<Circle_Description>(circle(5, at(1, 2)))};
    std::vector<point> const good = {at(1, 1), at(2, 2), at(3, 4)};
    struct {
        feature_list features;
        data_lists points;
    } const failing[] = {{{}, {}},
                         {one, {}},
                         {one, {{}}},
                         {one, {{at(1, 1), point()}}},
                         {one, {{at(1, 1), at(2, std::nan(""))}}},
                         {{ctl::ref<Geometry_Description>()}, {good}},
                         {{ctl::make_ref<Number_Description>()}, {good}}};
    for (auto const& c : failing) {
        EXPECT_TRUE(fit_composite(c.features, c.points).is_trivial());
        EXPECT_TRUE(std::isnan(calc_composite_profile_error(c.features, c.points, transform())));
    }
}

}  // namespace
}  // namespace tvmath
