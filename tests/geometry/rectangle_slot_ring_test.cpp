#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/gap.h"
#include "tvmath/rectangle.h"
#include "tvmath/ring.h"
#include "tvmath/slot.h"

inline namespace tvmath {
namespace {

double const nan = std::nan("");

point along(seeded_random& random) {
    return point(false, random.uniform(-3, 3), random.uniform(-3, 3));
}

transform oblique_map(seeded_random& random) {
    return make_transform(at(random.uniform(-9, 9), random.uniform(-9, 9)), along(random), along(random));
}

// A turn in space, a scale and a shift: the maps under which rectangles and slots keep their kind.
transform similarity(seeded_random& random) {
    double const s = random.log_uniform(0.1, 10);
    return transform::rotation(random.uniform(-3, 3), random.uniform(-1, 1), random.uniform(-3, 3))
        .dilate(s, s, s)
        .translate(random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9));
}

double largest_difference(CRealRect const& a, CRealRect const& b) {
    return std::max({std::fabs(a.left - b.left), std::fabs(a.right - b.right), std::fabs(a.bottom - b.bottom),
                     std::fabs(a.top - b.top)});
}

double largest_distance(curve const& a, curve const& b) {
    EXPECT_EQ(a.capacity(), b.capacity());
    double most = 0;
    for (unsigned int i = 0; i < a.capacity(); ++i) most = std::max(most, distance3d(a[i], b[i]));
    return most;
}

double polygon_area(curve const& polygon) {
    double twice = 0;
    for (unsigned int i = 0; i < polygon.capacity(); ++i) {
        twice += cross2d(polygon[i], polygon[(i + 1) % polygon.capacity()]);
    }
    return twice / 2;
}

TEST(Rectangle, OutlineRunsFromCornerToCornerAlongTheWidthFirst) {
    rectangle const r(4, 2, 0, at(10, 20));
    struct {
        char const* name;
        curve outline;
        std::vector<point> expected;
    } const cases[] = {
        {"corners", r.render_rectangle(), {at(8, 19), at(12, 19), at(12, 21), at(8, 21)}},
        {"counts below 1", r.render_rectangle(0, -5), {at(8, 19), at(12, 19), at(12, 21), at(8, 21)}},
        {"2 and 1",
         r.render_rectangle(2, 1),
         {at(8, 19), at(10, 19), at(12, 19), at(12, 21), at(10, 21), at(8, 21)}},
        {"offset",
         r.render_rectangle(1, 0.5, 1),
         {at(7.5, 18.5), at(12.5, 18.5), at(12.5, 21.5), at(7.5, 21.5)}},
        {"flat",
         rectangle(4, 0, 0, at(0, 0)).render_rectangle(1, 1.0, 1),
         {at(-3, -1), at(3, -1), at(3, 1), at(-3, 1)}},
        {"null", rectangle().render_rectangle(1, 1.0, 1), {at(-2, -2), at(2, -2), at(2, 2), at(-2, 2)}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(c.outline.capacity(), c.expected.size());
        for (unsigned int i = 0; i < c.outline.capacity(); ++i) EXPECT_EQ(c.outline[i], c.expected[i]);
    }
}

TEST(Rectangle, ParallelOutlineKeepsItsDistanceFromObliqueSides) {
    seeded_random random(31);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        rectangle const r(oblique_map(random));
        double const sharpness = r.area() / (4 * r.size(1) * r.size(2));
        if (sharpness < 0.05) continue;
        double const d = random.uniform(-0.5, 2);
        curve const corners = r.render_rectangle();
        vector offsets(2);
        offsets(1) = d;
        idioms::array<curve> const outlines = r.render_rectangle(3, offsets, 2);
        EXPECT_EQ(largest_distance(outlines[0], r.render_rectangle(3, 2)), 0);
        unsigned int const first[] = {0, 3, 5, 8, 10};
        for (unsigned int side = 0; side < 4; ++side) {
            point const p = corners[side], run = normalize(corners[(side + 1) % 4] - p);
            double const outward = r.is_left_handed() ? 1 : -1;
            for (unsigned int i = first[side]; i <= first[side + 1]; ++i) {
                EXPECT_NEAR(outward * cross2d(run, outlines[1][i % 10] - p), d, 1e-13 / sharpness);
            }
        }
        transform const t = similarity(random);
        double const scale = t.size(1);
        EXPECT_LT(largest_distance(rectangle(r * t).render_rectangle(3, d * scale, 2), outlines[1] * t),
                  1e-12 / sharpness);
    }
}

TEST(Rectangle, BoundingRectIsTheExtentOfTheCorners) {
    seeded_random random(32);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        rectangle const r(oblique_map(random) * (trial % 2 ? transform() : similarity(random)));
        EXPECT_EQ(r.get_bounding_rect(), r.render_rectangle().get_bounding_rect());
        idioms::array<point> lower, upper;
        gap(r).render_gap(lower, upper);
        curve sides = lower;
        sides.append(upper);
        EXPECT_EQ(gap(r).get_bounding_rect(), sides.get_bounding_rect());

        // With right angles in XY, moving the corners along both axes is the parallel outline.
        rectangle const upright(random.uniform(1, 9), random.uniform(1, 9), random.uniform(-3, 3), at(2, 3));
        transform const t = transform::rotation(random.uniform(-3, 3)).dilate(2).translate(5, 6, 7);
        double const d = random.uniform(0, 3);
        CRealRect const expected = rectangle(upright * t).render_rectangle(1, d, 1).get_bounding_rect();
        EXPECT_LT(largest_difference(upright.get_bounding_rect(t, -d), expected), 1e-13);
    }
}

