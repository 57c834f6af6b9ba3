#pragma once

#include "tvmath/export.h"
#include "tvmath/image.h"
#include "tvmath/vector.h"

inline namespace tvmath {

// Position of an edge to a fraction of a pixel, from a window in which it runs nearly along the rows and
// that has been turned into edge strength (`image::horizontal_edge_gradient`).
//
// Both fit y = c[0] + c[1] x + c[2] x², to be evaluated by `poly`, with the pixels' centres at their index
// plus 0.5: least squares weighted by the edge strength, within a band about the curve that narrows to twice
// the spread of what it holds, at least 1 pixel to each side. At most 16 rounds, less when the spread changes
// by no more than 0.1 %. Where the switch `new_vision_algorithms_enabled()` is on, two further rounds take of
// each column only the peak at the curve, weighted by the square of the edge strength, and leave out columns
// where the curve lies in a valley between two peaks.
//
// Nothing is read outside the image, whatever the curve. Where a column holds no edge at all it has no
// weight; when none has any, the coefficients are 0. They are not meaningful either for fewer than 3 such
// columns.

/// The fit that starts at the middle of the rows and takes all columns. 3 coefficients, in pixels.
TVMATH_API vector lsf_edge(image gradient);

/// The fit that starts on a line: at `offset` pixels from the middle of the image in the direction `angle`
/// (radians from +x towards +y), which is the line's normal. Takes the columns that the line crosses. 3
/// coefficients; an empty vector when the line misses the image. A line along the columns has no
/// such curve: its coefficients are not finite.
TVMATH_API vector lsf_edge2(image gradient, double angle, double offset);

}  // namespace tvmath
