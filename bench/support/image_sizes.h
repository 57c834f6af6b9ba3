#pragma once

#include <cstdint>
#include <vector>

inline namespace tvmath {

/// Images named by their columns: a video camera, a machine's camera, a scanned surface.
inline std::vector<std::int64_t> const image_sizes = {640, 1280, 4096};

inline unsigned int rows_of(std::int64_t columns) {
    return columns == 640 ? 480 : columns == 1280 ? 1024 : 4096;
}

}  // namespace tvmath
