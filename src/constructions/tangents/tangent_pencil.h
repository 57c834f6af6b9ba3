#pragma once

#include <vector>

#include "constructions/flat_ellipse.h"

inline namespace tvmath {

/// A stretch of normals on which the support of one ellipse passes that of another, or only reaches it. The
/// support is the distance of the tangent with a normal from the origin.
struct support_crossing {
    double from, to;  ///< angles of the normal, less than half a turn apart; `to` may be the smaller one
    bool starts_positive, passes;
};

/// The stretches over a full turn, each with one zero of support(frame) - support(other), of two ellipses
/// that no line separates: up to four; none when the ellipses are the same. `noise` is by how much the
/// supports are uncertain, in the units of the ellipses; what comes nearer to 0 than that and turns round is
/// a touch.
std::vector<support_crossing> support_crossings(flat_ellipse const& frame, flat_ellipse const& other,
                                                double noise);

}  // namespace tvmath
