#pragma once

#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// Fills the empty `block` with the tree of the points. Leaves it empty when the list is, or when offsets of
/// 32 bits would not reach.
template <unsigned int dimension>
void build_point_tree(std::vector<point> const& points, std::vector<unsigned char>& block);

}  // namespace tvmath
