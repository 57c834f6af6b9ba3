#pragma once

#include <array>
#include <limits>

#include "local_buffer.h"
#include "point_finder_records.h"

inline namespace tvmath {

// In this order a NaN in `a` gives b, and the compiler has one instruction for it.
inline double larger(double a, double b) {
    return a > b ? a : b;
}

/// The bounds that a node sets, along its axis, for the squared distance of the points on either side of the
/// split: `here`, where the query is, and `across`.
struct node_bounds {
    double here, across;
};

struct nearest_rule {
    static constexpr bool nearest = true;
    static constexpr double worst = std::numeric_limits<double>::infinity();
    static constexpr double unknown = 0;  // bound before a node of the axis is met
    static constexpr double slack = 0x1p-50;

    static bool better(double a, double b) { return a < b; }

    static node_bounds bounds(finder_node const& node, double c, bool is_separated) {
        double const beyond = larger(larger(node.lowest - c, c - node.highest), 0.0), d = c - node.split;
        double const here = beyond * beyond;
        return {here, is_separated ? d * d : here};
    }
};

struct farthest_rule {
    static constexpr bool nearest = false;
    static constexpr double worst = -std::numeric_limits<double>::infinity();
    static constexpr double unknown = -worst;
    static constexpr double slack = -0x1p-50;

    static bool better(double a, double b) { return a > b; }

    static node_bounds bounds(finder_node const& node, double c, bool is_separated) {
        double const to_lowest = c - node.lowest, to_highest = node.highest - c, d = c - node.split;
        if (!is_separated) {
            double const m = larger(to_lowest, to_highest);
            return {m * m, m * m};
        }
        double const across = d >= 0 ? to_lowest : to_highest;
        double const here = d >= 0 ? larger(to_highest, d) : larger(to_lowest, -d);
        return {here * here, across * across};
    }
};

template <unsigned int dimension, class rule>
class tree_search {
public:
    using coordinates = std::array<double, dimension>;

    static std::uint32_t run(unsigned char const* tree, coordinates const query, std::uint32_t last) {
        double best = rule::worst, reach = rule::worst;
        std::uint32_t found = 0xFFFFFFFFu;
        auto const try_leaf = [&](std::uint32_t offset) {
            unsigned char const* const at = tree + offset + 8;
            double distance = 0;
            for (unsigned int i = 0; i < dimension; ++i) {
                double const d = load<double>(at + 8 * i) - query[i];
                distance += d * d;
            }
            if (!rule::better(distance, best)) return;
            best = distance;
            reach = dimension == 2 ? best : best * (1 + rule::slack);
            found = offset;
        };
        if (last != found) try_leaf(last);
        std::uint32_t at = 0;
        unsigned int axis = first_axis<dimension>;
        double e0 = rule::unknown, e1 = rule::unknown;
        if constexpr (rule::nearest) {
            for (;;) {
                unsigned char const* const node = tree + at;
                std::uint32_t const second = load<std::uint32_t>(node);
                if (second == 0) break;
                double const c = query[axis], split = load<double>(node + 20), across = c - split;
                if (!(across * across >= reach)) break;
                if (across > 0) {
                    if (!(load<double>(node + 4) < split && c <= load<double>(node + 12))) break;
                    at += second;
                } else {
                    if (!(load<double>(node + 4) <= c && split <= load<double>(node + 12))) break;
                    at += 28;
                }
                axis = axis_after<dimension>(axis);
            }
        }
        local_buffer<branch, 512> pending;
        for (;;) {
            std::uint32_t const second = load<std::uint32_t>(tree + at);
            if (second != 0) {
                auto const node = finder_node::at(tree + at);
                double const c = query[axis];
                node_bounds const b =
                    rule::bounds(node, c, node.lowest < node.split && node.split <= node.highest);
                bool const above = c >= node.split;
                std::uint32_t const step =
                    (second - 28) & -static_cast<std::uint32_t>(above == rule::nearest);
                std::uint32_t const to = at + 28 + step, other = at + second - step;
                double const first_bound = rule::nearest ? b.here : b.across,
                             other_bound = rule::nearest ? b.across : b.here;
                double const e = dimension == 2 ? e0 : e0 + e1;
                double const total = first_bound + e, other_total = other_bound + e;
                axis = axis_after<dimension>(axis);
                branch waiting;
                waiting.offset = other;
                waiting.axis = axis;
                waiting.total = other_total;
                if (dimension == 2)
                    waiting.e[0] = other_bound;
                else
                    waiting.e[0] = e1, waiting.e[dimension - 2] = other_bound;
                pending.push_back_if(rule::better(other_total, reach), waiting);
                if (rule::better(total, reach)) {
                    at = to;
                    if (dimension == 2)
                        e0 = first_bound;
                    else
                        e0 = e1, e1 = first_bound;
                    continue;
                }
            } else {
                try_leaf(at);
            }
            do {
                if (pending.empty()) return found;
                branch const& next = pending.pop_back();
                if (!rule::better(next.total, reach)) continue;
                at = next.offset;
                axis = next.axis;
                e0 = next.e[0];
                if (dimension == 3) e1 = next.e[dimension - 2];
                break;
            } while (true);
        }
    }

private:
    struct branch {
        std::uint32_t offset;  // of the node or leaf, in bytes
        unsigned int axis;
        double total;
        double e[dimension - 1];
    };
};

}  // namespace tvmath
