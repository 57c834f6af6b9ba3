#pragma once

#include <algorithm>
#include <cmath>

#include "tvmath/point.h"

inline namespace tvmath {

/// Three plain numbers in space, for inner loops that know their dimension: no weight, no trivial state.
struct xyz {
    double x = 0, y = 0, z = 0;

    xyz() = default;
    constexpr xyz(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
    /// A 2D point lies in the plane z = 0, a trivial point at the origin; the weight is dropped.
    explicit xyz(point const& p) : x(p.x()), y(p.y()), z(p.is_3d() ? p.z() : 0) {}

    /// The location, in 3D or, without its z, in 2D.
    point location(bool solid) const { return solid ? point(true, x, y, z) : point(true, x, y); }
    bool is_finite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(z); }
};

inline xyz operator+(xyz const& a, xyz const& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline xyz operator-(xyz const& a, xyz const& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline xyz operator*(double s, xyz const& a) {
    return {s * a.x, s * a.y, s * a.z};
}
inline xyz operator*(xyz const& a, double s) {
    return s * a;
}
inline double dot(xyz const& a, xyz const& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline xyz cross(xyz const& a, xyz const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(xyz const& a) {
    return std::hypot(a.x, a.y, a.z);
}
/// Unit vector, of tiny and of huge ones too; zero when the length is 0 or not finite.
inline xyz unit(xyz const& a) {
    double const most = std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)});
    if (!(most > 0) || !a.is_finite()) return xyz();
    xyz const scaled(a.x / most, a.y / most, a.z / most);
    double const n = length(scaled);
    return {scaled.x / n, scaled.y / n, scaled.z / n};
}
/// Some unit vector at a right angle to the unit vector `n`: across the axis that n is least along.
inline xyz any_perpendicular(xyz const& n) {
    double const x = std::fabs(n.x), y = std::fabs(n.y), z = std::fabs(n.z);
    return unit(cross(n, x <= y && x <= z ? xyz(1, 0, 0) : y <= z ? xyz(0, 1, 0) : xyz(0, 0, 1)));
}

}  // namespace tvmath
