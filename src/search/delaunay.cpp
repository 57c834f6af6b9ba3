#include "tvmath/delaunay.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "delaunay_mesh.h"

inline namespace tvmath {
namespace Delaunay {
namespace {

static_assert(sizeof(Edge) == 6 * sizeof(void*) + 2, "callers allocate the edges without padding");

// Along x, ties along y; equal points in the order of the caller.
bool before(site const& p, site const& q) {
    if (p.at[0] != q.at[0]) return p.at[0] < q.at[0];
    if (p.at[1] != q.at[1]) return p.at[1] < q.at[1];
    return p.source < q.source;
}
// The same order turned by a quarter: along y, ties against x.
bool below(site const& p, site const& q) {
    return p.at[1] != q.at[1] ? p.at[1] < q.at[1] : p.at[0] > q.at[0];
}
bool same_place(site const& p, site const& q) {
    return p.at[0] == q.at[0] && p.at[1] == q.at[1];
}

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
    double const rounder = std::ldexp(1.5, smallest_exponent + 52);
    for (site* s = from; s != to; ++s) {
        for (double& x : s->at) {
            x = std::ldexp(x, shift);
            if (std::fabs(x) < rounder) x = (x + rounder) - rounder;
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

// The hull ends in the order along x of a part that was triangulated in the order along y.
hull_ends turn_ends(hull_ends ends) {
    auto const precedes = [](double const* p, double const* q) {
        return p[0] != q[0] ? p[0] < q[0] : p[1] < q[1];
    };
    half first = ends.first, last = turned(ends.first);
    for (half h = next_right(ends.first); !(h == ends.first); h = next_right(h)) {
        if (precedes(origin(h), origin(first))) first = h;
        if (precedes(origin(last), target(h))) last = turned(h);
    }
    return {first, last};
}

// Strips of equal count along x, cut along y in themselves: cells that are about square meet along short
// borders, where few edges of one part are erased by the next. Cuts along x alone take half as long again.
class strips {
public:
    strips(mesh& triangulation, site* sites, std::size_t count)
        : mesh_(triangulation), sites_(sites), count_(count) {
        strips_ = static_cast<std::size_t>(std::sqrt(static_cast<double>(count) / 8));
    }

    hull_ends triangulate() {
        return strips_ < 2 ? mesh_.triangulate(sites_, sites_ + count_) : triangulate(0, strips_);
    }

private:
    hull_ends triangulate(std::size_t from, std::size_t to) {
        if (to - from == 1) {
            site *const begin = start(from), *const end = start(to);
            std::sort(begin, end, below);
            return turn_ends(mesh_.triangulate(begin, end));
        }
        std::size_t const middle = (from + to) / 2;
        hull_ends const left = triangulate(from, middle);
        return mesh_.merge(left, triangulate(middle, to));
    }
    site* start(std::size_t strip) const { return sites_ + count_ * strip / strips_; }

    mesh& mesh_;
    site* sites_;
    std::size_t count_, strips_;
};

void reverse(Edge& e) {
    e = {e.b, e.a, e.right_prev, e.right_next, e.left_prev, e.left_next, e.in_stack, e.on_hull};
}

// Turns the hull edges so that the outside is on their right.
void mark_hull(half first) {
    half h = first;
    do {
        half const next = next_right(h);
        if (h.reversed) reverse(*h.edge);
        h.edge->on_hull = true;
        h = next;
    } while (h.edge != first.edge);
}

// Every edge of a chain has the outside on both sides, and one of them is to be its hull side.
void mark_chain(half first, unsigned int count) {
    half h = first;
    for (unsigned int i = 0; i < count; ++i) {
        half const next = next_right(h);
        if (h.reversed) reverse(*h.edge);
        h.edge->left_prev = h.edge->left_next = h.edge;
        h.edge->on_hull = true;
        h = next;
    }
}

double const* source_of(double const* at) {
    return reinterpret_cast<site const*>(at)->source;
}

// Triangulates distinct sites in order, two or more, and returns the number of edges.
unsigned int triangulate_sites(site* sites, std::size_t count, predicates const& exact, Edge* edges) {
    mesh triangulation(edges, exact);
    half first = strips(triangulation, sites, count).triangulate().first;
    unsigned int const written = triangulation.compact(first);
    if (written == count - 1) {
        mark_chain(first, written);
    } else {
        mark_hull(first);
    }
    for (Edge* e = edges; e != edges + written; ++e) {
        e->a = source_of(e->a);
        e->b = source_of(e->b);
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
    std::sort(sites.get(), end, before);
    auto const distinct =
        static_cast<std::size_t>(part_from_repeated(sites.get(), end, edges + capacity) - sites.get());

    unsigned int written = 0;
    if (distinct > 1) {
        predicates const exact(std::ldexp(1.0, range.last_digit), range.largest);
        written = triangulate_sites(sites.get(), distinct, exact, edges);
    }
    for (std::size_t i = distinct; i < points; ++i) {
        Edge const repeated = edges[capacity - 1 - (i - distinct)];
        edges[written] = lone_edge(repeated.a, repeated.b, edges + written);
        ++written;
    }
    return written;
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
