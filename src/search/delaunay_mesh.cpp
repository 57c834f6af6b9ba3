#include "delaunay_mesh.h"

inline namespace tvmath {
namespace Delaunay {
namespace {

void set_next(half h, Edge* next) {
    (h.reversed ? h.edge->right_prev : h.edge->left_prev) = next;
}
void set_previous(half h, Edge* previous) {
    (h.reversed ? h.edge->left_next : h.edge->right_next) = previous;
}

// Puts `added`, alone so far, next to `at`, which leaves the same site, on its anticlockwise side.
void insert_after(half at, half added) {
    half const next = next_around(at);
    set_next(added, next.edge);
    set_previous(added, at.edge);
    set_previous(next, added.edge);
    set_next(at, added.edge);
}

void take_out(half h) {
    half const next = next_around(h), previous = previous_around(h);
    set_next(previous, next.edge);
    set_previous(next, previous.edge);
}

}  // namespace

half mesh::make_edge(double const* a, double const* b) {
    Edge* edge = erased_;
    if (edge) {
        erased_ = edge->left_prev;
    } else {
        edge = edges_ + used_++;
    }
    *edge = {a, b, edge, edge, edge, edge, false, false};
    return {edge, false};
}

// A new edge from the target of `from` to the origin of `to`, with the same face on the left as both.
half mesh::connect(half from, half to) {
    half const added = make_edge(target(from), origin(to));
    insert_after(next_left(from), added);
    insert_after(to, turned(added));
    return added;
}

void mesh::erase(Edge* edge) {
    take_out({edge, false});
    take_out({edge, true});
    edge->left_prev = erased_;
    erased_ = edge;
}

hull_ends mesh::triangulate_three(site* s) {
    half const a = make_edge(s[0].at, s[1].at), b = make_edge(s[1].at, s[2].at);
    insert_after(turned(a), b);
    double const turn = exact_.turn(s[0].at, s[1].at, s[2].at);
    if (turn == 0.0) return {a, turned(b)};
    half const c = connect(b, a);
    return turn > 0 ? hull_ends{a, turned(b)} : hull_ends{turned(c), c};
}

hull_ends mesh::triangulate(site* from, site* to) {
    auto const count = to - from;
    if (count == 2) {
        half const edge = make_edge(from[0].at, from[1].at);
        return {edge, turned(edge)};
    }
    if (count == 3) return triangulate_three(from);
    site* const middle = from + count / 2;
    hull_ends const left = triangulate(from, middle);
    return merge(left, triangulate(middle, to));
}

// Moves the hull edges that face each other down to the ends of the edge below both parts.
void mesh::lower_tangent(half& left, half& right) const {
    for (;;) {
        if (left_of(origin(right), left)) {
            left = next_left(left);
        } else if (right_of(origin(left), right)) {
            right = next_right(right);
        } else {
            return;
        }
    }
}

// The edge next to `base` on one side that can make the triangle above it: those whose circle would hold the
// next neighbour's end are erased.
template <half (*first)(half base), half (*next)(half)>
mesh::candidate mesh::find_candidate(half base) {
    candidate c = {first(base), false};
    c.above = right_of(target(c.edge), base);
    while (c.above) {
        half const other = next(c.edge);
        if (!(exact_.in_circle(target(base), origin(base), target(c.edge), target(other)) > 0)) break;
        erase(c.edge.edge);
        c = {other, right_of(target(other), base)};
    }
    return c;
}

hull_ends mesh::merge(hull_ends left, hull_ends right) {
    half inner_left = left.last, inner_right = right.first;
    lower_tangent(inner_left, inner_right);
    half base = connect(turned(inner_right), inner_left);
    if (origin(inner_left) == origin(left.first)) left.first = turned(base);
    if (origin(inner_right) == origin(right.last)) right.last = base;

    for (;;) {
        candidate const l = find_candidate<next_right, next_around>(base);
        candidate const r = find_candidate<previous_around, previous_around>(base);
        if (!l.above && !r.above) return {left.first, right.last};
        bool const take_right = !l.above || (r.above && exact_.in_circle(target(l.edge), origin(l.edge),
                                                                         origin(r.edge), target(r.edge)) > 0);
        base = take_right ? connect(r.edge, turned(base)) : connect(turned(base), turned(l.edge));
    }
}

}  // namespace Delaunay
}  // namespace tvmath
