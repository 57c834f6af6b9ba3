#pragma once

#include <cstddef>
#include <vector>

#include "canvas.h"
#include "tvmath/curve.h"

inline namespace tvmath {

/// A line of a feature in the plane, as a polygon: its places and, at each, the way to the positive side. An
/// outline whose places are all moved by d times that way is the parallel at distance d, so at a corner the
/// way is longer than 1.
struct outline {
    std::vector<spot> at, out;
    bool closed = false;
};

/// The outline of these places. Positive is the outside of a closed one and the left side of an open one; the
/// ways at corners end at 4.
outline make_outline(std::vector<spot> const& places, bool closed);
/// The same of the points of a path, less `origin`; repeated places are left out.
outline make_outline(curve const& path, bool closed, point const& origin);

/// Calls `visit` with the two ends of each edge, in their order.
template <class visitor>
void for_each_edge(outline const& o, visitor const& visit) {
    for (std::size_t i = 0; i + 1 < o.at.size(); ++i) visit(o.at[i], o.at[i + 1]);
    if (o.closed && !o.at.empty()) visit(o.at.back(), o.at.front());
}

/// The nearest place of an outline.
struct outline_foot {
    spot at, out;           ///< `out` has length 1
    double along = 0;       ///< length of the outline up to it
    std::size_t which = 0;  ///< outline of the list
    std::size_t edge = 0;   ///< its first vertex
    double distance = 0;    ///< positive on the positive side
};

/// Finds nearest places on outlines that stay alive. The vertices are sorted along the longer side of their
/// extent, so that a search visits few of them.
class outline_finder {
public:
    explicit outline_finder(std::vector<outline> const& outlines);
    outline_foot nearest(spot p) const;

private:
    struct vertex {
        double key;
        std::size_t which, index;
    };
    void try_edge(std::size_t which, std::size_t index, spot p, outline_foot& best,
                  double& best_square) const;

    std::vector<outline> const& outlines_;
    std::vector<std::vector<double>> along_;  // at each vertex
    std::vector<vertex> sorted_;
    double longest_edge_ = 0;
    bool by_x_ = true;
};

}  // namespace tvmath
