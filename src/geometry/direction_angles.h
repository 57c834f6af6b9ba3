#pragma once

#include <cmath>

#include "tvmath/point.h"

inline namespace tvmath {

// Angles of directions in space, for transforms and for shapes with an axis.

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

}  // namespace tvmath
