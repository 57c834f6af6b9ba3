#pragma once

#include <array>
#include <iterator>
#include <limits>

#include "local_buffer.h"
#include "point_finder_records.h"

inline namespace tvmath {

// In these orders each is one instruction, and a NaN in `a` gives b.
inline double smaller(double a, double b) {
    return a < b ? a : b;
}
inline double larger(double a, double b) {
    return a > b ? a : b;
}

// A choice by arithmetic. Which way a query goes cannot be guessed, so a jump would be guessed wrong every
// second time; compilers make one of a conditional expression if they like.
inline std::uint32_t choose(bool is_first, std::uint32_t first, std::uint32_t second) {
    return second ^ ((first ^ second) & -static_cast<std::uint32_t>(is_first));
}

// Whether the split separates the children. It does not where the list was halved because rounding, overflow
// or NaN, or equal coordinates, left the mean on one side of all: then either child can hold any coordinate
// from lowest to highest.
inline bool is_separated(finder_node const& node) {
    return node.lowest < node.split && node.split <= node.highest;
}

// What a node tells of its points along its axis: bounds of the squared distance on the query's side of the
// split, `here`, and on the other, `across`.
struct side_bounds {
    double here, across;
};

// Bounds are from below, 0 before a node of the axis is met. The query's side goes first.
struct nearest_rule {
    static constexpr bool is_here_first = true;
    static constexpr double worst = std::numeric_limits<double>::infinity(), unknown = 0, slack = 0x1p-50;

    static bool better(double a, double b) { return a < b; }
    static double best(double a, double b) { return smaller(a, b); }

    static side_bounds bounds(finder_node const& node, double c) {
        double const beyond = c - smaller(larger(c, node.lowest), node.highest);
        double across = c - node.split;
        if (!is_separated(node)) [[unlikely]]
            across = beyond;
        return {beyond * beyond, across * across};
    }
};

// Bounds are from above, infinite before a node of the axis is met. The side across goes first.
struct farthest_rule {
    static constexpr bool is_here_first = false;
    static constexpr double unknown = std::numeric_limits<double>::infinity(), worst = -unknown,
                            slack = -0x1p-50;

    static bool better(double a, double b) { return a > b; }
    static double best(double a, double b) { return larger(a, b); }

    static side_bounds bounds(finder_node const& node, double c) {
        double const to_lowest = c - node.lowest, to_highest = node.highest - c, d = c - node.split;
        double across = d >= 0 ? to_lowest : to_highest;
        double here = d >= 0 ? larger(to_highest, d) : larger(to_lowest, -d);
        if (!is_separated(node)) [[unlikely]]
            here = across = larger(to_lowest, to_highest);
        return {here * here, across * across};
    }
};

// One search. The two visits of a node are tested each on its own.
template <unsigned int dimension, class rule>
class tree_search {
    static constexpr std::uint32_t leaf_bytes = sizeof(finder_leaf<dimension>);

public:
    tree_search(unsigned char const* tree, coordinates<dimension> const& query)
        : tree_(tree), query_(query) {}

    // The leaf that is best, `last` if none is better.
    std::uint32_t run(std::uint32_t bytes, std::uint32_t last) const {
        // A variable of this function, as `at` is, and no field: so they stay in registers.
        candidate best;
        if (last != nowhere) best.take(distance(last), last);
        branch at = root(bytes);
        if constexpr (rule::is_here_first) descend_inside(at, best.reach);
        local_buffer<branch, 512> pending;
        for (;;) {
            bool is_entered = true;
            while (is_entered && at.end - at.begin > subtree_bytes<dimension>(3)) {
                is_entered = descend(at, pending, best.reach);
            }
            if (is_entered) scan(at, best);
            do {
                if (pending.empty()) return best.leaf;
                at = pending.pop_back();
            } while (!rule::better(at.total, best.reach));
        }
    }

    // Gives `take` the leaves of each subtree, of up to three, that may come closer than `reach`: the first
    // `count` of the offsets third, second, first. False when there are too many, or when `take` returns it.
    // Level by level, so that the processor works at several branches at once and has no turn to guess.
    template <class function>
    bool gather(std::uint32_t bytes, double reach, function const& take) const {
        branch_list waiting;
        waiting.room() = root(bytes);
        descend_inside(waiting.room(), reach);
        waiting.keep_if(true);
        for (branch const* next = waiting.begin; next != waiting.end; ++next) {
            branch at = *next;
            if (at.end - at.begin > subtree_bytes<dimension>(3)) {
                if (waiting.is_full()) return false;
                bool const is_entered = descend(at, waiting, reach);
                waiting.room() = at;
                waiting.keep_if(is_entered);
            } else {
                group const g = leaves_of(at);
                if (!take(std::array{g.third, g.second, g.first}, 1u + g.is_pair + g.is_triple)) return false;
            }
        }
        return true;
    }

    double coordinate(std::uint32_t leaf, unsigned int axis) const {
        return load<double>(tree_ + leaf + offsetof(finder_leaf<dimension>, at) + 8 * axis);
    }
    double distance(std::uint32_t leaf) const {
        coordinates<dimension> d;
        for (unsigned int i = 0; i < dimension; ++i) d[i] = coordinate(leaf, i) - query_[i];
        return squared(d);
    }

private:
    // A subtree that is to be searched.
    struct branch {
        std::uint32_t begin, end;  // offsets in bytes
        double total;              // bound of the squared distance of its points
        // The part of that from each axis but the branch's own, the one whose turn comes next in front.
        std::array<double, dimension - 1> others;
        unsigned int axis;
    };

    // Subtrees one after the other, none of which is taken off; full when there is no room for two more.
    struct branch_list {
        bool is_full() const { return end > begin + std::size(begin) - 2; }
        branch& room() { return *end; }
        void keep_if(bool is_wanted) { end += is_wanted; }

        branch begin[192], *end = begin;
    };

    // The best leaf so far.
    struct candidate {
        double distance = rule::worst;
        double reach = rule::worst;  // what a region must be better than
        std::uint32_t leaf = nowhere;

        // A NaN never is better, nor is what is just as far.
        void take(double d, std::uint32_t l) {
            leaf = choose(rule::better(d, distance), l, leaf);
            distance = rule::best(d, distance);
            // Three squares are added in another order for a region than for a leaf, and may round otherwise.
            reach = dimension == 2 ? distance : distance * (1 + rule::slack);
        }
    };

    static branch root(std::uint32_t bytes) {
        branch at = {0, bytes, rule::unknown, {}, first_axis<dimension>};
        at.others.fill(rule::unknown);
        return at;
    }

    // The way down while the query lies among a node's points and what is across the split is too far away:
    // most of the way, once the last answer is a good one, and easy to guess for the processor.
    void descend_inside(branch& at, double reach) const {
        for (;;) {
            if (at.end - at.begin <= subtree_bytes<dimension>(3)) return;
            auto const node = finder_node::at(tree_ + at.begin);
            double const c = query_[at.axis], across = c - node.split;
            if (!(across * across >= reach)) return;
            if (across > 0) {
                if (!(node.lowest < node.split && c <= node.highest)) return;
                at.begin += node.second_child;
            } else {
                if (!(node.lowest <= c && node.split <= node.highest)) return;
                at.end = at.begin + node.second_child;
                at.begin += finder_node::bytes;
            }
            at.axis = axis_after<dimension>(at.axis);
        }
    }

    // Goes on to the child that is visited first, and puts the other one off; false if the first is not
    // entered.
    template <class list>
    bool descend(branch& at, list& pending, double reach) const {
        auto const node = finder_node::at(tree_ + at.begin);
        std::uint32_t const first = at.begin + finder_node::bytes, second = at.begin + node.second_child;
        prefetch(tree_ + second);
        double const c = query_[at.axis];
        side_bounds const bounds = rule::bounds(node, c);
        bool const is_second_next = (c >= node.split) == rule::is_here_first;
        double const rest = dimension == 2 ? at.others[0] : at.others[0] + at.others[dimension - 2];
        unsigned int const axis = axis_after<dimension>(at.axis);
        auto const set = [&](branch& child, bool is_second, double bound) {
            child.total = bound + rest;
            child.axis = axis;
            if constexpr (dimension == 3) child.others[0] = at.others[1];
            child.others[dimension - 2] = bound;
            std::uint32_t const end = at.end;
            child.begin = choose(is_second, second, first);
            child.end = choose(is_second, end, second);
        };
        branch& other = pending.room();
        set(other, !is_second_next, rule::is_here_first ? bounds.across : bounds.here);
        pending.keep_if(rule::better(other.total, reach));
        set(at, is_second_next, rule::is_here_first ? bounds.here : bounds.across);
        return rule::better(at.total, reach);
    }

    // The leaves of a subtree of up to three, in the order of the block. Of less than three the last is the
    // first as well, and of one all three are the same.
    struct group {
        std::uint32_t first, second, third;
        bool is_pair, is_triple;  // whether the second and the first count
    };

    // Their places follow from the length.
    group leaves_of(branch const& at) const {
        std::uint32_t const size = at.end - at.begin;
        bool const is_pair = size > leaf_bytes, is_triple = size > subtree_bytes<dimension>(2);
        std::uint32_t const third = at.end - leaf_bytes, second = choose(is_pair, third - leaf_bytes, third);
        // Behind the root of three leaves stands either a leaf or the other node.
        std::uint32_t const child = choose(is_triple, at.begin + finder_node::bytes, third);
        std::uint32_t const first =
            child + choose(load<std::uint32_t>(tree_ + child) != 0, finder_node::bytes, 0);
        return {first, second, third, is_pair, is_triple};
    }

    // All distances of a subtree of up to three leaves are taken at once. Leaves that are not there count as
    // the worst.
    void scan(branch const& at, candidate& best) const {
        group const g = leaves_of(at);
        constexpr double absent[] = {rule::worst, 0};
        double const a = distance(g.first) + absent[g.is_triple], b = distance(g.second) + absent[g.is_pair],
                     c = distance(g.third);
        double const d = rule::best(a, rule::best(b, rule::best(c, rule::worst)));
        bool const is_a = a == d, is_b = b == d, is_c = c == d;
        if (is_a + is_b + is_c > 1 && rule::better(d, best.distance)) [[unlikely]] {
            best = visit(at.begin, at.axis, best);
        } else {
            best.take(d, choose(is_a, g.first, choose(is_b, g.second, g.third)));
        }
    }

    // The same leaf by leaf, for the first of several that are just as far.
    candidate visit(std::uint32_t offset, unsigned int axis, candidate best) const {
        std::uint32_t const second_child = load<std::uint32_t>(tree_ + offset);
        if (second_child == 0) {
            best.take(distance(offset), offset);
            return best;
        }
        bool const is_above = query_[axis] >= finder_node::at(tree_ + offset).split;
        std::uint32_t const first = offset + finder_node::bytes, second = offset + second_child;
        best = visit(is_above == rule::is_here_first ? second : first, axis_after<dimension>(axis), best);
        return visit(is_above == rule::is_here_first ? first : second, axis_after<dimension>(axis), best);
    }

    unsigned char const* tree_;
    coordinates<dimension> const& query_;
};

}  // namespace tvmath
