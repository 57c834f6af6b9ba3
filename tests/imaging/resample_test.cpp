#include "tvmath/resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

// The scene over the plane of the image, at the centres of the pixels.
template <class scene>
image rendered(unsigned int rows, unsigned int cols, scene grey) {
    image result(rows, cols);
    for (unsigned int y = 0; y < rows; ++y) {
        for (unsigned int x = 0; x < cols; ++x) result(y)(x) = grey(x + 0.5, y + 0.5);
    }
    return result;
}

image noise(unsigned int rows, unsigned int cols, std::uint64_t seed) {
    seeded_random random(seed);
    return rendered(rows, cols, [&](double, double) { return random.unit(); });
}

struct window {
    double x, y, angle, width, height;
    unsigned int cols, rows;

    image cut_from(image const& source) const {
        return rotate(source, x, y, angle, width, cols, height, rows);
    }
    // The place of the image that pixel (i, j) of the result shows.
    point place(double i, double j) const {
        double const u = (i + 0.5) * width / cols, v = (j + 0.5) * height / rows;
        return point(true, x + u * std::cos(angle) - v * std::sin(angle),
                     y + u * std::sin(angle) + v * std::cos(angle));
    }
};

// About the middle of an image of that size, anywhere up to `margin` from its border.
window random_window(seeded_random& random, double size, double margin) {
    window w = {};
    w.angle = random.uniform(-7, 7);
    w.width = random.uniform(0.3, 0.6) * size;
    w.height = random.uniform(0.1, 0.6) * size;
    double const room = size / 2 - margin, reach = std::hypot(w.width, w.height) / 2;
    double const shrink = std::min(1.0, room / reach);
    w.width *= shrink;
    w.height *= shrink;
    double const c = std::cos(w.angle), s = std::sin(w.angle);
    w.x = size / 2 - (w.width * c - w.height * s) / 2;
    w.y = size / 2 - (w.width * s + w.height * c) / 2;
    w.cols = static_cast<unsigned int>(w.width / random.log_uniform(0.2, 5)) + 1;
    w.rows = static_cast<unsigned int>(w.height / random.log_uniform(0.2, 5)) + 1;
    return w;
}

template <class expectation>
double greatest_error(image const& cut, window const& w, expectation expected) {
    EXPECT_EQ(rows(cut), w.rows);
    EXPECT_EQ(cols(cut), w.cols);
    double error = 0;
    for (unsigned int j = 0; j < rows(cut); ++j) {
        for (unsigned int i = 0; i < cols(cut); ++i) {
            point const p = w.place(i, j);
            error = std::max(error, std::fabs(cut[j][i] - expected(p.x(), p.y())));
        }
    }
    return error;
}

// Plain bilinear interpolation between the centres of pixels; beyond them the outermost pixel.
double bilinear(image const& source, double x, double y) {
    x = std::clamp(x - 0.5, 0.0, cols(source) - 1.0);
    y = std::clamp(y - 0.5, 0.0, rows(source) - 1.0);
    auto const i = static_cast<unsigned int>(std::min(x, cols(source) - 2.0));
    auto const j = static_cast<unsigned int>(std::min(y, rows(source) - 2.0));
    double const f = x - i, g = y - j;
    return (1 - g) * ((1 - f) * source[j][i] + f * source[j][i + 1]) +
           g * ((1 - f) * source[j + 1][i] + f * source[j + 1][i + 1]);
}

TEST(RotateRectangle, CutsWholePixelsOutAsTheyAre) {
    image source = noise(9, 12, 1);
    source(4)(2) = nan_value;  // left of the window
    image const kept = source;
    image const cut = window{3, 2, 0, 7, 5, 7, 5}.cut_from(source);
    image const expected = keep_matrix(source, 2, 5, 3, 7);
    ASSERT_EQ(rows(cut), 5u);
    for (unsigned int j = 0; j < 5; ++j) EXPECT_TRUE(cut[j] == expected[j]) << j;
    EXPECT_EQ(kept[2].begin(), source[2].begin());  // still one block
}

