#include "tvmath/pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "imaging/rendered_scene.h"
#include "imaging/vision_switch.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

void with_either_method(std::function<void()> const& work) {
    for (char const* setting : {"", "Old Pattern Match=Enabled\r\n"}) {
        SCOPED_TRACE(setting);
        EXPECT_TRUE(with_vision_settings(setting, work));
    }
}

bool is_black(image const& m) {
    return min_value(m) == 0 && max_value(m) == 0;
}

// A bright line of 1.5 pixels on grey, whose middle lies at place(y).
template <class function>
image line_at(unsigned int rows, unsigned int cols, function const& place) {
    return image_of(rows, cols, [&](double y, double x) {
        return 0.2 + 0.6 * std::exp(-sqr(x + 0.5 - place(y)) / (2 * sqr(1.5)));
    });
}

// A line that runs to and fro by up to 2 pixels gives nearly the profile of a straight one, whose width at
// half its height a mean without alignment would double. Samples i of n stand for the offsets i + 1/2 - n
// / 2.
TEST(GeneratePattern, FollowsTheEdgeFromRowToRow) {
    with_either_method([] {
        // As slow as the smoothing over 17 rows of the match leaves it.
        auto const wave = [](double y) { return 30.5 + 2 * std::sin(y / 25); };
        image const sample = line_at(150, 60, wave), straight = line_at(150, 60, [](double) { return 30.5; });
        VisionPattern const p = generate_pattern(sample, 30.5, 21.3, false);
        VisionPattern const expected = generate_pattern(straight, 30.5, 21.3, false);
        ASSERT_EQ(p.size(), 21u);
        EXPECT_EQ(p.width_ratio, 21.3 / 60);
        EXPECT_EQ(max_value(p.profile), 1.0);
        for (unsigned int i = 0; i < 21; ++i) {
            double const from_edge = (i - 10.5) * 21.3 / 21 + 0.5;  // pixel j of a row stands for j + 1/2
            double const analytic = 0.25 + 0.75 * std::exp(-sqr(from_edge) / (2 * sqr(1.5)));
            EXPECT_NEAR(expected.profile[i], analytic, 0.03) << i;
            EXPECT_NEAR(p.profile[i], expected.profile[i], 0.06) << i;
        }
    });
}

// The line stands at 20.5, in pixel 20, where the match finds it exactly. Pixels of one strength in the
// gradient are peaks at their distances from it; on its both sides, on one, and on none.
TEST(GeneratePattern, CentresTheProfileOnTheNearestStrongPeak) {
    with_either_method([] {
        struct {
            std::vector<std::pair<int, double>> gradient;  // at a distance, its strength
            int shift;
        } const cases[] = {{{{3, 1}}, 3},
                           {{{-4, 1}}, -4},
                           {{{-4, 1}, {3, 1}}, 3},
                           {{{-2, 1}, {3, 1}}, -2},
                           {{{-3, 1}, {3, 1}}, -3},
                           {{{-5, 1}, {2, 0.3}}, -5},  // 0.09 of the squared strength is less than an eighth
                           {{{-5, 1}, {2, 0.4}}, 2},
                           {{{0, 1}, {4, 1}, {-5, 1}}, 4},  // past the slope on which the middle stands
                           {{{0, 1}}, 0}};                  // but not to nothing
        image const sample = line_at(8, 41, [](double) { return 20.5; });
        for (auto const& c : cases) {
            image gradient(8, 41);
            for (auto const& [distance, strength] : c.gradient) {
                gradient.col(static_cast<unsigned int>(20 + distance), vector(8, strength));
            }
            VisionPattern const p = generate_pattern(sample, gradient, 20.5, 21, false);
            unsigned int peak = 0;
            double value = 0;
            max_index_value(p.profile, peak, value);
            ASSERT_EQ(p.size(), 21u);
            // Without shift, samples 10 and 11 lie half a pixel from the middle; the line moves against it.
            EXPECT_NEAR(p.profile[static_cast<unsigned int>(10 - c.shift)], 1, 1e-9) << c.shift;
            EXPECT_EQ(value, 1.0);
        }
        EXPECT_EQ(generate_pattern(sample, image(8, 41), 20.5, 21, false).size(), 0u);
        EXPECT_EQ(generate_pattern(sample, image(), 20.5, 21, false).size(), 0u);
    });
}

