#include "tvmath/geometry_queries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using record_ptr = std::shared_ptr<Geometry_Description>;

template <class kind, class filler>
record_ptr record_of(filler fill) {
    auto record = std::make_shared<kind>();
    fill(*record);
    return record;
}

template <class kind>
record_ptr shape_of(transform const& t) {
    return record_of<kind>([&](kind& r) { r.geometry = decltype(r.geometry)(t); });
}

// A random map of a unit shape into the plane or, turned, into space.
transform random_place(seeded_random& random, bool solid, bool oblique) {
    transform t = transform::dilation(random.uniform(0.5, 3), random.uniform(0.2, 2));
    if (solid) t = transform::dilation(1, 1, random.uniform(0.5, 2)) * t;
    if (oblique) t.shear_x(random.uniform(-1, 1));
    if (!solid) return t.rotate(random.uniform(0, 6)).translate(random.uniform(-5, 5), 2);
    return t.rotate(random.uniform(0, 6), random.uniform(-1, 1), random.uniform(0, 6))
        .translate(3, -2, random.unit());
}

struct sampled {
    record_ptr record;
    std::vector<point> samples;
    double step;  // no point of the feature is farther than this from a sample
};

// Samples of a path over [0, 1], of which `corners` equal parts are smooth.
template <class path>
sampled along(record_ptr record, unsigned int corners, path const& at_parameter) {
    sampled s{record, {}, 0};
    for (unsigned int i = 0; i <= 1200 * corners; ++i) {
        s.samples.push_back(at_parameter(i / (1200.0 * corners)));
        if (i > 0) s.step = std::max(s.step, distance3d(s.samples[i - 1], s.samples[i]));
    }
    return s;
}

// Samples of a surface over [0, 1] x [0, 1].
template <class surface>
sampled over(record_ptr record, surface const& at_parameters) {
    sampled s{record, {}, 0};
    for (int i = 0; i <= 120; ++i) {
        for (int j = 0; j <= 120; ++j) s.samples.push_back(at_parameters(i / 120.0, j / 120.0));
    }
    for (std::size_t i = 122; i < s.samples.size(); ++i) {
        s.step = std::max(s.step, distance3d(s.samples[i], s.samples[i - 122]));  // across a cell
        if (i % 121 != 0) s.step = std::max(s.step, distance3d(s.samples[i], s.samples[i - 1]));
    }
    return s;
}

point unit_circle(double angle, double z = 0) {
    return point(true, std::cos(angle), std::sin(angle), z);
}

point on_polyline(std::vector<point> const& corners, double t) {
    double const place = t * static_cast<double>(corners.size() - 1);
    auto const i = std::min(static_cast<std::size_t>(place), corners.size() - 2);
    return corners[i] + (corners[i + 1] - corners[i]) * (place - static_cast<double>(i));
}

// A wide tangle, so that many points have several near places on it.
nurb random_nurb(seeded_random& random, std::uint32_t order, bool rational) {
    std::uint32_t const count = 9;
    nurb n(order, count);
    for (std::uint32_t i = 0; i < count; ++i) {
        double const w = rational ? random.uniform(0.3, 3) : 1;
        n.set_control_point(i, {w * random.uniform(-3, 3), w * random.uniform(-3, 3), w * random.unit(), w});
    }
    double knot = 0;
    for (std::uint32_t i = 0; i < n.knots(); ++i) {
        n.set_knot(i, knot);
        bool const clamped = i + 1 < order || i >= count;
        if (!clamped)
            knot += order > 2 && i % 3 == 0 ? 0 : random.uniform(0.5, 2);  // double at most: no leaps
    }
    return n;
}

