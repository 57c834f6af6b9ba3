#pragma once

#include <cstdint>
#include <vector>

#include "finder_coordinates.h"
#include "tvmath/point_finder.h"

inline namespace tvmath {

/// Offset of the leaf nearest to the query, which must be finite, or `nowhere` when no distance is finite.
/// The leaf at `last`, unless that is `nowhere`, wins over all that are just as near. The block must not be
/// empty. The surroundings, those of the last queries to this block, make it faster and change no answer.
template <unsigned int dimension>
std::uint32_t closest_leaf(std::vector<unsigned char> const& block, coordinates<dimension> const& query,
                           std::uint32_t last, point_surroundings<dimension>& near);

/// The same for the farthest leaf; `nowhere` when all leaves have a NaN.
template <unsigned int dimension>
std::uint32_t farthest_leaf(std::vector<unsigned char> const& block, coordinates<dimension> const& query,
                            std::uint32_t last);

}  // namespace tvmath
