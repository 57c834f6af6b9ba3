#include "tvmath/flatness_corrector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr unsigned int width = 640, height = 480;
constexpr double pixel = 0.005;
double const nan = std::numeric_limits<double>::quiet_NaN();

flatness_corrector random_corrector(seeded_random& random, std::uint32_t order) {
    flatness_corrector c;
    c.order = order;
    c.x_scale = 2.0 / width;
    c.y_scale = 2.0 / height;
    c.coefficients = vector((order + 1) * (order + 2) / 2);
    for (unsigned int i = 0; i < dim(c.coefficients); ++i) c.coefficients(i) = random.uniform(-1, 1);
    return c;
}

// Focus heights on a grid of `n` by `n` over the screen.
std::vector<point> surface(unsigned int n, std::function<double(double, double)> const& z) {
    std::vector<point> points;
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j < n; ++j) {
            double const x = width * (i / (n - 1.0) - 0.5), y = height * (j / (n - 1.0) - 0.5);
            points.emplace_back(true, x, y, z(x, y));
        }
    }
    return points;
}

flatness_corrector fitted(std::vector<point> const& points, double z_nominal, unsigned int max_order) {
    transform const to_machine = transform::dilation(pixel, pixel, 1.0) * transform::rotation(0.3, 0.0, 0.0) *
                                 transform::translation(point(true, 800, -300, 0));
    return flatness_corrector::fit(width, height, points, z_nominal, to_machine, screen_corrector(),
                                   max_order);
}

// T(k, cos a) = cos(k a), whose slope is k sin(k a) / sin a. 40: beyond the room in the frame.
TEST(FlatnessCorrector, ValueSlopeAndCutFollowTheCosines) {
    seeded_random random(1);
    for (unsigned int order : {0u, 1u, 2u, 3u, 6u, 40u}) {
        flatness_corrector const c = random_corrector(random, order);
        for (int trial = 0; trial < 50; ++trial) {
            double const a = random.uniform(0.3, 2.8), b = random.uniform(0.3, 2.8);
            double value = 0, dx = 0, dy = 0;
            for (unsigned int d = 0, i = 0; d <= order; ++d) {
                for (unsigned int j = 0; j <= d; ++j, ++i) {
                    unsigned int const k = d - j;
                    value += c.coefficients[i] * std::cos(k * a) * std::cos(j * b);
                    dx += c.coefficients[i] * k * std::sin(k * a) / std::sin(a) * std::cos(j * b);
                    dy += c.coefficients[i] * j * std::sin(j * b) / std::sin(b) * std::cos(k * a);
                }
            }
            point const p(true, 320 * std::cos(a), 240 * std::cos(b));
            double const rounding = 1e-15 * (order + 1.0) * (order + 1) * (order + 1);  // k² in T(k), k terms
            EXPECT_NEAR(c.get_focus_correction(p), value, rounding);
            flatness_row_corrector const row = c.get_focus_correction_at_y(p.y());
            EXPECT_EQ(row.order, order);
            EXPECT_NEAR(row.get_focus_correction_at_x(p.x()), value, rounding);
            point const slope = c.get_focus_correction_derivative(p);
            EXPECT_TRUE(slope.is_direction() && slope.is_2d());
            EXPECT_NEAR(slope.x(), dx / 320, rounding * order / 10);
            EXPECT_NEAR(slope.y(), dy / 240, rounding * order / 10);
        }
    }
}

TEST(FlatnessCorrector, AddsToZWhatItTakesOffAgain) {
    seeded_random random(2);
    flatness_corrector c = random_corrector(random, 4), none;
    double const here = c.get_focus_correction(point(true, 10, 20)),
                 middle = c.get_focus_correction(point(true, 0, 0));
    struct {
        point p, applied, removed;
    } const cases[] = {
        {point(true, 10, 20), point(true, 10, 20, here), point(true, 10, 20, -here)},
        {point(true, 10, 20, 5), point(true, 10, 20, 5 + here), point(true, 10, 20, 5 - here)},
        {point(false, 10, 20, 5), point(false, 10, 20, 5 + here), point(false, 10, 20, 5 - here)},
        {point(), point(true, 0, 0, middle), point(true, 0, 0, -middle)},
    };
    for (auto const& k : cases) {
        EXPECT_TRUE(k.p * c == k.applied && k.p / c == k.removed);
        EXPECT_TRUE(k.p * none == k.p && k.p / none == k.p);
    }
    EXPECT_EQ(c.get_focus_correction(point()), 0.0);
    EXPECT_TRUE(c.get_focus_correction_derivative(point()) == point(false, 0, 0));
    flatness_corrector const before = c;
    c.translate_correction(0.25);
    none.translate_correction(0.25);
    EXPECT_NEAR(c.get_focus_correction(point(true, 10, 20)), here + 0.25, 1e-15);
    EXPECT_EQ(before.get_focus_correction(point(true, 10, 20)), here);  // the shared list was left alone
    EXPECT_TRUE(none.is_trivial() && none.get_focus_correction_at_y(1).is_trivial());

    flatness_row_corrector row = c.get_focus_correction_at_y(1);
    ++row.order;  // more than there are coefficients
    EXPECT_EQ(row.get_focus_correction_at_x(1), 0.0);
    c.order = 0xffffffff;
    EXPECT_EQ(c.get_focus_correction(point(true, 10, 20)), 0.0);
    EXPECT_TRUE(c.get_focus_correction_derivative(point(true, 10, 20)) == point(false, 0, 0));
    EXPECT_TRUE(c.get_focus_correction_at_y(1).is_trivial());
}

