#pragma once

#include "geometry/xyz.h"
#include "tvmath/distance.h"
#include "tvmath/line.h"

inline namespace tvmath {

/// The line about `middle` with the given half-vector, in the frame that `distance_fit` tells; empty when a
/// number is not finite. Made about the origin and then moved, so that the half-vector keeps the digits that
/// the ends far from the origin do not have.
inline line line_about(xyz const& middle, xyz const& half, bool solid) {
    line l = distance_fit((-1.0 * half).location(solid), half.location(solid));
    if (l.is_trivial() || !middle.is_finite()) return line();
    l.translate(middle.location(solid));
    return l;
}

}  // namespace tvmath
