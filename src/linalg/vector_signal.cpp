#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "tvmath/vector.h"

inline namespace tvmath {
namespace {

constexpr int levels = 1024;  // of the histogram of a profile: finer than the 256 grey values of a camera

// Compared as a number before it is converted, because NaN and large values have no int.
std::size_t level_of(double x) {
    double const scaled = x * levels;
    if (!(scaled >= 1)) return 0;
    return scaled >= levels - 1 ? levels - 1 : static_cast<std::size_t>(scaled);
}

// The first level at which the samples counted from level 2 on reach `fraction` of them all. Levels 0 and 1
// are the dark ground, which would otherwise drown a small bright part.
int black_level(vector const& v, double fraction) {
    std::array<unsigned int, levels> cumulative{};
    for (double x : v) ++cumulative[level_of(x)];
    for (std::size_t b = 1; b < levels; ++b) cumulative[b] += cumulative[b - 1];

    unsigned int const ground = cumulative[1], excess = dim(v) - ground;
    double const target = std::trunc(fraction * excess);
    for (int b = 1; b < levels - 1; ++b) {
        if (target <= cumulative[static_cast<std::size_t>(b)] - ground) return b;
    }
    return levels - 1;
}

// Averages over 1 / scale samples: differences of the running sum, read between its elements.
vector decimate(vector const& v, double scale, unsigned int n) {
    unsigned int const length = dim(v);
    double const last = length == 0 ? 0.0 : v[length - 1], step = 1 / scale;
    vector const sums = integrate(v);
    double const* const c = sums.begin();
    vector result(n);
    double* const to = result.lazycopy_begin();
    double p = 0;
    for (unsigned int k = 0; k < n; ++k) {
        p += step;
        if (p >= length) {
            to[k] = (c[length] + (p - length) * last) * scale;
        } else if (p > 0) {
            unsigned int const i = static_cast<unsigned int>(p);
            to[k] = (c[i] + (p - i) * (c[i + 1] - c[i])) * scale;
        } else {
            to[k] = p * scale;  // only for a scale that is negative or NaN: no place in the list
        }
    }
    for (unsigned int k = n; k-- > 1;) to[k] -= to[k - 1];
    return result;
}

}  // namespace

vector& vector::boxcar(int width) {
    if (width < 2 || is_trivial()) return *this;
    std::size_t const half = static_cast<std::size_t>(width) / 2, n = capacity();
    vector const sums = integrate(*this);
    double const* const s = sums.begin();
    double* const a = lazycopy_begin();
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t const from = i > half ? i - half : 0, to = std::min(i + half + 1, n);
        a[i] = (s[to] - s[from]) / static_cast<double>(to - from);
    }
    return *this;
}

vector& vector::threshold(double fraction) {
    if (is_trivial()) return *this;
    double const t = static_cast<double>(black_level(*this, fraction)) / levels;
    for (double *x = lazycopy_begin(), *end = x + capacity(); x != end; ++x)
        *x = *x > t ? (*x - t) / (1 - t) : 0.0;
    return *this;
}

vector differentiate(vector const& v) {
    if (dim(v) < 2) return vector();
    unsigned int const n = dim(v) - 1;
    vector result(n);
    double* const d = result.lazycopy_begin();
    double const* const a = v.begin();
    for (unsigned int i = 0; i < n; ++i) d[i] = a[i + 1] - a[i];
    return result;
}

vector derivative(vector const& v) {
    if (dim(v) < 2) return vector();
    unsigned int const n = dim(v) - 1;
    vector result(n);
    double* const d = result.lazycopy_begin();
    double const* const a = v.begin();
    for (unsigned int i = 0; i < n; ++i) d[i] = (i + 1) * a[i + 1];
    return result;
}

vector integrate(vector const& v) {
    unsigned int const n = dim(v);
    vector result(n + 1);
    double* const s = result.lazycopy_begin();
    double const* const a = v.begin();
    for (unsigned int i = 0; i < n; ++i) s[i + 1] = s[i] + a[i];
    return result;
}

double interpolate(vector const& v, double x) {
    if (v.is_trivial()) return 0.0;
    if (std::isnan(x)) return x;
    double const* const a = v.begin();
    unsigned int const last = dim(v) - 1;
    if (x <= 0) return a[0];
    if (x >= last) return a[last];
    unsigned int const i = static_cast<unsigned int>(x);
    return a[i] + (x - i) * (a[i + 1] - a[i]);
}

vector sample(vector const& v, vector positions) {
    vector const signal = v;  // v may be the caller's handle on the same block as the positions
    if (positions.is_trivial()) return positions;
    for (double *x = positions.lazycopy_begin(), *end = x + dim(positions); x != end; ++x)
        *x = interpolate(signal, *x);
    return positions;
}

vector resample(vector v, double scale, unsigned int n) {
    if (n < 2) return vector(n, v.is_trivial() ? 0.0 : sum(v) / dim(v));
    if (scale == 1.0) return v;
    if (!(scale > 1)) return decimate(v, scale, n);
    double const step = 1 / scale;
    vector result(n);
    double* const to = result.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) to[i] = interpolate(v, i * step);
    return result;
}

vector powvec(double x, unsigned int n) {
    vector result(n);
    double* const to = result.lazycopy_begin();
    double power = 1;
    for (unsigned int i = 0; i < n; ++i, power *= x) to[i] = power;
    return result;
}

}  // namespace tvmath
