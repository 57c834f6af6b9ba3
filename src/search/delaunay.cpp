#include "tvmath/delaunay.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "delaunay_strips.h"

inline namespace tvmath {
namespace Delaunay {
namespace {

static_assert(sizeof(Edge) == 6 * sizeof(void*) + 2, "callers allocate the edges without padding");

// The range in which the predicates are exact.
constexpr int smallest_exponent = -255, largest_exponent = 250;

struct coordinate_range {
    double largest = 0;
    int last_digit = largest_exponent;  // every coordinate is a multiple of 2^last_digit
    bool finite = true;

    void include(double x) {
        auto const bits = std::bit_cast<std::uint64_t>(x);
        int const exponent = static_cast<int>(bits >> 52 & 0x7FF);
        std::uint64_t const digits = (bits & 0xFFFFFFFFFFFFF) | (exponent == 0 ? 0 : 0x10000000000000);
        finite = finite && exponent != 0x7FF;
        largest = std::max(largest, std::fabs(x));
        if (digits != 0)
            last_digit = std::min(last_digit, std::max(exponent, 1) - 1075 + std::countr_zero(digits));
    }
};

coordinate_range read_sites(double const* coordinates, unsigned int points, unsigned int stride,
                            site* sites) {
    coordinate_range range;
    char const* const base = reinterpret_cast<char const*>(coordinates);
    for (std::size_t i = 0; i < points; ++i) {
        char const* const source = base + i * stride;
        std::memcpy(sites[i].at, source, sizeof sites[i].at);  // a stride may leave the doubles unaligned
        sites[i].source = reinterpret_cast<double const*>(source);
        range.include(sites[i].at[0]);
        range.include(sites[i].at[1]);
    }
    return range;
}

// Scales by a power of 2 so that the largest coordinate is at the upper end of the range. What is 2^505 times
// smaller is rounded, in the same way for all, so that the triangulation of the rounded points is exact.
void scale_into_range(coordinate_range& range, site* from, site* to) {
    int const shift = largest_exponent - 1 - std::ilogb(range.largest);
    // All digits of a number that is at least `full` are in the range. At `full` times 3 its last one is cut
    // off.
    double const full = std::ldexp(1.0, smallest_exponent + 52);
    for (site* s = from; s != to; ++s) {
        for (double& x : s->at) {
            x = std::ldexp(x, shift);
            if (std::fabs(x) < full) x = (x + 3 * full) - 3 * full;
        }
    }
    range.largest = std::ldexp(1.0, largest_exponent);
    range.last_digit = smallest_exponent;
}

// An edge that bounds no triangle.
Edge lone_edge(double const* a, double const* b, Edge* self) {
    return {a, b, self, self, self, self, false, true};
}

// Keeps the first of equal sites and writes an edge to each other one, from `edges_end` downwards. Returns
// the end of the sites that are left.
site* part_from_repeated(site* from, site* to, Edge* edges_end) {
    site* kept = from;
    for (site* s = from + 1; s != to; ++s) {
        if (same_place(*kept, *s)) {
            --edges_end;
            *edges_end = lone_edge(kept->source, s->source, edges_end);
        } else {
            *++kept = *s;
        }
    }
    return kept + 1;
}

void reverse(Edge& e) {
    e = {e.b, e.a, e.right_prev, e.right_next, e.left_prev, e.left_next, e.in_stack, e.on_hull};
}

// Turns the hull edges so that the outside is on their right. Every edge of a chain has it on both sides;
// they come one after the other from its first end.
void mark_outside(half first, unsigned int count, bool chain) {
    half h = first;
    for (unsigned int i = 0; i < count && (i == 0 || h.edge != first.edge); ++i) {
        half const next = next_right(h);
        if (h.reversed) reverse(*h.edge);
        h.edge->on_hull = true;
        if (chain) h.edge->left_prev = h.edge->left_next = h.edge;
        h = next;
    }
}

double const* source_of(double const* at) {
    return reinterpret_cast<site const*>(at)->source;
}

// Triangulates sites in the caller's buffer of edges and returns the number of edges.
template <int axis>
unsigned int triangulate_sites(site* from, site* to, double aspect, predicates const& exact, Edge* edges,
                               unsigned int capacity) {
    sort_sites<axis>(from, to);
    auto const distinct = static_cast<std::size_t>(part_from_repeated(from, to, edges + capacity) - from);
    unsigned int written = 0;
    if (distinct > 1) {
        mesh triangulation(edges, exact);
        half const first = strips<axis>(triangulation, from, distinct, aspect).triangulate();
        written = triangulation.size();
        mark_outside(first, written, written == distinct - 1);
    }
    for (Edge* e = edges; e != edges + written; ++e) {
        e->a = source_of(e->a);
        e->b = source_of(e->b);
    }
    auto const repeated = static_cast<unsigned int>(static_cast<std::size_t>(to - from) - distinct);
    for (unsigned int i = 1; i <= repeated; ++i, ++written) {
        Edge const& e = edges[capacity - i];
        edges[written] = lone_edge(e.a, e.b, edges + written);
    }
    return written;
}

// The third corner of the triangle whose next edge after `e` is `next`.
double const* corner_behind(Edge const* e, Edge const* next) {
    return next->left_prev != e ? next->a : next->b;
}

}  // namespace

unsigned int delaunay_triangulation__edge_buffer_count(unsigned int points) {
    constexpr unsigned int most = 1431655766;
    return points < 2 || points > most ? 0 : static_cast<unsigned int>(3ull * points - 5);
}

unsigned int delaunay_triangulation(double const* coordinates, unsigned int points, unsigned int stride,
                                    Delaunay::Edge* const edges) {
    unsigned int const capacity = delaunay_triangulation__edge_buffer_count(points);
    if (capacity == 0) return 0;
    std::unique_ptr<site[]> const sites(new (std::nothrow) site[points]);
    if (!sites) return 0;

    coordinate_range range = read_sites(coordinates, points, stride, sites.get());
    if (!range.finite) return 0;
    if (points == 2) {
        *edges = lone_edge(sites[0].source, sites[1].source, edges);
        return 1;
    }
    site* const end = sites.get() + points;
    if (range.largest > std::ldexp(1.0, largest_exponent) || range.last_digit < smallest_exponent) {
        scale_into_range(range, sites.get(), end);
    }
    predicates const exact(std::ldexp(1.0, range.last_digit), range.largest);
    cuts const way = cuts_of(sites.get(), end);
    auto const triangulate = way.axis == 0 ? triangulate_sites<0> : triangulate_sites<1>;
    return triangulate(sites.get(), end, way.aspect, exact, edges, capacity);
}

unsigned int make_mesh__triad_count(unsigned int points, unsigned int edges) {
    return edges == 0 ? 0 : edges - points + 1;
}

void make_mesh(Delaunay::Edge const* edges, unsigned int count, Delaunay::Triad* const triads) {
    if (count < 3) return;
    Triad* triad = triads;
    for (Edge const* e = edges; e != edges + count; ++e) {
        if (e < e->left_next && e < e->left_prev) *triad++ = {e->a, e->b, corner_behind(e, e->left_next)};
        if (!e->on_hull && e < e->right_next && e < e->right_prev) {
            *triad++ = {e->b, e->a, corner_behind(e, e->right_next)};
        }
    }
}

}  // namespace Delaunay
}  // namespace tvmath
