#include <gtest/gtest.h>

#include <functional>

#include "intersection_features.h"
#include "sampled_zeros.h"

namespace {

// What every pair must hold in every placement: as many points as counted with samples, or with 40 times as
// many where those were too far apart (-1: too near to a touch to say), all of them on both features within
// `tolerance` of the size, and the same places after a motion.
template <class A, class B>
void expect_meeting(A const& a, B const& b, std::function<int(int)> const& count, double tolerance,
                    placement const& p, std::function<double(point const&)> const& off_both) {
    points const found = point_intersect(a, b), swapped = point_intersect(b, a);
    int counted = count(1);
    if (counted != static_cast<int>(found.capacity())) counted = count(40);
    if (counted < 0) return;
    ASSERT_EQ(found.capacity(), static_cast<unsigned int>(counted));
    EXPECT_TRUE(same_places(found, swapped, 1e-9));
    for (point const& q : found) {
        ASSERT_TRUE(q.is_3d() && q.is_location());
        EXPECT_LE(off_both(q), tolerance);
    }
    A moved_a = a;
    B moved_b = b;
    moved_a *= p.map;
    moved_b *= p.map;
    points moved = point_intersect(moved_a, moved_b);
    EXPECT_EQ(moved.capacity(), found.capacity());
    for (unsigned int i = 0; i < moved.capacity(); ++i) moved(i) /= p.map;
    for (point const& q : moved) EXPECT_LE(off_both(q), 100 * tolerance) << "scale " << p.scale;
}

double off_line(line const& l, point const& p) {
    return std::fabs(cross2d(p - l.basis(0), l.direction()));
}
double off_ellipse(ellipse const& e, point const& p) {
    return std::fabs((p / e).length2d() - 1);
}
double off_space_line(line const& l, point const& p) {
    return cross(p - l.basis(0), l.direction()).length3d();
}
point on_ellipse(ellipse const& e, double t) {
    return e.basis(0) + e.basis(1) * std::cos(2 * pi * t + 0.1) + e.basis(2) * std::sin(2 * pi * t + 0.1);
}
double height_over(line const& l, point const& p) {
    return cross2d(l.direction(), p - l.basis(0));
}

TEST(PointIntersect, FindsAllPointsOfLinesAndEllipses) {
    seeded_random random(1);
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE(trial);
        line const l = random_line(random);
        ellipse const e = random_ellipse(random);
        auto const count = [&](int fine) {
            return sampled_zeros([&](double t) { return height_over(l, on_ellipse(e, t)); }, 60 * fine,
                                 1e-12);
        };
        expect_meeting(l, e, count, 1e-11, random_placement(random, false),
                       [&](point const& p) { return off_line(l, p) + off_ellipse(e, p); });
    }
}

TEST(PointIntersect, FindsAllPointsOfEllipses) {
    seeded_random random(2);
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE(trial);
        ellipse const a = random_ellipse(random), b = random_ellipse(random);
        auto const inside = [&](double t) { return (on_ellipse(a, t) / b).length2d() - 1; };
        expect_meeting(
            a, b, [&](int fine) { return sampled_zeros(inside, 240 * fine, 1e-10); }, 1e-10,
            random_placement(random, false),
            [&](point const& p) { return off_ellipse(a, p) + off_ellipse(b, p); });
    }
}

TEST(PointIntersect, FindsAllPointsOfPathsWithLinesAndEllipses) {
    seeded_random random(3);
    for (int trial = 0; trial < trials / 5; ++trial) {
        SCOPED_TRACE(trial);
        line const l = random_line(random);
        ellipse const e = random_ellipse(random);
        curve const c = random_path(random);
        placement const p = random_placement(random, false);
        int const samples = 80 * static_cast<int>(c.capacity() / 3);
        auto const height = [&](double t) { return height_over(l, path_point(c, t)); };
        expect_meeting(
            l, c, [&](int fine) { return sampled_zeros(height, samples * fine, 1e-12); }, 1e-7, p,
            [&](point const& q) {
                return 1e4 * off_line(l, q) +
                       path_distance(c, q);  // a ternary search keeps half of the digits
            });
        auto const inside = [&](double t) { return (path_point(c, t) / e).length2d() - 1; };
        expect_meeting(
            e, c, [&](int fine) { return sampled_zeros(inside, samples * fine, 1e-10); }, 1e-7, p,
            [&](point const& q) { return 1e3 * off_ellipse(e, q) + path_distance(c, q); });
    }
}

// Crossings of two polylines along the paths. Where the paths nearly touch, finer polylines
// have to settle it.
int polyline_crossings(curve const& a, curve const& b, unsigned int steps) {
    curve const p = render(a, false, steps), q = render(b, false, steps);
    int count = 0;
    for (unsigned int i = 0; i + 1 < p.capacity(); ++i) {
        point const d = p[i + 1] - p[i];
        double last = cross2d(d, q[0] - p[i]);
        for (unsigned int j = 0; j + 1 < q.capacity(); ++j) {
            double const next = cross2d(d, q[j + 1] - p[i]);
            bool const across = (last < 0) != (next < 0);
            last = next;
            if (!across) continue;
            point const e = q[j + 1] - q[j];
            if ((cross2d(e, p[i] - q[j]) < 0) != (cross2d(e, p[i + 1] - q[j]) < 0)) ++count;
        }
    }
    return count;
}

