#pragma once

#include <array>
#include <span>
#include <vector>

#include "axial_surface.h"

inline namespace tvmath {

/// Mean products of the nine terms xx, xy, xz, yy, yz, zz (each less its mean), x, y, z of local points:
/// all that an algebraic fit of a quadric needs, gathered in one pass. The points are taken about their
/// mean.
struct quadric_moments {
    std::array<std::array<double, 9>, 9> products{};
    std::array<std::array<double, 3>, 3> scatter{};  ///< mean xx, xy, ...
    xyz mean;
};

/// The scatter matrix times w.
inline xyz times(quadric_moments const& m, xyz const& w) {
    auto const& s = m.scatter;
    return {s[0][0] * w.x + s[0][1] * w.y + s[0][2] * w.z, s[1][0] * w.x + s[1][1] * w.y + s[1][2] * w.z,
            s[2][0] * w.x + s[2][1] * w.y + s[2][2] * w.z};
}

quadric_moments moments_of(std::span<xyz const> points);

/// Surfaces to start an iteration from: minima of the algebraic distance of a circular cylinder, or with
/// `tapered` of a quadric of revolution. They are found from the 13 axes of a cube (through its faces,
/// edges and corners) by at most 20 rounds each on the moments alone, and from there on cost nothing of
/// the length of the list. Minima found twice are listed once, the best one first.
///
/// The distance is normalised by the mean gradient: G. Taubin, IEEE Trans. PAMI 13 (1991) 1115-1138. For
/// the moments of a fixed axis see D. Eberly, Fitting 3D Data with a Cylinder, Geometric Tools, 2003.
std::vector<axial_surface> quadric_starts(quadric_moments const& moments, bool tapered);
/// Unit vectors along the 13 axes of a cube.
std::vector<xyz> cube_axes();

/// The one about a given axis, a unit vector, where all else is linear.
axial_surface quadric_start_about(xyz const& axis, quadric_moments const& moments, bool tapered);

}  // namespace tvmath
