#pragma once

#include <span>

#include "xyz.h"

inline namespace tvmath {

// The point of an elementary figure that is nearest to `p`, in space. All work relative to the figure, so
// that a small one far from the origin keeps its digits. Of several nearest points the answer is one; numbers
// that are not finite give an answer that is not finite.

struct segment_ends {
    xyz a, b;
};

/// The segment from a to b; one point when they are equal.
xyz closest_on_segment(xyz const& p, segment_ends const& s);
/// The first nearest one of several segments; there must be one.
xyz closest_on_segments(xyz const& p, std::span<segment_ends const> segments);

/// The foot of the perpendicular on the infinite plane with that unit normal.
xyz closest_on_plane(xyz const& p, xyz const& center, xyz const& normal);

xyz closest_on_sphere(xyz const& p, xyz const& center, double radius);

/// Lateral surface of a frustum around the unit vector `axis`, from `base` as far as `height`. The tip, where
/// a radius is 0, belongs to it.
xyz closest_on_frustum(xyz const& p, xyz const& base, xyz const& axis, double height, double base_radius,
                       double top_radius);

/// The line at distance `radius` around the segment from `center` - `half` e1 to `center` + `half` e1, in the
/// plane of the unit vectors e1 and e2.
xyz closest_on_slot(xyz const& p, xyz const& center, xyz const& e1, xyz const& e2, double half,
                    double radius);

}  // namespace tvmath
