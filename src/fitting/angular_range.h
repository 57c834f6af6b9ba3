#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tvmath/scalar.h"

inline namespace tvmath {

/// The range that two or more angles span, each from -pi to pi: the complement of the largest gap between
/// neighbours on the circle, the gap that holds pi or else the first one of equals. `end` is at or above
/// `start`, up to a whole turn.
///
/// Without sorting: of equal bins, one more than there are angles, one at least is empty, so the largest gap
/// lies between bins, and the extremes of each bin tell it exactly. A few bins, which the nearest memory
/// holds, are tried first: they do unless the angles leave no gap as wide as a bin.
///
/// Source: T. Gonzalez, Algorithms on sets and related problems, University of Oklahoma, 1975 (maximum gap by
/// the pigeonhole principle).
inline void angular_range(std::vector<double> const& angles, double& start, double& end) {
    struct bin {
        double low = infinity, high = -infinity;
    };
    std::size_t const most = angles.size() + 1;
    std::vector<bin> bins;
    for (std::size_t count = std::min<std::size_t>(most, 4096);; count = most) {
        bins.assign(count, bin());
        double const scale = static_cast<double>(count) / (2 * pi);
        for (double const angle : angles) {
            std::size_t const place = angle > -pi ? static_cast<std::size_t>((angle + pi) * scale) : 0;
            bin& b = bins[std::min(place, count - 1)];
            b.low = std::min(b.low, angle);
            b.high = std::max(b.high, angle);
        }
        double first = infinity, last = -infinity;
        for (bin const& b : bins) {
            first = std::min(first, b.low);
            last = std::max(last, b.high);
        }
        start = first;
        end = last - 2 * pi;
        double gap = start - end, before = first;
        for (bin const& b : bins) {
            if (b.low > b.high) continue;  // empty
            if (b.low - before > gap) {
                start = b.low;
                end = before;
                gap = start - end;
            }
            before = b.high;
        }
        // Two angles in one bin are no farther apart than its width, but for rounding.
        if (count == most || gap * scale > 1 + 1e-9) break;
    }
    end += 2 * pi;
}

}  // namespace tvmath
