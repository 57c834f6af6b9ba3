#pragma once

#include <string>
#include <vector>

#include "image_reading.h"

inline namespace tvmath {

/// Reads a PNG of any kind, as `read_image` promises. A pixel of colour, also of a palette, becomes
/// 0.2126 red + 0.7152 green + 0.0722 blue of the coded values (Rec. ITU-R BT.709). An alpha channel, gamma,
/// profiles and what stands behind the end of the PNG are not looked at. Always false in a build without
/// libpng.
bool read_png(byte_source& source, image& out, std::string& reason);

/// A picture of 8-bit colours, row by row from the top: red, green and blue of each pixel.
struct rgb_picture {
    unsigned int width = 0, height = 0;
    std::vector<unsigned char> rgb;  ///< 3 width height bytes
};

/// The bytes of a PNG file of the picture, the same for the same pixels and the same libpng. Empty for a
/// picture without pixels, of a wrong number of bytes or of more than a PNG can have, when there is no memory
/// and in a build without libpng.
std::string png_bytes(rgb_picture const& picture);

/// The same for grey values, rounded to 8 bits or to 16 when `depth` is 16: 0 and below is black, and so is
/// NaN; 1 and above is white.
std::string png_bytes(image const& grey, int depth);

}  // namespace tvmath
