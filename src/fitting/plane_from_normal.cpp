#include "plane_from_normal.h"

#include <algorithm>
#include <cmath>

#include "geometry/extent.h"
#include "geometry/xyz.h"

inline namespace tvmath {
namespace {

// In the sense that makes the component of largest size positive, the first one of nearly equal ones: the
// bias keeps the sense steady when rounding stirs components that are meant to be equal.
point with_positive_largest(point const& n) {
    constexpr double bias = 1e-6;
    unsigned int m = 1;
    if (std::fabs(n[2]) > std::fabs(n[m]) + bias) m = 2;
    if (std::fabs(n[3]) > std::fabs(n[m]) + bias) m = 3;
    return n[m] < 0.0 ? -n : n;
}

double half(interval const& range) {
    return (range.high - range.low) / 2;
}

double middle(interval const& range) {
    return (range.low + range.high) / 2;
}

interval symmetric(interval const& range) {
    double const most = std::max(-range.low, range.high);
    return {-most, most};
}

}  // namespace

plane plane_from_normal(point const& center, point const& normal, point_span points, double minimum_width,
                        double minimum_height, bool recenter) {
    if (center.is_trivial() || normal.is_trivial()) return plane();
    plane const unit_plane(center, with_positive_largest(normalize(normal)));
    xyz const c(center), b(unit_plane.basis(1)), a(unit_plane.basis(2));
    interval along_a{0, 0}, along_b{0, 0};
    for (point const& p : points) {
        xyz const d = xyz(p) - c;
        along_a.widen(dot(d, a));
        along_b.widen(dot(d, b));
    }
    if (!recenter) {
        along_a = symmetric(along_a);
        along_b = symmetric(along_b);
    }
    double half_a = half(along_a), half_b = half(along_b);
    if (points.size() < 3 || half_a == 0.0 || half_b == 0.0) {
        half_b = std::max(half_b, minimum_width);
        half_a = std::max(half_a, minimum_height);
    }
    xyz const at = c + middle(along_a) * a + middle(along_b) * b;
    if (!at.is_finite()) return plane();
    plane result(make_transform(at.location(true), half_b * unit_plane.basis(1), half_a * unit_plane.basis(2),
                                unit_plane.basis(3)));
    return result.fill_in_inverse() ? result : plane();
}

}  // namespace tvmath
