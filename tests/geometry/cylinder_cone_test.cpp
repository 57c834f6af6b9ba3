#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/cone.h"
#include "tvmath/cylinder.h"

inline namespace tvmath {
namespace {

point along(double x, double y, double z) {
    return point(false, x, y, z);
}

point random_direction(seeded_random& random) {
    return along(random.normal(), random.normal(), random.normal());
}

point random_location(seeded_random& random) {
    return at(0, 0, 0) + 5 * random_direction(random);
}

// Every third one lies almost along Z, so that often one end hides the other.
cone random_cone(seeded_random& random, int trial) {
    point const base = random_location(random), z = along(0, 0, random.uniform(-9, 9));
    point const top = trial % 3 ? random_location(random) : base + 0.3 * random_direction(random) + z;
    return cone(base, top, random.uniform(0, 5), random.uniform(0, 5));
}

// The surface swept from one end, the unit circle under that map, to the other.
curve sampled_surface(transform const& from, transform const& to) {
    curve samples(2160);
    for (unsigned int i = 0; i < 2160; i += 3) {
        point const rim = at(std::cos(i * pi / 1080), std::sin(i * pi / 1080), 0);
        samples(i) = rim * from;
        samples(i + 1) = rim * to;
        samples(i + 2) = (samples[i] + 2 * samples[i + 1]) / 3;
    }
    return samples;
}

void expect_extent(CRealRect const& actual, curve const& samples, double tolerance) {
    CRealRect const e = samples.get_bounding_rect();
    double const x = std::max(std::fabs(actual.left - e.left), std::fabs(actual.right - e.right));
    double const y = std::max(std::fabs(actual.bottom - e.bottom), std::fabs(actual.top - e.top));
    EXPECT_LT(std::max(x, y), tolerance);
}

// Seen in XY the samples touch the line and none lies on its left (side 1) or right (-1).
void expect_touches(point const& from, point const& to, curve const& samples, double side, double tolerance) {
    double most = -infinity;
    for (point const& p : samples) most = std::max(most, side * cross2d(to - from, p - from));
    EXPECT_NEAR(most / distance2d(from, to), 0, tolerance);
}

TEST(Cylinder, TakesItsRadialAxesFromTheLeastCoordinateOfTheAxis) {
    struct {
        point axis, u, v, w;
    } const cases[] = {
        // v = axis x least axis, u = v x axis, by hand; the first of equally small coordinates counts.
        {along(0, 0, 9), along(2, 0, 0), along(0, 2, 0), along(0, 0, 3)},
        {along(5, 0, 0), along(0, 2, 0), along(0, 0, 2), along(3, 0, 0)},
        {at(0, -1), along(2, 0, 0), along(0, 0, 2), along(0, -3, 0)},
        {along(4, 3, 0), along(0, 0, 2), along(1.2, -1.6, 0), along(2.4, 1.8, 0)},
    };
    for (auto const& c : cases) {
        cylinder const made(2, 6, at(7, 8), c.axis);
        EXPECT_EQ(made.basis(0), at(7, 8, 0));
        EXPECT_LT(distance3d(made.basis(1), c.u) + distance3d(made.basis(2), c.v), 1e-15);
        EXPECT_LT(distance3d(made.basis(3), c.w), 1e-15);
        EXPECT_LT(distance3d(at(1, 2, 3) * made / made, at(1, 2, 3)), 1e-14);
    }
    cylinder const tilted(1, 2, at(0, 0), along(1, 1, std::sqrt(2.0)));
    EXPECT_NEAR(tilted.pitch(), pi / 4, 1e-15);
    EXPECT_NEAR(tilted.yaw(), pi / 4, 1e-15);
    EXPECT_EQ(cylinder(1, 2, at(0, 0), along(-1e-11, 0, -1)).yaw(), 0);
}

TEST(Cylinder, DrawingBoundsTheBody) {
    seeded_random random(42);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        cylinder c(random.uniform(0.1, 3), random.uniform(0.1, 9), random_location(random),
                   random_direction(random));
        EXPECT_LT(std::fabs(c.dot(1, 2)) + std::fabs(c.dot(1, 3)) + std::fabs(c.dot(2, 3)), 1e-14);
        if (trial % 3 == 1) c.flip_axis(1);                   // left-handed
        if (trial % 3 == 2) c.shear_z(0.4, -0.7).shear_x(1);  // an oblique elliptical cylinder
        transform const top_map = transform(0, 0, 1) * c, bottom_map = transform(0, 0, -1) * c;
        curve const samples = sampled_surface(bottom_map, top_map);
        double const tolerance = 1e-4 * c.size(2);  // 720 samples of the ends miss an extreme by 1e-5
        expect_extent(c.get_bounding_rect(), samples, tolerance);

        idioms::array<point> ends[2], left, right, visible[2], same_left, same_right;
        c.render_cylinder(ends[1], ends[0], left, right, false);
        c.render_cylinder(visible[1], visible[0], same_left, same_right, true);
        EXPECT_EQ(ends[0][0], ends[0][ends[0].capacity() - 1]);
        for (point const& p : ends[0]) EXPECT_NEAR((p / bottom_map).length3d(), 1, 1e-9);
        for (point const& p : ends[1]) EXPECT_NEAR((p / top_map).length3d(), 1, 1e-9);
        ASSERT_TRUE(left.capacity() == 2 && right.capacity() == 2);
        expect_touches(left[0], left[1], samples, 1, tolerance);
        expect_touches(right[0], right[1], samples, -1, tolerance);

        // What is left of the far end is what a ray to the viewer leaves without entering the body.
        unsigned int const far = visible[1].capacity() == ends[1].capacity() ? 0 : 1;
        idioms::array<point> const& half = visible[far];
        ASSERT_EQ(half.capacity(), ends[far].capacity() / 2 + 1);
        EXPECT_LT(distance3d(half[0], left[far]), 1e-10);
        EXPECT_LT(distance3d(half[half.capacity() - 1], right[far]), 1e-10);
        for (unsigned int i = 1; i + 1 < half.capacity(); ++i) {
            point const step = (half[i] + along(0, 0, 1e-4 * c.size(2))) / c;
            EXPECT_GT(step.length2d(), 1);
            EXPECT_LT(std::fabs(step.z()), 1);  // so this end does face away
        }
    }
}

TEST(Cylinder, SeenAlongItsAxisIsACircle) {
    idioms::array<point> top, bottom, left, right;
    for (double const z : {1.0, -1.0}) {
        cylinder const c(2, 6, at(1, 2, 3), along(1e-13, 0, z));
        c.render_cylinder(top, bottom, left, right, true);
        EXPECT_EQ(top.is_trivial(), z < 0);
        EXPECT_EQ(bottom.is_trivial(), z > 0);
        EXPECT_TRUE(left.is_trivial() && right.is_trivial());
    }
}

TEST(Cone, MeasuresTheFrustumOfA345Triangle) {
    cone const c(at(0, 0, 1), at(0, 0, 5), 1, 4), straight(at(0, 0), at(3, 4), 1, 1), null;
    EXPECT_NEAR(c.angle(), std::asin(0.6), 1e-15);
    EXPECT_EQ(c.slope(), 0.75);
    EXPECT_LT(distance3d(c.vertex(), at(0, 0, -1.0 / 3)), 1e-15);
    EXPECT_EQ(straight.axis, point(false, 0.6, 0.8));
    EXPECT_EQ(straight.center(), at(1.5, 2));
    EXPECT_TRUE(straight.vertex().is_trivial());
    EXPECT_TRUE(std::isnan(cone(at(1, 2, 3), at(1, 2, 3), 1, 2).slope()) && std::isnan(null.slope()));
    // The tip at the origin counts, although its own rectangle is the null one.
    EXPECT_EQ(cone(at(0, 0, 0), at(3, 0, 0), 0, 1).get_bounding_rect(), CRealRect(0, -1, 3, 1));
    EXPECT_TRUE(null.get_bounding_rect().IsRectNull());
    EXPECT_TRUE((cone() += at(1, 2)).is_trivial() && (cone() *= transform(1, 2)).is_trivial());
}

TEST(Cone, SurfaceLinesMeetInTheVertexAndMoveWithTheCone) {
    seeded_random random(43);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        cone const c = random_cone(random, trial);
        double const s = random.log_uniform(0.1, 10);
        transform const t = transform::rotation(1, 0.5, trial).dilate(s, s, s).translate(1, 2, 3);
        cone moved = c;
        moved *= t;
        circle at_base, at_top;
        c.get_ends(at_base, at_top);
        for (double const angle : {0.0, 1.0, 4.0}) {
            point const rim = at(std::cos(angle), std::sin(angle), 0), p = rim * at_base, q = rim * at_top;
            EXPECT_NEAR(distance3d(p * t, moved.base), moved.base_radius, 1e-12);
            EXPECT_NEAR(dot(p * t - moved.base, moved.axis), 0, 1e-12);
            EXPECT_NEAR(dot(q * t - moved.top, moved.axis), 0, 1e-12);
            // Collinear: area of the triangle over the length of its known side.
            double const reach = 1 + distance3d(c.vertex(), p);
            EXPECT_LT(cross(p - c.vertex(), q - p).length3d() / distance3d(p, q), 1e-12 * reach);
        }
        EXPECT_LT(distance3d(at(0, 0, distance3d(c.base, c.top)) * c.make_transform(), c.top), 1e-13);
        ((moved /= t) += at(1, 2, 3)) -= along(1, 2, 3);
        EXPECT_LT(distance3d(moved.base, c.base) + distance3d(moved.top, c.top), 1e-12);
        EXPECT_LT(std::fabs(moved.top_radius - c.top_radius) + distance3d(moved.axis, c.axis), 1e-13);
    }
}

