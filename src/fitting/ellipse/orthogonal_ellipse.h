#pragma once

#include <vector>

#include "fitting/planar/planar_points.h"

inline namespace tvmath {

/// An ellipse in XY: half-axes a along `angle` and b across.
struct planar_ellipse {
    xy center;
    double a = 0, b = 0, angle = 0;
};

/// Makes of a start the ellipse of least squares of the true distances, its centre held when `centered` is
/// set; a becomes the longer half-axis. For points on an arc of the circle, if there is one, the way down
/// begins there too: the algebraic ellipse of noisy arcs may be a narrow one around them.
///
/// False, with `e` unchanged, when the sum of squares has no minimum on the way, as for points whose best
/// conic is a parabola, and when the shorter half-axis is no more than three times the scatter.
bool refine_ellipse(std::vector<xy> const& points, bool centered, planar_ellipse& e,
                    planar_ellipse const* circle);

}  // namespace tvmath
