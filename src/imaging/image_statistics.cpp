#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "geometry/point_lanes.h"
#include "imaging/row_pointers.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

struct grey_sums {
    double values = 0, squares = 0;
    std::size_t bright = 0;  // at 0.9 and above
};

// Eight sums side by side: they need not wait for each other, and each stays short.
TVMATH_WIDE_LOOP void add_row(grey_sums& sums, double const* v, std::size_t n) {
    constexpr std::size_t lanes = 8;
    double values[lanes] = {}, squares[lanes] = {};
    std::size_t bright[lanes] = {};
    auto const add = [&](std::size_t lane, double x) {
        values[lane] += x;
        squares[lane] += x * x;
        bright[lane] += x >= 0.9;
    };
    std::size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) add(lane, v[i + lane]);
    }
    for (; i < n; ++i) add(i % lanes, v[i]);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        sums.values += values[lane];
        sums.squares += squares[lane];
        sums.bright += bright[lane];
    }
}

bool has_value_from(double least, double const* v, std::size_t n) {
    return std::any_of(v, v + n, [least](double x) { return x >= least; });
}

bool lies_in(image const& m, pixel p) {
    return static_cast<unsigned int>(p.x) < cols(m) && static_cast<unsigned int>(p.y) < rows(m);
}

}  // namespace

bool image::ave_gray(double& mean, double& sigma, double& sigma_of_mean) const {
    double const r = rows(*this), c = cols(*this);
    if (r == 0 || c == 0) return false;
    grey_sums sums;
    for (vector const& row : *this) add_row(sums, row.begin(), dim(row));
    mean = sums.values / r / c;
    double const variance = sums.squares / r / c - mean * mean;
    sigma = variance < 0 ? 0.0 : std::sqrt(variance);
    sigma_of_mean = sigma / std::sqrt(r * c);
    return sums.bright < 2;
}

bool image::local_rms(double& rms) const {
    unsigned int const r = rows(*this), c = cols(*this);
    if (r == 0 || c == 0) return false;
    for (vector const& row : *this) {
        if (has_value_from(0.99, row.begin(), c)) return false;
    }
    image smoothed = *this;
    smoothed.boxcar2d(3);
    double sum = 0;
    for (unsigned int y = 0; y < r; ++y) {
        double const *const v = (*this)[y].begin(), *const s = smoothed[y].begin();
        for (unsigned int x = 0; x < c; ++x) sum += (v[x] - s[x]) * (v[x] - s[x]);
    }
    rms = std::sqrt(sum / r / c) * (9.0 / 8.0);
    return true;
}

double image::line_ave(pixel from, pixel to) const {
    if (!lies_in(*this, from) || !lies_in(*this, to)) return std::numeric_limits<double>::quiet_NaN();
    struct {
        vector const* row;
        double const* operator[](int y) const { return row[y].begin(); }
    } const few_rows{begin()};
    return mean_under_line(few_rows, from, to);
}

}  // namespace tvmath
