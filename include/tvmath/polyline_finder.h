#pragma once

#include <cstdint>
#include <vector>

#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Nearest points of a fixed polyline, for many queries: `PolyLineFinder2D` and `PolyLineFinder3D`.
///
/// A finder is built once and then only asked. It remembers the segment of its last answer and starts the
/// next search from there, so that runs of neighbouring queries are cheap.
///
/// Each segment keeps its start in double precision, and its direction and the place t along it in single
/// precision: it is exact to about 1e-7 of its own length. So are the answers, also the one at a segment's
/// end, wherever the polyline lies. Segments are compared by squared distances in single precision: two that
/// are equally far to 1e-7 of the distance may be taken for each other, and distances beyond 1.8e19 overflow
/// and are never the nearest. Of segments at exactly the same distance the one of the last answer is kept;
/// else the first that the search meets.
///
/// Points and queries count by their coordinates, whatever their weight, in the caller's units. In 2D, z is
/// not looked at; in 3D a 2D point lies in the plane z = 0. A trivial point is no gap in the list: it counts
/// with the coordinates that it holds, as a rule the origin. At a point with a coordinate that is NaN or
/// infinite the polyline is broken: neither segment that meets there is ever the nearest.
///
/// A query allocates nothing unless more than 128 boxes wait to be opened, as for a query near the centre of
/// a circle. It writes the remembered answer: one finder must not be asked by two threads at once. A copy has
/// its own tree and memory.
///
/// All in one block of bytes without pointers: 72 bytes a segment in 2D, 104 in 3D.
///
/// Source: best-first search over a tree of boxes, G. R. Hjaltason, H. Samet, Distance browsing in spatial
/// databases, ACM Trans. Database Systems 24 (1999) 265-318.
template <unsigned int dimension>
class TVMATH_API polyline_finder {
public:
    /// Forgets polyline and answer; the memory is kept for the next `construct`.
    void clear();

    /// Replaces the polyline by the one through `points`, in time n log n. A point closer than 1e-16 to the
    /// last one that was kept adds no segment. When all are that close the first point stands alone. The
    /// finder is empty after an empty list, and after one whose block would not fit 32-bit offsets: more than
    /// 59 652 324 segments in 2D, 41 297 762 in 3D.
    void construct(std::vector<point> const& points);

    /// The point of the polyline nearest to `query`, as a location of the finder's dimension. Trivial on an
    /// empty finder, for a query with a coordinate that is NaN or infinite, and when no distance is finite.
    point find_closest(point query);

private:
    std::vector<unsigned char> block_;  // the segments in order, then the boxes, children before parents
    std::uint32_t first_node_ = 0;      // where the boxes begin
    std::uint32_t last_segment_ = 0;    // offset of a segment, or first_node_ when there is no answer yet
};

/// Finder of nearest points on a polyline by x and y.
class TVMATH_API PolyLineFinder2D : public polyline_finder<2> {};

/// Finder of nearest points on a polyline by x, y and z.
class TVMATH_API PolyLineFinder3D : public polyline_finder<3> {};

}  // namespace tvmath
