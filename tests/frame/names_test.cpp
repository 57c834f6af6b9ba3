#include "tvmath/tvmath.h"
// After the library's headers on purpose.
#include <gtest/gtest.h>
#include <math.h>

#include <cmath>
#include <type_traits>

// No using directive and no namespace: these are the names as a user's program sees them.

static_assert(std::is_same_v<::point, tvmath::point>);
static_assert(std::is_same_v<idioms::array<point>, tvmath::idioms::array<::point>>);
static_assert(std::is_same_v<decltype(abs(-2.5)), double>);
static_assert(std::is_same_v<decltype(abs(-2)), int>);
static_assert(std::is_same_v<decltype(sqrt(2.0f)), float>);
static_assert(std::is_same_v<decltype(pow(2.0, 3u)), double>);
static_assert(std::is_same_v<decltype(pow(2.0, 3.0L)), double>);

TEST(Names, OfStandardFunctionsMeanWhatTheyShould) {
    EXPECT_EQ(sqrt(2.0), std::sqrt(2.0));
    EXPECT_EQ(abs(-2.5), 2.5);  // the integer abs of stdlib.h would give 2
    EXPECT_EQ(pow(2.0, 3), 8.0);
    EXPECT_EQ(pow(2.0, 3u), 8.0);
    EXPECT_EQ(pow(2.0, -2l), 0.25);
    EXPECT_EQ(pow(2.0, 3ul), 8.0);
    EXPECT_EQ(pow(2.0f, 3.0f), 8.0f);
    EXPECT_EQ(pow(4.0, 0.5f), 2.0);
    EXPECT_EQ(log(2.0, 8.0), 3.0);
    EXPECT_EQ(log(1.0), 0.0);
    EXPECT_EQ(floor(2.5) + fabs(-1.0) + sin(0.0) + atan2(0.0, 1.0), 3.0);
}

TEST(Names, OfTheLibraryStandInTheGlobalAndInTheLibrarysNamespace) {
    ::point const p(true, 3, 4);
    tvmath::point const q = p;
    EXPECT_TRUE(p == q);
    idioms::array<point> const list(2, p);
    EXPECT_TRUE(::point_fit(list) == tvmath::point_fit(list));
}
