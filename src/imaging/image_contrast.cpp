#include <algorithm>
#include <cmath>
#include <cstddef>

#include "geometry/point_lanes.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

constexpr std::size_t levels = 1024;  // of the histogram: finer than the grey values of a camera

// Clamped as a number before it is converted, because NaN, which becomes 0, and large values have no index.
std::size_t level_of(double v) {
    constexpr double most = levels - 1;
    double const scaled = v * levels, from_0 = scaled > 0 ? scaled : 0.0;
    return static_cast<std::size_t>(static_cast<int>(from_0 < most ? from_0 : most));
}

struct histogram {
    // Pixels of one grey would wait for each other at one counter, so neighbours count apart.
    static constexpr std::size_t parts = 4;
    std::size_t counts[parts][levels] = {};

    explicit histogram(image const& m) {
        for (vector const& row : m) {
            double const* const v = row.begin();
            std::size_t const n = row.capacity();
            std::size_t i = 0;
            for (; i + parts <= n; i += parts) {
                for (std::size_t part = 0; part < parts; ++part) ++counts[part][level_of(v[i + part])];
            }
            for (; i < n; ++i) ++counts[0][level_of(v[i])];
        }
    }
    std::size_t operator[](std::size_t level) const {
        std::size_t sum = 0;
        for (auto const& part : counts) sum += part[level];
        return sum;
    }
};

// The first level up to which `fraction` of the pixels above level 0 lie: black ones are no part of the
// object, and would drown a small one.
std::size_t level_of_fraction(image const& m, double fraction) {
    histogram const counts(m);
    double const black = static_cast<double>(counts[0]);
    double const total = static_cast<double>(rows(m)) * cols(m) - black;
    double const target = std::trunc(total * fraction);
    double reached = 0;
    std::size_t i = 1;
    for (; i < levels - 1; ++i) {
        reached += static_cast<double>(counts[i]);
        if (!(reached < target)) break;
    }
    return i;
}

TVMATH_WIDE_LOOP void stretch(double* v, std::size_t n, double black, double scale) {
    for (std::size_t i = 0; i < n; ++i) v[i] = (v[i] - black) * scale;
}

TVMATH_WIDE_LOOP void cut_and_stretch(double* v, std::size_t n, double black, double scale) {
    for (std::size_t i = 0; i < n; ++i) {
        double const stretched = (v[i] - black) * scale;
        v[i] = v[i] <= black ? 0.0 : stretched;
    }
}

// Calls change(pixels, number) for every row.
template <class changer>
void change_rows(image& m, changer const& change) {
    std::size_t const n = cols(m);
    if (n == 0) return;
    for (vector *row = m.lazycopy_begin(), *end = row + rows(m); row != end; ++row) {
        change(row->lazycopy_begin(), n);
    }
}

}  // namespace

image& image::abs() {
    change_rows(*this, [](double* v, std::size_t n) {
        std::transform(v, v + n, v, [](double x) { return std::fabs(x); });
    });
    return *this;
}

image& image::enhance() {
    if (cols(*this) == 0) return *this;
    double min, max;
    minmax_value(*this, min, max);
    if (min == max) {
        if (min < 0.0 || min > 1.0) *this = 0.5;
    } else if (min != 0.0 || max != 1.0) {
        double const scale = 1.0 / (max - min);
        change_rows(*this, [=](double* v, std::size_t n) { stretch(v, n, min, scale); });
    }
    return *this;
}

image& image::threshold(double fraction) {
    if (cols(*this) == 0) return *this;
    double const black = static_cast<double>(level_of_fraction(*this, fraction)) / levels;
    change_rows(*this, [=](double* v, std::size_t n) { cut_and_stretch(v, n, black, 1.0 / (1.0 - black)); });
    return *this;
}

}  // namespace tvmath
