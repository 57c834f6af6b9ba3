#include "tvmath/intersection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "sampled_zeros.h"
#include "support/seeded_random.h"
#include "tvmath/scalar.h"

namespace {

using points = idioms::array<point>;
constexpr int trials = 500;

point at(double x, double y) {
    return point(true, x, y);
}
point at(double x, double y, double z) {
    return point(true, x, y, z);
}
point along(double x, double y, double z) {
    return point(false, x, y, z);
}
line space_line(point const& middle, point const& half) {
    return line(make_transform(middle, half, along(0, 1, 0), along(0, 0, 1)));
}

bool same_places(points const& a, points const& b, double tolerance) {
    if (a.capacity() != b.capacity()) return false;
    return std::all_of(a.begin(), a.end(), [&](point const& p) {
        return std::any_of(b.begin(), b.end(), [&](point const& q) { return distance3d(p, q) <= tolerance; });
    });
}

// A similar scene: features of size 1 turned, scaled by 1e-3 to 1e5 and moved by some sizes.
struct placement {
    transform map;
    double scale;
};
placement random_placement(seeded_random& random, bool in_space) {
    double const s = random.log_uniform(1e-3, 1e5);
    auto const number = [&] { return random.uniform(-3, 3); };
    transform t = in_space ? transform::rotation(number(), number(), number()).dilate(s, s, s)
                           : transform::rotation(number()).dilate(s);
    t.translate(point(true, s * number(), s * number(), s * number()));
    if (!in_space) t.project2d();
    return {t, s};
}

double coordinate(seeded_random& random) {
    return random.uniform(-1.5, 1.5);
}
point random_place(seeded_random& random) {
    return at(coordinate(random), coordinate(random));
}
point random_space_place(seeded_random& random) {
    return at(coordinate(random), coordinate(random), coordinate(random));
}
point random_direction(seeded_random& random) {
    return along(random.normal(), random.normal(), random.normal());
}
line random_line(seeded_random& random) {
    return line(random_place(random), random_place(random));
}
line random_space_line(seeded_random& random) {
    return space_line(random_space_place(random), random_direction(random));
}
// Oblique half-diameters; some are circles, some stand on the centre of others, some have the same axes.
ellipse random_ellipse(seeded_random& random) {
    unsigned int const kind = random.below(4);
    if (kind == 0) return ellipse(random.uniform(0.2, 1.5), random_place(random));
    if (kind == 1) return ellipse(random.uniform(0.1, 2), random.uniform(0.1, 2), at(0, 0));
    if (kind == 2) return ellipse(1.5, random.uniform(0.03, 1), random_place(random));
    point const u = random_place(random), v = random_place(random);
    if (std::fabs(cross2d(u, v)) < 0.05) return ellipse(1, random_place(random));
    return ellipse(make_transform(random_place(random), u - at(0, 0), v - at(0, 0)));
}
curve random_path(seeded_random& random) {
    curve c(3 * (1 + random.below(3)) + 1);
    for (unsigned int i = 0; i < c.capacity(); ++i) c(i) = random_space_place(random);
    return c;
}
cone random_cone(seeded_random& random) {
    return cone(random_space_place(random), random_space_place(random), random.uniform(0, 1),
                random.uniform(0.1, 1));
}

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

TEST(PointIntersect, OfLinesIsTheMiddleOfTheirShortestConnection) {
    seeded_random random(7);
    for (int trial = 0; trial < trials; ++trial) {
        SCOPED_TRACE(trial);
        double const s = random.log_uniform(1e-3, 1e5);
        point const a = random_space_place(random) * s, u = normalize(random_direction(random));
        point const v = normalize(u + random_direction(random) * random.log_uniform(1e-3, 1));
        point const gap = normalize(cross(u, v)) * random.uniform(0, s);
        line const first = space_line(a + u * (s * coordinate(random)), u);
        line const second = space_line(a + gap + v * (s * coordinate(random)), v);
        // A direction rounded along the gap moves the closest points by gap / sin² of the angle.
        double const tolerance = 1e-14 * s / sqr(cross(u, v));
        EXPECT_LE(distance3d(point_intersect(first, second), a + gap / 2), tolerance);
        EXPECT_LE(distance3d(point_intersect(second, first), a + gap / 2), tolerance);
    }
}

TEST(PointIntersect, GivesWhatIsToldAtTheEdges) {
    line const x = line(at(-1, 0), at(1, 0));
    line const touching = space_line(at(0, 1, 0), along(2, 0, 0));
    cylinder const tube(1, 2, at(0, 0, 0), along(0, 0, 1));
    cone const funnel(at(0, 0, 1), at(0, 0, 2), 1, 2);  // |(x, y)| = z
    ellipse const circle1(1, at(0, 0));
    curve const ring = circle1.render_bezier().promote3d();
    auto const straight = [](double from, double to) {
        curve c(4);
        for (unsigned int i = 0; i < 4; ++i)
            c(i) = at(from + (to - from) * i / 3, (from + (to - from) * i / 3) / 2, 0);
        return c;
    };
    double const root = std::sqrt(0.5), far = std::sqrt(0.8);
    struct {
        char const* name;
        points found;
        points wanted;
    } const cases[] = {
        {"line touches sphere", point_intersect(touching, sphere(1, at(0, 0, 0))), points(2, at(0, 1, 0))},
        {"along an axis", point_intersect(space_line(at(0.5, 0, 0), along(0, 0, 1)), tube), points()},
        {"beside a cylinder", point_intersect(space_line(at(0, 2, 0), along(1, 0, 0)), tube), points()},
        {"parallel to a generator", point_intersect(space_line(at(0, 0, 1), along(1, 0, 1)), funnel),
         points(1, at(-0.5, 0, 0.5))},
        {"a generator", point_intersect(space_line(at(0, 0, 0), along(1, 0, 1)), funnel), points()},
        {"axis of a cone", point_intersect(space_line(at(0, 0, 7), along(0, 0, 1)), funnel),
         points(2, at(0, 0, 0))},
        {"line touches circle", point_intersect(line(at(-1, 1), at(1, 1)), circle1), points(2, at(0, 1, 0))},
        {"circles touch outside", point_intersect(circle1, ellipse(2, at(3, 0))), points(2, at(1, 0, 0))},
        {"circles touch inside", point_intersect(circle1, ellipse(0.5, at(0, 0.5))), points(2, at(0, 1, 0))},
        {"circles apart", point_intersect(circle1, ellipse(1, at(2 + 1e-12, 0))), points()},
        {"concentric circles", point_intersect(circle1, ellipse(2, at(0, 0))), points()},
        {"one ellipse twice", point_intersect(ellipse(2, 1, 0.3), ellipse(1, 2, 0.3 + pi / 2)), points()},
        {"a path of 5 points", point_intersect(x, curve(5, at(0, 0))), points()},
        {"a path of 3 points", point_intersect(curve(3, at(0, 0)), x), points()},
        {"paths of 2D points", point_intersect(circle1.render_bezier(), ring), points()},
        {"paths that touch", point_intersect(ring, ellipse(1, at(2, 0)).render_bezier().promote3d()),
         points(1, at(1, 0, 0))},
        {"straight paths end to end", point_intersect(straight(0, 1), straight(1, 3)),
         points(1, at(1, 0.5, 0))},
        {"straight paths along each other", point_intersect(straight(0, 2), straight(1, 3)), points()},
        {"a path along itself", point_intersect(straight(0, 2), straight(0, 2)), points()},
        {"a line over the joints", point_intersect(line(at(0, 5), at(1, 5.1)), ring), points()},
        {"an empty ellipse", point_intersect(x, ellipse()), points()},
        {"a line without extent", point_intersect(line(at(1, 0), at(1, 0)), circle1), points()},
        {"not a number", point_intersect(ellipse(std::nan(""), at(0, 0)), circle1), points()},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(same_places(c.found, c.wanted, 1e-12)) << c.found.capacity();
    }
    // In the direction of the line; anticlockwise on the first ellipse.
    EXPECT_TRUE(point_intersect(line(at(1, root), at(-1, root)), circle1)[0].x() > 0);
    points const four = point_intersect(ellipse(2, 1, 0), ellipse(1, 2, 0));
    ASSERT_EQ(four.capacity(), 4u);
    double const quadrant[][2] = {{far, far}, {-far, far}, {-far, -far}, {far, -far}};
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_LE(distance3d(four[i], at(quadrant[i][0], quadrant[i][1], 0)), 1e-14);
    }
    // Heights: the mean of z = 0 and of z = x.
    ellipse const tilted(make_transform(at(0, 0, 0), along(1, 0, 1), along(0, 1, 0), along(-1, 0, 1)));
    for (point const& p : point_intersect(tilted, ellipse(1, at(1, 0)))) EXPECT_NEAR(p.z(), p.x() / 2, 1e-15);
    EXPECT_EQ(point_intersect(space_line(at(0, 0, 4), along(1, 0, 0)), tilted)[0], at(-1, 0, 1.5));
}

