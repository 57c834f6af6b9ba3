#pragma once

#include <span>

#include "axial_surface.h"
#include "fitting/small_cholesky.h"

inline namespace tvmath {

/// Unknowns of an iteration, all 0 at the present surface: the axis turns to w + a u + b v, the origin
/// moves by x u + y v, the angle and the offset grow.
enum axial_unknown : std::size_t { tilt_u, tilt_v, shift_u, shift_v, taper, offset, axial_unknowns };

using axial_system = small_cholesky<axial_unknowns>;

/// Half the sum of squared distances of points from a surface, by its derivatives.
struct axial_sums {
    double squares = 0;  ///< of the distances, not halved
    axial_system::row gradient{};
    axial_system::square gauss{};   ///< products of first derivatives
    axial_system::square newton{};  ///< with the second derivatives as well
};

axial_sums axial_sums_at(axial_surface const& surface, std::span<xyz const> points);

}  // namespace tvmath
