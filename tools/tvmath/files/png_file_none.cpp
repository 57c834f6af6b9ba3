#include "png_file.h"

// A build without libpng: PGM is all that it can read.

inline namespace tvmath {

bool read_png(byte_source&, image&, std::string& reason) {
    reason = "this build reads no PNG";
    return false;
}

std::string png_bytes(rgb_picture const&) {
    return {};
}

std::string png_bytes(image const&, int) {
    return {};
}

}  // namespace tvmath
