#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "finder_coordinates.h"
#include "flat_record.h"

inline namespace tvmath {

/// A segment of a polyline finder, byte by byte as it stands in the block.
template <unsigned int dimension>
struct finder_segment {
    coordinates<dimension> start;
    std::array<float, dimension> d;  // from the start to the end
    std::array<float, dimension> u;  // d / |d|²

    double end(unsigned int axis) const { return start[axis] + static_cast<double>(d[axis]); }
};
static_assert(sizeof(finder_segment<2>) == 32 && sizeof(finder_segment<3>) == 48);

/// A box around two segments or boxes, byte by byte as it stands in the block.
template <unsigned int dimension>
struct finder_box {
    struct range {
        double min, max;
    };
    std::array<range, dimension> ranges;
    std::uint32_t first, second;  // offsets of the children; below the first box it is a segment

    /// Around nothing.
    static finder_box none() {
        finder_box box;
        box.ranges.fill({std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()});
        box.first = box.second = 0;
        return box;
    }
    /// Around a segment; a NaN is left out, such a segment is never an answer.
    explicit finder_box(finder_segment<dimension> const& s) : finder_box(none()) {
        for (unsigned int i = 0; i < dimension; ++i) {
            include(i, {s.start[i], s.start[i]});
            include(i, {s.end(i), s.end(i)});
        }
    }
    finder_box() = default;

    void include(unsigned int axis, range const& r) {
        if (r.min < ranges[axis].min) ranges[axis].min = r.min;
        if (r.max > ranges[axis].max) ranges[axis].max = r.max;
    }
    void include(finder_box const& other) {
        for (unsigned int i = 0; i < dimension; ++i) include(i, other.ranges[i]);
    }
};
static_assert(sizeof(finder_box<2>) == 40 && sizeof(finder_box<3>) == 56);

}  // namespace tvmath
