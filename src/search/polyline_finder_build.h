#pragma once

#include <cstdint>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// Fills the empty `block` with the segments of the polyline and the tree of boxes over them, and returns the
/// offset at which the boxes begin. Leaves the block empty and returns 0 when the list is empty, or when
/// offsets of 32 bits would not reach.
template <unsigned int dimension>
std::uint32_t build_polyline_tree(std::vector<point> const& points, std::vector<unsigned char>& block);

}  // namespace tvmath
