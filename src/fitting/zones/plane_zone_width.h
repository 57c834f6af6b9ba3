#pragma once

#include "plane_zone_exchange.h"
#include "solid_hull.h"

inline namespace tvmath {

/// The narrowest slab of the hull, or `known`, a slab of its corners, when there is none narrower by more
/// than rounding. The hull is not flat.
///
/// Source: M. E. Houle, G. T. Toussaint, Computing the width of a set, IEEE PAMI 10 (1988) 761-765.
slab narrowest_slab(solid_hull const& hull, slab const& known);

}  // namespace tvmath
