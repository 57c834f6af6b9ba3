#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/gap.h"
#include "tvmath/rectangle.h"
#include "tvmath/ring.h"
#include "tvmath/slot.h"

inline namespace tvmath {
namespace {

transform oblique_map(seeded_random& random) {
    auto const along = [&] { return point(false, random.uniform(-3, 3), random.uniform(-3, 3)); };
    return make_transform(at(0, 0) + 3 * along(), along(), along());
}

// A turn in space, a scale and a shift: the maps under which rectangles and slots keep their kind.
transform similarity(seeded_random& random) {
    double const s = random.log_uniform(0.1, 10);
    return transform::rotation(random.normal(), random.normal(), 1).dilate(s, s, s).translate(1, 2, 3);
}

double difference(CRealRect const& a, CRealRect const& b) {
    return std::max({std::fabs(a.left - b.left), std::fabs(a.right - b.right), std::fabs(a.bottom - b.bottom),
                     std::fabs(a.top - b.top)});
}

TEST(Rectangle, OutlineRunsFromCornerToCornerAlongTheWidthFirst) {
    rectangle const r(4, 2, 0, at(10, 20)), flat(4, 0, 0, at(0, 0));
    struct {
        curve outline;
        std::vector<double> x, y;
    } const cases[] = {
        {r.render_rectangle(0, -5), {8, 12, 12, 8}, {19, 19, 21, 21}},
        {r.render_rectangle(2, 1), {8, 10, 12, 12, 10, 8}, {19, 19, 19, 21, 21, 21}},
        {flat.render_rectangle(1, 1.0, 1), {-3, 3, 3, -3}, {-1, -1, 1, 1}},
        {rectangle().render_rectangle(1, 1.0, 1), {-2, 2, 2, -2}, {-2, -2, 2, 2}},
    };
    for (auto const& c : cases) {
        ASSERT_EQ(c.outline.capacity(), c.x.size());
        for (unsigned int i = 0; i < c.x.size(); ++i) EXPECT_EQ(c.outline[i], at(c.x[i], c.y[i]));
    }
}

TEST(Rectangle, ParallelOutlineKeepsItsDistanceFromObliqueSides) {
    seeded_random random(31);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        rectangle const r(oblique_map(random));
        double const d = random.uniform(-0.5, 2), sharpness = r.area() / (4 * r.size(1) * r.size(2));
        if (sharpness < 0.05) continue;
        curve const corners = r.render_rectangle(), outline = r.render_rectangle(3, vector(1, d), 2)[0];
        unsigned int const first[] = {0, 3, 5, 8, 10};
        for (unsigned int side = 0; side < 4; ++side) {
            point const p = corners[side], run = normalize(corners[(side + 1) % 4] - p);
            double const outward = r.is_left_handed() ? 1 : -1;
            for (unsigned int i = first[side]; i <= first[side + 1]; ++i) {
                EXPECT_NEAR(outward * cross2d(run, outline[i % 10] - p), d, 1e-13 / sharpness);
            }
        }
        transform const t = similarity(random);
        point const corner = rectangle(r * t).render_rectangle(3, d * t.size(1), 2)[5];
        EXPECT_LT(distance3d(corner, outline[5] * t), 1e-12 / sharpness);
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
        lower.append(upper);
        EXPECT_EQ(gap(r).get_bounding_rect(), curve(lower).get_bounding_rect());

        // With right angles in XY, moving the corners along both axes gives the parallel outline.
        rectangle const upright(random.uniform(1, 9), random.uniform(1, 9), random.uniform(-3, 3), at(2, 3));
        transform const t = transform::rotation(random.uniform(-3, 3)).dilate(2).translate(5, 6, 7);
        double const d = random.uniform(0, 3);
        CRealRect const expected = rectangle(upright * t).render_rectangle(1, d, 1).get_bounding_rect();
        EXPECT_LT(difference(upright.get_bounding_rect(t, -d), expected), 1e-13);
    }
}

TEST(Rectangle, QuarterTurnsStartTheSameOutlineAtAnotherCorner) {
    rectangle const r(4, 2, 0.3, at(10, 20, 30));
    for (unsigned int i = 0; i < 44; ++i) {
        int const k = static_cast<int>(i / 4) - 5;
        point const corner = r.render_rectangle()[(i + i / 4 + 3) % 4];
        EXPECT_LT(distance3d(rotate_rectangle(r, k).render_rectangle()[i % 4], corner), 1e-14) << k;
    }
}

TEST(Slot, PathKeepsTheEndRadiusFromTheLineBetweenTheEnds) {
    seeded_random random(33);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        double const r = random.uniform(0.1, 3), length = r + (trial % 10 ? random.uniform(0, 5) : 0);
        double const angle = random.uniform(-3, 3);
        slot const s(length, r, angle, at(random.uniform(-5, 5), random.uniform(-5, 5)));
        curve const path = s.render_bezier(), outline = render(path, true, 64);
        ASSERT_TRUE(outline.capacity() == 384 && path[0] == path[18]);
        double around = 0, twice_area = 0;
        for (unsigned int i = 0; i < 384; ++i) {
            point const p = (outline[i] - s.basis(0)).rotate(-angle), &next = outline[(i + 1) % 384];
            double const beyond = std::max(std::fabs(p.x()) - (length - r), 0.0);
            EXPECT_NEAR(std::hypot(beyond, p.y()), r, 2.8e-4 * r + 1e-14);
            around += distance2d(outline[i], next);
            twice_area += cross2d(outline[i], next);
        }
        EXPECT_NEAR(twice_area / 2, s.area(), 2e-3 * r * r);
        EXPECT_NEAR(around, s.perimeter(), 2e-3 * r);

        transform const t = similarity(random);
        slot const moved(s * t);
        for (unsigned int i = 0; i < 19; ++i) {
            EXPECT_LT(distance3d(moved.render_bezier()[i], path[i] * t), 1e-12);
        }
        for (double const side : {-1, 1}) {
            point const rim = at(0.6, 0.8) * (side < 0 ? moved.get_left_end() : moved.get_right_end());
            EXPECT_NEAR(distance3d(rim, at(side, 0) * moved), moved.semiminor(), 1e-12);
            EXPECT_NEAR((rim / t).z(), 0, 1e-12);  // in the slot's plane
        }
    }
}

