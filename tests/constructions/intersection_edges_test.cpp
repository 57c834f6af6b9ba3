#include <gtest/gtest.h>

#include <string>

#include "intersection_features.h"

namespace {

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
