#include <gtest/gtest.h>

#include <limits>

#include "distance_features.h"
#include "support/relative.h"

inline namespace tvmath {
namespace {

double const nan = std::numeric_limits<double>::quiet_NaN();

std::string text(point const& p) {
    if (p.is_trivial()) return "trivial";
    return std::to_string(p.x()) + " " + std::to_string(p.y()) +
           (p.is_3d() ? " " + std::to_string(p.z()) : "");
}

TEST(NearestPoint, OfCasesWorkedByHand) {
    std::vector<point> const list = {point(), at(3, 4), at(nan, 0), at(-3, 4, 9), at(6, 1), at(5, 0, 0)};
    line const l(at(0, 0), at(2, 2)), along_z(distance_fit(at(1, 2, 0), at(1, 2, 5)));
    line const slope = distance_fit(at(0, 0, 0), at(3, 0, 4));
    plane const oblique(
        make_transform(at(0, 0, 1), point(false, 2, 0, 0), point(false, 5, 3, 0), point(false, 0, 0, 1)));
    plane const flat(
        make_transform(at(0, 0, 1), point(false, 2, 0, 0), point(false, 4, 0, 0), point(false, 0, 0, 1)));
    rectangle const r(4, 2, 0, at(10, 10));
    ellipse const e(3, 1, 0, at(0, 0));
    curve const arch = [] {
        curve c(4);
        c(0) = at(0, 0), c(1) = at(0, 4), c(2) = at(4, 4), c(3) = at(4, 0);  // top (2, 3)
        return c;
    }();
    struct {
        char const* name;
        point found, expected;
    } const cases[] = {
        {"first of equals", point_nearest_on_2d(at(0, 0), list), at(3, 4)},
        {"z does not count in 2D", point_farthest_on_2d(at(0, 0), list), at(6, 1)},
        {"it does in 3D", point_farthest_on_3d(at(0, 0), list), at(-3, 4, 9)},
        {"trivial points alone", point_nearest_on_2d(at(0, 0), {point(), point()}), point()},
        {"empty list", point_farthest_on_3d(at(0, 0), {}), point()},
        {"of no point", point_nearest_on_3d(point(), list), point()},
        {"either side of a line", point_nearest_on_2d(l, {at(9, 5), at(5, 9), at(8, 5)}), at(8, 5)},
        {"the same, first", point_farthest_on_2d(l, {at(9, 5), at(5, 9), at(8, 5)}), at(9, 5)},
        {"a line along Z in 3D", point_nearest_on_3d(along_z, list), at(3, 4)},
        {"a line along Z in 2D", point_nearest_on_2d(along_z, list), point()},
        {"plane", point_nearest_on_3d(oblique, list), at(3, 4)},
        {"plane, farthest", point_farthest_on_3d(oblique, list), at(-3, 4, 9)},
        {"plane without normal", point_nearest_on_3d(flat, list), point()},
        {"beyond the end of a segment", point_nearest_on(at(7, 9), l), at(8, 8)},
        {"foot in XY on a sloped line", point_nearest_on(at(3, 7, 50), slope), at(3, 0, 4)},
        {"foot in space on it", point_nearest3d_on(at(-4, 7, 3), slope), at(0, 0, 0)},
        {"no foot in XY", point_nearest_on(at(3, 7), along_z), point()},
        {"oblique axes", point_nearest_on(at(7, -8, 9), oblique), at(7, -8, 1)},
        {"no plane", point_nearest3d_on(at(7, -8, 9), flat), point()},
        {"outline from within", point_nearest_on(at(10, 10.5), r), at(10, 11)},
        {"from its centre", point_nearest_on(at(10, 10), r), at(10, 9)},
        {"corner", point_nearest_on(at(0, 50), r), at(8, 11)},
        {"on the long axis within the evolute's end", point_nearest_on(at(2.9, 0), e), at(3, 0)},
        {"farthest from the short axis", point_farthest_on(at(0, 9), e), at(0, -1)},
        {"no ellipse", point_nearest_on(at(0, 9), ellipse()), point()},
        {"a line beside", point_nearest_on(line(at(-5, 4), at(5, 4)), e), at(0, 1)},
        {"the far side", point_farthest_on(line(at(-5, 4), at(5, 4)), e), at(0, -1)},
        {"a crossing line: an extreme", point_nearest_on(line(at(-5, 0.5), at(5, 0.5)), e), at(0, 1)},
        {"top of a path", point_nearest_on(at(2, 9, 0), arch), at(2, 3)},
        {"its end", point_farthest_on(at(2.5, 9, 0), arch), at(0, 0)},
        {"2D point and path", point_nearest_on(at(2, 9), arch), point()},
        {"path of a wrong size", point_nearest_on(at(2, 9, 0), curve(5, at(1, 1))), point()},
        {"path of one point", point_nearest_on(at(2, 9, 0), curve(at(1, 1))), point()},
        {"line over a path", point_nearest_on(line(at(0, 5), at(1, 5)), arch), at(2, 3)},
        {"line over a path, farthest", point_farthest_on(line(at(0, 5), at(1, 5)), arch), at(0, 0)},
        {"list and path", point_nearest_on_2d(arch, {at(2, 3), at(2, 4, 0), at(2, 2.5, 0)}), at(2, 2.5, 0)},
        {"not a number", point_nearest_on(at(nan, 0, 0), arch), point()},
        {"nor here", point_farthest_on(at(nan, 0), e), point()},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.found.dimension(), c.expected.dimension()) << c.name;
        EXPECT_LE(distance3d(c.found, c.expected), 1e-14) << c.name << ": " << text(c.found);
    }
    // From the centre an end of the short axis, either one.
    for (ellipse const& turned : {e, ellipse(e * transform::rotation(0.3, 0.4, 0.5))}) {
        EXPECT_NEAR(distance3d(point_nearest3d_on(at(0, 0, 0), turned), at(0, 0, 0)), 1, 1e-15);
    }
}

// `found` is no worse than all the samples.
void expect_extreme(point const& p, point const& found, std::vector<point> const& path, bool near,
                    measure distance, double size) {
    ASSERT_FALSE(found.is_trivial());
    double const d = distance(p, found), best = extreme_distance(p, path, near, distance);
    double const rounding = 4e-15 * (size + d);
    EXPECT_TRUE(near ? d <= best + rounding : d >= best - rounding) << d << " against " << best;
}

TEST(NearestPoint, OfAnEllipseIsNotBeatenAndIsStationary) {
    for_random_features(1, 2000, [](random_features make) {
        ellipse const e = make.oval();
        point const places[] = {make.place(), e.basis(0), e.basis(0) + make.random.unit() * e.basis(1)};
        point const p = places[make.random.below(3)];
        std::vector<point> const path = samples(e, 300);
        double const size = 10 * make.scale + p.length3d();
        struct {
            point found;
            bool near;
            measure distance;
        } const answers[] = {{point_nearest_on(p, e), true, distance2d},
                             {point_farthest_on(p, e), false, distance2d},
                             {point_nearest3d_on(p, e), true, distance3d}};
        for (auto const& a : answers) {
            expect_extreme(p, a.found, path, a.near, a.distance, size);
            // In the plane of the ellipse the inverse map tells the parameter.
            if (e.is_3d() || e.size(2) < 1e-2 * e.size(1)) continue;
            point const unit = a.found / e;
            double const t = unit.angle2d();
            EXPECT_NEAR(unit.length2d(), 1, 1e-10);
            point const tangent = std::cos(t) * e.basis(2) - std::sin(t) * e.basis(1);
            EXPECT_LE(std::fabs(dot2d(tangent, a.found - p)), 1e-11 * size * size);
        }
    });
}

TEST(NearestPoint, OfAPathIsNotBeatenAndStaysWithItsList) {
    for_random_features(2, 1000, [](random_features make) {
        curve const c = make.path(1 + make.random.below(6));
        std::vector<point> const path = samples(c, 100);
        std::vector<point> list;
        for (int i = 0; i < 20; ++i) {
            list.push_back(make.place(true));
            if (!make.solid) list.back().z() = 0;
        }
        double const size = 30 * make.scale;
        point best_near, best_far;
        double nearest = 1e300, farthest = 0;
        for (point const& p : list) {
            point const near = point_nearest_on(p, c), far = point_farthest_on(p, c);
            expect_extreme(p, near, path, true, distance3d, size);
            expect_extreme(p, far, path, false, distance3d, size);
            if (distance3d(p, near) < nearest) best_near = p;
            nearest = std::min(nearest, distance3d(p, near));
            if (distance3d(p, far) > farthest) best_far = p;
            farthest = std::max(farthest, distance3d(p, far));
        }
        EXPECT_TRUE(point_nearest_on_2d(c, list) == best_near);
        EXPECT_TRUE(point_farthest_on_2d(c, list) == best_far);
    });
}

// A line that does not cross is as far from the path as no sampled point; the farthest in any case.
TEST(NearestPoint, FromALineIsNotBeaten) {
    for_random_features(3, 1000, [](random_features make) {
        ellipse const e = make.oval();
        curve const c = make.path(1 + make.random.below(6));
        line const l(make.place(), make.place());
        point const normal = normalize(point(l.basis(1)).rotate_90());
        auto const check = [&](point const& near, point const& far, std::vector<point> const& path) {
            auto const offset = [&](point const& q) { return dot2d(normal, q - l.basis(0)); };
            double low = 1e300, high = -1e300;
            for (point const& q : path) {
                low = std::min(low, offset(q));
                high = std::max(high, offset(q));
            }
            double const rounding = 1e-13 * (30 * make.scale);
            EXPECT_GE(std::fabs(offset(far)), std::max(-low, high) - rounding);
            if (low > 0 || high < 0) {
                EXPECT_LE(std::fabs(offset(near)), std::max(low, -high) + rounding);
            }
        };
        check(point_nearest_on(l, e), point_farthest_on(l, e), samples(e, 300));
        check(point_nearest_on(l, c), point_farthest_on(l, c), samples(c, 100));
    });
}

// At 1e7 coordinates keep 2e-9; the answer about the origin, moved, is as good as that.
TEST(NearestPoint, FarFromTheOriginKeepsTheDigitsOfTheData) {
    ellipse e(5, 2, 0, at(0, 0));
    curve c = e.render_bezier();
    point const p = at(3, 4), shift(false, 1e7, -1e7), solid = at(3, 4, 0), solid_shift(false, 1e7, -1e7, 0);
    point const on_ellipse = point_nearest_on(p, e), far_on_ellipse = point_farthest_on(p, e);
    point const on_path = point_nearest_on(solid, c);
    e.translate(1e7, -1e7);
    c += shift;
    EXPECT_LE(distance2d(point_nearest_on(p + shift, e), on_ellipse + shift), 4e-9);
    EXPECT_LE(distance2d(point_farthest_on(p + shift, e), far_on_ellipse + shift), 4e-9);
    EXPECT_LE(distance2d(point_nearest_on(solid + solid_shift, c), on_path + shift), 8e-9);
}

}  // namespace
}  // namespace tvmath
