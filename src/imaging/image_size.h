#pragma once

#include <algorithm>
#include <cstdint>

inline namespace tvmath {

/// True for an image that is too large to be made: more than 2^28 pixels, 2 GiB. What has one row or column
/// counts as if it had them.
inline bool is_oversized(unsigned int rows, unsigned int cols) {
    return std::uint64_t{std::max(rows, 1u)} * std::max(cols, 1u) > std::uint64_t{1} << 28;
}

}  // namespace tvmath
