#pragma once

#include <span>
#include <vector>

#include "tvmath/array.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// The points of either kind of list, so that both forms of a fit run the same steps.
using point_span = std::span<point const>;

inline point_span span_of(std::vector<point> const& points) {
    return points;
}
inline point_span span_of(idioms::array<point> const& points) {
    return {points.begin(), points.end()};
}

}  // namespace tvmath
