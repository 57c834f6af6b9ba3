#pragma once

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// A rectangle: the square from (-1, -1) to (1, 1) carried by the transform it derives from.
///
/// `basis(0)` is the centre, `basis(1)` half the width, `basis(2)` half the height. Lengths are in the
/// caller's units, angles in radians, anticlockwise from +X. The default is the null rectangle
/// (`is_trivial()`).
class TVMATH_API rectangle : public transform {
public:
    rectangle() = default;
    explicit rectangle(transform const& t) : transform(t) {}
    rectangle(double width, double height, double angle, point center);
    /// The rectangle through five points, two of them on one side, by `rectangle_fit`.
    rectangle(point a, point b, point c, point d, point e);

    double angle2d() const { return basis(1).angle2d(); }
    double width() const { return 2 * size(1); }
    double height() const { return 2 * size(2); }
    /// Enclosed area, for oblique sides too.
    double area() const;
    double perimeter() const { return 4 * (size(1) + size(2)); }

    /// Exact extent in XY.
    CRealRect get_bounding_rect() const;
    /// Extent in XY of the rectangle as it lies after `t`, each side then moved outward by |offset| along the
    /// other side's direction.
    CRealRect get_bounding_rect(transform t, double offset) const;

    /// The corners (-1, -1), (1, -1), (1, 1), (-1, 1).
    static curve render_unit_rectangle();
    /// The four corners, in the order of `render_unit_rectangle`.
    curve render_rectangle() const;
    /// The outline from corner to corner in that order, `n` segments on each side along the width and `m` on
    /// each along the height: 2 (n + m) points, the first not repeated. Counts below 1 count as 1.
    curve render_rectangle(int n, int m) const;
    /// The same of the parallel outline at `offset`, outside when positive, with sharp corners. Sides keep
    /// their number of segments. Infinities or NaN when the axes are parallel; a flat rectangle, one axis
    /// being 0, grows across the other one in its plane.
    curve render_rectangle(int n, double offset, int m) const;
    /// One parallel outline for each offset.
    idioms::array<curve> render_rectangle(int n, vector offsets, int m) const;
};

/// The same shape with its axes relabelled by `k` quarter turns: width and height change places when `k` is
/// odd. A trivial rectangle comes back as it is.
TVMATH_API rectangle rotate_rectangle(rectangle r, int k);

}  // namespace tvmath
