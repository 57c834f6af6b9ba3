#pragma once

#include "geometry/xyz.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// A place found, as a location in 3D or in 2D; the trivial point when it is not finite.
inline point answer(xyz const& found, bool solid) {
    return found.is_finite() ? found.location(solid) : point();
}

}  // namespace tvmath
