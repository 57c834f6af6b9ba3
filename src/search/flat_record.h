#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

inline namespace tvmath {

/// Reads and writes a value in a block of unaligned records: as bytes, which the compiler turns into the one
/// move that the machine allows.
template <class type>
type load(unsigned char const* from) {
    static_assert(std::is_trivially_copyable_v<type>);
    type value;
    std::memcpy(&value, from, sizeof value);
    return value;
}
template <class type>
void store(unsigned char* to, type const& value) {
    static_assert(std::is_trivially_copyable_v<type>);
    std::memcpy(to, &value, sizeof value);
}

/// Starts to fetch what will be read soon.
inline void prefetch([[maybe_unused]] unsigned char const* from) {
#if defined(__GNUC__)
    __builtin_prefetch(from);
#endif
}

/// Offset that is none.
inline constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

/// Whether a block of so many bytes can be addressed by 32 bits.
inline bool fits_offsets(std::size_t bytes) {
    return bytes < nowhere;
}

}  // namespace tvmath
