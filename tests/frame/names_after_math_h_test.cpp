#include <math.h>
#include <stdlib.h>

#include <cmath>

#include "tvmath/tvmath.h"
// After the library's headers on purpose.
#include <gtest/gtest.h>

TEST(Names, MeanTheSameAfterTheHeadersOfC) {
    EXPECT_EQ(abs(-2.5), 2.5);
    EXPECT_EQ(abs(-2l), 2l);
    EXPECT_EQ(pow(2.0, 3), 8.0);
    EXPECT_EQ(pow(2.0, 3u), 8.0);
    EXPECT_EQ(sqrt(9.0) + sqr(2.0), 7.0);
    ::point const p(true, 1, 2);
    EXPECT_EQ(sqr(p), 5.0);
}
