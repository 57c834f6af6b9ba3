#pragma once

#include "tvmath/export.h"

inline namespace tvmath {

/// Delaunay triangulation of points in the plane, in buffers that the caller owns.
///
/// Point i has x at `coordinates` plus i times `stride` bytes, and y just behind x, so that a list of `point`
/// is triangulated where it lies. Points are not copied: edges and triads point at the x of the caller's
/// points, which have to outlive them.
///
///     std::vector<Delaunay::Edge> edges(Delaunay::delaunay_triangulation__edge_buffer_count(n));
///     auto const count = Delaunay::delaunay_triangulation(xy, n, 2 * sizeof(double), edges.data());
///     std::vector<Delaunay::Triad> triads(Delaunay::make_mesh__triad_count(n, count));
///     Delaunay::make_mesh(edges.data(), count, triads.data());
namespace Delaunay {

#pragma pack(push, 1)
/// An edge of the triangulation with its neighbours, 50 bytes without padding.
///
/// Left and right are seen from a towards b, with y up. The hull runs anticlockwise: a hull edge has its
/// triangle on the left, and its right links run along the hull.
struct Edge {
    double const* a;   ///< x and y of the start
    double const* b;   ///< x and y of the end
    Edge* left_prev;   ///< the edge before this one, anticlockwise around the triangle on the left; ends at a
    Edge* left_next;   ///< the edge after this one; starts at b
    Edge* right_prev;  ///< the same around the right, where this edge runs from b to a; ends at b
    Edge* right_next;  ///< starts at a; of a hull edge, the next one clockwise
    bool in_stack;     ///< the edge waits for a test; false in every result
    bool on_hull;      ///< there is no triangle on the right
};
#pragma pack(pop)

/// A triangle: its corners, anticlockwise with y up.
struct Triad {
    double const* a;
    double const* b;
    double const* c;
};

/// Number of edges that a buffer for `points` points has to hold: 3 points - 5, or 0 for fewer than 2 points
/// and for more than 1431655766, for which the number does not fit.
TVMATH_API unsigned int delaunay_triangulation__edge_buffer_count(unsigned int points);

/// Writes the edges of the Delaunay triangulation and returns their number, at most that of
/// `delaunay_triangulation__edge_buffer_count`: no circumcircle of a triangle has a point inside. It is the
/// triangulation of the coordinates as they are, decided without rounding from the smallest to the largest
/// double; only what is less than 2^-504 of the largest is rounded to a multiple of that. Of four or more
/// points on one circle, the last along x, ties along y, counts as moved outward, then the one before it and
/// so on: neither the order of the list nor the method decides.
///
/// The triangles fill the convex hull to its last flat one, and every point is the end of an edge:
/// - Points on one line give a chain of edges, one less than points, of which none bounds a triangle. Their
///   left links are the edge itself, their right links run along the chain and at its ends to the edge
///   itself, and `on_hull` is set. Two points give one edge, from point 0 to point 1.
/// - A point that repeats an earlier one gives an edge of length 0 from the earliest to itself, which bounds
///   no triangle: all its links are itself and `on_hull` is set. So `make_mesh__triad_count` stays right.
///
/// Returns 0 and writes nothing for fewer than 2 points, for a coordinate that is not finite and when memory
/// runs out. Takes O(n log n) time for any points and one temporary array of 24 bytes a point.
///
/// Source: divide and conquer of L. Guibas and J. Stolfi, Primitives for the manipulation of general
/// subdivisions, ACM Trans. Graphics 4 (1985) 74-123, on strips as in R. Dwyer, A faster divide-and-conquer
/// algorithm for constructing Delaunay triangulations, Algorithmica 2 (1987) 137-151. It gives the triangles
/// of a sweep along x with edge flips, which takes n^1.5 flips on a grid and n²/8 on the two sides of a slot.
TVMATH_API unsigned int delaunay_triangulation(double const* coordinates, unsigned int points,
                                               unsigned int stride, Delaunay::Edge* const edges);

/// Number of triangles of a triangulation of `points` points with `edges` edges: edges - points + 1 by
/// Euler's formula, 0 when `edges` is 0.
TVMATH_API unsigned int make_mesh__triad_count(unsigned int points, unsigned int edges);

/// Writes the triangles of a triangulation of `count` edges, each once, in the order of its edge with the
/// lowest address. Their number is that of `make_mesh__triad_count`. Fewer than 3 edges write nothing.
TVMATH_API void make_mesh(Delaunay::Edge const* edges, unsigned int count, Delaunay::Triad* const triads);

}  // namespace Delaunay
}  // namespace tvmath
