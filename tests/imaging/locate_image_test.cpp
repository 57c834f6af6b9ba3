#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "imaging/rendered_scene.h"
#include "support/seeded_random.h"
#include "tvmath/pattern.h"

inline namespace tvmath {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

// Blurred spots all over the plane, each of 1.5 to 4 pixels, at their true places.
struct spots {
    struct spot {
        double x, y, size, grey;
    };
    std::vector<spot> all;

    spots(seeded_random& random, double width, double height) {
        for (int i = 0; i < width * height / 60; ++i) {
            all.push_back({random.uniform(0, width), random.uniform(0, height), random.uniform(1.5, 4),
                           random.uniform(-0.4, 0.4)});
        }
    }
    double operator()(double x, double y) const {
        double grey = 0.5;
        for (spot const& s : all) {
            double const d2 = (sqr(x - s.x) + sqr(y - s.y)) / (2 * sqr(s.size));
            if (d2 < 20) grey += s.grey * std::exp(-d2);
        }
        return grey;
    }
    image seen_from(double x0, double y0, unsigned int rows, unsigned int cols) const {
        return image_of(rows, cols, [&](double y, double x) { return (*this)(x0 + x + 0.5, y0 + y + 0.5); });
    }
};

image changed(image m, std::function<double(double)> const& change) {
    return image_of(rows(m), cols(m), [&](double y, double x) {
        return change(m[static_cast<unsigned int>(y)][static_cast<unsigned int>(x)]);
    });
}

// The interpolation of the scene and the steps of 0.01 pixel leave some thousandths of a pixel; the camera's
// gain and offset do not matter. Noise makes it more, since the interpolation lessens it half-way between
// pixels, where the match looks better than it is.
TEST(LocateImage, FindsTargetsSeenFromPlacesBetweenPixels) {
    seeded_random random(1);
    for (double noise : {0.0, 0.02}) {
        double square_sum = 0, worst = 0;
        constexpr int trials = 30;
        for (int trial = 0; trial < trials; ++trial) {
            spots const scene(random, 90, 70);
            unsigned int const r = 32 + random.below(16), c = 32 + random.below(16);
            double const x = random.uniform(1, 88.0 - c), y = random.uniform(1, 68.0 - r);
            double const gain = random.log_uniform(0.01, 100), offset = random.uniform(-1e6, 1e6);
            auto const seen = [&](double v) { return v + noise * random.normal() - offset / 2; };
            image const whole = changed(scene.seen_from(0, 0, 70, 90), seen);
            image const target =
                changed(scene.seen_from(x, y, r, c), [=](double v) { return gain * v + offset; });
            point const p = locate_image(whole, target, true);
            ASSERT_TRUE(p.is_2d() && p.is_direction()) << trial;
            double const dx = p.x() - x - c / 2.0, dy = p.y() - y - r / 2.0;
            square_sum += sqr(dx) + sqr(dy);
            worst = std::max({worst, std::fabs(dx), std::fabs(dy)});
        }
        double const deviation = std::sqrt(square_sum / (2 * trials));
        RecordProperty(noise > 0 ? "noisy" : "clean",
                       std::to_string(deviation) + " " + std::to_string(worst));
        EXPECT_LT(deviation, noise > 0 ? 0.06 : 0.008);
        EXPECT_LT(worst, noise > 0 ? 0.13 : 0.025);
    }
}

TEST(LocateImage, FindsNothingInNoise) {
    seeded_random random(2);
    for (int trial = 0; trial < 40; ++trial) {
        image const target = random_image(random, 8 + random.below(8), 8 + random.below(8));
        EXPECT_TRUE(locate_image(random_image(random, 40, 50), target, true).is_trivial()) << trial;
    }
}

// The search for whole pixels as it is defined, place by place.
struct plain_search {
    image const &scene, &target;
    int x = 0, y = 0;
    double best = -1;

    double score(int ox, int oy, int k) const {
        long double n = 0, t = 0, tt = 0, i = 0, ii = 0, ti = 0;
        for (unsigned int v = 0; v < rows(target); v += static_cast<unsigned int>(k)) {
            for (unsigned int u = 0; u < cols(target); u += static_cast<unsigned int>(k)) {
                long double const a = target[v][u] - target[0][0];
                long double const b =
                    scene[v + static_cast<unsigned int>(oy)][u + static_cast<unsigned int>(ox)] -
                    target[0][0];
                n += 1, t += a, tt += a * a, i += b, ii += b * b, ti += a * b;
            }
        }
        long double const product = (tt / n - t / n * t / n) * (ii / n - i / n * i / n);
        return product <= 1e-20L ? -1.0 : static_cast<double>((ti / n - t / n * i / n) / std::sqrt(product));
    }
    void search(int x0, int x1, int y0, int y1, int k, int step) {
        best = -1;
        for (int ox = x0; ox < x1; ox += step) {
            for (int oy = y0; oy < y1; oy += step) {
                double const s = score(ox, oy, k);
                if (s > best + 1e-13) best = s, x = ox, y = oy;  // rounding makes no winner of equals
            }
        }
    }
    bool run(bool strict) {
        int const dr = static_cast<int>(rows(scene) - rows(target)),
                  dc = static_cast<int>(cols(scene) - cols(target));
        for (int k : {4, 2, 1}) {
            search(0, dc, 0, dr, k, k);
            if (best == -1) return false;
            if (k > 1) {
                search(std::max(x - k - 2, 0), std::min(x + 3 + k, dc), std::max(y - k - 2, 0),
                       std::min(y + 3 + k, dr), 1, 1);
            }
            if (best > 0.5625) break;
        }
        return best >= 0.3239 && (!strict || best > 0.5625);
    }
};

// Scenes in which all levels decide: noise, of which a disturbed part is sought, with flat areas or repeated
// with a period, where many places are equally good, or differ by less than single precision tells.
TEST(LocateImage, DecidesAsTheSearchOfAllPlaces) {
    seeded_random random(3);
    int found = 0, missed = 0;
    for (int trial = 0; trial < 120; ++trial) {
        unsigned int const r = 5 + random.below(9), c = 5 + random.below(9), period = 6 + random.below(3);
        unsigned int const h = r + 10 + random.below(20), w = c + 10 + random.below(20);
        image noise = random_image(random, h, w);
        double const strength = random.unit(), level = random.coin() ? 0 : 1e3;
        image const scene = image_of(h, w, [&](double y, double x) {
            unsigned int const i = static_cast<unsigned int>(y), j = static_cast<unsigned int>(x);
            double const again = noise[(i + j) % period][j % 3];
            if (trial % 4 == 0) return level + again;
            if (trial % 4 == 1) return level + again + 1e-7 * noise[i][j];
            return level + (trial % 4 == 2 && j > w / 2 ? 0.1 : noise[i][j]);
        });
        image const part = keep_matrix(scene, random.below(h - r), r, random.below(w - c), c);
        image const target = changed(part, [&](double v) { return v + strength * random.normal(); });
        bool const strict = random.coin();
        plain_search plain{scene, target};
        bool const expected = plain.run(strict);
        point const p = locate_image(scene, target, strict);
        ASSERT_EQ(!p.is_trivial(), expected) << trial;
        (expected ? found : missed) += 1;
        if (!expected) continue;
        // The fraction of the pixel may go either way.
        EXPECT_NEAR(p.x() - c / 2.0, plain.x, 1) << trial;
        EXPECT_NEAR(p.y() - r / 2.0, plain.y, 1) << trial;
    }
    EXPECT_GT(found, 30);
    EXPECT_GT(missed, 30);
}

// Of 64 pixels, half of them white, 7 white and 7 black ones change sides: the correlation is
// (50 - 14) / 64 = 0.5625, without rounding.
TEST(LocateImage, TakesTheLimitOfStrictForTooWeak) {
    seeded_random random(4);
    int tried = 0;
    for (int trial = 0; trial < 40; ++trial) {
        image target(8, 8), scene(matrix(18, 18, 0.5));
        int colored[2] = {0, 0};
        for (unsigned int i = 0; i < 64; ++i) {
            bool const white = colored[1] < 32 && (colored[0] == 32 || random.coin());
            target(i / 8)(i % 8) = white;
            scene(5 + i / 8)(5 + i % 8) = white != (colored[white]++ < 7);
        }
        plain_search plain{scene, target};
        if (!plain.run(false) || plain.best != 0.5625) continue;
        ++tried;
        EXPECT_FALSE(locate_image(scene, target, false).is_trivial()) << trial;
        EXPECT_TRUE(locate_image(scene, target, true).is_trivial()) << trial;
    }
    EXPECT_GT(tried, 0);
}

TEST(LocateImage, FailsWithoutRoomOrContrast) {
    seeded_random random(5);
    image const scene = random_image(random, 30, 40);
    auto const part = [&](unsigned int r, unsigned int c) { return image(keep_matrix(scene, 2, r, 3, c)); };
    EXPECT_FALSE(locate_image(scene, part(20, 30), true).is_trivial());
    image const flat(matrix(8, 8, 0.3)), gray(matrix(30, 40, 0.3));  // whose mean squares are rounded
    image spoilt = part(8, 8);
    spoilt(4)(4) = nan_value;
    for (image const& target :
         {part(21, 30), part(20, 31), image(), image(0, 5), image(5, 0), image(50, 60), flat, spoilt}) {
        EXPECT_TRUE(locate_image(scene, target, false).is_trivial())
            << rows(target) << " by " << cols(target);
    }
    image const huge = changed(scene, [](double v) { return v * 1e308; });
    for (image const& m : {flat, gray, image(), huge, image(matrix(30, 40, nan_value))})
        EXPECT_TRUE(locate_image(m, part(8, 8), false).is_trivial());

    // Bad pixels elsewhere do not matter, wherever the running sums pass them.
    spoilt = scene;
    spoilt(3)(0) = nan_value;
    spoilt(20)(20) = infinity;
    EXPECT_TRUE(locate_image(spoilt, part(8, 8), true) == locate_image(scene, part(8, 8), true));
}

}  // namespace
}  // namespace tvmath
