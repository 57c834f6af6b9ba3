#include <gtest/gtest.h>

#include <cmath>

#include "support/shape_points.h"
#include "support/shape_properties.h"

inline namespace tvmath {
namespace {

using numbers = idioms::array<double>;
using points = idioms::array<point>;

points list_of(std::vector<point> const& p) {
    return points(static_cast<unsigned int>(p.size()), p.data());
}

points cloud(seeded_random& random, unsigned int n, point const& center, double x, double y, double z) {
    std::vector<point> p;
    while (n-- > 0) {
        p.push_back(center + point(false, x * random.uniform(-1, 1), y * random.uniform(-1, 1),
                                   z * random.uniform(-1, 1)));
    }
    return list_of(p);
}

// A map gives itself back, of narrow strips and flat boxes and far from the origin too, with directions among
// the points and pairs that say nothing.
TEST(TransformFit, FindsTheMapBehindTheImages) {
    seeded_random random(31);
    for (int trial = 0; trial < 300; ++trial) {
        transform const map = random_map(random);
        double const narrow = random.log_uniform(1e-5, 1), far = trial % 3 ? 0 : 1e4;
        points from = cloud(random, 12, at(far, -far, far), 5, 5 * narrow, map.is_3d() ? 4 : 0);
        from(0).to_direction();
        points to = from * map;
        numbers weights(12, 1.0);
        for (unsigned int i = 0; i < 12; ++i) weights(i) = random.uniform(0.1, 10);
        weights(3) = 0;
        to(3) = at(99, 99, 99);
        to(4) = point(false, 7, 7, 7);  // cannot be the image of a location
        transform const found =
            map.is_3d() ? transform::fit3d(from, to, weights) : transform::fit2d(from, to, weights);
        ASSERT_EQ(found.capacity(), map.capacity()) << trial;
        for (int i = 1; i < 3; ++i) {
            EXPECT_LE(distance3d(found.basis(i), map.basis(i)), 4e-15 * (5 + far) / 5 / narrow)
                << trial << ' ' << narrow;
        }
        EXPECT_LE(distance3d(from[5] * found, to[5]), 2e-14 * (1 + far)) << trial;
    }
}

// Of noisy images the residuals are at a right angle, under the weights, to each coordinate and to 1: the
// mark of the least-squares answer.
TEST(TransformFit, LeavesResidualsAcrossTheCoordinates) {
    seeded_random random(32);
    for (int trial = 0; trial < 100; ++trial) {
        points const from = cloud(random, 20, at(3, 4, 5), 2, 1, 3);
        points to = from * random_map(random);
        numbers weights(20, 1.0);
        for (unsigned int i = 0; i < 20; ++i) {
            to(i) += point(false, random.normal(), random.normal(), random.normal());
            weights(i) = random.uniform(0, 2);
        }
        for (transform const& found :
             {transform::fit2d(from, to, weights), transform::fit3d(from, to, weights)}) {
            double sums[4][3] = {};
            for (unsigned int i = 0; i < 20; ++i) {
                point const left = from[i] * found - to[i];
                for (unsigned int k = 0; k < 4; ++k) {
                    double const factor = weights[i] * (k == 0 ? 1 : from[i][k]);
                    for (unsigned int j = 0; j < 3; ++j) sums[k][j] += factor * left[j + 1];
                }
            }
            unsigned int const n = found.is_2d() ? 2 : 3;
            for (unsigned int k = 0; k <= n; ++k) {
                for (unsigned int j = 0; j < n; ++j) EXPECT_NEAR(sums[k][j], 0, 1e-12) << k << j;
            }
        }
    }
}

TEST(TransformFit, IsTrivialWithoutAnAnswer) {
    std::vector<point> const triangle = {at(0, 0), at(1, 0), at(0, 1)};
    points const three = list_of(triangle);
    points const on_line = list_of({at(0.1, 0.1), at(0.2, 0.2), at(0.7, 0.7), at(0.9, 0.9)});
    points const in_plane = list_of({at(0, 0, 1), at(1, 0, 1), at(0, 1, 1), at(2, 3, 1)});
    points const with_nan = list_of({at(0, 0), at(1, std::nan("")), at(0, 1)});
    points const directions = list_of({point(false, 1, 0), point(false, 0, 1), point(false, 1, 1)});
    ASSERT_TRUE(transform::fit2d(three, three, numbers()).is_2d());
    auto const expect_none = [](points const& from, points const& to, numbers const& weights = numbers()) {
        EXPECT_TRUE(transform::fit2d(from, to, weights).is_trivial());
    };
    expect_none(points(), points());
    expect_none(three, on_line);  // of another size
    expect_none(on_line, on_line);
    expect_none(three, list_of({at(0, 0), at(1, 1), at(2, 2)}));  // an image without area
    expect_none(with_nan, three);
    expect_none(three, with_nan);
    expect_none(directions, directions);
    expect_none(three, directions);
    for (double const w : {0.0, -1.0, std::nan("")}) expect_none(three, three, numbers(3, w));
    expect_none(three, three, numbers(2, 1.0));
    EXPECT_TRUE(transform::fit3d(three, three, numbers()).is_trivial());
    EXPECT_TRUE(transform::fit3d(in_plane, in_plane, numbers()).is_trivial());
}

}  // namespace
}  // namespace tvmath
