#pragma once

#include "tvmath/export.h"
#include "tvmath/image.h"
#include "tvmath/vector.h"

inline namespace tvmath {

// Position of an edge to a fraction of a pixel, from a window in which it runs nearly along the rows and that
// has been turned into edge strength (`image::horizontal_edge_gradient`).
//
// Both fit y = c[0] + c[1] x + c[2] x², to be evaluated by `poly`, with the pixels' centres at their index
// plus 0.5: least squares weighted by the edge strength, within a band about the curve that narrows to twice
// the spread of what it holds, at least 1 pixel to each side. At most 16 rounds, fewer when the spread
// changes by no more than 0.1 %. Where the switch `new_vision_algorithms_enabled()` is on, two further rounds
// take of each column only the peak at the curve, weighted by the square of the edge strength, and leave out
// columns where the curve lies in a valley between two peaks.
//
// The first band reaches 1.5 rows to each side of the start, or a thirtieth of the columns in a wide window:
// the edge must be met there by enough columns. With the new algorithms an edge with noise of up to a
// sixteenth of its contrast is found with a bias below 0.01 pixel and a spread of 1.3 times the Cramer-Rao
// bound for a blur of up to 1 pixel, 1.5 times for 2 and 1.9 times for 3 pixels, but not below 0.005 to 0.015
// pixel, since the band takes whole rows; without them that is 0.02 to 0.06 pixel. An edge of texture alone
// is drawn into the rough side, by a fraction of a pixel to several.
//
// Nothing is read outside the image, whatever the curve. Where no column has any weight the coefficients are
// 0; with weight in fewer than 3 columns they have no meaning.

/// The fit that starts at the middle of the rows and takes all columns. 3 coefficients, in pixels.
TVMATH_API vector lsf_edge(image gradient);

/// The fit that starts on a line: at `offset` pixels from the middle of the image in the direction `angle`
/// (radians from +x towards +y), which is the line's normal. Takes the columns that the line crosses. 3
/// coefficients; an empty vector when the line misses the image. They have no meaning for a line along the
/// columns. A line that enters beyond column 0, through the first or last row, is started as if it entered
/// in column 0.
TVMATH_API vector lsf_edge2(image gradient, double angle, double offset);

}  // namespace tvmath