// A quarter turn of a window along the pixels hits their centres, apart from rounding: cos(pi / 2) is 6e-17.
TEST(RotateRectangle, TurnsByQuarters) {
    image const source = noise(10, 14, 2);
    window const cases[] = {{10, 3, pi / 2, 6, 4, 6, 4},
                            // All of the image, which rounding must not push out.
                            {14, 10, pi, 14, 10, 14, 10},
                            {0, 10, -pi / 2, 10, 14, 10, 14},
                            {14, 0, pi / 2, 10, 14, 10, 14},
                            {10, 3, pi / 2 + 2e4 * pi, 6, 4, 6, 4},
                            {6, 2, 0, -6, 5, 6, 5},
                            {3, 9, pi / 2, -6, -5, 6, 5}};
    for (window const& w : cases) {
        SCOPED_TRACE(w.angle);
        auto const at_place = [&](double x, double y) { return bilinear(source, x, y); };
        EXPECT_LT(greatest_error(w.cut_from(source), w, at_place), 1e-10);
    }
}

// Interpolation keeps a linear scene, so each pixel must show its own centre exactly, in every quadrant and
// at every scale. Means over stretches of constant pixels are off by up to 1/8 of a pixel at either end.
TEST(RotateRectangle, KeepsALinearScene) {
    seeded_random random(3);
    auto const ramp = [](double x, double y) { return 0.01 * x - 0.02 * y + 1; };
    image const source = rendered(80, 80, ramp);
    for (int trial = 0; trial < 1000; ++trial) {
        SCOPED_TRACE(trial);
        window const w = random_window(random, 80, 2);
        bool const reduced = w.cols < w.width || w.rows < w.height;
        ASSERT_LT(greatest_error(w.cut_from(source), w, ramp), reduced ? (0.01 + 0.02) / 8 : 1e-12);
    }
}

// A wave of k radians to the pixel, without reduction. Linear interpolation over a distance d errs by up to
// d² / 8 times the second derivative, here k² in each pass: d is 1 along the rows, up to sqrt(2) across.
// Against the border half a pixel is taken as constant, at a slope of k.
TEST(RotateRectangle, SamplesASmoothScene) {
    seeded_random random(4);
    double const k = 2 * pi / 20, most = (1 + 2) * k * k / 8;
    auto const waves = [=](double x, double y) { return std::sin(k * (0.6 * x + 0.8 * y)); };
    image const source = rendered(100, 100, waves);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        window w = random_window(random, 100, 3);
        w.cols = std::max(w.cols, static_cast<unsigned int>(w.width) + 1);
        w.rows = std::max(w.rows, static_cast<unsigned int>(w.height) + 1);
        ASSERT_LT(greatest_error(w.cut_from(source), w, waves), most);
        w.x += 50 - (std::fabs(w.width * std::cos(w.angle)) + std::fabs(w.height * std::sin(w.angle))) / 2;
        ASSERT_LT(greatest_error(w.cut_from(source), w, waves), most + k / 2);
    }
}

// Every pixel counts once: the mean of a reduced window is that of the window, and whole blocks are averaged.
TEST(RotateRectangle, ReducesByMeansOverBlocks) {
    image const source = noise(24, 30, 5);
    image const cut = window{0, 0, 0, 30, 24, 10, 6}.cut_from(source);
    for (unsigned int j = 0; j < 6; ++j) {
        for (unsigned int i = 0; i < 10; ++i) {
            EXPECT_NEAR(cut[j][i], sum(keep_matrix(source, 4 * j, 4, 3 * i, 3) * vector(3, 1.0)) / 12, 1e-14);
        }
    }
    double const mean = sum(source * vector(30, 1.0)) / 720;
    for (window const& w : {window{30, 0, pi / 2, 24, 30, 1, 1}, window{0, 24, 0, 30, -24, 1, 1}}) {
        EXPECT_NEAR(w.cut_from(source)[0][0], mean, 1e-13) << w.angle;
    }
}

TEST(RotateRectangle, IsEmptyWhenItLeavesTheImage) {
    image const source = noise(20, 30, 7);
    window const failing[] = {
        {-0.001, 2, 0, 5, 5, 5, 5},   {26, 2, 0, 5, 5, 5, 5},        {5, 1, -0.5, 5, 5, 5, 5},
        {20, 15, 1.0, 6, 6, 5, 5},    {nan_value, 2, 0, 5, 5, 5, 5}, {5, 5, infinity, 5, 5, 5, 5},
        {5, 5, 0, infinity, 5, 5, 5}, {5, 5, 0, 5, 5, 65536, 65536}, {5, 5, 0, 5, 5, 4294967295u, 1}};
    for (window const& w : failing) EXPECT_EQ(rows(w.cut_from(source)), 0u) << w.x << ' ' << w.y;
    EXPECT_EQ(rows(window{0, 0, 0, 0, 0, 3, 3}.cut_from(image())), 0u);
    EXPECT_EQ(rows(window{0, 0, 0, 0, 0, 3, 3}.cut_from(image(4, 0))), 0u);
}

