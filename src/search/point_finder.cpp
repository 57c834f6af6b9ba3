#include "tvmath/point_finder.h"

#include "point_finder_build.h"
#include "point_finder_records.h"
#include "point_finder_search.h"

inline namespace tvmath {
namespace {

// The leaf that `search` answers with, null when there is none.
template <unsigned int dimension, class function, class... more>
unsigned char const* answer(function const& search, std::vector<unsigned char> const& block,
                            point const& query, std::uint32_t& last, more&... remembered) {
    auto const at = coordinates_of<dimension>(query);
    if (block.empty() || !is_finite(at)) return nullptr;
    std::uint32_t const leaf = search(block, at, last, remembered...);
    if (leaf == nowhere) return nullptr;
    last = leaf;
    return block.data() + leaf;
}

template <unsigned int dimension>
bool give_index(unsigned char const* leaf, unsigned int& index) {
    if (leaf == nullptr) return false;
    index = load<std::uint32_t>(leaf + offsetof(finder_leaf<dimension>, index));
    return true;
}

template <unsigned int dimension>
point location_of(unsigned char const* leaf) {
    return leaf == nullptr ? point() : location(load<finder_leaf<dimension>>(leaf).at);
}

}  // namespace

template <unsigned int dimension>
void point_finder<dimension>::clear() {
    block_.clear();
    last_closest_ = last_farthest_ = nowhere;
    surroundings_ = {};
}

template <unsigned int dimension>
void point_finder<dimension>::construct(std::vector<point> const& points) {
    clear();
    build_point_tree<dimension>(points, block_);
}

template <unsigned int dimension>
bool point_finder<dimension>::find_closest(point query, unsigned int& index) const {
    return give_index<dimension>(
        answer<dimension>(closest_leaf<dimension>, block_, query, last_closest_, surroundings_), index);
}

template <unsigned int dimension>
bool point_finder<dimension>::find_farthest(point query, unsigned int& index) const {
    return give_index<dimension>(answer<dimension>(farthest_leaf<dimension>, block_, query, last_farthest_),
                                 index);
}

template <unsigned int dimension>
point point_finder<dimension>::find_closest(point query) {
    return location_of<dimension>(
        answer<dimension>(closest_leaf<dimension>, block_, query, last_closest_, surroundings_));
}

template <unsigned int dimension>
point point_finder<dimension>::find_farthest(point query) {
    return location_of<dimension>(answer<dimension>(farthest_leaf<dimension>, block_, query, last_farthest_));
}

template class point_finder<2>;
template class point_finder<3>;

}  // namespace tvmath
