#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "geometry/point_lanes.h"
#include "tvmath/feature_switches.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

double gradient_scale() {
    // The root mean square of the two changes instead of their hypotenuse.
    static double const new_scale = 1 / std::sqrt(2.0);
    return new_vision_algorithms_enabled() ? new_scale : 1.0;
}

struct differences {
    double const *a_before, *a_after, *b_before, *b_after;
};

// to[x] = scale hypot(change of a, change of b) as the plain root of the squares, which vectorises. Returns
// the number of those whose squares leave the range of double, so that the root is not good.
TVMATH_WIDE_LOOP std::int64_t write_roots(double* to, differences d, double scale, std::size_t n) {
    std::int64_t bad = 0;
    for (std::size_t x = 0; x < n; ++x) {
        double const a = d.a_after[x] - d.a_before[x], b = d.b_after[x] - d.b_before[x];
        double const squares = a * a + b * b, magnitudes = std::fabs(a) + std::fabs(b);
        bool const good = (squares > 1e-280) & (squares < 1e300);
        bad += (good | (magnitudes == 0.0)) ? 0 : 1;
        to[x] = std::sqrt(squares) * scale;
    }
    return bad;
}

void write_lengths(double* to, differences d, double scale, std::size_t n) {
    if (write_roots(to, d, scale, n) == 0) return;
    for (std::size_t x = 0; x < n; ++x) {
        to[x] = std::hypot(d.b_after[x] - d.b_before[x], d.a_after[x] - d.a_before[x]) * scale;
    }
}

// b = |b - a|
void take_deviations(image& b, image const& a) {
    std::size_t const n = cols(b);
    vector* const row = b.lazycopy_begin();
    for (unsigned int y = 0; y < rows(b); ++y) {
        double* const to = row[y].lazycopy_begin();
        double const* const v = a[y].begin();
        for (std::size_t x = 0; x < n; ++x) to[x] = std::fabs(to[x] - v[x]);
    }
}

}  // namespace

image& image::horizontal_edge_gradient(bool wrap) {
    unsigned int const r = rows(*this), c = cols(*this);
    if (r < 2 || c == 0) return *this;
    image mean = *this, deviation = *this;
    for (int twice = 0; twice < 2; ++twice) mean.horizontal_boxcar(3, wrap).vertical_boxcar(3, false);
    deviation.horizontal_boxcar(c / 4, wrap);
    take_deviations(deviation, *this);
    deviation.horizontal_boxcar(c / 4, wrap);

    double const scale = gradient_scale();
    vector* const a = mean.lazycopy_begin();
    vector const* const b = deviation.begin();
    vector* const row = lazycopy_begin();
    for (unsigned int y = 0; y < r; ++y) {
        unsigned int const before = y == 0 ? 0 : y - 1, after = y + 1 == r ? y : y + 1;
        // Into the place of a smoothed row that no later one needs.
        vector fresh = y < 2 ? vector(c) : std::move(a[y - 2]);
        write_lengths(fresh.lazycopy_begin(),
                      {a[before].begin(), a[after].begin(), b[before].begin(), b[after].begin()}, scale, c);
        row[y] = std::move(fresh);
    }
    return *this;
}

image& image::vertical_edge_gradient(bool wrap) {
    unsigned int const r = rows(*this), c = cols(*this);
    if (r < 2 || c == 0) return *this;
    image mean = *this, deviation = *this;
    for (int twice = 0; twice < 2; ++twice) mean.horizontal_boxcar(3, false).vertical_boxcar(3, wrap);
    deviation.vertical_boxcar(r / 4, wrap);
    take_deviations(deviation, *this);
    deviation.vertical_boxcar(r / 4, wrap);

    double const scale = gradient_scale();
    vector* const smoothed = mean.lazycopy_begin();
    vector* const row = lazycopy_begin();
    for (unsigned int y = 0; y < r; ++y) {
        double const *const a = smoothed[y].begin(), *const b = deviation[y].begin();
        vector fresh = y < 1 ? vector(c) : std::move(smoothed[y - 1]);
        double* const to = fresh.lazycopy_begin();
        std::size_t const last = c - 1, next = c == 1 ? 0 : 1, previous = c == 1 ? 0 : last - 1;
        write_lengths(to, {a, a + next, b, b + next}, scale, 1);
        if (c > 2) write_lengths(to + 1, {a, a + 2, b, b + 2}, scale, c - 2);
        write_lengths(to + last, {a + previous, a + last, b + previous, b + last}, scale, 1);
        row[y] = std::move(fresh);
    }
    return *this;
}

}  // namespace tvmath