TEST(PointIntersect, FindsAllPointsOfPaths) {
    seeded_random random(4);
    for (int trial = 0; trial < trials / 5; ++trial) {
        SCOPED_TRACE(trial);
        curve const a = random_path(random), b = random_path(random);
        placement p = random_placement(random, false);
        p.scale = std::max(p.scale, 0.1);  // below, places of 1e-7 grow into each other
        p.map = transform::rotation(1.0).dilate(p.scale);
        expect_meeting(
            a, b, [&](int fine) { return polyline_crossings(a, b, 100u * static_cast<unsigned int>(fine)); },
            1e-7, p, [&](point const& q) { return path_distance(a, q) + path_distance(b, q); });
    }
}

TEST(PointIntersect, FindsAllPointsOfLinesAndRoundSolids) {
    seeded_random random(5);
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE(trial);
        line const l = random_space_line(random);
        placement const p = random_placement(random, true);
        sphere const s(random.uniform(0.1, 2), random_space_place(random));
        cylinder const c(random.uniform(0.1, 2), 1, random_space_place(random), random_direction(random));
        cone const k = random_cone(random);
        auto const radius_at = [](point const& q, point const& o, point const& axis) {
            return cross(q - o, normalize(axis)).length3d();
        };
        auto const off_sphere = [&](point const& q) { return distance3d(q, s.basis(0)) - s.radius(); };
        auto const off_cylinder = [&](point const& q) {
            return radius_at(q, c.basis(0), c.basis(3)) - c.radius();
        };
        auto const off_cone = [&](point const& q) {
            double const r = k.base_radius + k.slope() * dot(q - k.base, k.axis);
            return radius_at(q, k.base, k.axis) - std::fabs(r);
        };
        // Along the line in steps that shrink towards the middle, out to 1e4.
        auto const counted = [&](auto const& off, int fine) {
            auto const f = [&](double t) {
                double const u = std::sinh(20 * t - 10);
                return off(l.basis(0) + l.direction() * u) / (1 + std::fabs(u));
            };
            return sampled_zeros(f, 800 * fine, 1e-9);
        };
        auto const on_both = [&](auto const& off) {
            return [&l, off](point const& q) {
                return (off_space_line(l, q) + std::fabs(off(q))) / (1 + q.length3d());
            };
        };
        expect_meeting(
            l, s, [&](int fine) { return counted(off_sphere, fine); }, 1e-13, p, on_both(off_sphere));
        expect_meeting(
            l, c, [&](int fine) { return counted(off_cylinder, fine); }, 1e-12, p, on_both(off_cylinder));
        // In |r| the vertex is a corner, not a zero.
        expect_meeting(
            l, k, [&](int fine) { return counted(off_cone, fine); }, 1e-11, p, on_both(off_cone));
    }
}

TEST(Sections, LieOnBothFeatures) {
    seeded_random random(6);
    int sections = 0;
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE(trial);
        placement const m = random_placement(random, true);
        plane const p = plane(plane(random_space_place(random), random_direction(random)) * m.map);
        cylinder const c =
            cylinder(cylinder(1, 3, random_space_place(random), random_direction(random)) * m.map);
        cone k = random_cone(random);
        k *= m.map;
        sphere const s = sphere(sphere(1.5, random_space_place(random)) * m.map);
        auto const off_plane = [&](point const& q) { return std::fabs(dot(q - p.basis(0), p.normal())); };
        auto const rim = [](ellipse const& e) { return e.is_trivial() ? points() : e.render_ellipse(7); };
        for (point const& q : rim(circle_intersect(p, s))) {
            EXPECT_LE(off_plane(q) + std::fabs(distance3d(q, s.basis(0)) - s.radius()), 1e-13 * m.scale);
        }
        ellipse const cut = ellipse_intersect(c, p);
        EXPECT_FALSE(cut.is_trivial());
        double const reach = cut.semimajor() + 5 * m.scale;
        for (point const& q : rim(cut)) {
            double const r = cross(q - c.basis(0), c.direction(3)).length3d();
            EXPECT_LE(off_plane(q) + std::fabs(r - c.radius()), 1e-13 * reach);
        }
        EXPECT_FALSE(cut.is_left_handed());
        EXPECT_NEAR(cut.dot(1, 2), 0, 1e-13 * reach * reach);
        ellipse const conic = ellipse_intersect(p, k);
        double const size = conic.semimajor() + 5 * m.scale;
        for (point const& q : rim(conic)) {
            double const r = cross(q - k.base, k.axis).length3d();
            double const wanted = k.base_radius + k.slope() * dot(q - k.base, k.axis);
            EXPECT_LE(off_plane(q) + std::fabs(r - wanted), 1e-12 * size * size / m.scale);
            ++sections;
        }
        line const common = line_intersect(p, plane(c.basis(0), c.basis(1)));
        for (double const end : {-1.0, 1.0}) {
            point const q = common.basis(0) + common.basis(1) * end;
            EXPECT_LE(off_plane(q) + std::fabs(dot(q - c.basis(0), c.direction(1))),
                      1e-12 * (size + common.length()));
        }
        point const pierced = point_intersect(p, line(common * transform::rotation(0.3, 0.2, 0.1)));
        EXPECT_LE(off_plane(pierced), 1e-12 * (m.scale + pierced.length3d()));
    }
    EXPECT_GT(sections, trials);
}

}  // namespace