TEST(RotateRectangle, TakesDegenerateWindowsAndImages) {
    image const dot = matrix(1, 1, 0.25);
    EXPECT_EQ(max_value(abs(window{0.5, 0, 0.5, 0.3, 0.3, 40, 3}.cut_from(dot) - matrix(3, 40, 0.25))), 0);
    // Without extent all pixels show one place, also the last corner.
    image const source = noise(6, 8, 8);
    EXPECT_EQ(window({8, 6, 0.4, 0, 0, 3, 2}).cut_from(source)[1][2], source[5][7]);
    EXPECT_EQ(cols(window({1, 1, 0, 2, 2, 0, 3}).cut_from(source)), 0u);
    EXPECT_EQ(rows(window({1, 1, 0, 2, 2, 0, 3}).cut_from(source)), 3u);
}

TEST(RotateTransform, MovesPixelsByWholeSteps) {
    image const source = noise(70, 90, 9);  // more rows than are made at a time
    image spoilt = source;
    spoilt(5)(7) = infinity;
    image const same = rotate(spoilt, transform(0.0, 0.0), 70, 90);
    for (unsigned int y = 0; y < 70; ++y) ASSERT_TRUE(same[y] == spoilt[y]) << y;
    image const turned = rotate(source, transform::rotation_90().translate(90, 0), 90, 70);
    ASSERT_EQ(rows(turned), 90u);
    for (unsigned int y = 0; y < 90; ++y) {
        for (unsigned int x = 0; x < 70; ++x) ASSERT_EQ(turned[y][x], source[x][89 - y]);
    }
    image const between = rotate(source, transform(0, 0.5), 69, 90);
    for (unsigned int y = 0; y < 69; ++y) {
        ASSERT_LT(maximum_norm(between[y] - (source[y] + source[y + 1]) / 2), 1e-15) << y;
    }
    // z does not count; what lies outside the source is black.
    image const shifted = rotate(source, transform(-2.0, 3.0, 5.0), 70, 90);
    EXPECT_TRUE(shifted[0][0] == 0 && shifted[0][2] == source[3][0] && shifted[67][2] == 0);
}

// Sharing out by hand: at 0.5 pixels of the source to a pixel, those centres fall at 1, 3, ... of the result,
// between two of its pixels; at 0.25 two of four get nothing. A shift of 0.25 mixes 1 to 3.
TEST(RotateTransform, SharesEnlargedPixelsOut) {
    image source(1, 2);
    source(0)(0) = 0.4;
    source(0)(1) = 0.8;
    auto const expect_row = [&](transform const& t, std::vector<double> const& expected) {
        image const result = rotate(source, t, 1, static_cast<unsigned int>(expected.size()));
        for (unsigned int i = 0; i < cols(result); ++i) EXPECT_NEAR(result[0][i], expected[i], 1e-15) << i;
    };
    expect_row(transform::dilation(0.5, 1), {0.4, 0.4, 0.8, 0.8});
    expect_row(transform::dilation(0.25, 1), {0, 0.4, 0.4, 0, 0, 0.8, 0.8, 0});
    expect_row(transform(0.25, 0.0), {0.5, 0.8});
}

// A linear scene is kept where all four pixels lie inside; outside the source is black; one that has only
// some of its pixels inside is the mean of those.
TEST(RotateTransform, GathersReducedPixels) {
    auto const ramp = [](double x, double y) { return 0.01 * x - 0.02 * y + 2; };
    image const source = rendered(60, 50, ramp);
    seeded_random random(10);
    for (int trial = 0; trial < 100; ++trial) {
        transform const t = transform::dilation(random.uniform(1.001, 2), random.uniform(1, 3))
                                .rotate(random.uniform(-4, 4))
                                .translate(random.uniform(0, 50), random.uniform(0, 60));
        image const result = rotate(source, t, 40, 35);
        for (unsigned int y = 0; y < 40; ++y) {
            for (unsigned int x = 0; x < 35; ++x) {
                point const p = point(true, x + 0.5, y + 0.5) * t;
                bool const inside = p.x() > 0.5 && p.x() < 49.5 && p.y() > 0.5 && p.y() < 59.5;
                bool const outside = p.x() < -0.5 || p.x() > 50.5 || p.y() < -0.5 || p.y() > 60.5;
                double const tolerance = inside || outside ? 1e-12 : 0.03;
                if (!inside && !outside && result[y][x] == 0) continue;
                ASSERT_NEAR(result[y][x], outside ? 0 : ramp(p.x(), p.y()), tolerance) << trial;
            }
        }
    }
}

