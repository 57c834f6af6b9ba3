#pragma once

#include <span>

#include "geometry/xyz.h"

inline namespace tvmath {

/// A cylinder or a cone without ends, in the coordinates of `local_points`: the points whose distance rho
/// from the axis and place z along it (from `origin`) have cos(angle) rho - sin(angle) z = offset.
///
/// `angle` is 0 for a cylinder, above 0 for a cone that widens along w. The left side less the right one
/// is the signed orthogonal distance of a point. u, v, w are a right-handed frame; w is the axis.
struct axial_surface {
    xyz origin, u, v, w;
    double angle = 0, offset = 0;

    double radius_at(double z) const { return (offset + std::sin(angle) * z) / std::cos(angle); }
};

/// A surface with this axis and a frame about it; `axis` is a unit vector.
axial_surface axial_surface_about(xyz const& origin, xyz const& axis);

/// What an iteration may change besides the offset.
struct axial_freedom {
    bool tilt = false, shift = false, angle = false;
};

/// Number of unknowns, which is also the least number of points.
inline std::size_t unknowns(axial_freedom const& free) {
    return 1 + (free.tilt ? 2u : 0u) + (free.shift ? 2u : 0u) + (free.angle ? 1u : 0u);
}

/// Moves the surface to a minimum of the sum of squared orthogonal distances, which it returns in `sum`.
/// True when the steps died out at a surface that the points determine; false after 20 rounds and for a
/// singular system, with the last surface reached.
///
/// With `shift` the origin is kept at the foot of the perpendicular from the local origin; without it the
/// axis keeps passing through the given origin.
bool refine_axial_surface(std::span<xyz const> points, axial_freedom free, axial_surface& surface,
                          double& sum);

}  // namespace tvmath
