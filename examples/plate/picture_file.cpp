#include "picture_file.h"

#include <algorithm>
#include <cmath>

#include "plate_drawing.h"

namespace plate {

std::string picture_file(picture const& p, int bits) {
    int const white = (1 << bits) - 1;
    std::string out =
        "P5\n" + std::to_string(columns) + ' ' + std::to_string(rows) + '\n' + std::to_string(white) + '\n';
    for (double const grey : p) {
        int const value = static_cast<int>(std::lround(std::clamp(grey, 0.0, 1.0) * white));
        if (bits == 16) out += static_cast<char>(value >> 8);
        out += static_cast<char>(value & 255);
    }
    return out;
}

}  // namespace plate
