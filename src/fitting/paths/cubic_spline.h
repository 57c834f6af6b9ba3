#pragma once

#include <cstddef>
#include <vector>

#include "geometry/xyz.h"

inline namespace tvmath {

/// What holds at the ends of a cubic spline: at the first and last inner joint a continuous third derivative
/// (for 3 points: the parabola), at both ends no second derivative, or no ends at all.
enum class spline_ends { not_a_knot, natural, periodic };

/// First derivatives, at the points, of the C2 cubic spline through at least 2 (periodic: 3) points.
/// `steps[i]` is the distance of the parameter from point i to the next; there is one for each point of a
/// periodic spline and one fewer otherwise.
std::vector<xyz> spline_slopes(std::vector<xyz> const& points, std::vector<double> const& steps,
                               spline_ends ends);

/// A cubic B-spline curve: `knots` ascending, four more than there are `controls`. The parameter runs from
/// knot 3 to the fourth from the end. A closed one repeats its first three controls at the end, and its knots
/// go on beyond the range as they do at the other end.
struct cubic_bspline {
    std::vector<double> knots;
    std::vector<xyz> controls;

    std::size_t spans() const { return controls.size() - 3; }
};

/// The same spline in this form, from what `spline_slopes` takes and gives.
cubic_bspline to_bspline(std::vector<xyz> const& points, std::vector<double> const& steps,
                         std::vector<xyz> const& slopes, bool closed);

/// Control points of the Bezier path of a curve, 3 spans() + 1.
std::vector<xyz> to_bezier(cubic_bspline const& spline);

}  // namespace tvmath
