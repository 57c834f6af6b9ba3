#pragma once

#include "plate_drawing.h"

namespace plate {

/// Signed distance of a place, in mm, from the nearest edge of the plate: positive in its openings and
/// outside, negative in the material. Exact on both sides of each edge; only where the outline's own curves
/// meet is it a bound. About the lobes of the bore it is right to 1e-5 of itself.
double opening_distance(place mm);

/// That of the nearest dot of the chart, in pixels from the middle: positive on the white, negative in a dot.
double chart_distance(place pixels);

/// Unit direction away from the material, by differences over 1e-4 mm.
place opening_direction(place mm);

}  // namespace plate
