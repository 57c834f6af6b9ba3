#include "tvmath/image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "imaging/rendered_scene.h"

inline namespace tvmath {
namespace {

using table = std::vector<std::vector<double>>;

image made(table const& values) {
    image m(static_cast<unsigned int>(values.size()), 0u);
    for (unsigned int y = 0; y < rows(m); ++y) {
        m(y) = vector(static_cast<unsigned int>(values[y].size()), values[y].data());
    }
    return m;
}

void expect_pixels(image const& actual, image const& expected, double tolerance) {
    ASSERT_EQ(rows(actual), rows(expected));
    ASSERT_EQ(cols(actual), cols(expected));
    for (unsigned int y = 0; y < rows(actual); ++y) {
        for (unsigned int x = 0; x < cols(actual); ++x) {
            ASSERT_NEAR(actual[y][x], expected[y][x], tolerance) << "row " << y << " column " << x;
        }
    }
}

// The mean by its definition, each window summed anew in double precision.
double mean_about(vector const& line, int i, int half, bool wrap) {
    int const n = static_cast<int>(dim(line));
    double sum = 0, count = 0;
    for (int k = i - half; k <= i + half; ++k) {
        if (!wrap && (k < 0 || k >= n)) continue;
        sum += line[static_cast<unsigned int>((k + n) % n)];
        ++count;
    }
    return sum / count;
}

TEST(ImageBoxcar, IsTheMeanOfTheWindowAlongRowsAndColumns) {
    seeded_random random(1);
    for (int trial = 0; trial < 200; ++trial) {
        // Two are large enough for several threads and several blocks of columns.
        bool const large = trial < 2;
        unsigned int const length = large ? 300 : 1 + random.below(40),
                           n = large ? 2700 : 1 + random.below(9);
        unsigned int const width = large ? 400 + random.below(200) : 2 + random.below(100);
        bool const wrap = random.coin();
        SCOPED_TRACE(testing::Message() << n << " lines of " << length << ", width " << width << wrap);
        image const lines = random_image(random, n, length);
        int const half = static_cast<int>(std::min(width, 2 * length) / 2);
        image along = lines, down = transpose(lines), odd = lines;
        along.horizontal_boxcar(width, wrap);
        for (unsigned int i = 0; i < n * length; i += large ? 97 : 1) {
            // 24 bits of a sum of up to 3 `length`, divided by the least number of samples.
            ASSERT_NEAR(along[i / length][i % length],
                        mean_about(lines[i / length], static_cast<int>(i % length), half, wrap),
                        length * 4e-7);
        }
        expect_pixels(transpose(down.vertical_boxcar(width, wrap)), along, 0);
        expect_pixels(odd.horizontal_boxcar(width | 1, wrap), along, width < 2 * length ? 0 : length * 4e-7);
    }
}

TEST(ImageBoxcar, KeepsRunningSumsInSinglePrecision) {
    // 2^24 + 1 is no float: the sums stand still behind the first sample.
    image const line = made({{16777216, 1, 1, 1, 1}});
    image m = line, closed = line;
    double const third = static_cast<double>(16777216.0f * (1.0f / 3)), half = 16777216.0 / 2;
    expect_pixels(m.horizontal_boxcar(2, false), made({{half, third, 0, 0, 0}}), 0);
    // Closed to a ring, the sums begin with the last sample: 0, 1, 2^24, ... 2^24, 2^25.
    double const less = static_cast<double>(16777215.0f * (1.0f / 3));
    expect_pixels(closed.horizontal_boxcar(3, true), made({{third, less, 0, 0, third}}), 0);
}

TEST(Image, FiltersWorkedByHand) {
    double const t = 1.0 / 1024, s = 1 / (1 - t), third = static_cast<double>(1.0f / 3), big = 1e300;
    struct {
        char const* name;
        table before, after;
        std::function<void(image&)> filter;
    } const cases[] = {
        {"abs", {{-1, 2}, {0, -3}}, {{1, 2}, {0, 3}}, [](image& m) { m.abs(); }},
        {"enhance", {{2, 4}, {6, 3}}, {{0, 0.5}, {1, 0.25}}, [](image& m) { m.enhance(); }},
        {"enhance constant grey", {{0.3, 0.3}}, {{0.3, 0.3}}, [](image& m) { m.enhance(); }},
        {"enhance constant beyond white", {{1.5}, {1.5}}, {{0.5}, {0.5}}, [](image& m) { m.enhance(); }},
        {"enhance constant below black", {{-1}}, {{0.5}}, [](image& m) { m.enhance(); }},
        {"threshold 0", {{0, 0.5, 1}}, {{0, (0.5 - t) * s, 1}}, [](image& m) { m.threshold(0); }},
        // Of the four that are not black two whole ones are wanted, and they reach level 512.
        {"threshold 0.6",
         {{0, 0, 0.25}, {0.5, 0.75, 1}},
         {{0, 0, 0}, {0, 0.5, 1}},
         [](image& m) { m.threshold(0.6); }},
        // The black ones of level 0 do not count, and no level but the last reaches beyond the others.
        {"threshold beyond 1",
         {{0, -big, 0.25, big}},
         {{0, 0, 0, (big - 1023 * t) * 1024}},
         [](image& m) { m.threshold(1.5); }},
        {"width 1", {{1, 2, 9}}, {{1, 2, 9}}, [](image& m) { m.boxcar2d(1); }},
        {"boxcar2d",
         {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 9, 0}},
         {{0, 0, 0, 0}, {0, third * 3, third * 3, 1.5}, {0, 1.5, 1.5, 2.25}},
         [](image& m) { m.boxcar2d(3); }},
        {"remove_tearing",
         {{0}, {1}, {0}, {5}, {2}},
         {{0}, {0.5}, {1.5}, {3}, {2}},
         [](image& m) { m.remove_tearing(); }},
        {"mirror_x", {{1, 2}, {3, 4}, {5, 6}}, {{5, 6}, {3, 4}, {1, 2}}, [](image& m) { m.mirror_x(); }},
        {"mirror_y", {{1, 2, 3}, {4, 5, 6}}, {{3, 2, 1}, {6, 5, 4}}, [](image& m) { m.mirror_y(); }},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        image m = made(c.before);
        image const copy = m;
        c.filter(m);
        expect_pixels(m, made(c.after), 1e-7);
        expect_pixels(copy, made(c.before), 0);
    }
}

TEST(Image, RowsNotWrittenStayShared) {
    image const source = matrix(3, 4, 0.5);
    auto const shared = [&](image const& m, unsigned int y) { return m[y].begin() == source[y].begin(); };
    image untorn = source, mirrored = source, same = source;
    untorn.remove_tearing();
    mirrored.mirror_x();
    same.enhance().boxcar2d(1);
    for (unsigned int y = 0; y < 3; ++y) {
        EXPECT_EQ(shared(untorn, y), y != 1);
        EXPECT_TRUE(shared(mirrored, y) && shared(same, y));
    }
}

TEST(Image, StatisticsWorkedByHand) {
    double mean = -1, sigma = -1, of_mean = -1, rms = -1;
    EXPECT_FALSE(image(0, 0).ave_gray(mean, sigma, of_mean) || image(3, 0).local_rms(rms));
    EXPECT_TRUE(mean == -1 && sigma == -1 && of_mean == -1);
    EXPECT_TRUE(made({{0.1, 0.3}, {0.9, 0.3}}).ave_gray(mean, sigma, of_mean));
    EXPECT_NEAR(mean, 0.4, 1e-15);
    EXPECT_NEAR(sigma, 0.3, 1e-15);  // of 0.3, 0.1, 0.5, 0.1 about the mean
    EXPECT_NEAR(of_mean, 0.15, 1e-15);
    EXPECT_FALSE(made({{0.9, 0.3}, {1.5, 0.1}}).ave_gray(mean, sigma, of_mean));
    EXPECT_NEAR(mean, 0.7, 1e-15);

    image m(5, 5);
    m(2)(2) = 0.99;
    EXPECT_FALSE(m.local_rms(rms));
    EXPECT_EQ(rms, -1);
    m(2)(2) = 0.9;  // leaves 8/9 of itself and -1/9 at its 8 neighbours
    EXPECT_TRUE(m.local_rms(rms));
    EXPECT_NEAR(rms, 0.9 * std::sqrt(72.0 / 81 / 25) * 9 / 8, 1e-7);
}

// For every line in a small image: one pixel for each step of the longer axis, the nearest to the line, and
// of two equally near ones that on the side of the end with the smaller step.
TEST(Image, LineAverageTakesThePixelsNearestToTheLine) {
    int const n = 7;
    for (int code = 0; code < n * n * n * n; ++code) {
        pixel const from(code % n, code / n % n), to(code / (n * n) % n, code / (n * n * n));
        bool const along_x = std::abs(to.x - from.x) > std::abs(to.y - from.y);
        pixel a = along_x ? from : pixel(from.y, from.x), b = along_x ? to : pixel(to.y, to.x);
        if (b.x < a.x) pixel::swap(a, b);
        image weights(n, n);  // distinct, so that another pixel of a column shows
        double expected = 0;
        for (int x = a.x; x <= b.x; ++x) {
            double const exact =
                b.x == a.x ? a.y : a.y + (x - a.x) * (b.y - a.y) / static_cast<double>(b.x - a.x);
            double const tie = b.y > a.y ? -1e-9 : 1e-9;
            int const y = static_cast<int>(std::lround(exact + tie));
            pixel const p = along_x ? pixel(x, y) : pixel(y, x);
            weights(static_cast<unsigned int>(p.y))(static_cast<unsigned int>(p.x)) = x - a.x + 1;
            expected += x - a.x + 1;
        }
        ASSERT_NEAR(weights.line_ave(from, to), expected / (b.x - a.x + 1), 1e-14) << code;
    }
    for (pixel const outside : {pixel(-1, 0), pixel(0, -1), pixel(3, 0), pixel(0, 2), pixel(1 << 30, 1)}) {
        EXPECT_TRUE(std::isnan(image(2, 3).line_ave(pixel(0, 0), outside)));
        EXPECT_TRUE(std::isnan(image(2, 3).line_ave(outside, pixel(0, 0))));
    }
}

}  // namespace
}  // namespace tvmath
