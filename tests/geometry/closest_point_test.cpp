#include "geometry/closest_point.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "geometry/closest_ellipse.h"
#include "geometry/closest_path.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

double distance_of(xyz const& a, xyz const& b) {
    return length(a - b);
}

TEST(ClosestOnEllipse, AgreesWithPublishedFeet) {
    // (x / 3)² + (y / 2)² = 1. Points and distances to 6 digits: J. Burkardt, geometry library, test output.
    // The feet are the roots of the same equation in 60 digits.
    double const table[][5] = {
        {-1.2, 3.9, 2.012360, -0.82368920497577747, 1.9231381869349057},
        {0.0, 3.0, 1.000000, 0, 2},
        {2.0, 1.5, 0.007981, 1.9959234559300607, 1.4931383143594200},
        {2.4, 1.2, 0.000000, 2.4, 1.2},
        {4.0, 0.0, 1.000000, 3, 0},
        {4.4, -0.3, 1.416401, 2.9920269297727737, -0.14571639351762024},
        {5.2, -0.9, 2.312465, 2.9581993473730360, -0.33270381970338063},
    };
    true_ellipse const e(ellipse(3, 2, 0));
    for (auto const& [x, y, distance, foot_x, foot_y] : table) {
        xyz const foot = e.closest({x, y, 0});
        EXPECT_LT(distance_of(foot, {foot_x, foot_y, 0}), 1e-15) << x;
        EXPECT_NEAR(distance_of(foot, {x, y, 0}), distance, 6e-7) << x;
    }
}

TEST(ClosestOnEllipse, StandsHardCasesWorkedByHand) {
    double const r3 = std::sqrt(3.0);
    struct {
        char const* name;
        double a, b, x, y, foot_x, foot_y;
    } const cases[] = {
        {"centre", 2, 1, 0, 0, 0, 1},
        {"axes out of order", 1, 2, 0.25, 0, 1, 0},
        {"short axis", 2, 1, 0, -0.25, 0, -1},
        {"long axis, outside the evolute", 2, 1, -1.75, 0, -2, 0},
        {"cusp of the evolute", 2, 1, 1.5, 0, 2, 0},
        {"long axis, inside the evolute", 2, 1, 0.75, 0, 1, r3 / 2},  // cos t = a x / (a² - b²)
        {"circle", 2, 2, 3, 4, 1.2, 1.6},
        {"flat", 2, 0, 1, 5, 1, 0},
        {"flat, beyond its end", 2, 0, -3, 1, -2, 0},
        {"nearly flat", 1, 1e-14, 0.5, 1e-9, 0.5, r3 / 2 * 1e-14},
        {"point", 0, 0, 3, 4, 0, 0},
        {"tiny", 2e-100, 1e-100, 0.75e-100, 0, 1e-100, r3 / 2 * 1e-100},
        {"huge", 2e100, 1e100, 0.75e100, 0, 1e100, r3 / 2 * 1e100},
        {"far point", 2, 1, 3e200, 4e200, 1.2 / std::sqrt(0.52), 0.4 / std::sqrt(0.52)},  // (a² x, b² y)
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        xyz const foot = true_ellipse(ellipse(c.a, c.b, 0)).closest({c.x, c.y, 0});
        double const tolerance = 1e-15 * std::max(c.a, c.b);
        EXPECT_NEAR(foot.x, c.foot_x, tolerance);
        EXPECT_NEAR(foot.y, c.foot_y, std::min(tolerance, 1e-9 * c.b + 1e-300));
    }
    // An ulp of the coordinates is 2^-22 there; the answer is within it.
    point const far = at(0x1p30, -0x1p30);
    xyz const foot = true_ellipse(ellipse(2, 1, far)).closest({0x1p30 + 0.75, -0x1p30, 0});
    EXPECT_LE(distance_of(foot, {0x1p30 + 1, -0x1p30 + r3 / 2, 0}), 0x1p-22);
}

curve path_of(std::vector<point> const& controls) {
    return idioms::array<point>(static_cast<unsigned int>(controls.size()), controls.data());
}

TEST(ClosestOnPath, StandsHardCasesWorkedByHand) {
    // y = x² from -1 to 1, and the same half way down in an even cubic.
    std::vector<point> const parabola = {at(-1, 1), at(-1.0 / 3, -1.0 / 3), at(1.0 / 3, -1.0 / 3), at(1, 1)};
    std::vector<point> const dot_only(4, at(2, 3)), straight = {at(0, 0), at(1, 0), at(2, 0), at(3, 0)};
    std::vector<point> const broken = {at(0, 0), at(1, 0), point(), at(3, 0), at(4, 0), at(5, 0), at(6, 0)};
    struct {
        char const* name;
        std::vector<point> controls;
        point p, foot;
        double tolerance;
    } const cases[] = {
        {"beyond the end, exactly the end", parabola, at(5, 5), at(1, 1), 0},
        {"regular", parabola, at(3, 0), at(1, 1), 1e-15},               // 4 x³ + 2 x - 6 = 0
        {"centre of curvature", parabola, at(0, 0.5), at(0, 0), 1e-5},  // a triple zero, 1e-16 to the third
        {"one point", dot_only, at(0, 0), at(2, 3), 0},
        {"straight", straight, at(1.25, 7), at(1.25, 0), 1e-15},
        {"span with a trivial point left out", broken, at(0, 1), at(3, 0), 0},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        xyz const foot = span_path(path_of(c.controls)).closest(xyz(c.p));
        EXPECT_LE(distance_of(foot, xyz(c.foot)), c.tolerance);
    }
    EXPECT_TRUE(span_path(path_of({at(0, 0), at(1, 0)})).is_empty());
    // Every point of a circle is nearest to its centre; the rational quarter circle is one exactly.
    nurb quarter(3, 3);
    double const w = std::sqrt(0.5);
    TQ3RationalPoint4D const controls[] = {{1, 0, 0, 1}, {w, w, 0, w}, {0, 1, 0, 1}};
    for (unsigned int i = 0; i < 3; ++i) quarter.set_control_point(i, controls[i]);
    for (unsigned int i = 3; i < 6; ++i) quarter.set_knot(i, 1);
    EXPECT_NEAR(length(span_path(quarter).closest({0, 0, 0})), 1, 1e-15);
    EXPECT_LT(distance_of(span_path(quarter).closest({3, 4, 1}), {0.6, 0.8, 0}), 1e-15);
    // The same far away: an ulp of the coordinates is 2^-22 there.
    xyz const far = span_path(quarter + point(true, 0x1p30, 0, 0)).closest({0x1p30 + 3, 4, 1});
    EXPECT_LE(distance_of(far, {0x1p30 + 0.6, 0.8, 0}), 0x1p-22);
}

}  // namespace
}  // namespace tvmath