std::vector<sampled> random_features(seeded_random& random, bool solid) {
    auto const place = [&](bool oblique) { return random_place(random, solid, oblique); };
    std::vector<sampled> all;
    transform t = place(false);
    all.push_back(along(shape_of<Segment_Description>(t), 1, [t](double s) { return at(2 * s - 1, 0) * t; }));
    t = place(true);
    all.push_back(
        along(shape_of<Ellipse_Description>(t), 1, [t](double s) { return unit_circle(2 * pi * s) * t; }));
    double const sweep = random.uniform(-7, 7) / 2;
    auto const arc =
        record_of<Arc_Description>([&](auto& r) { r.circle = circle(t), r.included_angle = 2 * sweep; });
    all.push_back(along(arc, 1, [=](double s) { return unit_circle((2 * s - 1) * sweep) * t; }));
    t = transform::dilation(1.5) * random_place(random, solid, false).orthonormalize();
    all.push_back(
        along(shape_of<Circle_Description>(t), 1, [t](double s) { return unit_circle(2 * pi * s) * t; }));
    t = place(true);
    std::vector<point> const square = {at(-1, -1), at(1, -1), at(1, 1), at(-1, 1), at(-1, -1)};
    all.push_back(
        along(shape_of<Rectangle_Description>(t), 4, [=](double s) { return on_polyline(square, s) * t; }));
    all.push_back(along(shape_of<Gap_Description>(t), 1, [=](double s) {
        return at(s < 0.5 ? std::min(4.01 * s - 1, 1.0) : 4 * s - 3, s < 0.5 ? -1 : 1) * t;
    }));
    all.back().step = 4 * t.size(1) / 1200;  // not the leap from side to side
    t = place(false);
    double const ends = t.size(2) / t.size(1);  // the ends are round, and the unit slot's are not
    all.push_back(along(shape_of<Slot_Description>(t), 4, [=](double s) {
        if (s < 0.25) return at(8 * s - 1, -1) * t;
        if (s < 0.5)
            return at(1 + ends * std::cos(4 * pi * s - 1.5 * pi), std::sin(4 * pi * s - 1.5 * pi)) * t;
        if (s < 0.75) return at(5 - 8 * s, 1) * t;
        return at(-1 + ends * std::cos(4 * pi * s - 2.5 * pi), std::sin(4 * pi * s - 2.5 * pi)) * t;
    }));
    std::vector<point> controls, list;
    for (int i = 0; i < 10; ++i) controls.push_back(at(random.uniform(-3, 3), random.uniform(-3, 3)) * t);
    curve const path(idioms::array<point>(10, controls.data()));
    auto const de_casteljau = [controls](double s) {
        double const u = std::min(3 * s, 3.0), i = std::min(std::floor(u), 2.0), v = u - i;
        std::vector<point> p(controls.begin() + 3 * static_cast<int>(i),
                             controls.begin() + 3 * static_cast<int>(i) + 4);
        for (int left = 3; left > 0; --left) {
            for (std::size_t k = 0; k < static_cast<std::size_t>(left); ++k)
                p[k] = p[k] + (p[k + 1] - p[k]) * v;
        }
        return p[0];
    };
    all.push_back(along(record_of<OpenSpline_Description>([&](auto& r) { r.path = path; }), 3, de_casteljau));
    all.push_back(
        along(record_of<ClosedSpline_Description>([&](auto& r) { r.path = path; }), 3, de_casteljau));
    all.push_back(along(record_of<OpenData_Description>([&](auto& r) { r.points = controls; }), 9,
                        [=](double s) { return on_polyline(controls, s); }));
    list = controls;
    list.push_back(controls[0]);
    all.push_back(along(record_of<ClosedData_Description>([&](auto& r) { r.points = controls; }), 10,
                        [=](double s) { return on_polyline(list, s); }));
    if (!solid) return all;

    nurb const n = random_nurb(random, 2 + random.below(4), random.coin());
    std::vector<double> knots;  // corners lie there
    for (unsigned int i = n.degree(); i <= n.control_points(); ++i) {
        if (knots.empty() || n.get_knot(i) > knots.back()) knots.push_back(n.get_knot(i));
    }
    unsigned int const spans = static_cast<unsigned int>(knots.size() - 1);
    all.push_back(along(record_of<Nurb_Description>([&](auto& r) { r.geometry = n; }), spans, [=](double s) {
        unsigned int const i = std::min(static_cast<unsigned int>(s * spans), spans - 1);
        return point(n.evaluate(knots[i] + (s * spans - i) * (knots[i + 1] - knots[i])));
    }));
    t = transform::dilation(1.5, 1.5, 1.5) * random_place(random, true, false).orthonormalize();
    all.push_back(over(shape_of<Sphere_Description>(t),
                       [=](double u, double v) { return make_spherical_point(1, 2 * pi * u, pi * v) * t; }));
    all.push_back(over(shape_of<Cylinder_Description>(t),
                       [=](double u, double v) { return unit_circle(2 * pi * u, 2 * v - 1) * t; }));
    double const tip = random.coin() ? 0 : 2;
    cone const frustum(at(0, 0, -1) * t, at(0, 0, 1) * t, 0.75, 1.5 * tip);
    all.push_back(
        over(record_of<Cone_Description>([&](auto& r) { r.geometry = frustum; }), [=](double u, double v) {
            double const radius = 0.5 + v * (tip - 0.5);
            return point(true, radius * std::cos(2 * pi * u), radius * std::sin(2 * pi * u), 2 * v - 1) * t;
        }));
    return all;
}

