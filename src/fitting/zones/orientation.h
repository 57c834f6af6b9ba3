#pragma once

#include "geometry/xyz.h"

inline namespace tvmath {

// On which side a point lies: exact for all coordinates, whatever they cancel, as long as products of three
// differences neither overflow nor underflow. `zone_points` scales a list so that they do not.
//
// The determinant is taken in plain doubles first and believed when it exceeds its error bound; what is
// nearer to 0 is worked out without error as a sum of doubles that do not overlap. Source: J. R. Shewchuk,
// Adaptive precision floating-point arithmetic and fast robust geometric predicates, Discrete & Computational
// Geometry 18 (1997) 305-363.

/// `turn_xy` without the plain attempt.
int exact_turn_xy(xyz const& a, xyz const& b, xyz const& c, xyz const& d);

/// The sign of (b - a) x (d - c) in XY: 1 when the second vector turns anticlockwise from the first.
inline int turn_xy(xyz const& a, xyz const& b, xyz const& c, xyz const& d) {
    double const left = (b.x - a.x) * (d.y - c.y), right = (b.y - a.y) * (d.x - c.x);
    double const determinant = left - right, bound = 0x1p-51 * (std::fabs(left) + std::fabs(right));
    if (determinant > bound) return 1;
    if (determinant < -bound) return -1;
    return exact_turn_xy(a, b, c, d);
}

/// 1 when a, b, c turn anticlockwise in XY, -1 when clockwise, 0 when they lie on one line.
inline int orientation_xy(xyz const& a, xyz const& b, xyz const& c) {
    return turn_xy(a, b, a, c);
}

/// 1 when `p` lies on the side of (b - a) x (c - a) of the plane through a, b and c, from where these turn
/// anticlockwise; -1 on the other side; 0 on the plane, and when a, b, c lie on one line.
int orientation(xyz const& a, xyz const& b, xyz const& c, xyz const& p);

/// True when the three points lie on one line.
bool are_collinear(xyz const& a, xyz const& b, xyz const& c);

/// (b - a) x (d - c), correctly rounded or nearly so however its terms cancel: the normal of a needle. Zero
/// when the differences are parallel.
xyz exact_cross(xyz const& a, xyz const& b, xyz const& c, xyz const& d);

}  // namespace tvmath
