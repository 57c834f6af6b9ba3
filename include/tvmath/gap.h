#pragma once

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A gap: two parallel sides opposite each other, y = -1 and y = 1 for x from -1 to 1, carried by the
/// transform it derives from.
///
/// `basis(0)` is the centre, `basis(1)` half the length of the sides, `basis(2)` half the distance between
/// them. Lengths are in the caller's units, angles in radians, anticlockwise from +X. The default is the null
/// gap (`is_trivial()`).
class TVMATH_API gap : public transform {
public:
    gap() = default;
    explicit gap(transform const& t) : transform(t) {}
    gap(double length, double distance, double angle, point center);
    /// The gap with `a` and `b` on one side and `c` on the other, by `gap_fit`.
    gap(point a, point b, point c);

    double angle2d() const { return basis(1).angle2d(); }
    double length() const { return 2 * size(1); }
    double distance() const { return 2 * size(2); }
    /// Exact extent in XY.
    CRealRect get_bounding_rect() const;

    /// The two sides, (-1, -1) to (1, -1) and (-1, 1) to (1, 1).
    static void render_unit_gap(idioms::array<point>& lower, idioms::array<point>& upper);
    /// Those sides carried by this gap.
    void render_gap(idioms::array<point>& lower, idioms::array<point>& upper) const;
};

}  // namespace tvmath
