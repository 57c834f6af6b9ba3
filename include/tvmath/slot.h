#pragma once

#include "tvmath/circle.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A slot: a long hole with round ends.
///
/// `basis(0)` is the centre, `basis(1)` goes from there to the centre of the right end, `basis(2)` is the
/// radius of the ends, at a right angle to it. Lengths are in the caller's units, angles in radians,
/// anticlockwise from +X. The default is the null slot (`is_trivial()`).
class TVMATH_API slot : public transform {
public:
    slot() = default;
    explicit slot(transform const& t) : transform(t) {}
    /// Half the overall length and half the width, which is the radius of the ends.
    slot(double length, double width, double angle, point center);
    /// The slot through five points of its outline, at least one on each end, by `slot_fit`.
    slot(point a, point b, point c, point d, point e);

    double angle2d() const { return basis(1).angle2d(); }
    double semimajor() const { return size(1) + size(2); }  ///< Half the overall length.
    double semiminor() const { return size(2); }            ///< Half the width.
    double area() const;
    double perimeter() const { return 4 * size(1) + 2 * pi * size(2); }
    /// The circles of the ends, at `basis(0)` - `basis(1)` and at `basis(0)` + `basis(1)`, in the plane of
    /// the slot. Null for the null slot.
    circle get_left_end() const;
    circle get_right_end() const;

    /// Exact extent in XY. A slot whose ends coincide has that of its circle.
    CRealRect get_bounding_rect() const;
    /// Closed Bezier path of 19 control points, anticlockwise from the start of the lower side: lower side,
    /// right end, upper side, left end. The ends are within 2.8e-4 of their radius.
    curve render_bezier() const;
};

}  // namespace tvmath
