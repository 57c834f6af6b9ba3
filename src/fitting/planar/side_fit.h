#pragma once

#include <vector>

#include "planar_starts.h"

inline namespace tvmath {

/// Which sides of a box the points were measured on.
enum class box_sides { all, bottom_and_top };

/// A box fitted to points on its sides by least squares of the distances.
struct fitted_box {
    planar_box box;
    double squares = 0;    ///< Sum of the squared distances.
    bool is_told = false;  ///< Each side has a point of its own, and the sides are apart.
};

/// The best fit over all starts, and over `nominal` if there is one. False when nothing that the points tell
/// is found.
bool fit_box(planar_points const& points, box_sides sides, planar_box const* nominal, fitted_box& best);

}  // namespace tvmath
