#include "point_finder_search.h"

#include <algorithm>
#include <cmath>

#include "point_finder_walk.h"

inline namespace tvmath {
namespace {

// A nearest search that looks into the surroundings of the last queries first.
template <unsigned int dimension>
class surrounded_search {
    using point_list = point_surroundings<dimension>;
    using search = tree_search<dimension, nearest_rule>;

public:
    surrounded_search(std::vector<unsigned char> const& block, coordinates<dimension> const& query,
                      std::uint32_t last, point_list& near)
        : tree_(block.data()),
          bytes_(static_cast<std::uint32_t>(block.size())),
          query_(query),
          last_(last),
          near_(near) {}

    std::uint32_t run() {
        search const whole(tree_, query_);
        if (last_ == nowhere) return whole.run(bytes_, last_);
        least_ = last_distance_ = whole.distance(last_);
        std::uint32_t leaf = look();
        if (leaf == nowhere && renew()) leaf = look();
        return leaf != nowhere && leaf != several ? leaf : whole.run(bytes_, last_);
    }

private:
    static constexpr std::uint32_t several = nowhere - 1;  // leaves are just as near, and not the last one
    static constexpr std::uint32_t lanes = 4;              // points at once, by which the list is filled up
    static_assert(point_list::capacity % lanes == 0);

    // The nearest leaf, if the surroundings tell it.
    std::uint32_t look() {
        if (near_.count == 0) return nowhere;
        double distances[point_list::capacity];
        double const nearest = take_distances(distances);
        least_ = smaller(nearest, last_distance_);
        // With a and b the distances of leaf and centre from the query, and r the radius, all points that
        // are not here are farther than a if a + b < r: squared twice, 4 a^2 b^2 < (r^2 - a^2 - b^2)^2.
        double const moved = squared_distance(near_.center), room = near_.radius_squared - least_ - moved;
        if (!(room > 0 && 4 * least_ * moved < room * room)) return nowhere;
        ++near_.hits;
        if (last_distance_ <= nearest) return last_;
        std::uint32_t count = 0, place = 0;
        for (std::uint32_t i = 0; i < near_.count; ++i) {
            bool const is_nearest = distances[i] == nearest;
            count += is_nearest;
            place = choose(is_nearest, i, place);
        }
        return count > 1 ? several : near_.leaf[place];
    }

    // The squared distances of all surroundings; gives the least.
    double take_distances(double* distances) const {
        std::uint32_t const count = (near_.count + lanes - 1) / lanes * lanes;
        for (std::uint32_t i = 0; i < count; ++i) {
            coordinates<dimension> d;
            for (unsigned int axis = 0; axis < dimension; ++axis) d[axis] = near_.at[axis][i] - query_[axis];
            distances[i] = squared(d);
        }
        double least[lanes];
        std::fill_n(least, lanes, nearest_rule::worst);
        for (std::uint32_t i = 0; i < count; i += lanes) {
            for (std::uint32_t k = 0; k < lanes; ++k) least[k] = smaller(distances[i + k], least[k]);
        }
        return smaller(smaller(least[0], least[1]), smaller(least[2], least[3]));
    }

    // Gathers new surroundings, about a place ahead on the way of the queries. False if it cannot, or if it
    // was of no use of late: then it is left for a while, each time longer.
    bool renew() {
        if (near_.hits > 2) near_.delay = near_.waits = 0;
        near_.hits = near_.count = 0;
        if (near_.waits > 0) {
            --near_.waits;
            return false;
        }
        near_.delay = near_.waits = std::min(2 * near_.delay + 1, 255u);

        // In this range no square of what follows is lost, and its sums are exact to some 1e-15.
        double const step = std::sqrt(squared_distance(near_.previous)),
                     radius = 1.0625 * std::sqrt(least_) + near_.ahead * step;
        if (!(radius > 1e-70 && radius < 1e70)) return false;
        for (unsigned int i = 0; i < dimension; ++i) {
            near_.center[i] = query_[i] + near_.ahead * (query_[i] - near_.previous[i]);
        }
        near_.radius_squared = radius * radius * (1 - 1e-12);
        bool const is_filled = fill(radius * radius);
        // About ten points are worth the most: more take longer to gather than they are of use.
        bool const is_small = is_filled && near_.count < 12;
        near_.ahead = is_small ? std::min(near_.ahead * 1.25, 64.0) : std::max(near_.ahead * 0.8, 2.0);
        return is_filled;
    }

    // All points closer to the centre than the squared radius `reach`; false if that are too many.
    bool fill(double reach) {
        std::uint32_t count = 0;
        search const around(tree_, near_.center);
        auto const take = [&](std::array<std::uint32_t, 3> const& leaves, std::uint32_t n) {
            if (count > point_list::capacity - 3) return false;
            for (std::uint32_t k = 0; k < 3; ++k) {
                near_.leaf[count] = leaves[k];
                coordinates<dimension> d;
                for (unsigned int axis = 0; axis < dimension; ++axis) {
                    double const c = around.coordinate(leaves[k], axis);
                    near_.at[axis][count] = c;
                    d[axis] = c - near_.center[axis];
                }
                count += choose((k < n) & (squared(d) < reach), 1, 0);
            }
            return true;
        };
        if (!around.gather(bytes_, reach, take)) return false;
        near_.count = count;
        for (; count % lanes != 0; ++count) {
            for (auto& c : near_.at) c[count] = std::numeric_limits<double>::infinity();
        }
        return true;
    }

    double squared_distance(coordinates<dimension> const& from) const {
        coordinates<dimension> d;
        for (unsigned int i = 0; i < dimension; ++i) d[i] = query_[i] - from[i];
        return squared(d);
    }

    unsigned char const* tree_;
    std::uint32_t bytes_;
    coordinates<dimension> const& query_;
    std::uint32_t last_;
    double last_distance_ = 0, least_ = 0;  // squared, of the last answer and of the nearest point known
    point_list& near_;
};

}  // namespace

template <unsigned int dimension>
std::uint32_t closest_leaf(std::vector<unsigned char> const& block, coordinates<dimension> const& query,
                           std::uint32_t last, point_surroundings<dimension>& near) {
    std::uint32_t const leaf = surrounded_search<dimension>(block, query, last, near).run();
    near.previous = query;
    return leaf;
}

template <unsigned int dimension>
std::uint32_t farthest_leaf(std::vector<unsigned char> const& block, coordinates<dimension> const& query,
                            std::uint32_t last) {
    return tree_search<dimension, farthest_rule>(block.data(), query)
        .run(static_cast<std::uint32_t>(block.size()), last);
}

template std::uint32_t closest_leaf<2>(std::vector<unsigned char> const&, coordinates<2> const&,
                                       std::uint32_t, point_surroundings<2>&);
template std::uint32_t closest_leaf<3>(std::vector<unsigned char> const&, coordinates<3> const&,
                                       std::uint32_t, point_surroundings<3>&);
template std::uint32_t farthest_leaf<2>(std::vector<unsigned char> const&, coordinates<2> const&,
                                        std::uint32_t);
template std::uint32_t farthest_leaf<3>(std::vector<unsigned char> const&, coordinates<3> const&,
                                        std::uint32_t);

}  // namespace tvmath
