#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tvmath/bitmap.h"

// The surface that stands in for bitmaps of the platform, of which there are none here.

/// Rows from the bottom to the top, one after the other; colours as 0xBBGGRR.
struct HBITMAP__ {
    int width, height;
    std::vector<std::uint32_t> pixels;

    std::uint32_t* row(std::int64_t y) {
        return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};

struct HDC__ {
    HBITMAP__* target;
    tvmath::drawing_pen pen = {};
    std::int64_t x = 0, y = 0;
};

inline namespace tvmath {

inline std::uint32_t visible_colour(unsigned long colour) {
    return static_cast<std::uint32_t>(colour & 0xFFFFFF);
}

}  // namespace tvmath
