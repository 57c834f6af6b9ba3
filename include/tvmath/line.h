#pragma once

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// A line segment: the segment from (-1, 0) to (1, 0) carried by the transform it derives from.
///
/// `basis(0)` is the midpoint, `basis(1)` the vector from there to the end, `basis(2)` that vector turned by
/// a quarter about Z. Lengths are in the caller's units. The default is the null line (`is_trivial()`).
class TVMATH_API line : public transform {
public:
    line() = default;
    explicit line(transform const& t) : transform(t) {}
    /// The segment from `a` to `b`. Of a location and a direction, in either order, the location is the
    /// midpoint and the direction the half of the segment; of two directions the second counts as the
    /// midpoint. A trivial point counts as the origin; trivial when both are.
    ///
    /// The direction of a 3D line is flattened into XY, so its length is the length in XY; the midpoint keeps
    /// its z. A line of no extent in XY holds a NaN or infinities in its inverse map.
    line(point a, point b);

    /// Unit vector from the start to the end; of length 0 when the segment is.
    point direction() const { return normalize(basis(1)); }
    using transform::direction;
    /// Length of the whole segment.
    double length() const { return 2 * size(1); }

    /// Exact extent in XY.
    CRealRect get_bounding_rect() const;
    /// Extent, in XY, of the band of half-width |offset| around the segment as it lies after `t`: of its four
    /// corners. The offset is measured after `t`, along the image of `basis(2)`.
    CRealRect get_bounding_rect(transform t, double offset) const;

    /// `n` + 1 points at even steps from end to end; an `n` below 1 counts as 1.
    curve render_line(int n) const;
    /// `n` points, not `n` + 1, along the parallel at `offset` on the side of `basis(2)`; an `n` below 2
    /// counts as 2.
    curve render_line(int n, double offset) const;
    /// One parallel for each offset.
    idioms::array<curve> render_line(int n, vector offsets) const;
};

}  // namespace tvmath
