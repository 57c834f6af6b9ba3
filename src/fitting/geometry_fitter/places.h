#pragma once

#include "fitting/point_span.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Whether all points are locations of at least that dimension.
inline bool all_places(point_span points, unsigned int dimension) {
    bool all = true;
    // Without a branch for each point: a list with a fault in it may take as long as a good one.
    for (point const& p : points) all &= static_cast<bool>((p.dimension() >= dimension) & (p[0] != 0.0));
    return all;
}

}  // namespace geometry_fitter
}  // namespace tvmath
