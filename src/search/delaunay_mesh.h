#pragma once

#include "delaunay_predicates.h"
#include "tvmath/delaunay.h"

inline namespace tvmath {
namespace Delaunay {

/// A point in the order of the cuts: the edges under construction point at `at`, which keeps
/// neighbours in the plane near each other in memory.
struct site {
    double at[2];
    double const* source;  ///< x of the caller's point
};

/// An edge with a direction: it leaves its `a`, or its `b` when `reversed`.
///
/// The links of an edge, read as neighbours around its end points, are the record of Guibas and Stolfi:
///     leaving a: left_prev is the next edge anticlockwise around a, right_next the next clockwise;
///     leaving b: right_prev is the next edge anticlockwise around b, left_next the next clockwise.
/// Which way a neighbour runs is told by its end points, because no two sites are equal.
struct half {
    Edge* edge;
    bool reversed;
};

inline half leaving(double const* from, Edge* edge) {
    return {edge, edge->a != from};
}
inline half turned(half h) {
    return {h.edge, !h.reversed};
}
inline double const* origin(half h) {
    return h.reversed ? h.edge->b : h.edge->a;
}
inline double const* target(half h) {
    return h.reversed ? h.edge->a : h.edge->b;
}
/// The next edge anticlockwise around the origin.
inline half next_around(half h) {
    return leaving(origin(h), h.reversed ? h.edge->right_prev : h.edge->left_prev);
}
/// The next edge clockwise around the origin.
inline half previous_around(half h) {
    return leaving(origin(h), h.reversed ? h.edge->left_next : h.edge->right_next);
}
/// The edge that goes on around the face on the left, anticlockwise.
inline half next_left(half h) {
    return previous_around(turned(h));
}
/// The edge that goes on around the face on the right, clockwise; from hull edge to hull edge, when that is
/// the outside.
inline half next_right(half h) {
    return next_around(turned(h));
}
inline bool operator==(half g, half h) {
    return g.edge == h.edge && g.reversed == h.reversed;
}

/// Hull edges by which a part is merged with the next: `first` leaves the first site of its order
/// anticlockwise, `last` leaves the last site clockwise.
struct hull_ends {
    half first, last;
};

/// The edges of a triangulation under construction, in the caller's buffer. Erased ones are used again.
class mesh {
public:
    /// The buffer holds as many edges as a planar graph of the sites can have.
    mesh(Edge* buffer, predicates const& exact) : exact_(exact), edges_(buffer) {}

    /// Triangulates two sites or more that stand in order along x, ties along y, or along y, ties along x.
    hull_ends triangulate(site* from, site* to);
    /// Joins two triangulations, of which the left one is before the right one in that order.
    hull_ends merge(hull_ends left, hull_ends right);

    /// The edges stand at the front of the buffer without gaps, because a merge uses again all that it
    /// erases: each erased edge brings one more site to the seam, and every site of the seam gets an edge
    /// across it.
    unsigned int size() const { return used_; }

private:
    half connect(half from, half to);
    half make_edge(double const* a, double const* b);
    void erase(Edge* edge);
    hull_ends triangulate_three(site* s);
    void lower_tangent(half& left, half& right) const;
    struct candidate {
        half edge;
        bool above;  ///< its end is above the base
    };
    template <half (*first)(half base), half (*next)(half)>
    candidate find_candidate(half base);

    bool left_of(double const* p, half h) const { return exact_.turn(p, origin(h), target(h)) > 0; }
    bool right_of(double const* p, half h) const { return exact_.turn(p, target(h), origin(h)) > 0; }

    predicates exact_;
    Edge* edges_;
    unsigned int used_ = 0;
    Edge* erased_ = nullptr;  // linked by left_prev
};

}  // namespace Delaunay
}  // namespace tvmath
