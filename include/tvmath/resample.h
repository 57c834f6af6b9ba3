#pragma once

#include "tvmath/export.h"
#include "tvmath/image.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// Cuts a turned rectangle out of the image and brings it upright, at any scale.
///
/// The rectangle has one corner at (x, y), from which its sides run `width` along (cos `angle`, sin `angle`)
/// and `height` along (-sin `angle`, cos `angle`); lengths in pixels, angles in radians. The result has
/// `out_height` rows and `out_width` columns, and each of its pixels shows the same share of the rectangle:
/// pixel (i, j) its centre, which lies (i + 0.5) `width` / `out_width` and (j + 0.5) `height` / `out_height`
/// from the corner along the two sides. A negative length leads the other way. At angle 0 and scale 1 from a
/// whole pixel the result is that part of the image, unchanged.
///
/// Two passes over lines of pixels, along the rows and then along the columns. Each interpolates linearly
/// where the result is as fine as the image or finer, and where it is coarser takes means over the pixels
/// that a sample covers, so that nothing is lost between samples. Up to two pixels outside the rectangle
/// are looked at; beyond the border of the image its outermost pixels count as repeated. A pixel that is not
/// finite spoils its neighbours, and where means are taken the rest of its line.
///
/// The image of 0 by 0 when the rectangle leaves the image, by more than the billionth of a pixel that
/// rounding may cost, for numbers that are not finite, for an image with a side of 2^31 pixels or more, and
/// for a result of more than 2^28 pixels, where each row counts as 8 more.
///
/// Source: passes by lines as in E. Catmull, A. R. Smith, 3-D transformations of images in scanline order,
/// Computer Graphics 14 (1980) 279-285; means by running sums as in F. C. Crow, Summed-area tables for
/// texture mapping, Computer Graphics 18 (1984) 207-212.
TVMATH_API image rotate(image source, double x, double y, double angle, double width, unsigned int out_width,
                        double height, unsigned int out_height);

/// The image as a general map shows it: `to_source` carries places of the result, which has `rows` rows and
/// `cols` columns, to places of the source; centres of pixels have halves as coordinates. Of a 3D transform
/// counts its projection into XY.
///
/// Where a pixel of the result covers at most one of the source, by the lengths of its sides, each pixel of
/// the source is shared out over the four pixels of the result about it, by bilinear weights, and a pixel of
/// the result is the weighted mean of what it got. A pixel that got nothing is black: 0; there are such from
/// an enlargement of sqrt(2) on, depending on the angle. Where it covers more, it takes the mean of the four
/// pixels of the source about its centre, by bilinear weights, of which those outside the source do not
/// count; without any it is black.
///
/// The image of 0 by 0 for the trivial transform, for one whose numbers are not finite, the inverse map
/// included where the source is shared out, and for a result of more than 2^28 pixels, where each row counts
/// as 8 more.
TVMATH_API image rotate(image source, transform to_source, unsigned int rows, unsigned int cols);

/// The profile of the round window that fits into a square image of n rows, along the direction of `angle` in
/// radians: n mean grey values across that direction, one for each pixel along it, the middle of the image
/// at n / 2. Each pixel whose centre lies inside the circle is shared over the two bins about it.
///
/// A bin with less than a fifth of the weight of the fullest one counts as empty. Empty bins at the ends
/// take the value of the nearest bin that is not, those between are interpolated linearly. False, output
/// untouched, for an image without rows or columns and for an angle that is not finite. Of an image that is
/// not square only the columns up to n take part.
TVMATH_API bool project_image_into_profile(image source, vector& profile, double angle);

}  // namespace tvmath
