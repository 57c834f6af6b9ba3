#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "containers/parallel_for.h"
#include "geometry/point_lanes.h"
#include "imaging/rows_to_write.h"
#include "tvmath/feature_switches.h"
#include "tvmath/pattern.h"

inline namespace tvmath {
namespace {

// Samples of the pattern at the scale of an image, an odd number. 0 when there is nothing to match; a pattern
// beyond 4 times the image would meet little but repeated end pixels.
std::size_t samples_for(unsigned int cols, VisionPattern const& pattern) {
    double const width = cols * pattern.width_ratio;
    if (pattern.size() == 0 || !(width >= 2.0) || width > 4.0 * cols) return 0;
    std::size_t const n = static_cast<std::size_t>(width), odd = n % 2 == 0 ? n - 1 : n;
    return odd < 2 ? 0 : odd;
}

// The profile stretched to the scale of the image, linear between samples and about its middle.
std::vector<double> resampled(VisionPattern const& pattern, unsigned int cols, std::size_t n) {
    double const* const profile = pattern.profile.begin();
    std::size_t const last = pattern.size() - 1;
    double const length = pattern.size(), step = length / (cols * pattern.width_ratio);
    double t = (length - 1 - (static_cast<double>(n) + 1) * step) / 2;
    std::vector<double> q(n);
    for (double& value : q) {
        t += step;  // from above -1/2 on, where the first two samples are continued
        std::size_t const j = std::min(static_cast<std::size_t>(std::max(t, 0.0)), last);
        value = profile[j] + (t - static_cast<double>(j)) * (profile[std::min(last, j + 1)] - profile[j]);
    }
    return q;
}

double sum_of_squares(std::vector<double> const& q) {
    double sum = 0;
    for (double value : q) sum += value * value;
    return sum;
}

void scale_to_length_1(std::vector<double>& q) {
    double const energy = sum_of_squares(q);
    if (!(energy > 0)) return;
    double const scale = 1 / std::sqrt(energy);
    for (double& value : q) value *= scale;
}

// So that the sum of products with a window, divided by the window's standard deviation, is the correlation
// coefficient.
void standardize(std::vector<double>& q) {
    double const n = static_cast<double>(q.size());
    double sum = 0;
    for (double value : q) sum += value;
    double const mean = sum / n, variance = sum_of_squares(q) / n - mean * mean;
    if (!(mean > 0)) return;
    double const scale = 1 / (n * std::sqrt(std::max(variance, 1e-6)));
    for (double& value : q) value = (value - mean) * scale;
}

// to[x] = sum of q[i] line[x + i], for a number of x that is a multiple of `width`. Neighbours side by side,
// each with its terms in the order of i, so that the width of the registers does not show in the result.
constexpr std::size_t width = 16;
TVMATH_WIDE_LOOP void correlate(double const* line, double const* q, std::size_t n, double* to,
                                std::size_t count) {
    typedef double lanes __attribute__((vector_size(32)));
    for (std::size_t x = 0; x < count; x += width) {
        lanes sums[width / 4] = {};
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t k = 0; k < width / 4; ++k) {
                lanes values;
                std::memcpy(&values, line + x + i + 4 * k, sizeof values);
                sums[k] += q[i] * values;
            }
        }
        std::memcpy(to + x, sums, sizeof sums);
    }
}

// A row as windows of the pattern's width see it: with its end pixels repeated on both sides, and running
// sums of its values and their squares. Reused from row to row.
class windowed_row {
public:
    windowed_row(std::size_t cols, std::size_t window)
        : cols_(cols),
          window_(window),
          half_((window - 1) / 2),
          padded_((cols + width - 1) / width * width + window),
          correlation_(padded_.size()),
          sums_(cols + window),
          squares_(cols + window) {}

    void read(double const* row) {
        std::fill_n(padded_.begin(), half_, row[0]);
        std::copy_n(row, cols_, padded_.begin() + static_cast<std::ptrdiff_t>(half_));
        std::fill(padded_.begin() + static_cast<std::ptrdiff_t>(half_ + cols_), padded_.end(),
                  row[cols_ - 1]);
    }
    // Before the sums below are asked for.
    void sum_up() {
        for (std::size_t i = 0; i + 1 < sums_.size(); ++i) {
            sums_[i + 1] = sums_[i] + padded_[i];
            squares_[i + 1] = squares_[i] + padded_[i] * padded_[i];
        }
    }
    // The sum of squares of the window about a pixel. In dark parts, of which the running sums have lost the
    // digits, term by term.
    double energy(std::size_t x) const {
        double const difference = square_sum(x);
        if (!(difference < 1e-6 * squares_[x + window_])) return difference;
        double const* const first = padded_.data() + x;
        return std::inner_product(first, first + window_, first, 0.0);
    }
    double variance(std::size_t x) const {
        double const n = static_cast<double>(window_), sum = sums_[x + window_] - sums_[x];
        return (square_sum(x) - sum * sum / n) / n;
    }
    // Of the window about each pixel with q.
    double const* correlation(std::vector<double> const& q) {
        correlate(padded_.data(), q.data(), window_, correlation_.data(),
                  (cols_ + width - 1) / width * width);
        return correlation_.data();
    }

private:
    double square_sum(std::size_t x) const { return squares_[x + window_] - squares_[x]; }

