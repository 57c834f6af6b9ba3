#include "tvmath/vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/matrix.h"
#include "tvmath/point.h"

inline namespace tvmath {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

vector list(std::initializer_list<double> values) {
    return vector(static_cast<unsigned int>(values.size()), values.begin());
}

vector random_vector(seeded_random& random, unsigned int n) {
    vector v(n);
    for (unsigned int i = 0; i < n; ++i) v(i) = random.uniform(0, 1);
    return v;
}

void expect_near(vector const& actual, vector const& expected, double tolerance) {
    ASSERT_EQ(dim(actual), dim(expected));
    for (unsigned int i = 0; i < dim(actual); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "at " << i;
}

int handles(vector const& v) {
    return v.address()->reference_count;
}

TEST(Vector, IsMadeFromCountsListsAndPoints) {
    double const source[] = {1, 2, 3, 4};
    EXPECT_EQ(vector(3, 0), list({0, 0, 0}));
    EXPECT_EQ(vector(2, source + 3, -2), list({4, 2}));
    EXPECT_EQ(vector(point(true, 5, 6)), list({5, 6}));
    EXPECT_EQ(vector(point(false, 5, 6, 7)), list({5, 6, 7}));
    EXPECT_TRUE(vector(point()).is_trivial());
    EXPECT_TRUE(point(true, list({5, 6})) == point(true, 5, 6));
    EXPECT_TRUE(point(false, list({5, 6, 7})) == point(false, 5, 6, 7));
    EXPECT_TRUE(point(true, vector()).is_trivial());

    idioms::array<double> const block(2, 1.5);
    EXPECT_EQ(vector(block).address(), block.address());
    EXPECT_EQ(dim(list({1, 2}), list({1, 2, 3})), 2u);
    EXPECT_EQ(vector::dim(list({1, 2, 3}), list({1})), 3u);
}

TEST(Vector, StaysSharedWhenAnOperationIsByItsNeutralValue) {
    struct {
        char const* name;
        void (*apply)(vector&);
        bool shared;
    } const cases[] = {
        {"times 1", [](vector& v) { v *= 1.0; }, true},
        {"times 2", [](vector& v) { v *= 2.0; }, false},
        {"by 1", [](vector& v) { v /= 1.0; }, true},
        {"plus 0", [](vector& v) { v += 0.0; }, true},
        {"minus 0", [](vector& v) { v -= 0.0; }, true},
        {"minus 1", [](vector& v) { v -= 1.0; }, false},
        {"narrow boxcar", [](vector& v) { v.boxcar(1); }, true},
        {"set", [](vector& v) { v = 3.0; }, false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        vector const original = list({1, 2});
        vector copy = original;
        c.apply(copy);
        EXPECT_EQ(copy.address() == original.address(), c.shared);
        EXPECT_EQ(handles(original), c.shared ? 2 : 1);
        EXPECT_EQ(original, list({1, 2}));
    }
}

TEST(Vector, ComputesElementByElement) {
    vector const a = list({1, -2, 3}), b = list({4, 5, -6});
    EXPECT_EQ(a + b, list({5, 3, -3}));
    EXPECT_EQ(a - b, list({-3, -7, 9}));
    EXPECT_EQ(a * b, list({4, -10, -18}));
    EXPECT_EQ(1.0 - a, list({0, 3, -2}));
    EXPECT_EQ(a - 1.0, list({0, -3, 2}));
    EXPECT_EQ(a / 2.0, list({0.5, -1, 1.5}));
    EXPECT_EQ(abs(a), list({1, 2, 3}));
    EXPECT_NE(a, list({1, -2}));
    // A quotient is a product with 1/value: 1/49 rounds, so that 49/49 falls short of 1 by half an ulp.
    EXPECT_EQ((list({49}) / 49.0)[0], 1 - 0x1p-53);

    vector self = a;
    self += self;
    EXPECT_EQ(self, list({2, -4, 6}));
    self *= self[0];  // the factor is an element that the loop overwrites
    EXPECT_EQ(self, list({4, -8, 12}));
}

TEST(Vector, MeasuresLengthsWithoutOverflow) {
    vector const v = list({3, -4});
    EXPECT_EQ(dot(v, list({1, 2, 9})), -5);
    EXPECT_EQ(manhatten_norm(v), 7);
    EXPECT_EQ(maximum_norm(v), 4);
    EXPECT_EQ(sqr(v), 25);
    EXPECT_EQ(sum(v), -1);
    EXPECT_EQ(euclidean_norm(v), 5);
    // Scaled by powers of two, exact: the length of (3, 4) is 5 at any scale, the denormal ones included.
    for (int exponent : {-1072, -1040, -600, 0, 600, 1020}) {
        SCOPED_TRACE(exponent);
        double const scale = std::ldexp(1.0, exponent);
        vector const scaled = v * scale;
        EXPECT_NEAR(norm(scaled) / scale, 5, 2e-15);
        expect_near(normalize(scaled), list({0.6, -0.8}), 1e-15);
    }
    EXPECT_EQ(euclidean_norm(list({1e200})), infinity);
    EXPECT_EQ(normalize(vector(2)), vector(2));
    EXPECT_NEAR(angle(list({2, 0}), list({0, 3})), pi / 2, 1e-15);
    EXPECT_NEAR(angle(list({1, 0}), list({-1, 1})), 3 * pi / 4, 1e-15);
}

TEST(Vector, FindsTheFirstOfEqualExtremes) {
    vector const v = list({2, 7, -1, 7, -1});
    unsigned int low = 99, high = 99;
    double min = 99, max = 99;
    EXPECT_TRUE(minmax_index_value(v, low, min, high, max));
    EXPECT_EQ(low, 2u);
    EXPECT_EQ(min, -1);
    EXPECT_EQ(high, 1u);
    EXPECT_EQ(max, 7);
    EXPECT_EQ(min_value(v), -1);
    EXPECT_EQ(max_value(-v), 1);
}

TEST(Vector, AnswersWhenEmpty) {
    vector const v;
    for (auto measure : {dot(v, v), euclidean_norm(v), manhatten_norm(v), maximum_norm(v), norm(v), sum(v),
                         sqr(v), min_value(v), max_value(v), interpolate(v, 3)}) {
        EXPECT_EQ(measure, 0.0);
    }
    unsigned int index = 7;
    double value = 8, other = 9;
    EXPECT_FALSE(min_index_value(v, index, value) || max_index_value(v, index, value));
    EXPECT_FALSE(minmax_index_value(v, index, value, index, other));
    minmax_value(v, value, other);
    EXPECT_TRUE(index == 7 && value == 8 && other == 9);
    EXPECT_EQ(integrate(v), vector(1));
    EXPECT_TRUE(differentiate(list({1})).is_trivial() && derivative(list({1})).is_trivial());
    vector changed;
    changed.boxcar(3).threshold(0.5) *= 2;
    changed = 4.0;
    EXPECT_TRUE(changed.is_trivial() && normalize(changed).is_trivial());
    EXPECT_EQ(resample(v, 2, 3), vector(3));
    EXPECT_EQ(resample(v, 0.5, 3), vector(3));
}

TEST(VectorSignal, DifferencesSumsAndPowers) {
    EXPECT_EQ(differentiate(list({1, 4, 9})), list({3, 5}));
    EXPECT_EQ(derivative(list({5, 4, 3, 2})), list({4, 6, 6}));  // of 5 + 4x + 3x² + 2x³
    EXPECT_EQ(integrate(list({1, 4, 9})), list({0, 1, 5, 14}));
    EXPECT_EQ(powvec(3, 4), list({1, 3, 9, 27}));
    EXPECT_EQ(powvec(0, 2), list({1, 0}));
}

TEST(VectorSignal, InterpolatesBetweenSamplesAndClampsBeyond) {
    vector const v = list({1, 3, -1});
    struct {
        double x, expected;
    } const cases[] = {{0, 1},  {0.5, 2}, {1, 3},         {1.25, 2},      {2, -1},
                       {-1, 1}, {9, -1},  {infinity, -1}, {-infinity, 1}, {1e300, -1}};
    for (auto const& c : cases) EXPECT_EQ(interpolate(v, c.x), c.expected) << c.x;
    EXPECT_TRUE(std::isnan(interpolate(v, nan_value)));
    EXPECT_EQ(sample(v, list({0.5, 9})), list({2, -1}));
    EXPECT_EQ(sample(v, v), list({3, -1, 1}));
}

TEST(VectorSignal, BoxcarIsTheMeanOfTheSamplesInTheWindow) {
    seeded_random random(20250301);
    for (unsigned int n : {1u, 2u, 3u, 7u, 20u}) {
        for (int width : {2, 3, 4, 5, 9, 40, std::numeric_limits<int>::max()}) {
            SCOPED_TRACE(testing::Message() << n << " samples, width " << width);
            vector const v = random_vector(random, n);
            vector expected(n);
            for (int i = 0; i < static_cast<int>(n); ++i) {
                double total = 0;
                int count = 0;
                for (int j = 0; j < static_cast<int>(n); ++j) {
                    if (std::abs(i - j) > width / 2) continue;
                    total += v[static_cast<unsigned int>(j)];
                    ++count;
                }
                expected(static_cast<unsigned int>(i)) = total / count;
            }
            vector smoothed = v;
            expect_near(smoothed.boxcar(width), expected, 1e-14);  // twenty sums of numbers up to 20
        }
    }
}

TEST(VectorSignal, ThresholdStretchesWhatIsAboveTheBlackPoint) {
    // Bins 512, 256, 768 and 1000; with b = 256 the black point is 1/4, with 512 it is 1/2.
    vector const profile = list({0.5, 0.25, 0.75, 1000 / 1024.0});
    double const top = 1000 / 1024.0;
    struct {
        char const* name;
        double fraction;
        vector expected;
    } const cases[] = {
        // A target of 0 is met by the first level scanned, b = 1.
        {"none", 0, (profile - 1 / 1024.0) / (1023 / 1024.0)},
        {"one of four", 0.25, list({1 / 3.0, 0, 2 / 3.0, (top - 0.25) / 0.75})},
        {"integer part", 0.49, list({1 / 3.0, 0, 2 / 3.0, (top - 0.25) / 0.75})},
        {"two of four", 0.5, list({0, 0, 0.5, (top - 0.5) / 0.5})},
        {"all", 1, vector(4)},
        {"never met", 2, vector(4)},  // b = 1023: nothing is above 1023/1024
        {"no number", nan_value, vector(4)},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        vector v = profile;
        expect_near(v.threshold(c.fraction), c.expected, 1e-15);
    }
    vector dark(5);
    EXPECT_EQ(dark.threshold(0.5), vector(5));
    vector odd =
        list({nan_value, -infinity, infinity, -3, 1e300, 0.0015});  // 0.0015 lies in bin 1, the ground
    odd.threshold(1);
    EXPECT_EQ(odd[1], 0);
    EXPECT_EQ(odd[3], 0);
    EXPECT_EQ(odd[5], 0);
    EXPECT_EQ(odd[2], infinity);
}

TEST(VectorSignal, ResamplesByHand) {
    vector const v = list({2, 4, 6, 0});
    struct {
        char const* name;
        double scale;
        unsigned int n;
        vector expected;
    } const cases[] = {
        {"mean", 1, 1, list({3})},
        {"nothing", 0.5, 0, vector()},
        {"as it is", 1, 2, v},
        {"doubled", 2, 7, list({2, 3, 4, 5, 6, 3, 0})},
        {"doubled beyond the end", 2, 8, list({2, 3, 4, 5, 6, 3, 0, 0})},
        {"halved", 0.5, 2, list({3, 3})},
        // Bins of 4/3 samples hold 2 + 4/3, 8/3 + 4 and 2 + 0.
        {"three quarters", 0.75, 3, list({2.5, 5, 1.5})},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_near(resample(v, c.scale, c.n), c.expected, 4e-15);
    }
    // The last sample, here 5, goes on beyond the end.
    expect_near(resample(list({1, 3, 5}), 0.5, 4), list({2, 5, 5, 5}), 4e-15);
    EXPECT_EQ(resample(v, 1, 9).address(), v.address());
    for (double scale : {0.0, -1.0, -1e-300, 1e-320, 1e300, infinity, -infinity, nan_value}) {
        EXPECT_EQ(dim(resample(v, scale, 5)), 5u) << scale;  // any values, but none from outside the list
    }
}

}  // namespace
}  // namespace tvmath