TEST(GeneratePattern, GivesTheEmptyPatternForWhatCannotBeTaught) {
    with_either_method([] {
        image const sample = line_at(20, 40, [](double) { return 20.5; });
        image spoilt = sample;
        spoilt(7)(20) = nan_value;
        double const numbers[] = {nan_value, infinity, -infinity, 1e300, -5, 0, 0.4, 1e-300, 5, 20.5, 40, 41};
        for (image const& m :
             {sample, spoilt, image(20, 40), image(), image(0, 9), image(9, 0), image(9, 1)}) {
            for (double position : numbers) {
                for (double width : numbers) {
                    bool const fits = m == sample && position >= 0.5 && position < 40 && width >= 1;
                    for (bool wrap : {false, true}) {
                        unsigned int const n = generate_pattern(m, position, width, wrap).size(),
                                           k = generate_pattern(m, sample, position, width, wrap).size();
                        EXPECT_TRUE(fits || m == spoilt || (n == 0 && k == 0)) << position << ' ' << width;
                    }
                }
            }
        }
        // Cut to twice the distance to the nearer border, and to just less on the right.
        EXPECT_EQ(generate_pattern(sample, 18, 1e300, false).size(), 36u);
        EXPECT_EQ(generate_pattern(sample, 22, 1e300, false).size(), 35u);
    });
}

// One window about a pixel against the pattern, by definition: sums about the mean where the method says so,
// repeated pixels beyond the ends.
struct plain_window {
    double covariance = 0, product = 0, variance = 0, energy = 0;

    plain_window(vector const& row, int x, std::vector<double> const& q) {
        int const n = static_cast<int>(q.size());
        auto const at = [&](int i) {
            return row[static_cast<unsigned int>(
                std::clamp(x - n / 2 + i, 0, static_cast<int>(dim(row)) - 1))];
        };
        double mean = 0, q_mean = 0;
        for (int i = 0; i < n; ++i) mean += at(i) / n, q_mean += q[static_cast<unsigned int>(i)] / n;
        for (int i = 0; i < n; ++i) {
            double const v = at(i), p = q[static_cast<unsigned int>(i)];
            covariance += (v - mean) * (p - q_mean) / n;
            product += v * p;
            variance += sqr(v - mean) / n;
            energy += v * v;
        }
    }
};