TEST(PointIntersect, FailsByATrivialPointForParallels) {
    line const x(at(-1, 0), at(1, 0));
    EXPECT_TRUE(point_intersect(x, line(at(-1, 1), at(1, 1))).is_trivial());
    EXPECT_TRUE(point_intersect(x, line(at(-1, 1), at(1, std::nextafter(1.0, 2.0)))).is_trivial());
    EXPECT_FALSE(point_intersect(x, line(at(-1, 1), at(1, 1 + 1e-7))).is_trivial());
    EXPECT_TRUE(point_intersect(line(), x).is_trivial());
    EXPECT_EQ(
        point_intersect(space_line(at(0, 0, 0), along(1, 0, 0)), space_line(at(0, 0, 2), along(0, 1, 0))),
        at(0, 0, 1));
    plane const level(at(0, 0, 1), along(0, 0, 1));
    EXPECT_TRUE(point_intersect(x, level).is_trivial());
    EXPECT_EQ(line_intersect(level, plane(at(0, 0, 3), along(0, 0, 1))).length(), 0);
}

TEST(Sections, FailByANullShape) {
    plane const level(at(0, 0, 0), along(0, 0, 1)), upright(at(0, 0, 0), along(1, 0, 0));
    plane const tilted(at(0, 0, 0), along(0, 1, 1));
    cylinder const tube(2, 2, at(0, 0, 0), along(0, 0, 1));
    cone const funnel(at(0, 0, 1), at(0, 0, 2), 1, 2);
    EXPECT_TRUE(circle_intersect(level, sphere(1, at(0, 0, 2))).is_trivial());
    EXPECT_EQ(circle_intersect(level, sphere(1, at(0, 0, 1))).radius(), 0);
    EXPECT_TRUE(circle_intersect(upright, tube).is_trivial());
    EXPECT_NEAR(circle_intersect(tilted, tube).radius(), 2, 1e-15);
    EXPECT_TRUE(circle_intersect(plane(transform(0.0, 1.0)), funnel).is_trivial());
    circle const beyond = circle_intersect(plane(at(0, 0, -3), along(0, 0, 1)), funnel);
    EXPECT_NEAR(beyond.radius(), 3, 1e-15);
    EXPECT_NEAR(beyond.direction(3).z(), -1, 1e-15);
    circle const ring = circle_intersect(funnel, tube);
    EXPECT_NEAR(ring.radius(), 2, 1e-15);
    EXPECT_NEAR(ring.basis(0).z(), 2, 1e-15);
    EXPECT_TRUE(circle_intersect(tube, cone(at(0, 0, 0), at(0, 0, 1), 1, 1)).is_trivial());
    EXPECT_TRUE(ellipse_intersect(upright, tube).is_trivial());
    EXPECT_TRUE(ellipse_intersect(plane(at(0, 0, 1), along(1, 0, 1)), funnel).is_trivial());  // a parabola
    EXPECT_TRUE(ellipse_intersect(plane(at(0, 0, -1), along(0, 0, 1)), funnel).is_trivial());
    // Neither axis flips when a slight tilt about X changes its sign.
    for (double const tilt : {-1e-3, 1e-3}) {
        ellipse const e = ellipse_intersect(plane(at(0, 0, 0), along(0, tilt, 1)), tube);
        EXPECT_NEAR(e.direction(2).x(), 1, 1e-12);
    }
}

}  // namespace
