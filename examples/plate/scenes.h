#pragma once

#include <vector>

namespace plate {

/// Grey values by rows, 0 black to 1 white.
using picture = std::vector<double>;

/// The chart of dots and the plate before a bright screen, with little noise, as a machine would measure
/// them. `noise` is the standard deviation of a grey value.
picture chart_on_backlight(double noise = 0.003);
picture plate_on_backlight(double noise = 0.003);

/// The plate in light from the upper left, lying on something dark: brushed, with bevelled edges, scratches
/// and dust, seen by a camera with noise. The edges are where they are on the other picture: a bevel lies
/// inside them.
picture plate_in_a_photograph();

}  // namespace plate
