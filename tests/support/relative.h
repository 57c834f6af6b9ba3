#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

inline namespace tvmath {

/// Passes when `actual` is within `tolerance` of `expected` relative to `scale`; says `reason`, the origin of
/// the tolerance, when not.
inline testing::AssertionResult near_at_scale(double actual, double expected, double scale, double tolerance,
                                              char const* reason) {
    double const error = std::fabs(actual - expected) / scale;
    if (error <= tolerance || actual == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual << " differs from " << expected << " by " << error << " of "
                                       << scale << "; allowed " << tolerance << ": " << reason;
}

/// The same relative to the expected value itself.
inline testing::AssertionResult relatively_near(double actual, double expected, double tolerance,
                                                char const* reason) {
    return near_at_scale(actual, expected, std::fabs(expected), tolerance, reason);
}

}  // namespace tvmath
