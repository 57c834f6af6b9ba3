#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "imaging/rendered_scene.h"
#include "imaging/vision_switch.h"
#include "tvmath/edge.h"
#include "tvmath/polynomial.h"

inline namespace tvmath {
namespace {

constexpr unsigned int window_rows = 40, window_cols = 60;

double height(straight_edge const& e, double x) {
    return e.y - (x - e.x) / std::tan(e.angle);
}
double height(round_edge const& e, double x) {
    return e.y - std::sqrt((e.radius - (x - e.x)) * (e.radius + (x - e.x)));
}

straight_edge random_straight(seeded_random& random) {
    return {30, 20 + random.uniform(-1, 1), pi / 2 + random.uniform(-0.1, 0.1)};
}
round_edge random_round(seeded_random& random) {
    double const radius = random.uniform(300, 900);
    return {30 + random.uniform(-5, 5), 20 + radius + random.uniform(-1, 1), radius};
}

struct deviation {
    double bias = 0, spread = 0;
};

// Of the fitted curve from the true one, over all columns of `n` scenes.
template <class random_edge>
deviation measure(random_edge const& next, camera c, int n) {
    seeded_random random(1);
    double sum = 0, squares = 0;
    for (int i = 0; i < n; ++i) {
        auto const edge = next(random);
        c.seed = random.bits();
        vector const curve =
            lsf_edge(rendered_scene(window_rows, window_cols, edge, c).horizontal_edge_gradient(false));
        for (double x = 0.5; x < window_cols; ++x) {
            double const d = poly(x, curve) - height(edge, x);
            sum += d / window_cols;
            squares += d * d / window_cols;
        }
    }
    double const bias = sum / n;
    return {bias, std::sqrt(squares / n - bias * bias)};
}

// The Cramer-Rao bound of the curve's height, as root mean square over the columns, from which a curve of
// three coefficients takes three degrees of freedom. A pixel tells of a column's height what the squared
// slope of the edge's profile is to the variance of the noise; summed over the rows that is 1 / (2 s
// sqrt(pi)) for a Gaussian profile of blur s, into which the area of the pixels goes with 1/12 of variance.
double bound(camera const& c) {
    double const s = std::sqrt(c.blur * c.blur + 1.0 / 12);
    double const information = c.contrast * c.contrast / (c.noise * c.noise * 2 * s * std::sqrt(pi));
    return std::sqrt(3 / (window_cols * information));
}

// Within 0.01 pixel of the truth on average, and spread no more than twice the bound, or where noise is low
// the bend of a hundredth that the whole rows of the band leave.
TEST(EdgeAccuracy, OfBlurredAndNoisyEdgesComesNearTheBound) {
    struct {
        double blur, contrast, noise;
    } const cases[] = {{0.5, 1, 0.05}, {1, 1, 0},       {1, 1, 0.05}, {1, 0.2, 0.01}, {1, 0.05, 0.0025},
                       {2, 1, 0.01},   {2, 0.5, 0.025}, {3, 1, 0},    {3, 1, 0.02}};
    EXPECT_TRUE(with_new_algorithms(true, [&] {
        for (auto const& k : cases) {
            SCOPED_TRACE(testing::Message()
                         << "blur " << k.blur << " contrast " << k.contrast << " noise " << k.noise);
            camera c;
            c.blur = k.blur, c.contrast = 0.8 * k.contrast, c.dark = 0.1, c.noise = k.noise;
            int const n = k.noise > 0 ? 50 : 20;
            double const least = k.noise > 0 ? bound(c) : 0;
            for (deviation const& d : {measure(random_straight, c, n), measure(random_round, c, n)}) {
                EXPECT_LT(std::fabs(d.bias), 0.01);
                EXPECT_LT(d.spread, std::hypot(2 * least, 0.015));
            }
        }
    }));
}

// Surfaces of equal grey and different roughness. What the roughness leaves in the smoothed grey draws the
// curve into the rough side, so this is an edge to within half a pixel or two.
TEST(EdgeAccuracy, OfTextureFindsTheBorderOfRoughness) {
    camera c;
    c.contrast = 0, c.dark = 0.5, c.blur = 0.5, c.roughness = 0.1;
    auto const level = [](seeded_random& random) {
        return straight_edge{30, 20 + random.uniform(-0.5, 0.5), pi / 2};
    };
    EXPECT_TRUE(with_new_algorithms(true, [&] {
        deviation const d = measure(level, c, 30);
        EXPECT_LT(std::fabs(d.bias), 1.5);
        EXPECT_LT(d.spread, 1.5);
    }));
}

// Strips of two thirds of their length wide see all directions alike, when the blur is not far below their
// size.
TEST(EdgeAccuracy, OfTheNormalDirectionIsAFifthOfADegree) {
    seeded_random random(2);
    struct {
        double blur, noise;
    } const cases[] = {{2, 0}, {3, 0}, {2, 0.01}, {3, 0.01}};
    for (auto const& k : cases) {
        SCOPED_TRACE(testing::Message() << "blur " << k.blur << " noise " << k.noise);
        camera c;
        c.blur = k.blur, c.noise = k.noise;
        for (int i = 0; i < 45; ++i) {
            double const angle = -pi / 2 + pi * (i + 0.5) / 45;
            straight_edge const edge = {32 + random.uniform(-2, 2), 32 + random.uniform(-2, 2), angle};
            c.seed = random.bits();
            double const found = rendered_scene(64, 64, edge, c).find_normal_angle(3, 2);
            EXPECT_LT(std::fabs(std::remainder(found - angle, pi)), 0.2 * pi / 180) << angle;
        }
    }
}

}  // namespace
}  // namespace tvmath
