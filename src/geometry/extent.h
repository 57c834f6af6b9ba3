#pragma once

#include "tvmath/real_rect.h"
#include "tvmath/scalar.h"

inline namespace tvmath {

/// The least and the greatest of some numbers; NaN counts for nothing.
struct interval {
    double low = infinity, high = -infinity;

    bool is_empty() const { return low > high; }
    bool contains(double v) const { return low <= v && v <= high; }
    void widen(double v) {
        if (v < low) low = v;
        if (v > high) high = v;
    }
};

/// The null rectangle when one side is the extent of nothing.
inline CRealRect rectangle_over(interval const& x, interval const& y) {
    CRealRect extent;
    if (x.is_empty() || y.is_empty()) return extent;
    extent.left = x.low;
    extent.right = x.high;
    extent.bottom = y.low;
    extent.top = y.high;
    return extent;
}

}  // namespace tvmath