// Spheres of known radius, tilted by turning them about their vertex, which is far larger than the field.
TEST(FlatnessCorrector, FlattensCurvedAndTiltedSurfacesOfFocus) {
    seeded_random random(3);
    for (double const radius : {80.0, -80.0, 15.0, -400.0}) {
        for (double const noise : {0.0, 1e-5}) {
            double const tilt = random.uniform(-0.02, 0.02), z0 = random.uniform(-50, 50);
            point const center(true, radius * std::sin(tilt), 0.2, z0 - radius * std::cos(tilt));
            auto const on_sphere = [&](double x, double y) {
                double const dx = pixel * x - center.x(), dy = pixel * y - center.y();
                return center.z() + std::copysign(std::sqrt(radius * radius - dx * dx - dy * dy), radius);
            };
            std::vector<point> const points =
                surface(15, [&](double x, double y) { return on_sphere(x, y) + noise * random.normal(); });
            flatness_corrector const c = fitted(points, z0, 7);
            // A cap of chord 4 has the sag 2 / R, known to some tenth of the noise from 225 points.
            EXPECT_NEAR(c.curvature * radius, 1, 1e-9 + noise * std::fabs(radius) * 0.3) << radius;
            EXPECT_NEAR(c.residual, noise, 0.2 * noise + 1e-7);
            double squares = 0;
            for (point const& p : points) squares += sqr((p * c).z() - z0);
            EXPECT_NEAR(sqr(c.residual) * (225 - dim(c.coefficients)), squares, 1e-9 * squares + 1e-22);
            for (point const& p : surface(20, on_sphere)) EXPECT_NEAR((p * c).z(), z0, 2.5 * noise + 5e-7);
        }
    }
}

TEST(FlatnessCorrector, KeepsTheOrderOfExactData) {
    seeded_random random(4);
    for (unsigned int order : {0u, 1u, 2u, 4u, 6u}) {
        for (double const z_nominal : {0.0, 40.0}) {
            flatness_corrector const truth = random_corrector(random, order);
            auto const z = [&](double x, double y) {
                return z_nominal - truth.get_focus_correction(point(true, x, y));
            };
            flatness_corrector const c = fitted(surface(order < 4 ? 4 : 40, z), z_nominal, 9);
            EXPECT_EQ(c.order, std::max(order, 2u));
            EXPECT_EQ(c.residual, 0.0);
            for (unsigned int i = 0; i < dim(c.coefficients); ++i) {
                double const expected = i < dim(truth.coefficients) ? truth.coefficients[i] : 0.0;
                EXPECT_NEAR(c.coefficients[i], expected, 1e-12);  // rounding of 40, times 10
            }
        }
    }
}

// A map that flattens the surface leaves no sphere, so that the curvature is that of x² / 100 + y² / 300 in
// pixels: second derivatives of 1/50 and 1/150, divided by the squares of 0.1 and 0.2. A plane has none.
TEST(FlatnessCorrector, WithoutASphereHasTheCurvatureOfOrderTwo) {
    auto const bowl = surface(5, [](double x, double y) { return 7 - x * x / 100 - y * y / 300; });
    auto const plane = surface(5, [](double x, double y) { return 7 - x / 100 - y / 300; });
    auto const curvature = [](std::vector<point> const& points, transform const& to_machine) {
        return flatness_corrector::fit(width, height, points, 7, to_machine, {}, 2).curvature;
    };
    EXPECT_NEAR(curvature(bowl, transform::dilation(0.1, 0.2, 0.0)), (2.0 + 1.0 / 6) / 2, 1e-12);
    EXPECT_NEAR(curvature(plane, transform()), 0, 1e-15);
    EXPECT_GT(curvature(bowl, transform()), 0);
    // Of order 4 none is told.
    auto const fourth = surface(9, [](double x, double y) { return 7 - x * x - y * y - x * x * y * y; });
    flatness_corrector const c =
        flatness_corrector::fit(width, height, fourth, 7, transform::dilation(1, 1, 0), {}, 4);
    EXPECT_TRUE(c.order == 4 && c.curvature == 0);
}

TEST(FlatnessCorrector, WithoutAnAnswerIsTheDefault) {
    auto const bowl = [](double x, double y) { return x * x + y * y; };
    std::vector<point> const grid = surface(5, bowl);
    std::vector<point> spot(20, point(true, 3, 4, 5)), line, circle, six, with_nan = grid,
                                                                          with_infinity = grid;
    for (std::size_t i : {0u, 2u, 4u, 11u, 13u, 22u}) six.push_back(grid[i]);  // not on a conic section
    for (int i = 0; i < 20; ++i) {
        line.emplace_back(true, 0.1 * i, 0.03 * i - 70, i % 3);
        circle.emplace_back(true, 90 + 50 * std::cos(i), 20 + 50 * std::sin(i), i % 3);
    }
    with_nan[7].z() = nan;
    with_infinity[3].x() = infinity;
    EXPECT_FALSE(fitted(grid, 0, 2).is_trivial());
    EXPECT_EQ(fitted({grid.begin() + 3, grid.begin() + 13}, 0, 2).order, 2u);
    EXPECT_TRUE(fitted(grid, 0, 1).is_trivial() && fitted(grid, nan, 4).is_trivial());
    for (auto const& points : {spot, line, circle, six, with_nan, with_infinity, {}}) {
        flatness_corrector const c = fitted(points, 0, 6);
        EXPECT_TRUE(c.is_trivial() && c.order == 0 && c.residual == 0 && c.x_scale == 0 && c.curvature == 0);
    }
    EXPECT_TRUE(flatness_corrector::fit(0, height, grid, 0, {}, {}, 2).is_trivial());
}

}  // namespace
}  // namespace tvmath
