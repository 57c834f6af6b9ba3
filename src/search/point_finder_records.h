#pragma once

#include <cstddef>
#include <cstdint>

#include "finder_coordinates.h"
#include "flat_record.h"

inline namespace tvmath {

/// A leaf of a point finder, byte by byte as it stands in the block.
template <unsigned int dimension>
struct finder_leaf {
    std::uint32_t mark;   // 0, where a node has the distance to its second child
    std::uint32_t index;  // in the list that the finder was made from
    coordinates<dimension> at;
};
static_assert(sizeof(finder_leaf<2>) == 24 && sizeof(finder_leaf<3>) == 32);

/// An inner node. In the block its numbers stand without the gap that alignment makes here.
struct finder_node {
    static constexpr std::uint32_t bytes = 28;

    std::uint32_t second_child;  // bytes from this node to the second child; the first one follows directly
    double lowest, highest, split;  // of the coordinates along the node's axis: least, greatest, mean

    static finder_node at(unsigned char const* from) {
        return {load<std::uint32_t>(from), load<double>(from + 4), load<double>(from + 12),
                load<double>(from + 20)};
    }
    void put(unsigned char* to) const {
        store(to, second_child);
        store(to + 4, lowest);
        store(to + 12, highest);
        store(to + 20, split);
    }
};

/// Bytes of a subtree of `count` leaves, count above 0: every split makes one node.
template <unsigned int dimension>
constexpr std::size_t subtree_bytes(std::size_t count) {
    return count * sizeof(finder_leaf<dimension>) + (count - 1) * std::size_t{finder_node::bytes};
}

/// The axis is not stored, it follows from the depth: x and y in turn in 2D, y, z, x and again in 3D.
template <unsigned int dimension>
constexpr unsigned int first_axis = dimension == 2 ? 0 : 1;
template <unsigned int dimension>
constexpr unsigned int axis_after(unsigned int axis) {
    return axis + 1 == dimension ? 0 : axis + 1;
}

}  // namespace tvmath
