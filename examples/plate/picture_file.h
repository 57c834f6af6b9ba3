#pragma once

#include <string>

#include "scenes.h"

namespace plate {

/// The bytes of a PNG file of the picture, grey with 8 or 16 bits.
std::string picture_file(picture const& p, int bits);

}  // namespace plate
