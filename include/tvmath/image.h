#pragma once

#include "tvmath/export.h"
#include "tvmath/matrix.h"
#include "tvmath/pixel.h"

inline namespace tvmath {

/// A grey image: a matrix of grey values, 0 black to 1 white; `m[y][x]` is column x of row y, y downward.
///
/// Copying is one counter, and a row shares its block with the copies of the image until one of them is
/// written: a filter leaves copies taken before as they were, and what it does not write is not copied.
/// Intermediate images, such as gradients, may leave 0 to 1; `enhance` brings them back. It adds no field to
/// `matrix`, so slicing one loses nothing.
///
/// Places in the plane of the image: pixel (x, y) is the square from (x, y) to (x + 1, y + 1), the image that
/// from (0, 0) to (cols, rows). Grey values may be any doubles; one that is not finite spreads as the
/// arithmetic takes it, and never leads a function outside the image.
///
/// Filters change the image in place and return it, so that they can be chained. An image without rows or
/// columns passes through them unchanged. Only a null handle raises.
class TVMATH_API image : public matrix {
public:
    image() = default;
    /// Black, all rows sharing one block.
    image(unsigned int rows, unsigned int cols) : matrix(rows, cols) {}
    /// Shares the rows of `m`.
    image(matrix const& m) : matrix(m) {}
    using matrix::operator=;

    // Statistics.

    /// Mean and standard deviation (over n) of the grey values, and the standard deviation of that mean.
    /// True when the image is not saturated: fewer than 2 pixels are 0.9 or above. The outputs are set in
    /// either case; false with outputs untouched only for an image without rows or columns.
    bool ave_gray(double& mean, double& sigma, double& sigma_of_mean) const;

    /// Noise of the image: root mean square of each pixel less the mean of its 3 by 3 neighbours, itself
    /// included, times 9 / 8 for its own share in that mean. False, output untouched, for an image
    /// without rows or columns, and when a pixel is 0.99 or above, since noise is cut off there.
    bool local_rms(double& rms) const;

    /// Mean grey under the line of pixels between two pixels, both included, as drawn by Bresenham's
    /// algorithm. NaN when an end lies outside the image.
    double line_ave(pixel from, pixel to) const;

    // Contrast.

    /// Magnitudes of the values.
    image& abs();

    /// Stretches the values to 0 to 1. A constant image stays as it is from 0 to 1, and becomes 0.5 outside.
    image& enhance();

    /// Makes the dark share of the image black and stretches the rest so that 1 stays 1: of the pixels at
    /// 1 / 1024 or above, `fraction` (0 to 1) become 0, to the resolution of 1 / 1024.
    image& threshold(double fraction);

    // Running means. An even `width` counts as the next odd one, one beyond twice the length of the line
    // counts as that; 0 and 1 change nothing. The window is cut at the ends of the line, and the mean is over
    // what is left of it; with `wrap` the line is closed to a ring instead.
    //
    // The running sums are single precision, so the mean is off by up to 6e-8 of the greatest sum, at any
    // width: 3e-5 for values up to 1 in lines of 1000 pixels. On rough images wide windows are closer. The
    // cost of a pixel does not depend on the width.

    image& horizontal_boxcar(unsigned int width, bool wrap);  ///< Along the rows.
    image& vertical_boxcar(unsigned int width, bool wrap);    ///< Along the columns.
    /// `width` by `width`: along the rows, then along the columns, without wrap.
    image& boxcar2d(unsigned int width);

    /// Removes the comb between the two fields of an interlaced camera: each row but the first and last
    /// becomes a quarter of its neighbours and half of itself.
    image& remove_tearing();

    image& mirror_x();  ///< Reverses the order of the rows; no pixel is copied.
    image& mirror_y();  ///< Reverses each row.

    // Edges.

    /// Strength of edges that run along the rows, of grey and of texture: the hypotenuse of the change, from
    /// the row above to the row below, of the smoothed grey and of its mean absolute deviation, taken over a
    /// quarter of the row. So an edge between surfaces of one grey but different roughness counts. Without
    /// halving; where the switch `new_vision_algorithms_enabled()` is on, divided by the root of 2. `wrap`
    /// closes the rows to rings. Fewer than 2 rows change nothing.
    image& horizontal_edge_gradient(bool wrap);
    /// The same for edges that run along the columns; `wrap` closes the columns. Fewer than 2 rows change
    /// nothing.
    image& vertical_edge_gradient(bool wrap);

    /// Direction of the normal of the dominant edge, in radians from +x towards +y, from the scatter of
    /// differences between strips of `radius` by 2 `half_width` + 1 pixels, taken over the inscribed circle.
    /// Within plus or minus pi / 2, whichever side is bright. Only when the products of the differences along
    /// x and y sum up to no more than 1e-10, as of gradients along an axis or of hardly any, does the angle
    /// point along an axis to the bright side: -pi / 2, 0, pi / 2 or pi. NaN unless 0 <= `half_width` <
    /// `radius` and 2 `radius` is below the rows and the columns.
    ///
    /// A strip sees directions alike when `half_width` is about two thirds of `radius` and the edge is not
    /// much sharper than the strip: with 3 and 2 the error stays below 0.05 degrees for a blur of 2 pixels,
    /// below 0.4 for one of 1 pixel. Long strips across sharp edges, such as 12 and 4, err by up to 5 degrees
    /// between the axes and the diagonals.
    double find_normal_angle(unsigned int radius, int half_width) const;

    /// Climbs from `start` to the greatest of the 8 neighbours until none is greater. A plateau ends the
    /// climb. `start` itself when it lies outside the image.
    pixel find_peak(pixel start) const;

    /// The pixels at which the line through (x, y) of direction (dx, dy) enters and leaves the image. `first`
    /// is the one of smaller y; on a line along the rows the one at which the direction enters. False,
    /// outputs untouched, when the line misses the image, without direction, for an image without rows or
    /// columns, and for numbers that are not finite or so large that they do not tell where the line runs.
    bool edge_points(double x, double y, double dx, double dy, pixel& first, pixel& second) const;

    /// Replaces the image by its line transform, `offsets` rows by `angles` columns: the mean grey along each
    /// line, stretched to 0 to 1. The line of row r and column a has a normal of the angle pi / 2 - 0.2 +
    /// 0.4 (a + 0.5) / `angles`, and lies r + 0.5 - `offsets` / 2.0 pixels along it from (cols / 2, rows / 2)
    /// in whole numbers. So a bright line nearly along the rows becomes a bright spot. A line that misses the
    /// image counts as 0. A number of 0 or less gives an image without rows or columns.
    image& hough(int offsets, int angles);
};

}  // namespace tvmath
