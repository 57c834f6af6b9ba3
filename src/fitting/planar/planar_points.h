#pragma once

#include <span>
#include <vector>

#include "fitting/point_span.h"
#include "geometry/xy.h"
#include "tvmath/array.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// Turned by a quarter, anticlockwise.
inline xy quarter_turned(xy a) {
    return {-a.y, a.x};
}

/// Whether it points to the right, or straight up.
inline bool is_rightward(xy a) {
    return a.x > 0 || (a.x == 0 && a.y > 0);
}

/// Measured points by x and y relative to an origin near them, so that what is computed from them does not
/// know how far away they are. The differences are exact wherever the points are near each other for their
/// distance from the caller's origin.
struct planar_points {
    point origin;
    std::vector<xy> at;
    double resolution = 0;  ///< How far rounding of the caller's coordinates can have moved a point.

    bool is_empty() const { return at.empty(); }
    /// The location `p` in the caller's coordinates, in the dimension and at the height of the origin.
    point place(xy p) const { return origin + point(false, p.x, p.y); }
    /// The map of a figure with that centre and those half axes; one in 3D is parallel to XY.
    transform place(xy center, xy u, xy v) const;
};

/// Relative to `origin`. Empty when that or a point is trivial or not finite.
planar_points relative_to(point const& origin, std::span<point const> points);

/// Scatter about a centre: the axis of its largest part, and how the rest leans on that.
///
/// With t along `axis` and n across it, to the left, t and n - lean t are uncorrelated.
struct planar_scatter {
    xy center;
    xy axis;
    double lean = 0;
    double along = 0, across = 0;  ///< Roots of the mean squares of t and of n - lean t.
};
/// About `center`.
planar_scatter scatter_about(xy center, std::vector<xy> const& points);
/// About the mean.
planar_scatter scatter_of(std::vector<xy> const& points);

/// Unit vector along the largest part of a scatter given by its sums of squares and products; X when it has
/// none.
xy principal_axis(double xx, double xy_, double yy);

}  // namespace tvmath
