#pragma once

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// A path: an ordered copy-on-write list of points, either the vertices of a polyline or the control points
/// of a cubic Bezier path. Trivial points break the list into separate pieces.
///
/// The list itself does not say which of the two it is. A Bezier path has a size of 3 n + 1: segment k runs
/// over the points 3k to 3k + 3, its last point being the first of the next segment; a single point is a
/// path without a segment. A function that needs a Bezier path tells any other size by its failure value. The
/// control points take part by their coordinates, whatever their weight, a trivial one as the origin.
///
/// Lengths are in the caller's units.
class TVMATH_API curve : public idioms::array<point> {
public:
    /// The empty path.
    curve() = default;
    /// `n` trivial points.
    explicit curve(unsigned int n) : array(n) {}
    /// `n` copies of `p`.
    curve(unsigned int n, point const& p) : array(n, p) {}
    /// Shares the block of `list`.
    curve(idioms::array<point> const& list) : array(list) {}
    // One, two or three points.
    explicit curve(point const& p);
    curve(point const& a, point const& b);
    curve(point const& a, point const& b, point const& c);

    /// Scales every point about the origin; a factor of exactly 1 leaves the block shared.
    curve& operator*=(double s);
    curve& operator/=(double s);
    /// Carries every point through the transform; a trivial point becomes the transform's origin. A trivial
    /// transform leaves the block shared.
    curve& operator*=(transform const& t);
    /// The same through the inverse of the transform.
    curve& operator/=(transform const& t);
    /// Moves the locations by the coordinates of `p`, whatever its weight; a 3D `p` makes them 3D. Directions
    /// and trivial points stay, as does everything when `p` is trivial.
    curve& operator+=(point const& p);
    curve& operator-=(point const& p);

    // The operation of `point` of that name, on every point.
    curve& promote2d();
    curve& promote3d();
    curve& project2d();
    /// Lays every point into the XY plane of `t`, along Z; see the `protrude` of a point.
    curve& protrude(transform const& t);

    /// Extent of x and y of all points, control points and trivial points (by their stored zeros) included.
    /// The null rectangle for the empty path; NaN counts for nothing. `bezier_bounding_rect` gives the extent
    /// of a Bezier path itself.
    CRealRect get_bounding_rect() const;
    /// x, y, z of each point, 3 n numbers; z of a 2D point as it is stored. Empty when 3 n numbers are more
    /// than a list can hold.
    idioms::array<double> to_double_array() const;

    // Reductions of measured polylines: each keeps some of the points, in order, and moves none. Distances
    // are in XY; a trivial point has those of the origin.

    /// Keeps a point when it is at least `d` from the last one kept; the first point always, and the last
    /// point too unless `closed`.
    curve& reduce_points_by_interval(double d, bool closed);
    /// Keeps points so that those left out lie within `t` of the straight line through the kept ones around
    /// them, or of these themselves where both coincide. Greedy over spans of at most 100 points, halved
    /// until they fit, so the cost grows linearly with the size. Every list counts as open: first and last
    /// point stay, whatever the flag. Points with a NaN coordinate stay, and all do for a NaN tolerance.
    ///
    /// Source: after D. H. Douglas, T. K. Peucker, Algorithms for the reduction of the number of points
    /// required to represent a digitized line, Cartographica 10 (1973) 112-122.
    curve& reduce_points_by_tolerance(double t, bool closed);
    /// Keeps `n` points at even steps of the index; an open path keeps both ends. At most `n` points stay as
    /// they are; 0 leaves none, and 1 leaves the first.
    curve& reduce_points_to_number(unsigned int n, bool closed);
    /// Keeps the `n` consecutive points in the middle; at most `n` points stay as they are.
    curve& reduce_points_to_number_middle(unsigned int n);
};

