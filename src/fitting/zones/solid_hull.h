#pragma once

#include <array>
#include <vector>

#include "geometry/xyz.h"

inline namespace tvmath {

/// The boundary of the convex hull of points in space, in triangles.
struct solid_hull {
    /// Anticlockwise as seen from outside. `across[i]` is the face beyond the edge from corner i to the next.
    struct face {
        std::array<unsigned int, 3> corner, across;
    };

    std::vector<xyz> corners;
    std::vector<face> faces;

    bool is_flat() const { return faces.empty(); }
};

/// The hull of the points. A larger flat side comes in several triangles, and points on it may be corners.
/// Of points in one plane there are no faces, and the corners are three of the points that are not on one
/// line; there are no corners when all are.
///
/// Exact for all coordinates. Source: C. B. Barber, D. P. Dobkin, H. Huhdanpaa, The quickhull algorithm for
/// convex hulls, ACM TOMS 22 (1996) 469-483, with the sides of `orientation.h` in place of tolerances.
solid_hull solid_hull_of(std::vector<xyz> const& points);

}  // namespace tvmath
