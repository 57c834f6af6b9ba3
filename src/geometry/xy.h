#pragma once

#include <algorithm>
#include <cmath>

#include "xyz.h"

inline namespace tvmath {

/// Two plain numbers in a plane, for inner loops.
struct xy {
    double x = 0, y = 0;

    xy() = default;
    constexpr xy(double x_, double y_) : x(x_), y(y_) {}
    /// Seen along Z.
    explicit constexpr xy(xyz const& p) : x(p.x), y(p.y) {}
};

inline xy operator+(xy const& a, xy const& b) {
    return {a.x + b.x, a.y + b.y};
}
inline xy operator-(xy const& a, xy const& b) {
    return {a.x - b.x, a.y - b.y};
}
inline xy operator*(double s, xy const& a) {
    return {s * a.x, s * a.y};
}
inline double dot(xy const& a, xy const& b) {
    return a.x * b.x + a.y * b.y;
}
inline double cross(xy const& a, xy const& b) {
    return a.x * b.y - a.y * b.x;
}
inline double length(xy const& a) {
    return std::sqrt(dot(a, a));
}
/// The larger of both magnitudes: within sqrt(2) of the length, and enough for bounds of rounding.
inline double size(xy const& a) {
    return std::max(std::fabs(a.x), std::fabs(a.y));
}

}  // namespace tvmath
