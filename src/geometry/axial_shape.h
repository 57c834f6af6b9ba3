#pragma once

#include <algorithm>
#include <cmath>

#include "tvmath/curve.h"
#include "tvmath/ellipse.h"

inline namespace tvmath {

// What the shapes with an axis share.

/// Angle of a direction above the XY plane, from -pi / 2 to pi / 2.
inline double pitch_of(point direction) {
    direction.promote3d();
    return std::atan2(direction.z(), direction.length2d());
}

/// True when a direction has no angle in XY: what rotations leave of a 1 that was turned into Z.
inline bool is_along_z(point const& direction) {
    return std::fabs(direction.x()) < 1e-10 && std::fabs(direction.y()) < 1e-10;
}

/// Angle of a direction in the XY plane; 0 along Z.
inline double yaw_of(point const& direction) {
    return is_along_z(direction) ? 0.0 : direction.angle2d();
}

/// Extent of both ends. Not by `UnionRect`, to which the tip of a cone at the origin is the null rectangle.
inline CRealRect ends_rect(ellipse const& one, ellipse const& other) {
    CRealRect const a = one.get_bounding_rect(), b = other.get_bounding_rect();
    return CRealRect(std::min(a.left, b.left), std::min(a.bottom, b.bottom), std::max(a.right, b.right),
                     std::max(a.top, b.top));
}

}  // namespace tvmath
