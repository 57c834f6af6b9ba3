#pragma once

#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

// What the shapes spanned by two axes share.

/// Rectangle about `center`; a trivial centre is the origin.
inline CRealRect rect_about(point center, double half_width, double half_height) {
    center.promote2d();
    return CRealRect(center.x() - half_width, center.y() - half_height, center.x() + half_width,
                     center.y() + half_height);
}

/// Exact extent in XY of the square from (-1, -1) to (1, 1) carried by `t`.
inline CRealRect carried_square_rect(transform const& t) {
    point const u = t.basis(1), v = t.basis(2);
    return rect_about(t.basis(0), std::fabs(u.x()) + std::fabs(v.x()), std::fabs(u.y()) + std::fabs(v.y()));
}

struct unit_axes {
    point u, v;
};

/// Unit directions of the first two axes. A flat shape has an axis of length 0, which tells no direction: it
/// gets the perpendicular of the other one in the plane of the shape. Both stay 0 when both are.
inline unit_axes unit_axes_of(transform const& t) {
    point u = t.direction(1), v = t.direction(2);
    bool const plane = u.is_2d();
    if (sqr(u) == 0.0) u = normalize(cross(v, t.basis(3)));
    if (sqr(v) == 0.0) v = normalize(cross(t.basis(3), u));
    if (plane) {
        u.project2d();
        v.project2d();
    }
    return {u, v};
}

}  // namespace tvmath
