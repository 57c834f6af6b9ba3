#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "geometry/xyz.h"

inline namespace tvmath {

inline double coordinate(xyz const& p, int axis) {
    return axis == 0 ? p.x : axis == 1 ? p.y : p.z;
}

/// A k-d tree over some of a list of places: the nearest ones to a place, however uneven their density.
///
/// Source: J. L. Bentley, Multidimensional binary search trees used for associative searching, Comm. ACM 18
/// (1975) 509-517.
class nearest_places {
public:
    /// A squared distance and the number of the place; they compare in this order.
    using found = std::pair<double, std::uint32_t>;

    nearest_places(std::vector<xyz> const& places, std::vector<std::uint32_t> members)
        : places_(places), members_(std::move(members)), axis_(members_.size()) {
        split(0, members_.size());
    }

    /// At most `count` members near `p`, the nearest first, of those that `accept` takes.
    template <class predicate>
    std::vector<found> near(xyz const& p, std::size_t count, predicate accept) const {
        std::vector<found> heap;
        search(0, members_.size(), p, count, accept, heap);
        std::sort_heap(heap.begin(), heap.end());
        return heap;
    }

private:
    // The middle one of each range divides it along the axis in which the range is widest.
    void split(std::size_t from, std::size_t to) {
        while (to - from > 1) {
            xyz low = places_[members_[from]], high = low;
            for (std::size_t i = from; i < to; ++i) {
                xyz const& p = places_[members_[i]];
                low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
                high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
            }
            xyz const size = high - low;
            int const axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
            std::size_t const middle = from + (to - from) / 2;
            auto const at = [this](std::size_t i) {
                return members_.begin() + static_cast<std::ptrdiff_t>(i);
            };
            std::nth_element(at(from), at(middle), at(to), [&](std::uint32_t a, std::uint32_t b) {
                double const x = coordinate(places_[a], axis), y = coordinate(places_[b], axis);
                return x < y || (x == y && a < b);
            });
            axis_[middle] = axis;
            split(from, middle);
            from = middle + 1;
        }
    }

    template <class predicate>
    void search(std::size_t from, std::size_t to, xyz const& p, std::size_t count, predicate const& accept,
                std::vector<found>& heap) const {
        if (from >= to) return;
        std::size_t const middle = from + (to - from) / 2;
        std::uint32_t const member = members_[middle];
        xyz const offset = places_[member] - p;
        found const here(dot(offset, offset), member);
        if ((heap.size() < count || here < heap.front()) && accept(member)) {
            if (heap.size() == count) {
                std::pop_heap(heap.begin(), heap.end());
                heap.pop_back();
            }
            heap.push_back(here);
            std::push_heap(heap.begin(), heap.end());
        }
        double const beyond = coordinate(offset, axis_[middle]);
        bool const is_below = beyond > 0;
        search(is_below ? from : middle + 1, is_below ? middle : to, p, count, accept, heap);
        if (heap.size() == count && beyond * beyond > heap.front().first) return;
        search(is_below ? middle + 1 : from, is_below ? to : middle, p, count, accept, heap);
    }

    std::vector<xyz> const& places_;
    std::vector<std::uint32_t> members_;
    std::vector<int> axis_;
};

}  // namespace tvmath
