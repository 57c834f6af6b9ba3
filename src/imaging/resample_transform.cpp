#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "containers/parallel_for.h"
#include "imaging/image_size.h"
#include "imaging/rows_to_write.h"
#include "tvmath/resample.h"

inline namespace tvmath {
namespace {

// Rows of the result that are made at a time.
constexpr std::size_t band = 32;

// One map of a 2D transform; terms are summed in the order of a point that is carried through it.
struct plane_map {
    double m[6];

    explicit plane_map(double const* map) { std::copy_n(map, 6, m); }
    bool is_finite() const {
        return std::all_of(m, m + 6, [](double v) { return std::isfinite(v); });
    }
    double x(double u, double v) const { return m[1] * u + m[2] * v + m[0]; }
    double y(double u, double v) const { return m[4] * u + m[5] * v + m[3]; }
};

// Pixels from 0 to size - 1.
struct pixel_range {
    double first = 0, last;

    explicit pixel_range(unsigned int size) : last(size - 1.0) {}
    // Leaves those u for which slope (u + 0.5) + offset lies between `low` and `high`.
    void narrow(double slope, double offset, double low, double high) {
        if (slope == 0.0) {
            if (!(offset >= low && offset <= high)) last = -1;
            return;
        }
        double const a = (low - offset) / slope - 0.5, b = (high - offset) / slope - 0.5;
        first = std::max(first, std::ceil(std::min(a, b)));
        last = std::min(last, std::floor(std::max(a, b)));
    }
    bool is_empty() const { return !(first <= last); }
};

// Calls act(row, column, weight) for those of the four pixels about the place (x, y) that lie in an image of
// that size, with their bilinear weights.
template <class action>
void each_about(double x, double y, std::size_t rows, std::size_t cols, action act) {
    // From here on the place counts from the centre of a pixel before the first one, so that cutting it
    // rounds down and gives the second of the two pixels. The comparisons first: only places near the image
    // become integers.
    x += 0.5;
    y += 0.5;
    if (!(x >= 0 && x < static_cast<double>(cols) + 1 && y >= 0 && y < static_cast<double>(rows) + 1)) return;
    auto const c = static_cast<std::size_t>(x), r = static_cast<std::size_t>(y);
    double const fx = x - static_cast<double>(c), fy = y - static_cast<double>(r);
    // What has no weight does not take part, not even when it is not finite.
    bool const has_left = c > 0, has_right = c < cols && fx > 0;
    if (r > 0) {
        if (has_left) act(r - 1, c - 1, (1 - fx) * (1 - fy));
        if (has_right) act(r - 1, c, fx * (1 - fy));
    }
    if (r < rows && fy > 0) {
        if (has_left) act(r, c - 1, (1 - fx) * fy);
        if (has_right) act(r, c, fx * fy);
    }
}

double mean_of(double sum, double weight) {
    return weight != 0.0 ? sum / weight : 0.0;
}

// Shares the source out over the rows `first` to `last` of the result. Every band walks the source in the
// same order and takes what falls into it, so a sum does not depend on the threads. `line` are the rows of
// the result.
void share_out(image const& source, plane_map const& to_result, std::size_t first, std::size_t last,
               unsigned int cols, double* const* line) {
    std::size_t const count = last - first;
    double const offset = static_cast<double>(first), height = static_cast<double>(count);
    std::vector<double> sums(count * cols), weights(count * cols);
    auto const& m = to_result.m;
    for (unsigned int y = 0; y < rows(source); ++y) {
        // A pixel of the result more than needed on each side, for the rounding of the limits.
        double const v = y + 0.5;
        pixel_range range(matrix::cols(source));
        range.narrow(m[1], m[2] * v + m[0], -1.5, cols + 1.5);
        range.narrow(m[4], m[5] * v + m[3], offset - 1.5, offset + height + 1.5);
        if (range.is_empty()) continue;

        double const* const grey = source[y].begin();
        for (auto x = static_cast<std::size_t>(range.first); x <= static_cast<std::size_t>(range.last); ++x) {
            double const u = static_cast<double>(x) + 0.5, value = grey[x];
            double const to_x = to_result.x(u, v), to_y = to_result.y(u, v) - offset;
            each_about(to_x, to_y, count, cols, [&](std::size_t r, std::size_t c, double weight) {
                sums[r * cols + c] += weight * value;
                weights[r * cols + c] += weight;
            });
        }
    }
    for (std::size_t r = 0; r < count; ++r) {
        for (std::size_t c = 0; c < cols; ++c) {
            line[first + r][c] = mean_of(sums[r * cols + c], weights[r * cols + c]);
        }
    }
}

// Row `y` of the result, from the four pixels of the source about each centre.
void gather_row(image const& source, plane_map const& to_source, std::size_t y, unsigned int cols,
                double* line) {
    vector const* const grey = source.begin();
    unsigned int const source_rows = rows(source), source_cols = matrix::cols(source);
    double const v = static_cast<double>(y) + 0.5;
    for (unsigned int x = 0; x < cols; ++x) {
        double const u = x + 0.5;
        double sum = 0, weight = 0;
        double const from_x = to_source.x(u, v), from_y = to_source.y(u, v);
        each_about(from_x, from_y, source_rows, source_cols, [&](std::size_t r, std::size_t c, double w) {
            sum += w * grey[r].begin()[c];
            weight += w;
        });
        line[x] = mean_of(sum, weight);
    }
}

}  // namespace

image rotate(image source, transform to_source, unsigned int rows, unsigned int cols) {
    if (!(to_source.is_2d() || to_source.is_3d()) || is_oversized(rows, cols)) return image();
    to_source.project2d();
    double const area = to_source.size(1) * to_source.size(2);
    plane_map const forward(to_source.begin()), backward(to_source.begin() + 6);
    bool const enlarges = area <= 1.0;
    if (!forward.is_finite() || (enlarges && !backward.is_finite())) return image();

    image result;
    std::vector<double*> const lines = rows_to_write(result, rows, cols);
    parallel_for(rows, band, [&](std::size_t first, std::size_t last) {
        if (enlarges) {
            share_out(source, backward, first, last, cols, lines.data());
        } else {
            for (std::size_t y = first; y < last; ++y) gather_row(source, forward, y, cols, lines[y]);
        }
    });
    return result;
}

}  // namespace tvmath
