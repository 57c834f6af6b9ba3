#pragma once

#include <cstdint>

inline namespace tvmath {

/// True for an image that is too large to be made: more than 2^28 pixels, 2 GiB, where each row counts as 8
/// pixels more for its own block.
inline bool is_oversized(unsigned int rows, unsigned int cols) {
    return rows * (std::uint64_t{cols} + 8) > std::uint64_t{1} << 28;
}

}  // namespace tvmath