TEST(Rectangle, QuarterTurnsStartTheSameOutlineAtAnotherCorner) {
    rectangle const r(4, 2, 0.3, at(10, 20, 30));
    curve const corners = r.render_rectangle();
    for (int k = -5; k <= 5; ++k) {
        rectangle const turned = rotate_rectangle(r, k);
        curve const renamed = turned.render_rectangle();
        for (unsigned int i = 0; i < 4; ++i) {
            EXPECT_LT(distance3d(renamed[i], corners[(i + static_cast<unsigned int>(k)) % 4]), 1e-14) << k;
        }
        EXPECT_LT(distance3d(at(1, 2, 3) * turned / turned, at(1, 2, 3)), 1e-13);
        EXPECT_FALSE(turned.is_left_handed());
    }
    EXPECT_TRUE(rotate_rectangle(r, 4) == r);
    EXPECT_TRUE(rotate_rectangle(rectangle(), 1).is_trivial());
}

// Points of a cubic path, 64 for each segment, by the definition of the Bernstein polynomials.
curve bezier_points(curve const& path) {
    curve points(path.capacity() / 3 * 64);
    for (unsigned int i = 0; i < points.capacity(); ++i) {
        point const* const c = path.begin() + i / 64 * 3;
        double const t = i % 64 / 64.0, s = 1 - t;
        points(i) = s * s * s * c[0] + 3 * s * s * t * c[1] + 3 * s * t * t * c[2] + t * t * t * c[3];
    }
    return points;
}

TEST(Slot, PathKeepsTheEndRadiusFromTheLineBetweenTheEnds) {
    seeded_random random(33);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        double const r = random.uniform(0.1, 3), half = trial % 10 ? random.uniform(0, 5) : 0;
        double const angle = random.uniform(-3, 3), length = half + r;
        slot const s(length, r, angle, at(random.uniform(-5, 5), random.uniform(-5, 5)));
        curve const path = s.render_bezier(), outline = bezier_points(path);
        ASSERT_EQ(path.capacity(), 19u);
        EXPECT_EQ(path[0], path[18]);
        point const axis(false, std::cos(angle), std::sin(angle));
        double around = 0;
        for (unsigned int i = 0; i < outline.capacity(); ++i) {
            point const p = outline[i] - s.basis(0);
            double const beyond = std::max(std::fabs(dot(p, axis)) - (length - r), 0.0);
            EXPECT_NEAR(std::hypot(beyond, cross2d(axis, p)), r, 2.8e-4 * r + 1e-14);
            around += distance2d(outline[i], outline[(i + 1) % outline.capacity()]);
        }
        // The arcs are off by 2.8e-4 r at most, outward; 64 chords of each by 1e-4 r inward.
        EXPECT_LT(largest_difference(s.get_bounding_rect(), outline.get_bounding_rect()), 3e-4 * r);
        EXPECT_NEAR(polygon_area(outline), s.area(), 2e-3 * r * r);
        EXPECT_NEAR(around, s.perimeter(), 2e-3 * r);

        transform const t = similarity(random);
        slot const moved(s * t);
        EXPECT_LT(largest_distance(moved.render_bezier(), path * t), 1e-12);
        for (auto const& [end, center] :
             {std::pair(moved.get_left_end(), moved.basis(0) - moved.basis(1)),
              std::pair(moved.get_right_end(), moved.basis(0) + moved.basis(1))}) {
            EXPECT_LT(distance3d(end.basis(0), center), 1e-13);
            EXPECT_NEAR(end.radius(), moved.semiminor(), 1e-13);
            EXPECT_NEAR(dot(end.basis(3), moved.basis(1)) + dot(end.basis(3), moved.basis(2)), 0, 1e-12);
            EXPECT_LT(distance3d(at(1, 2, 3) * end / end, at(1, 2, 3)), 1e-11);
        }
    }
}

