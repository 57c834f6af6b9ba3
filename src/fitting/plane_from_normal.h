#pragma once

#include "point_span.h"
#include "tvmath/plane.h"

inline namespace tvmath {

/// Half extents for planes of data that has none, in the caller's units.
inline constexpr double smallest_plane_extent = 0.005;

/// The finite plane through `center` with that normal, of any length but 0. Its axes are as long as the data
/// reach, about their middle when `recenter` is set. Extents of exactly 0, and those of fewer than 3 points,
/// are no extents: they are raised to the minimum. The normal is turned so that its largest component is
/// positive, the first one of those that are equal within 1e-6.
///
/// Null for a trivial `center` or `normal` and where a number is not finite.
plane plane_from_normal(point const& center, point const& normal, point_span points, double minimum_width,
                        double minimum_height, bool recenter = true);

}  // namespace tvmath