TEST(RotateTransform, IsEmptyWithoutAUsableMap) {
    image const source = noise(5, 5, 12);
    EXPECT_EQ(rows(rotate(source, transform(), 5, 5)), 0u);
    EXPECT_EQ(rows(rotate(source, transform(nan_value, 0), 5, 5)), 0u);
    EXPECT_EQ(rows(rotate(source, transform::dilation(infinity), 5, 5)), 0u);
    EXPECT_EQ(rows(rotate(source, transform::dilation(0.0), 5, 5)), 0u);  // no inverse to share out by
    EXPECT_EQ(rows(rotate(source, transform(0.0, 0.0), 65536, 65536)), 0u);
    EXPECT_EQ(max_value(rotate(source, transform(1e300, -1e300), 5, 5)), 0);
    EXPECT_EQ(max_value(rotate(source, transform::dilation(1e200), 5, 5)), 0);
    EXPECT_EQ(max_value(rotate(image(), transform(0.0, 0.0), 5, 5)), 0);
}

TEST(ProjectImageIntoProfile, FollowsALinearSceneAlongTheDirection) {
    image const across = rendered(100, 100, [](double x, double) { return x / 100; });
    vector profile;
    ASSERT_TRUE(project_image_into_profile(across, profile, 0));
    ASSERT_EQ(dim(profile), 100u);
    // Of column 0, 14 centres lie in the circle, less than a fifth of 100; of column 1, 24 do.
    EXPECT_EQ(profile[0], profile[1]);
    EXPECT_EQ(profile[99], profile[98]);
    for (unsigned int i = 1; i < 99; ++i) EXPECT_NEAR(profile[i], (i + 0.5) / 100, 1e-14);

    seeded_random random(13);
    for (int trial = 0; trial < 20; ++trial) {
        double const angle = random.uniform(-7, 7), c = std::cos(angle), s = std::sin(angle);
        image const source =
            rendered(100, 100, [=](double x, double y) { return (c * (x - 50) + s * (y - 50) + 50) / 100; });
        ASSERT_TRUE(project_image_into_profile(source, profile, angle));
        // Where the centres share over two bins, their mean may lie off the middle of a bin, less so the
        // more there are.
        for (unsigned int i = 5; i < 95; ++i) ASSERT_NEAR(profile[i], (i + 0.5) / 100, 0.002) << angle;
        vector back;
        ASSERT_TRUE(project_image_into_profile(source, back, angle + pi));
        EXPECT_LT(maximum_norm(vector(profile.reverse_copy()) - back), 1e-10);
    }
}

TEST(ProjectImageIntoProfile, TakesAnySizeAndRefusesNoAngle) {
    vector profile(1, 7.0);
    EXPECT_FALSE(project_image_into_profile(image(), profile, 0));
    EXPECT_FALSE(project_image_into_profile(image(3, 0), profile, 0));
    EXPECT_FALSE(project_image_into_profile(noise(3, 3, 14), profile, nan_value));
    EXPECT_TRUE(dim(profile) == 1 && profile[0] == 7);
    EXPECT_TRUE(project_image_into_profile(image(matrix(1, 1, 0.25)), profile, 1));
    EXPECT_TRUE(dim(profile) == 1 && profile[0] == 0.25);
    // Columns beyond the square do not count; bins that the columns do not reach repeat the last one.
    auto const ramp = [](double x, double) { return x; };
    ASSERT_TRUE(project_image_into_profile(rendered(6, 2, ramp), profile, 0));
    EXPECT_TRUE(profile[0] == 0.5 && profile[5] == 1.5);
    ASSERT_TRUE(project_image_into_profile(rendered(2, 9, ramp), profile, 0));
    EXPECT_TRUE(dim(profile) == 2 && profile[1] == 1.5);
}

}  // namespace
}  // namespace tvmath
