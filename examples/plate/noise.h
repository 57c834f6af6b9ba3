#pragma once

#include <cmath>
#include <cstdint>

namespace plate {

/// A number in [-1, 1) that depends on the arguments alone, so that a picture is the same in whatever order
/// its pixels are made. Mixer: S. Vigna, splitmix64.
inline std::uint64_t hashed(std::uint64_t seed, std::int64_t i, std::int64_t j) {
    std::uint64_t z = seed * 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(i) * 0xD1B54A32D192ED03u +
                      static_cast<std::uint64_t>(j) * 0x8CB92BA72F3D8DD7u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

/// Mean 0, standard deviation 1: the scaled sum of four uniform numbers, nowhere beyond 3.5.
inline double normal_noise(std::uint64_t seed, std::int64_t i, std::int64_t j) {
    std::uint64_t const bits = hashed(seed, i, j);
    std::uint64_t const sum = (bits & 0xFFFF) + (bits >> 16 & 0xFFFF) + (bits >> 32 & 0xFFFF) + (bits >> 48);
    return (static_cast<double>(sum) - 2 * 65535.0) * std::sqrt(3.0) / 65536;
}

/// Smooth noise in [-1, 1]: random numbers at whole places, blended between.
inline double smooth_noise(std::uint64_t seed, double u, double v) {
    double const i = std::floor(u), j = std::floor(v);
    auto const blend = [](double t) { return t * t * (3 - 2 * t); };
    auto const at = [&](int di, int dj) {
        return static_cast<double>(
                   hashed(seed, static_cast<std::int64_t>(i) + di, static_cast<std::int64_t>(j) + dj) >> 11) *
                   0x1p-52 -
               1;
    };
    double const s = blend(u - i), t = blend(v - j);
    return (1 - t) * ((1 - s) * at(0, 0) + s * at(1, 0)) + t * ((1 - s) * at(0, 1) + s * at(1, 1));
}

}  // namespace plate
