#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tvmath/curve.h"

inline namespace tvmath {
namespace {

// Longest span of the reduction by tolerance: each point is looked at a bounded number of times, at most
// 100 + 50 + 25 + ... for one step forward, so the cost is linear.
constexpr unsigned int longest_span = 100;

// Whether the points strictly between both ends lie within `t` of the line through the ends, in XY. Written
// so that a point without a distance (NaN) does not fit: what cannot be judged is kept.
bool span_fits(point const* first, point const* last, double t) {
    point const chord = *last - *first;
    double const length = std::hypot(chord.x(), chord.y());
    for (point const* p = first + 1; p < last; ++p) {
        point const offset = *p - *first;
        // Ends that coincide have no line. The distance from them keeps a loop that leaves and comes back,
        // where the quotient 0 / 0 would pass any tolerance.
        double const distance = length > 0.0 ? std::fabs(cross2d(chord, offset)) / length : offset.length2d();
        if (!(distance <= t)) return false;
    }
    return true;
}

// The points of these indices. Indices, and not the points themselves, are collected first: they are a tenth
// of the size, and the list is then made once in its final size.
curve picked(point const* from, std::vector<std::uint32_t> const& kept) {
    curve result(static_cast<unsigned int>(kept.size()));
    point* to = result.lazycopy_begin();
    for (std::uint32_t const i : kept) *to++ = from[i];
    return result;
}

}  // namespace

curve& curve::reduce_points_by_tolerance(double t, bool) {
    unsigned int const n = capacity();
    if (n == 0) return *this;
    point const* const p = begin();
    std::vector<std::uint32_t> kept = {0};
    for (unsigned int i = 0; i + 1 < n;) {
        unsigned int step = std::min(longest_span, n - 1 - i);
        while (step > 1 && !span_fits(p + i, p + i + step, t)) step >>= 1;
        i += step;
        kept.push_back(i);
    }
    return *this = picked(p, kept);
}

curve& curve::reduce_points_by_interval(double d, bool closed) {
    unsigned int const n = capacity();
    if (n == 0) return *this;
    point const* const p = begin();
    std::vector<std::uint32_t> kept = {0};
    unsigned int reference = 0;
    for (unsigned int i = 1; i < n; ++i) {
        if (distance2d(p[i], p[reference]) >= d) {
            kept.push_back(i);
            reference = i;
        }
    }
    if (!closed && reference != n - 1) kept.push_back(n - 1);
    return *this = picked(p, kept);
}

curve& curve::reduce_points_to_number(unsigned int n, bool closed) {
    unsigned int const size = capacity();
    if (size <= n) return *this;
    // Index i of the result is i * range / steps of the list, rounded to the nearest. A single point of an
    // open path would have 0 steps to go.
    std::uint64_t const range = closed ? size : size - 1;
    std::uint64_t const steps = closed || n < 2 ? std::max(n, 1u) : n - 1;
    curve kept(n);
    point* const to = kept.lazycopy_begin();
    point const* const from = begin();
    for (unsigned int i = 0; i < n; ++i) {
        // By quotient and remainder, because 2 i range may need more than 64 bits.
        std::uint64_t const index = i * range / steps, rest = i * range % steps;
        to[i] = from[index + (2 * rest >= steps ? 1 : 0)];
    }
    return *this = kept;
}

curve& curve::reduce_points_to_number_middle(unsigned int n) {
    unsigned int const size = capacity();
    if (size <= n) return *this;
    return *this = curve(array(n, begin() + (size - n) / 2));
}

}  // namespace tvmath