// Property: no sample is nearer than the answer, and the answer is where samples are.
TEST(NearestPoints, AreAsNearAsDenseSamplesTell) {
    seeded_random random(71);
    for (int trial = 0; trial < 30; ++trial) {
        for (sampled const& s : random_features(random, trial % 2 == 0)) {
            SCOPED_TRACE(std::to_string(trial) + ", kind " + std::to_string(s.record->type()));
            std::vector<point> asked = {s.samples[7]};
            auto const number = static_cast<unsigned int>(s.samples.size());
            for (int i = 0; i < 4;
                 ++i) {  // among the samples, as inside an ellipse's evolute, and around them
                asked.push_back(s.samples[random.below(number)] * 0.6 +
                                s.samples[random.below(number)] * 0.4);
                asked.push_back(at(random.uniform(-6, 9), random.uniform(-6, 6), random.unit()));
            }
            std::vector<point> nearest;
            ASSERT_TRUE(calc_nearest_points(*s.record, asked, nearest));
            ASSERT_EQ(nearest.size(), asked.size());
            for (std::size_t i = 0; i < asked.size(); ++i) {
                double sampled_distance = 1e9, off_feature = 1e9;
                for (point const& q : s.samples) {
                    sampled_distance = std::min(sampled_distance, distance3d(asked[i], q));
                    off_feature = std::min(off_feature, distance3d(nearest[i], q));
                }
                double const distance = distance3d(asked[i], nearest[i]);
                EXPECT_LE(distance, sampled_distance + 1e-13);
                // The feature is at a right angle there; outside a tight bend the sample falls back farther
                // than by Pythagoras.
                EXPECT_LE(sampled_distance * sampled_distance, distance * distance + 20 * s.step * s.step);
                EXPECT_LE(off_feature, s.step);
            }
        }
    }
}

TEST(NearestPoints, OfOtherKindsWorkedByHand) {
    auto const nearest_to = [](record_ptr const& record, point const& p) {
        std::vector<point> list = {p, point(), at(NAN, 0)};
        EXPECT_TRUE(calc_nearest_points(*record, list, list));  // into the list itself
        EXPECT_TRUE(list.size() == 3 && list[1].is_trivial() && list[2].is_trivial());
        return list[0];
    };
    auto const plane_record =
        record_of<Plane_Description>([](auto& r) { r.geometry = plane(at(0, 0, 1), at(1, 1, 0)); });
    EXPECT_LT(distance3d(nearest_to(plane_record, at(2, 0, 5)), at(1, -1, 5)), 1e-15);
    auto const cloud = record_of<PointCloud_Description>([](auto& r) {
        r.points = {at(0, 0), point(), at(4, 0)};
    });
    EXPECT_EQ(nearest_to(cloud, at(1.9, 0, 7)), at(0, 0));
    auto const broken = record_of<OpenData_Description>([](auto& r) {
        r.points = {at(0, 0), at(1, 0), point(), at(3, 0), at(4, 0)};
    });
    EXPECT_EQ(nearest_to(broken, at(1.5, 1)), at(1, 0));
    // Radii 2 and 5 about (10, 0); along the ray, 3.4 lies nearer to the inner one.
    auto const ring_record = record_of<ORing_Description>([](auto& r) {
        r.placement = transform(10, 0), r.inner = ring(idioms::array<double>(1, 2.0)),
        r.outer = ring(idioms::array<double>(1, 5.0));
    });
    EXPECT_LT(distance3d(nearest_to(ring_record, at(10, 3.4)), at(10, 2)), 1e-15);
    EXPECT_LT(distance3d(nearest_to(ring_record, at(14, 0)), at(15, 0)), 1e-15);
    // On the axis, at the centre, on the middle line: any of the equally near points, at the right distance.
    transform const two = transform::dilation(2, 2, 2);
    EXPECT_NEAR(nearest_to(shape_of<Sphere_Description>(two), at(0, 0, 0)).length3d(), 2, 1e-15);
    EXPECT_NEAR(nearest_to(shape_of<Cylinder_Description>(two), at(0, 0, 1)).length3d(), std::sqrt(5), 1e-15);
    EXPECT_NEAR(nearest_to(shape_of<Circle_Description>(two), at(0, 0, 0)).length3d(), 2, 1e-15);
    EXPECT_EQ(nearest_to(shape_of<Slot_Description>(transform::dilation(0, 2)), at(0, 3)), at(0, 2));
}

