#pragma once

#include "tvmath/image.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// A piece of the plane of the image that is bent along a circle.
struct bent_window {
    point center, normal;  ///< of the circle, and the direction from it to the middle of the piece
    double radius =
        0;  ///< of the circle through the middle of the piece; negative where `normal` leads to the centre
    unsigned int cols = 0;  ///< along the circle, one for each pixel of its length
    unsigned int rows = 0;  ///< outward
    double slope = 0;       ///< how much farther outward a row runs for each column
};

/// Cuts the piece and straightens it: the circle runs along the rows, where the columns count against the
/// turn from +x to +y. Bilinear means of four pixels. Only pixels inside the image are taken; the image of 0
/// by 0 where one would be needed outside of it, and when the piece reaches the centre.
image unroll(image const& scene, bent_window const& window);

}  // namespace tvmath
