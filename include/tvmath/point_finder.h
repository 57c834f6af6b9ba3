#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Part of `point_finder`: the points about the last queries, from which most of the next ones are answered.
///
/// It holds every point in a ball. A query that has one of them closer than the edge of the ball needs no
/// look into the tree.
template <unsigned int dimension>
struct point_surroundings {
    static constexpr unsigned int capacity = 48;

    std::array<double, dimension> previous = {};  // query
    std::array<double, dimension> center = {};    // of the ball
    double radius_squared = 0;                    // a little less than that of the ball
    double ahead = 4;                             // steps from query to query that the ball shall reach
    std::uint32_t count = 0;                      // of points; 0 when there is no ball
    std::uint32_t hits = 0;                       // answers in a row found here
    std::uint32_t delay = 0, waits = 0;           // searches to be left without a new ball, in all and still
    std::uint32_t leaf[capacity] = {};            // offsets
    double at[dimension][capacity] = {};          // coordinates, one axis after the other
};

/// Nearest and farthest points of a fixed cloud, for many queries: `PointFinder2D` and `PointFinder3D`.
///
/// A finder is built once and then only asked. It remembers its last answer of each kind and starts the next
/// search from there; and the points about the last closest queries, so that runs of neighbouring queries are
/// cheap. The answer is the one that a walk over the whole list would find by the squared distances in double
/// precision, of any list.
///
/// Of points at exactly the same distance the one of the last answer is kept; else the first that the search
/// meets, which the cloud and the query decide and not the order of the list.
///
/// Points and queries count by their coordinates, whatever their weight, in the caller's units. In 2D, z is
/// not looked at; in 3D a 2D point lies in the plane z = 0. A trivial point is no hole in the list: it counts
/// with the coordinates that it holds, as a rule the origin. A point with a NaN is never an answer, and an
/// infinite one only as the farthest. Distances overflow when squared, beyond 1e154: all of them count as one
/// infinite distance, which can be the farthest but never the nearest.
///
/// A query allocates nothing unless more than 512 branches wait to be searched; lists that cover the whole
/// range of a double make trees about 400 deep. It writes the remembered answer, also on a `const` finder:
/// one finder must not be asked by two threads at once. A copy has its own tree and memory.
///
/// All in one block of bytes without pointers: 52 bytes a point in 2D, 60 in 3D, less 28. The surroundings
/// add 1.0 or 1.4 KB to the finder itself.
///
/// Source: J. L. Bentley, Multidimensional binary search trees used for associative searching, CACM 18 (1975)
/// 509-517; distances to regions kept by axis as in S. Arya, D. M. Mount, Algorithms for fast vector
/// quantization, Data Compression Conference (1993) 381-390.
template <unsigned int dimension>
class TVMATH_API point_finder {
public:
    /// Forgets points and answers; the memory is kept for the next `construct`.
    void clear();

    /// Replaces the points. Takes time n log n for n points, some five times that where coordinates grow
    /// exponentially, as a mean splits such a list unevenly; the stack stays within log n in any case. The
    /// finder is empty after an empty list, and after one whose block would not fit 32-bit offsets: more than
    /// 82 595 525 points in 2D, 71 582 788 in 3D.
    void construct(std::vector<point> const& points);

    /// Gives the position in the list of the point nearest to `query`. Returns false, `index` untouched, on
    /// an empty finder, for a query with a coordinate that is NaN or infinite, and when no distance is
    /// finite.
    bool find_closest(point query, unsigned int& index) const;
    /// The same for the point farthest from `query`; false when there is no point without NaN.
    bool find_farthest(point query, unsigned int& index) const;

    /// The nearest point itself, as a location of the finder's dimension; trivial where the other form fails.
    point find_closest(point query);
    /// The farthest point itself, in the same way.
    point find_farthest(point query);

private:
    std::vector<unsigned char> block_;  // a tree in preorder
    // Offsets of leaves, all ones when there is no answer yet.
    mutable std::uint32_t last_closest_ = 0xFFFFFFFFu, last_farthest_ = 0xFFFFFFFFu;
    mutable point_surroundings<dimension> surroundings_;
};

/// Finder of points by x and y.
class TVMATH_API PointFinder2D : public point_finder<2> {};

/// Finder of points by x, y and z.
class TVMATH_API PointFinder3D : public point_finder<3> {};

}  // namespace tvmath