TEST(RecordQueries, GiveCentreDirectionAndPlaneWorkedByHand) {
    // X to Z, Y to X, Z to Y, and 2, 3 and 4 as long, moved to (1, 2, 3).
    transform const t = transform::dilation(2, 3, 4).permute3d(1) * transform(1, 2, 3);
    point const none, c = at(1, 2, 3), x = t.direction(1), z = t.direction(3);
    transform const flat = transform::dilation(3, 1).rotate_90().translate(1, 2);
    auto const arc =
        record_of<Arc_Description>([&](auto& r) { r.circle = circle(flat), r.included_angle = -pi; });
    auto const angle = record_of<Angle_Description>(
        [&](auto& r) { r.arc = circle(flat), r.start_angle = pi, r.included_angle = -pi; });
    auto const text = record_of<Text_Description>([&](auto& r) { r.placement = t; });
    auto const ring_record = record_of<ORing_Description>([&](auto& r) { r.placement = t; });
    auto const frustum =
        record_of<Cone_Description>([](auto& r) { r.geometry = cone(at(1, 0, 0), at(5, 0, 0), 1, 2); });
    // The middle of each control polygon is its highest place: 3/4 of 4.
    curve const arch(idioms::array<point>(
        4, std::vector<point>{at(0, 0, 1), at(0, 4, 2), at(6, 4, 2), at(6, 0, 3)}.data()));
    auto const open = record_of<OpenSpline_Description>([&](auto& r) { r.path = arch; });
    auto const closed =
        record_of<ClosedSpline_Description>([&](auto& r) { r.path = arch, r.centroid = at(7, 8); });
    auto const spline = record_of<Nurb_Description>([&](auto& r) { r.geometry = bezier_to_nurb(arch, 3); });
    auto const cloud = record_of<PointCloud_Description>([](auto& r) {
        r.points = {at(1, 0), point(), at(3, 4, 6)};
    });
    auto const spot = record_of<Point_Description>([](auto& r) { r.position = at(1, 2); });
    struct {
        record_ptr record;
        point center, direction, normal;
        std::vector<point> points;
    } const cases[] = {
        {spot, at(1, 2), none, none, {at(1, 2)}},
        {shape_of<Transform_Description>(t), c, x, z, {c}},
        {shape_of<Composite_Description>(t), c, x, z, {c}},
        {shape_of<Segment_Description>(flat), at(1, 2), point(false, 0, 1), none, {at(1, -1), at(1, 5)}},
        {shape_of<Circle_Description>(t), c, none, z, {c}},
        {shape_of<Ellipse_Description>(t), c, x, z, {c}},
        {shape_of<Rectangle_Description>(t), c, x, z, {c}},
        {shape_of<Gap_Description>(t), c, x, z, {c}},
        {shape_of<Slot_Description>(t), c, x, z, {c}},
        {shape_of<Plane_Description>(t), c, z, z, {c}},
        {shape_of<Sphere_Description>(t), c, none, none, {c}},
        {shape_of<Cylinder_Description>(t), c, z, z, {c}},
        {text, c, x, z, {c}},
        {ring_record, c, none, z, {c}},
        {frustum, at(3, 0, 0), point(false, 1, 0, 0), point(false, 1, 0, 0), {at(3, 0, 0)}},
        {arc, at(1, 2), point(false, 0, 1), point(false, 0, 0, 1), {at(0, 2), at(2, 2)}},
        {angle, at(1, 2), point(false, -1, 0), point(false, 0, 0, 1), {at(1, 2)}},
        {open, at(3, 1.5, 2), none, none, {at(0, 0, 1), at(6, 0, 3)}},
        {closed, at(7, 8), none, none, {at(7, 8)}},
        {spline, at(3, 1.5, 2), none, none, {at(0, 0, 1), at(6, 0, 3)}},
        {cloud, at(2, 2, 3), none, none, {at(1, 0), at(3, 4, 6)}},
    };
    auto const expect_near = [](point const& actual, point const& expected) {
        EXPECT_EQ(actual.dimension(), expected.dimension());
        EXPECT_EQ(actual[0], expected[0]);
        EXPECT_LT(distance3d(actual, expected), 2e-15)
            << actual.x() << ' ' << actual.y() << ' ' << actual.z();
    };
    for (auto const& k : cases) {
        SCOPED_TRACE(k.record->type());
        point center, direction;
        plane through;
        std::vector<point> points;
        ASSERT_TRUE(get_center_point(*k.record, center) && construct_points(*k.record, points));
        expect_near(center, k.center);
        ASSERT_EQ(points.size(), k.points.size());
        for (std::size_t i = 0; i < points.size(); ++i) expect_near(points[i], k.points[i]);
        EXPECT_EQ(get_direction(*k.record, direction), !k.direction.is_trivial());
        expect_near(direction, k.direction);
        ASSERT_EQ(get_plane(*k.record, through), !k.normal.is_trivial());
        if (k.normal.is_trivial()) continue;
        expect_near(through.normal(), k.normal);
        expect_near(through.center(), at(center.x(), center.y(), center.is_3d() ? center.z() : 0));
    }
}

