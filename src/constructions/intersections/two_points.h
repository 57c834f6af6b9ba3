#pragma once

#include "geometry/xyz.h"
#include "tvmath/array.h"

inline namespace tvmath {

/// A list of both locations; empty when a coordinate is not finite.
inline idioms::array<point> two_points(xyz const& first, xyz const& second) {
    if (!first.is_finite() || !second.is_finite()) return {};
    idioms::array<point> both(2);
    point* const to = both.lazycopy_begin();
    to[0] = first.location(true);
    to[1] = second.location(true);
    return both;
}

}  // namespace tvmath
