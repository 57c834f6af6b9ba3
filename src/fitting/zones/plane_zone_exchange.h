#pragma once

#include <vector>

#include "geometry/xyz.h"
#include "tvmath/scalar.h"

inline namespace tvmath {

/// A slab with a unit normal: the points of a list that reach farthest along it and against it, and the
/// distance of the planes through them.
struct slab {
    xyz normal;
    unsigned int upper = 0, lower = 0;
    double width = 0;
};

/// The slab of the points with that unit normal.
slab slab_along(xyz const& normal, std::vector<xyz> const& points);

/// From the slab with that normal down to one that no small tilt makes narrower, by exchange of the points
/// that it touches. There may be a narrower one elsewhere.
slab exchanged_slab(xyz const& normal, std::vector<xyz> const& points);

}  // namespace tvmath
