#pragma once

#include <tvmath/image.h>

namespace plate {

/// The chart of dots and the plate before a bright screen, with little noise, as a machine would measure
/// them. `noise` is the standard deviation of a grey value.
image chart_on_backlight(double noise = 0.003);
image plate_on_backlight(double noise = 0.003);

/// The plate in light from the upper left, lying on something dark: brushed, with bevelled edges, scratches
/// and dust, seen by a camera with noise. The edges are where they are on the other picture: a bevel lies
/// inside them.
image plate_in_a_photograph();

}  // namespace plate