    std::size_t cols_, window_, half_;
    std::vector<double> padded_, correlation_, sums_, squares_;
};

// Calls work(y, row) for all rows of the image, on several threads.
template <class worker>
void for_rows(image const& m, std::size_t window, worker const& work) {
    std::size_t const columns = cols(m), grain = std::max<std::size_t>(262144 / (columns * window), 1);
    parallel_for(rows(m), grain, [&](std::size_t first, std::size_t last) {
        windowed_row row(columns, window);
        for (std::size_t y = first; y < last; ++y) {
            row.read(m[static_cast<unsigned int>(y)].begin());
            work(y, row);
        }
    });
}

// The share of a window's energy that the pattern explains is at most 1 by Cauchy's inequality, apart from
// rounding. Windows whose energy leaves the normal numbers count as black, since it has no digits.
image match_by_energy(image const& m, std::vector<double> q) {
    scale_to_length_1(q);
    image result;
    std::vector<double*> const to = rows_to_write(result, rows(m), cols(m));
    for_rows(m, q.size(), [&](std::size_t y, windowed_row& row) {
        row.sum_up();
        double const* const c = row.correlation(q);
        for (std::size_t x = 0; x < cols(m); ++x) {
            double const energy = row.energy(x);
            if (energy < 1e-290) continue;
            double const share = c[x] * c[x] / energy, v = share > 1 ? 1.0 : share;
            to[y][x] = sqr(sqr(sqr(v)));
        }
    });
    // Where all windows match alike, there is nothing to stretch but rounding.
    double min, max;
    minmax_value(result, min, max);
    if (max - min <= 1e-9 * max) return result = max;
    return result.enhance();
}

// to[x] = product / root of to[x], which is a variance and counts as no less than `least`.
TVMATH_WIDE_LOOP void divide_by_deviation(double* to, double const* product, double least, std::size_t n) {
    for (std::size_t x = 0; x < n; ++x) {
        double const variance = to[x] < least ? least : to[x];
        to[x] = product[x] / std::sqrt(variance);
    }
}

image match_by_coefficient(image const& m, std::vector<double> q) {
    standardize(q);
    image result;
    std::vector<double*> const to = rows_to_write(result, rows(m), cols(m));
    std::vector<double> of_row(rows(m));  // the greatest variance of each row, then its best match
    for_rows(m, q.size(), [&](std::size_t y, windowed_row& row) {
        row.sum_up();
        for (std::size_t x = 0; x < cols(m); ++x) {
            double const variance = to[y][x] = row.variance(x);
            if (variance > of_row[y]) of_row[y] = variance;
        }
    });

    // A flat part would make much of a small correlation. It counts as having a share of the contrast of the
    // busiest window, and more than noise.
    double const least = std::max(*std::max_element(of_row.begin(), of_row.end()) / 4.0, sqr(0.04));
    for_rows(m, q.size(), [&](std::size_t y, windowed_row& row) {
        divide_by_deviation(to[y], row.correlation(q), least, cols(m));
        double best = -infinity;
        for (std::size_t x = 0; x < cols(m); ++x) {
            double const r = to[y][x];
            if (r > best) best = r;
            to[y][x] = r > 0.1 ? r : 0.0;
        }
        of_row[y] = best;
    });

    double sum = 0;
    for (double best : of_row) sum += best;
    if (!(sum / rows(m) >= 0.2)) return image(rows(m), cols(m));
    return result.enhance();
}

}  // namespace

image pattern_filter(image input, VisionPattern pattern, bool wrap) {
    std::size_t const n = samples_for(cols(input), pattern);
    if (n == 0) return image(rows(input), cols(input));
    std::vector<double> const q = resampled(pattern, cols(input), n);
    input.vertical_boxcar(16, wrap);
    return new_pattern_match_enabled() ? match_by_coefficient(input, q) : match_by_energy(input, q);
}

}  // namespace tvmath