inline curve operator*(curve c, transform const& t) {
    return c *= t;
}
inline curve operator/(curve c, transform const& t) {
    return c /= t;
}
inline curve operator*(curve c, double s) {
    return c *= s;
}
inline curve operator*(double s, curve c) {
    return c *= s;
}
inline curve operator/(curve c, double s) {
    return c /= s;
}
inline curve operator+(curve c, point const& p) {
    return c += p;
}
inline curve operator-(curve c, point const& p) {
    return c -= p;
}
/// A copy of `c` laid into the XY plane of `t`; see `curve::protrude`.
TVMATH_API curve protrude(transform const& t, curve c);

/// Every path of a list, in place, through the transform, or through its inverse.
TVMATH_API idioms::array<curve>& operator*=(idioms::array<curve>& list, transform const& t);
TVMATH_API idioms::array<curve>& operator/=(idioms::array<curve>& list, transform const& t);

/// Mean of the points that are not trivial, in x and y (and z): a location when all of them are locations,
/// otherwise a direction. The trivial point when there is none.
TVMATH_API point centroid2d(curve const& c);
TVMATH_API point centroid3d(curve const& c);

/// The vertex of a polyline nearest to `p` in XY, or in space, the first one of equals; with `interpolate`
/// the foot of the perpendicular on one of the two segments that meet there, the nearer one, when `p` falls
/// upon one. Trivial points are passed over, so that a segment may reach over them; a list of nothing else
/// gives the trivial point. A trivial `p` counts as the origin. A neighbour in the very place of the vertex
/// makes no segment.
///
/// The search is for the nearest vertex: a long segment that passes `p` closer than its ends is not seen.
TVMATH_API point closest2d(curve const& c, point const& p, bool interpolate);
TVMATH_API point closest3d(curve const& c, point const& p, bool interpolate);
/// The path of the list whose closest point is nearest to `p`, the first one of equals; the empty path when
/// no path has a closest point.
TVMATH_API curve closest2d(idioms::array<curve> const& list, point const& p, bool interpolate);
TVMATH_API curve closest3d(idioms::array<curve> const& list, point const& p, bool interpolate);

/// Distance of each point of the list from `p`, in XY or in space; trivial points count as the origin.
TVMATH_API vector distance2d(curve const& c, point const& p);
TVMATH_API vector distance2d(point const& p, curve const& c);
TVMATH_API vector distance3d(curve const& c, point const& p);
TVMATH_API vector distance3d(point const& p, curve const& c);

/// Midpoints, in space, of the points of equal index; empty when the sizes differ.
TVMATH_API curve midpoint(curve const& a, curve const& b);

// Bezier paths.

/// Polyline along a Bezier path, `n` points for each segment at equal steps of its parameter, from the start
/// of the segment; the end of the path is added unless `closed`. An `n` of 0 counts as 1. All points are
/// locations, 2D when no control point is 3D. Empty unless the size is 1 mod 3, and when the result has more
/// points than a list can hold.
TVMATH_API curve render(curve const& c, bool closed, unsigned int n);

/// Exact extent of a Bezier path in XY, from the zeros of the derivative in each coordinate; of a single
/// point, the point. NaN counts for nothing. The null rectangle unless the size is 1 mod 3.
TVMATH_API CRealRect bezier_bounding_rect(curve const& c);

/// Length of a Bezier path in XY, by a trapezoid rule refined up to 256 panels for each segment until a
/// refinement changes it by less than 1e-5 of itself. Returns false, `length` untouched, unless the size is
/// 1 mod 3.
TVMATH_API bool calculate_bezier_length(curve const& c, double& length);

/// Signed area (positive anticlockwise) and centroid of the region that a closed Bezier path encloses in XY,
/// by Green's theorem with the exact integrals of each cubic. A path that is not closed counts as if its ends
/// were joined by a straight line. What the path goes round twice counts twice. The centroid is a 2D
/// location; an area of exactly 0 has none: the trivial point, with true. Returns false, outputs untouched,
/// unless the size is 1 mod 3.
TVMATH_API bool calculate_closed_bezier_moments(curve const& c, double& area, point& centroid);

}  // namespace tvmath
