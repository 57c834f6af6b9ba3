#include "tvmath/line.h"

#include <algorithm>
#include <cmath>

inline namespace tvmath {
namespace {

// `count` points from end to end of the segment, counted from its middle so that both ends are exact.
curve points_along(point const& middle, point const& half, unsigned int count) {
    curve result(count);
    point* const p = result.lazycopy_begin();
    double const intervals = count - 1.0;
    for (unsigned int i = 0; i < count; ++i) p[i] = middle + half * (2 * (i / intervals) - 1);
    return result;
}

}  // namespace

line::line(point a, point b) {
    if (promote(a, b) == 0) return;
    if (a.is_direction()) point::swap(a, b);
    if (a.is_location() && b.is_location()) {
        point const half = (b - a) / 2;
        a += half;
        b = half;
    }
    double const x = b.x(), y = b.y(), d = x * x + y * y;
    if (a.is_3d()) {
        promote3d();
    } else {
        promote2d();
    }
    double* const m = lazycopy_begin();
    unsigned int const row = a.is_3d() ? 4 : 3, map = a.is_3d() ? 12 : 6;
    m[1] = x;
    m[2] = -y;
    m[row + 1] = y;
    m[row + 2] = x;
    m[map + 1] = x / d;
    m[map + 2] = y / d;
    m[map + row + 1] = -y / d;
    m[map + row + 2] = x / d;
    translate(a);
}

CRealRect line::get_bounding_rect() const {
    return get_bounding_rect(transform(), 0.0);
}

CRealRect line::get_bounding_rect(transform t, double offset) const {
    transform const seen = (*this * t).project2d();
    point const center = seen.center(), half = seen.basis(1), across = seen.direction(2) * std::fabs(offset);
    double const width = std::fabs(half.x()) + std::fabs(across.x());
    double const height = std::fabs(half.y()) + std::fabs(across.y());
    return CRealRect(center.x() - width, center.y() - height, center.x() + width, center.y() + height);
}

curve line::render_line(int n) const {
    return points_along(basis(0), basis(1), static_cast<unsigned int>(std::max(n, 1)) + 1);
}

curve line::render_line(int n, double offset) const {
    point const middle = basis(0) + transform::direction(2) * offset;
    return points_along(middle, basis(1), static_cast<unsigned int>(std::max(n, 2)));
}

idioms::array<curve> line::render_line(int n, vector offsets) const {
    idioms::array<curve> result(offsets.capacity());
    for (unsigned int k = 0; k < offsets.capacity(); ++k) result(k) = render_line(n, offsets[k]);
    return result;
}

}  // namespace tvmath
