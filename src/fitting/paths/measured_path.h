#pragma once

#include <span>
#include <vector>

#include "fitting/point_span.h"
#include "geometry/xyz.h"
#include "tvmath/array.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Measured points as plain numbers, neighbours in the same place taken once, beside their places in a frame
/// of their own: about the middle of their extent, in a unit that makes the largest extent 1 to 2. The unit
/// is a power of two, so that the curve of a scaled list is the scaled curve.
struct measured_path {
    std::vector<xyz> given;  ///< Empty when no curve can be fitted.
    std::vector<xyz> local;
    xyz origin;
    double unit = 1;
    bool is_solid = false;

    bool is_empty() const { return given.empty(); }
    point outside(xyz const& p) const { return (origin + unit * p).location(is_solid); }
};

/// Empty for fewer different points than 2 (open) or 3 (closed), for a trivial point, for coordinates or an
/// extent that are not finite, and for more points than a Bezier path can count.
measured_path prepare_path(std::span<point const> points, bool closed);

/// Distances between neighbours; of a closed path also from the last to the first.
std::vector<double> chord_lengths(std::vector<xyz> const& points, bool closed);

}  // namespace tvmath
