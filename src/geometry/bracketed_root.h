#pragma once

#include <cmath>
#include <limits>

inline namespace tvmath {

/// Value and slope of a function at one argument.
struct value_and_slope {
    double value, slope;
};

/// A zero of `f` between `lo` and `hi`, where f(lo) <= 0 <= f(hi): an argument at which f rises through 0.
///
/// Newton's iteration from `start`, kept within the bracket: it bisects when a step would leave it or is
/// longer than half of the one before last, so that the steps shrink in any case. It stops at a step below
/// the rounding of the argument, or below 1e-17, which is no more than that for arguments of the size of 1;
/// 120 halvings, the limit, always lead there.
///
/// Source: R. P. Brent, Algorithms for Minimization without Derivatives, Prentice-Hall 1973, chapter 4.
template <class function>
double bracketed_root(function const& f, double lo, double hi, double start) {
    double x = start, before_last = hi - lo, last = before_last;
    for (int step = 0; step < 120; ++step) {
        auto const [value, slope] = f(x);
        if (value == 0) return x;
        (value < 0 ? lo : hi) = x;
        double next = x - value / slope;
        if (!(next >= lo && next <= hi) || std::fabs(next - x) > before_last / 2) next = lo + (hi - lo) / 2;
        before_last = last;
        last = std::fabs(next - x);
        x = next;
        if (last <= 1e-17 || last <= std::numeric_limits<double>::epsilon() / 2 * std::fabs(x)) break;
    }
    return x;
}

}  // namespace tvmath