// The pattern has as many samples as its window pixels, so that it is used as it is.
TEST(PatternFilter, IsTheCorrelationOfEveryWindow) {
    for (bool is_new : {true, false}) {
        SCOPED_TRACE(is_new);
        EXPECT_TRUE(with_vision_settings(is_new ? "" : "Old Pattern Match=Enabled\r\n", [=] {
            seeded_random random(2);
            for (int trial = 0; trial < 40; ++trial) {
                unsigned int const n = 3 + 2 * random.below(8), c = 5 + random.below(40),
                                   r = 1 + random.below(30);
                VisionPattern pattern(n, (n + 1e-9) / c);
                std::vector<double> q;
                for (unsigned int i = 0; i < n; ++i) q.push_back(pattern.profile(i) = random.unit());
                // Now and then with a dark side, beside which running sums keep no digits.
                double const dark = trial % 4 == 0 ? 1e-9 : 1;
                image const input =
                    image_of(r, c, [&](double, double x) { return random.unit() * (2 * x > c ? dark : 1); });
                image const kept = input;
                bool const wrap = random.coin();
                image smooth = input;
                smooth.vertical_boxcar(16, wrap);

                plain_window const own(pattern.profile, static_cast<int>(n / 2), q);
                double greatest = 0, best_sum = 0;
                for (vector const& row : smooth) {
                    for (int x = 0; x < static_cast<int>(c); ++x)
                        greatest = std::max(greatest, plain_window(row, x, q).variance);
                }
                double const least = std::max(greatest / 4, 0.0016);
                image expected(r, c);
                for (unsigned int y = 0; y < r; ++y) {
                    double best = -infinity;
                    for (unsigned int x = 0; x < c; ++x) {
                        plain_window const w(smooth[y], static_cast<int>(x), q);
                        double const old = std::pow(w.product * w.product / (w.energy * own.energy), 8.0);
                        double const coefficient = w.covariance / std::sqrt(std::max(own.variance, 1e-6) *
                                                                            std::max(w.variance, least));
                        best = std::max(best, coefficient);
                        expected(y)(x) = !is_new ? old : coefficient > 0.1 ? coefficient : 0;
                    }
                    best_sum += best;
                }
                if (is_new && best_sum / r < 0.2) expected = image(r, c);
                expected.enhance();

                image const found = pattern_filter(input, pattern, wrap);
                ASSERT_EQ(rows(found), r);
                ASSERT_EQ(cols(found), c);
                double error = 0;
                for (unsigned int y = 0; y < r; ++y) {
                    error = std::max(error, maximum_norm(found[y] - expected[y]));
                    EXPECT_TRUE(input[y] == kept[y]);
                }
                EXPECT_LT(error, 1e-9) << trial;
            }
        }));
    }
}

// A pattern taught in one image lights up where the line is in an image of another size.
TEST(PatternFilter, FindsThePatternAtAnyScale) {
    with_either_method([] {
        VisionPattern const p =
            generate_pattern(line_at(30, 60, [](double) { return 30.5; }), 30.5, 25, false);
        for (unsigned int scale = 2; scale < 5; ++scale) {
            image const larger = image_of(20, 60 * scale, [&](double, double x) {
                return 0.2 + 0.6 * std::exp(-sqr((x + 0.5 - 33.5 * scale) / scale) / (2 * sqr(1.5)));
            });
            image const match = pattern_filter(larger, p, false);
            unsigned int x = 0;
            double value = 0;
            max_index_value(match[10], x, value);
            EXPECT_NEAR(x + 0.5, 33.5 * scale, scale) << scale;
            EXPECT_NEAR(value, 1, 1e-4);
        }
    });
}

TEST(PatternFilter, IsBlackWithoutPatternOrMatch) {
    with_either_method([] {
        seeded_random random(3);
        image const input = random_image(random, 30, 40);
        VisionPattern pattern(5, 0.2);
        pattern.profile(2) = 1.0;
        EXPECT_FALSE(is_black(pattern_filter(input, pattern, false)));
        EXPECT_TRUE(is_black(pattern_filter(image(30, 40), pattern, false)));
        EXPECT_TRUE(is_black(pattern_filter(input, VisionPattern(0, 0.5), false)));
        // Rows without contrast match alike all over, however bright; rounding must not be stretched.
        image const stripes = image_of(60, 700, [](double y, double) { return 0.1 + y / 97; });
        image const alike = pattern_filter(stripes, pattern, false);
        EXPECT_EQ(min_value(alike), max_value(alike));
        for (double ratio : {0.0, -1.0, 2.99 / 40, nan_value, infinity, 1e300, 4.1}) {
            pattern.width_ratio = ratio;
            image const result = pattern_filter(input, pattern, true);
            EXPECT_TRUE(rows(result) == 30 && cols(result) == 40 && is_black(result)) << ratio;
        }
        pattern.width_ratio = 3.9;
        for (image m : {input, image(), image(0, 9), image(9, 0)}) {
            if (cols(m) > 9) m(3)(20) = nan_value;
            EXPECT_EQ(rows(pattern_filter(m, pattern, false)), rows(m));
        }
    });
}

}  // namespace
}  // namespace tvmath
