#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "delaunay_mesh.h"

inline namespace tvmath {
namespace Delaunay {

/// How a set of sites is cut: into strips across `axis`, its longer extent, of about square cells. Square
/// cells meet along short borders, where few edges of one part are erased by the other: cuts along one axis
/// alone take half as long again on a square, and ten times as long across a narrow column.
struct cuts {
    int axis;
    double aspect;  ///< longer by shorter extent, infinite or NaN on a line along an axis
};

inline cuts cuts_of(site const* from, site const* to) {
    double low[2] = {from->at[0], from->at[1]}, high[2] = {from->at[0], from->at[1]};
    for (site const* s = from + 1; s < to; ++s) {
        for (int i = 0; i < 2; ++i) {
            low[i] = std::min(low[i], s->at[i]);
            high[i] = std::max(high[i], s->at[i]);
        }
    }
    double const width = high[0] - low[0], height = high[1] - low[1];
    return height > width ? cuts{1, height / width} : cuts{0, width / height};
}

inline bool same_place(site const& p, site const& q) {
    return p.at[0] == q.at[0] && p.at[1] == q.at[1];
}

/// Sorts for the cuts across `axis`; equal points keep the order of the caller.
template <int axis>
void sort_sites(site* from, site* to) {
    std::sort(from, to, [](site const& p, site const& q) {
        return precedes<axis>(p.at, q.at) || (same_place(p, q) && p.source < q.source);
    });
}

/// The triangulation of sorted, distinct sites, two or more.
template <int axis>
class strips {
public:
    strips(mesh& triangulation, site* sites, std::size_t count, double aspect)
        : mesh_(triangulation), sites_(sites), count_(count) {
        // Eight sites a cell; by trial, anything from 4 to 16 is as good. Strips of less than that need no
        // cuts of their own.
        double const wanted = std::sqrt(static_cast<double>(count) * aspect / 8);
        if (wanted < static_cast<double>(count / 8)) strips_ = static_cast<std::size_t>(wanted);
    }

    /// Returns the hull edge that leaves the first site anticlockwise.
    half triangulate() {
        return (strips_ < 2 ? mesh_.triangulate(sites_, sites_ + count_) : triangulate(0, strips_)).first;
    }

private:
    hull_ends triangulate(std::size_t from, std::size_t to) {
        if (to - from == 1) {
            site *const begin = start(from), *const end = start(to);
            std::sort(begin, end,
                      [](site const& p, site const& q) { return precedes<1 - axis>(p.at, q.at); });
            return turn_ends(mesh_.triangulate(begin, end));
        }
        std::size_t const middle = (from + to) / 2;
        hull_ends const left = triangulate(from, middle);
        return mesh_.merge(left, triangulate(middle, to));
    }

    site* start(std::size_t strip) const { return sites_ + count_ * strip / strips_; }

    // From the ends of a strip in the order of its own cuts to those in the order of the strips.
    static hull_ends turn_ends(hull_ends ends) {
        half first = ends.first, last = turned(ends.first);
        for (half h = next_right(ends.first); !(h == ends.first); h = next_right(h)) {
            if (precedes<axis>(origin(h), origin(first))) first = h;
            if (precedes<axis>(origin(last), target(h))) last = turned(h);
        }
        return {first, last};
    }

    mesh& mesh_;
    site* sites_;
    std::size_t count_, strips_ = 1;
};

}  // namespace Delaunay
}  // namespace tvmath