TEST(Cone, DrawingBoundsTheBody) {
    seeded_random random(44);
    int hidden = 0;
    for (int trial = 0; trial < 400; ++trial) {
        SCOPED_TRACE(trial);
        cone const c = random_cone(random, trial);
        std::vector<curve> paths(1);
        c.render_cone(paths);
        circle at_base, at_top;
        c.get_ends(at_base, at_top);
        curve const samples = sampled_surface(at_base, at_top);
        double const tolerance = 1e-4 * std::max(c.base_radius, c.top_radius);
        expect_extent(c.get_bounding_rect(), samples, tolerance);

        // By how much the projection of the top reaches beyond that of the base in the direction d of XY: the
        // reach of a circle about its centre is the radius times the length of d across the axis.
        double most = -infinity, least = infinity, wider = c.top_radius - c.base_radius;
        for (int i = 0; i < 720; ++i) {
            point const d = along(std::cos(i * pi / 360), std::sin(i * pi / 360), 0);
            double const reach = dot(c.top - c.base, d) + wider * cross(c.axis, d).length3d();
            most = std::max(most, reach);
            least = std::min(least, reach);
        }
        if (std::min(std::fabs(most), std::fabs(least)) < 1e-3) continue;  // the samples may not tell
        bool const inside = most < 0 || least > 0;
        hidden += inside;
        ASSERT_EQ(paths.size(), inside ? 3u : 5u);
        for (std::size_t i = 3; i < paths.size(); ++i) {
            curve const& line = paths[i];
            expect_touches(line[0], line[3], samples, i == 3 ? 1 : -1, tolerance);
            EXPECT_NEAR((line[0] / at_base).length3d(), 1, 1e-9);
            EXPECT_NEAR((line[3] / at_top).length3d(), 1, 1e-9);
            EXPECT_LT(distance3d(line[1], line[0] + (line[3] - line[0]) / 3), 1e-13);
        }
    }
    EXPECT_GT(hidden, 20);
}

}  // namespace
}  // namespace tvmath
