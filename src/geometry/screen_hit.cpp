#include "tvmath/screen_hit.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

inline namespace tvmath {
namespace {

// 64 bits, because differences of 32-bit coordinates do not fit in 32.
using wide = std::int64_t;

bool is_hit(tagPOINT p, tagPOINT a, tagPOINT b, wide tolerance) {
    auto const [left, right] = std::minmax<wide>({a.x, b.x});
    auto const [low, high] = std::minmax<wide>({a.y, b.y});
    if (p.x < left - tolerance || p.x > right + tolerance) return false;
    if (p.y < low - tolerance || p.y > high + tolerance) return false;
    double const dx = static_cast<double>(wide{b.x} - a.x), dy = static_cast<double>(wide{b.y} - a.y);
    if (dx == 0 && dy == 0) return true;
    double const length = std::sqrt(dx * dx + dy * dy);
    double const px = static_cast<double>(wide{p.x} - a.x), py = static_cast<double>(wide{p.y} - a.y);
    return std::fabs((py * dx - px * dy) / length) <= static_cast<double>(tolerance);
}

// Sign of a b - c d for factors below 2^32 in magnitude: each product fits in 64 unsigned bits, its sign
// apart.
int sign_of_determinant(wide a, wide b, wide c, wide d) {
    auto const sign = [](wide x) { return x < 0 ? -1 : x > 0 ? 1 : 0; };
    auto const magnitude = [](wide x) { return static_cast<std::uint64_t>(x < 0 ? -x : x); };
    int const left = sign(a) * sign(b), right = sign(c) * sign(d);
    if (left != right) return left < right ? -1 : 1;
    std::uint64_t const p = magnitude(a) * magnitude(b), q = magnitude(c) * magnitude(d);
    return p == q ? 0 : (p < q) == (left > 0) ? -1 : 1;
}

// Bit 1 left, 2 right, 4 above the lower side value, 8 beyond the higher: opposite sides make 3 and 12.
int region_code(int x, int y, int left, int low, int right, int high) {
    return (x < left ? 1 : x > right ? 2 : 0) | (y < low ? 4 : y > high ? 8 : 0);
}

}  // namespace

bool IsPtOnPath(tagPOINT p, tagPOINT const* path, int count, int tolerance) {
    for (int i = 0; i + 1 < count; ++i) {
        if (is_hit(p, path[i], path[i + 1], tolerance)) return true;
    }
    return false;
}

bool line_intersects_rect(int x0, int y0, int x1, int y1, int left, int top, int right, int bottom) {
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
    int const start = region_code(x0, y0, left, top, right, bottom);
    int const end = region_code(x1, y1, left, top, right, bottom);
    if ((start & end) != 0) return false;
    if (start == 0 || end == 0) return true;
    if ((start | end) == 3 || (start | end) == 12) return true;

    // The ends lie about a corner: the segment misses the rectangle exactly when all four corners are
    // strictly on one side of its line, which compares its slope with those from the start to the corners.
    auto const side = [&](int x, int y) {
        return sign_of_determinant(wide{x1} - x0, wide{y} - y0, wide{y1} - y0, wide{x} - x0);
    };
    int const sides[] = {side(left, top), side(right, top), side(left, bottom), side(right, bottom)};
    auto const [least, greatest] = std::minmax_element(std::begin(sides), std::end(sides));
    return *least <= 0 && *greatest >= 0;
}

}  // namespace tvmath
