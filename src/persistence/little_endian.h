#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

inline namespace tvmath {

/// The unsigned integer as wide as T.
template <class T>
using same_width = std::conditional_t<sizeof(T) == 8, std::uint64_t,
                                      std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint16_t>>;

/// Appends the bytes of a number, the lowest first, whatever the machine's order is.
template <class T>
void put_little_endian(std::vector<unsigned char>& bytes, T value) {
    auto const bits = std::bit_cast<same_width<T>>(value);
    for (std::size_t i = 0; i < sizeof(T); ++i) bytes.push_back(static_cast<unsigned char>(bits >> 8 * i));
}

template <class T>
T little_endian(unsigned char const* bytes) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) bits |= std::uint64_t{bytes[i]} << 8 * i;
    return std::bit_cast<T>(static_cast<same_width<T>>(bits));
}

}  // namespace tvmath
