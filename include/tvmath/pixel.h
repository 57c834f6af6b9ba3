#pragma once

#include <cstdint>

inline namespace tvmath {

/// A place in an image: column x, row y, y downward from the first row. As a point of the plane it stands for
/// the square from (x, y) to (x + 1, y + 1), so its centre is (x + 0.5, y + 0.5).
struct pixel {
    std::int32_t x = 0;
    std::int32_t y = 0;

    constexpr pixel() = default;
    constexpr pixel(int column, int row) : x(column), y(row) {}

    constexpr bool operator==(pixel const&) const = default;

    static constexpr void swap(pixel& a, pixel& b) {
        pixel const old = a;
        a = b;
        b = old;
    }
};

}  // namespace tvmath
