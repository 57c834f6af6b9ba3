#pragma once

#include <vector>

#include "planar_points.h"

inline namespace tvmath {

/// A rectangle by the unit vector `axis` and the ranges along it and across it, to its left.
struct planar_box {
    xy axis{1, 0};
    double left = 0, right = 0, bottom = 0, top = 0;

    double along(xy p) const { return dot(p, axis); }
    double across(xy p) const { return dot(p, quarter_turned(axis)); }
    xy center() const { return (left + right) / 2 * axis + (bottom + top) / 2 * quarter_turned(axis); }
    /// The same box with its axis turned by a quarter.
    planar_box turned() const { return {quarter_turned(axis), bottom, top, -right, -left}; }
};

/// The box around all points.
planar_box box_around(std::vector<xy> const& points, xy axis);

/// At most a thousand of the points at equal steps through the list, with those that are extreme in some
/// direction, so that a side seen by one point is not lost.
std::vector<xy> sample_of(std::vector<xy> const& points);

/// Boxes around the points in all directions that a side may have, within a quarter turn: equal steps,
/// the axes of the scatter, the edges of a polygon about the points; of up to eight points every pair. The
/// pair of the first two different points comes first.
std::vector<planar_box> start_boxes(std::vector<xy> const& points);

}  // namespace tvmath
