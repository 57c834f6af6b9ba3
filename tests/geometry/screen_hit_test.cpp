#include "tvmath/screen_hit.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr int lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();

TEST(ScreenHit, FindsThePolylineWithinItsTolerance) {
    tagPOINT const path[] = {{0, 0}, {10, 0}, {10, 10}, {10, 10}};
    struct {
        tagPOINT p;
        int tolerance;
        bool hit;
    } const cases[] = {
        {{5, 2}, 2, true},   {{5, 3}, 2, false},  {{12, 5}, 2, true}, {{-2, 0}, 2, true},
        {{-3, 0}, 2, false}, {{11, 12}, 2, true},  // in the box of the segment of length 0
        {{5, 0}, 0, true},   {{5, 5}, 4, false},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(IsPtOnPath(c.p, path, 4, c.tolerance), c.hit) << c.p.x << ", " << c.p.y;
    }
    EXPECT_FALSE(IsPtOnPath({0, 0}, path, 1, 5));
    EXPECT_FALSE(IsPtOnPath({0, 0}, nullptr, 0, 5));
    // (3, 5) is 7 / 5 from the line of direction (4, 3).
    tagPOINT const slant[] = {{0, 0}, {40, 30}};
    EXPECT_TRUE(IsPtOnPath({3, 4}, slant, 2, 2));
    EXPECT_TRUE(IsPtOnPath({3, 5}, slant, 2, 3));
    EXPECT_FALSE(IsPtOnPath({3, 5}, slant, 2, 2));  // 11 / 5
    tagPOINT const widest[] = {{lowest, lowest}, {highest, highest}};
    EXPECT_TRUE(IsPtOnPath({7, 7}, widest, 2, 1));
}

// Clips the parameter range of the segment against each side in turn, in exact fractions of small integers.
bool clipped(int x0, int y0, int x1, int y1, int left, int top, int right, int bottom) {
    long double enter = 0, leave = 1;
    auto const clip = [&](int from, int step, int low, int high) {
        if (step == 0) return low <= from && from <= high;
        long double a = static_cast<long double>(low - from) / step,
                    b = static_cast<long double>(high - from) / step;
        if (a > b) std::swap(a, b);
        enter = std::max(enter, a);
        leave = std::min(leave, b);
        return true;
    };
    return clip(x0, x1 - x0, left, right) && clip(y0, y1 - y0, top, bottom) && enter <= leave;
}

TEST(ScreenHit, LineIntersectsRectangleAsClippingTells) {
    seeded_random random(11);
    auto const coordinate = [&] { return static_cast<int>(random.below(17)) - 8; };
    int hits = 0;
    for (int i = 0; i < 100000; ++i) {
        int const x0 = coordinate(), y0 = coordinate(), x1 = coordinate(), y1 = coordinate();
        bool const expected = clipped(x0, y0, x1, y1, -3, -2, 4, 3);
        hits += expected;
        ASSERT_EQ(line_intersects_rect(x0, y0, x1, y1, -3, -2, 4, 3), expected)
            << x0 << " " << y0 << " " << x1 << " " << y1;
        ASSERT_EQ(line_intersects_rect(x1, y1, x0, y0, 4, 3, -3, -2), expected);
    }
    EXPECT_GT(hits, 10000);
}

TEST(ScreenHit, LineIntersectsRectangleAtAnyCoordinates) {
    // The diagonal of all coordinates passes by the corners of rectangles beside it.
    EXPECT_TRUE(line_intersects_rect(lowest, lowest, highest, highest, 5, 5, 9, 9));
    EXPECT_FALSE(line_intersects_rect(lowest, lowest, highest, highest, 6, 4, 9, 5));
    EXPECT_TRUE(line_intersects_rect(lowest, lowest, highest, highest, 5, 4, 9, 5));
    EXPECT_TRUE(line_intersects_rect(lowest, highest, highest, lowest, lowest, lowest, highest, highest));
}

}  // namespace
}  // namespace tvmath