// Of an oblique slot or one in space the ends are ellipses; sampled here by their definition.
TEST(Slot, BoundingRectIsTheExtentOfItsEnds) {
    seeded_random random(34);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        slot const s(trial % 2 ? oblique_map(random) : slot(3, 1, 0.4, at(1, 2)) * similarity(random));
        point const u = s.basis(1), v = s.basis(2), w = u * (v.length3d() / u.length3d());
        curve samples(2000);
        for (unsigned int i = 0; i < 2000; ++i) {
            double const a = pi * i / 1000;
            samples(i) = s.basis(0) + (cos(a) < 0 ? -u : u) + cos(a) * w + sin(a) * v;
        }
        EXPECT_LT(largest_difference(s.get_bounding_rect(), samples.get_bounding_rect()), 1e-5 * s.size(2));
    }
    // Half 5 and radius 1 by hand, and ends that coincide: a circle.
    EXPECT_EQ(slot(5, 1, 0, at(1, 2)).get_bounding_rect(), CRealRect(-4, 1, 6, 3));
    EXPECT_EQ(slot(2, 2, 0, at(1, 2)).get_bounding_rect(), CRealRect(-1, 0, 3, 4));
    EXPECT_EQ(slot().get_bounding_rect(), CRealRect(-2, -1, 2, 1));
    EXPECT_TRUE(slot().get_left_end().is_trivial());
}

ring make_ring(std::vector<double> const& c) {
    return ring(idioms::array<double>(static_cast<unsigned int>(c.size()), c.data()));
}

TEST(Ring, SumsCosinesAndSinesInPairs) {
    seeded_random random(35);
    for (unsigned int size : {1u, 2u, 3u, 4u, 9u, 201u}) {
        SCOPED_TRACE(size);
        std::vector<double> c(size);
        double squares = 0, weight = 0;
        for (unsigned int i = 0; i < size; ++i) {
            c[i] = i == 0 ? 20 : random.uniform(-1, 1) / (i + 1);
            squares += c[i] * c[i] / (i == 0 ? 1 : 2);
            weight += std::fabs(c[i]) * (i + 1);
        }
        ring const r = make_ring(c);
        for (double const a : {0.0, 1e-5, 0.7, pi / 2, 2.9, pi, -1.2, 100.0}) {
            long double expected = c[0];
            for (unsigned int i = 1; i < size; ++i) {
                long double const ka = static_cast<long double>((i + 1) / 2) * a;
                expected += c[i] * (i % 2 ? std::cos(ka) : std::sin(ka));
            }
            point const p = r.render_point(a), d = point(false, std::cos(a), std::sin(a));
            EXPECT_NEAR(dot2d(p, d), static_cast<double>(expected), 4e-16 * weight);
            EXPECT_NEAR(r.distance(p + 2 * d), 2, 1e-12);
            EXPECT_NEAR(r.distance(0.5 * p), -0.5 * p.length2d(), 1e-12);
        }
        // Parseval: the mean of r² is c0² and half of every other square.
        EXPECT_NEAR(r.radius(), size % 2 ? std::sqrt(squares) : 0, 1e-12);
        if (size % 2 == 0) continue;
        double const polygon = polygon_area(r.render_ring(4096));
        EXPECT_TRUE(near_at_scale(r.area(), polygon, r.area(), 1e-5, "chords of 1.5e-3 against wave 100"));
        EXPECT_TRUE(r.center() == (size < 3 ? point() : at(c[1], c[2])));
    }
    // cos 4a is 1 at each of the first four samples.
    EXPECT_NEAR(make_ring({0, 0, 0, 0, 0, 0, 0, 3, 0}).radius(), std::sqrt(4.5), 1e-14);
    EXPECT_EQ(make_ring({1, 2}).radius(), 0);
    EXPECT_EQ(ring(5).distance(point()), 0);
    EXPECT_EQ(ring(5).distance(at(0, 0)), -5);
    EXPECT_TRUE(ring().render_ring(-3).is_trivial());
}

TEST(Ring, DensityFollowsToleranceAndHarmonicsAndAnswersNonsense) {
    std::vector<double> const many(101, 1.0);
    struct {
        char const* name;
        ring r;
        double tolerance;
        int expected;
    } const cases[] = {
        // 18 = ceil(pi / 4 / acos(0.999)), 249 = ceil(pi / 4 / acos(1 - 5e-6))
        {"1e-3 of the radius", ring(2), 2e-3, 72},
        {"0", ring(2), 0, 996},
        {"huge", ring(2), infinity, 8},
        {"harmonics", make_ring(many), infinity, 202},
        {"empty", ring(), 1, 0},
        {"no radius", ring(0.0), 1, 8},
        {"no radius, 0", ring(0.0), 0, 996},
        {"negative", ring(-1), 1, 996},
        {"NaN", ring(nan), 1, 996},
        {"tolerance NaN", ring(1), nan, 996},
    };
    for (auto const& c : cases) EXPECT_EQ(c.r.rendering_density(c.tolerance), c.expected) << c.name;
}

}  // namespace
}  // namespace tvmath
