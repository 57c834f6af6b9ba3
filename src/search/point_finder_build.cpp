#include "point_finder_build.h"

#include <limits>
#include <memory>

#include "point_finder_records.h"

inline namespace tvmath {
namespace {

template <unsigned int dimension>
class tree_builder {
    using leaf = finder_leaf<dimension>;

public:
    // Writes the subtree of `count` leaves at `to`; `spare` has room for as many. How long each part is, is
    // known before it is made, so the parts may be written in any order: the smaller one by recursion, which
    // so never goes deeper than log2 of the count, whatever the coordinates, and the larger one in this loop.
    static void subtree(unsigned char* to, leaf* list, leaf* spare, std::size_t count, unsigned int axis) {
        while (count > 2) {
            finder_node node = measure(list, count, axis);
            halves const h = divide(list, spare, count, axis, node.split);
            std::size_t const second = finder_node::bytes + subtree_bytes<dimension>(h.first_count);
            node.second_child = static_cast<std::uint32_t>(second);
            node.put(to);
            axis = axis_after<dimension>(axis);
            unsigned char *const first_at = to + finder_node::bytes, *const second_at = to + second;
            std::size_t const second_count = count - h.first_count;
            if (h.first_count < second_count) {
                subtree(first_at, h.first, h.first_spare, h.first_count, axis);
                to = second_at, list = h.second, spare = h.second_spare, count = second_count;
            } else {
                subtree(second_at, h.second, h.second_spare, second_count, axis);
                to = first_at, list = h.first, spare = h.first_spare, count = h.first_count;
            }
        }
        if (count == 2) return pair(to, list, axis);
        store(to, *list);
    }

private:
    struct halves {
        leaf *first, *first_spare, *second, *second_spare;
        std::size_t first_count;
    };

    // Half of all nodes have two leaves; so they are made without the detours below, with the same result.
    static void pair(unsigned char* to, leaf const* list, unsigned int axis) {
        finder_node node = measure(list, 2, axis);
        node.second_child = static_cast<std::uint32_t>(finder_node::bytes + sizeof(leaf));
        node.put(to);
        bool const is_turned = list[1].at[axis] < node.split;
        store(to + finder_node::bytes, list[is_turned]);
        store(to + node.second_child, list[!is_turned]);
    }

    // Extent and mean along the axis, summed in list order. A NaN makes the mean NaN and leaves the extent to
    // the others.
    static finder_node measure(leaf const* list, std::size_t count, unsigned int axis) {
        double lowest = std::numeric_limits<double>::infinity(), highest = -lowest, sum = 0;
        for (std::size_t i = 0; i < count; ++i) {
            double const c = list[i].at[axis];
            lowest = c < lowest ? c : lowest;
            highest = c > highest ? c : highest;
            sum += c;
        }
        return {0, lowest, highest, sum / static_cast<double>(count)};
    }

    // Both parts keep the list's order. The lower one closes up in its place, the other one moves to the
    // spare room, and each takes as its spare room what the other has left. Every leaf is written to both
    // places and one of them moves on: a jump here would be guessed wrong every second time.
    static halves divide(leaf* list, leaf* spare, std::size_t count, unsigned int axis, double split) {
        std::size_t less = 0, rest = 0;
        for (std::size_t i = 0; i < count; ++i) {
            leaf const l = list[i];
            bool const is_less = l.at[axis] < split;
            list[less] = l;
            spare[rest] = l;
            less += is_less;
            rest += !is_less;
        }
        // Equal coordinates, a mean that rounding or overflow left outside them, or a NaN: half of the list
        // goes to the side that is empty.
        std::size_t const half = count / 2;
        if (less == 0) return {spare, list, spare + half, list + half, half};
        if (rest == 0) return {list + half, spare + half, list, spare, count - half};
        return {list, spare + rest, spare, list + less, less};
    }
};

}  // namespace

template <unsigned int dimension>
void build_point_tree(std::vector<point> const& points, std::vector<unsigned char>& block) {
    using leaf = finder_leaf<dimension>;
    std::size_t const count = points.size();
    if (count == 0 || !fits_offsets(subtree_bytes<dimension>(count))) return;

    auto const lists = std::make_unique_for_overwrite<leaf[]>(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        lists[i] = {0, static_cast<std::uint32_t>(i), coordinates_of<dimension>(points[i])};
    }
    block.reserve(count * (sizeof(leaf) + finder_node::bytes));
    block.resize(subtree_bytes<dimension>(count));
    tree_builder<dimension>::subtree(block.data(), lists.get(), lists.get() + count, count,
                                     first_axis<dimension>);
}

template void build_point_tree<2>(std::vector<point> const&, std::vector<unsigned char>&);
template void build_point_tree<3>(std::vector<point> const&, std::vector<unsigned char>&);

}  // namespace tvmath
