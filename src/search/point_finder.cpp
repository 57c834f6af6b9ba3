#include "tvmath/point_finder.h"

#include "geometry/xyz.h"
#include "point_finder_build.h"
#include "point_finder_search.h"

inline namespace tvmath {
namespace {

// The leaf that answers, null when there is none. `last` is the remembered one, all ones when there is none.
template <unsigned int dimension, class rule>
unsigned char const* answer(std::vector<unsigned char> const& block, point const& query,
                            std::uint32_t& last) {
    if (block.empty()) return nullptr;
    xyz const q(query);
    std::array<double, dimension> at = {q.x, q.y};
    if constexpr (dimension == 3) at[2] = q.z;
    for (double const c : at) {
        if (!std::isfinite(c)) return nullptr;
    }

    std::uint32_t const found = tree_search<dimension, rule>::run(block.data(), at, last);
    if (found == 0xFFFFFFFFu) return nullptr;
    last = found;
    return block.data() + last;
}

template <unsigned int dimension>
bool give_index(unsigned char const* leaf, unsigned int& index) {
    if (leaf == nullptr) return false;
    index = load<finder_leaf<dimension>>(leaf).index;
    return true;
}

template <unsigned int dimension>
point location(unsigned char const* at) {
    if (at == nullptr) return point();
    auto const leaf = load<finder_leaf<dimension>>(at);
    if constexpr (dimension == 3) {
        return point(true, leaf.at[0], leaf.at[1], leaf.at[2]);
    } else {
        return point(true, leaf.at[0], leaf.at[1]);
    }
}

}  // namespace

template <unsigned int dimension>
void point_finder<dimension>::clear() {
    block_.clear();
    last_closest_ = last_farthest_ = nowhere;
}

template <unsigned int dimension>
void point_finder<dimension>::construct(std::vector<point> const& points) {
    clear();
    build_point_tree<dimension>(points, block_);
}

template <unsigned int dimension>
bool point_finder<dimension>::find_closest(point query, unsigned int& index) const {
    return give_index<dimension>(answer<dimension, nearest_rule>(block_, query, last_closest_), index);
}

template <unsigned int dimension>
bool point_finder<dimension>::find_farthest(point query, unsigned int& index) const {
    return give_index<dimension>(answer<dimension, farthest_rule>(block_, query, last_farthest_), index);
}

template <unsigned int dimension>
point point_finder<dimension>::find_closest(point query) {
    return location<dimension>(answer<dimension, nearest_rule>(block_, query, last_closest_));
}

template <unsigned int dimension>
point point_finder<dimension>::find_farthest(point query) {
    return location<dimension>(answer<dimension, farthest_rule>(block_, query, last_farthest_));
}

template class point_finder<2>;
template class point_finder<3>;

}  // namespace tvmath