// Hands out one record, as the application's features do.
struct holder : GeometryGetter {
    record_ptr held;
    bool get(Geometry_Description& record) const override { return record.assign(*held); }
    unsigned long long type() const override { return held->type(); }
};

TEST(RecordQueries, OfNullFeaturesLeaveOutputsAloneAndGettersAgreeWithRecords) {
    std::vector<point> const before = {at(7, 8)};
    auto const expect_answers = [&](auto const& feature, bool expected) {
        point center = before[0], direction = before[0];
        plane through;
        std::vector<point> points = before, nearest = before;
        EXPECT_EQ(get_center_point(feature, center), expected);
        EXPECT_EQ(get_direction(feature, direction), expected);
        EXPECT_EQ(get_plane(feature, through), expected);
        EXPECT_EQ(construct_points(feature, points), expected);
        EXPECT_EQ(calc_nearest_points(feature, {at(1, 2)}, nearest), expected);
        EXPECT_EQ(center == before[0] && direction == before[0] && through.is_trivial(), !expected);
        EXPECT_EQ(points == before && nearest == before, !expected);
    };
    holder getter;
    for (unsigned long long bit = 1; bit <= 0x4000000; bit *= 2) {
        SCOPED_TRACE(bit);
        getter.held.reset(Geometry_Description::create(bit));
        if (!getter.held) continue;  // the two kinds that are only names
        expect_answers(*getter.held, false);
        expect_answers(getter, false);
    }
    getter.held = shape_of<Rectangle_Description>(transform(3, 4));
    expect_answers(getter, true);
    struct stranger : Geometry_Description {  // claims to be a circle
        unsigned long long type() const override { return 0x8; }
        Geometry_Description* create_copy() const override { return new stranger; }
        bool assign(Geometry_Description const&) override { return false; }
        void apply_transform(transform) override {}
    };
    expect_answers(stranger(), false);
    getter.held = std::make_shared<stranger>();
    expect_answers(getter, false);
}

}  // namespace
}  // namespace tvmath