// The ends of an oblique slot or of one in space are ellipses; sampled here by their definition.
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
        EXPECT_LT(difference(s.get_bounding_rect(), samples.get_bounding_rect()), 1e-5 * s.size(2));
    }
    EXPECT_EQ(slot(2, 2, 0, at(1, 2)).get_bounding_rect(), CRealRect(-1, 0, 3, 4));  // a circle
    EXPECT_EQ(slot().get_bounding_rect(), CRealRect(-2, -1, 2, 1));
}

TEST(Ring, SumsCosinesAndSinesInPairs) {
    seeded_random random(35);
    for (unsigned int size : {1u, 2u, 3u, 4u, 9u, 201u}) {
        SCOPED_TRACE(size);
        ring r(idioms::array<double>(size, 20.0));
        double squares = 400, weight = 20;
        for (unsigned int i = 1; i < size; ++i) {
            r(i) = random.uniform(-1, 1) / (i + 1);
            squares += r[i] * r[i] / 2;
            weight += std::fabs(r[i]) * (i + 1);
        }
        for (double const a : {0.0, 1e-5, 0.7, pi / 2, 2.9, pi, -1.2, 100.0}) {
            long double expected = 20;
            for (unsigned int i = 1; i < size; ++i) {
                long double const ka = static_cast<long double>((i + 1) / 2) * a;
                expected += r[i] * (i % 2 ? std::cos(ka) : std::sin(ka));
            }
            point const p = r.render_point(a), d = point(false, std::cos(a), std::sin(a));
            EXPECT_NEAR(dot2d(p, d), static_cast<double>(expected), 4e-16 * weight);
            EXPECT_NEAR(r.distance(p + 2 * d), 2, 1e-12);
            EXPECT_NEAR(r.distance(0.5 * p), -0.5 * p.length2d(), 1e-12);
        }
        // Parseval: the mean of r² is c0² and half of every other square.
        EXPECT_NEAR(r.radius(), size % 2 ? std::sqrt(squares) : 0, 1e-12);
        EXPECT_EQ(r.center().is_trivial(), size < 3);
    }
    ring wave(idioms::array<double>(9, 0.0));
    wave(7) = 3;  // cos 4a is 1 at each of the first four samples
    EXPECT_NEAR(wave.radius(), std::sqrt(4.5), 1e-14);
    EXPECT_EQ(ring(5).distance(point()), 0);
    EXPECT_LT(distance2d(ring(5).render_ring(8)[3], at(-std::sqrt(12.5), std::sqrt(12.5))), 1e-14);
    EXPECT_TRUE(ring().render_ring(-3).is_trivial());

    // 72 = 4 ceil(pi / 4 / acos(0.999)), 996 = 4 ceil(pi / 4 / acos(1 - 5e-6))
    EXPECT_EQ(ring(2).rendering_density(2e-3), 72);
    EXPECT_EQ(ring(2).rendering_density(infinity), 8);
    EXPECT_EQ(ring(idioms::array<double>(101, 1.0)).rendering_density(1), 202);
    for (ring const& r : {ring(-1), ring(std::nan(""))}) EXPECT_EQ(r.rendering_density(1), 996);
}

}  // namespace
}  // namespace tvmath
