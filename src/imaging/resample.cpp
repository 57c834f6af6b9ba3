#include "tvmath/resample.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "containers/parallel_for.h"
#include "geometry/extent.h"
#include "imaging/image_size.h"
#include "imaging/resample_line.h"
#include "imaging/rows_to_write.h"

inline namespace tvmath {
namespace {

// The rectangle as it is scanned: from its corner (x, y), with sides along (c, s) and (-s, c), of which the
// first is the one that runs most nearly along the rows, so that c is at least sqrt(1/2). It gives `columns`
// samples along the first side and `rows` along the second.
struct upright_scan {
    double x, y, c, s, width, height;
    unsigned int columns, rows;

    double along() const { return width / columns; }
    // Where the middle of column i starts.
    double column_y(std::size_t i) const { return y + s * along() * (static_cast<double>(i) + 0.5); }
};

// Lines of numbers in one block, at odd multiples of a cache line from each other, so that a walk across
// them spreads over the sets of the cache whatever their length. A new block takes the old one's memory.
class line_block {
public:
    void reset(std::size_t lines, std::size_t length) {
        stride_ = ((length + 7) / 8 | 1) * 8;
        if (numbers_.size() < lines * stride_) numbers_.resize(lines * stride_);
    }
    double* line(std::size_t i) { return numbers_.data() + i * stride_; }

private:
    std::size_t stride_ = 0;
    std::vector<double> numbers_;
};

// The first and the last row of the image that the interpolation at heights from `low` to `high` looks at.
struct row_range {
    unsigned int first, last;

    row_range(double low, double high, unsigned int rows)
        : first(row_at(low - 0.5, rows)), last(row_at(high + 0.5, rows)) {}
    std::size_t count() const { return std::size_t{last} - first + 1; }

private:
    static unsigned int row_at(double y, unsigned int rows) {
        return static_cast<unsigned int>(std::min(std::max(std::floor(y), 0.0), rows - 1.0));
    }
};

// Row Y of the image crosses the rectangle and its continuation between two lines along (-s, c):
//     x from  scan.x + (Y + 0.5 - scan.y) (-s / c)  on, width / c wide.
// Resampled between them to the columns of the scan, all rows together are an image whose column i is the
// line across the rectangle at (i + 0.5) along, sheared but straight: it starts at y = column_y(i), and
// a stretch of it is c times as high as it is long. A second pass over those columns gives the scan.
//
// The first pass takes means only where the scan itself is coarser than the pixels. At a scale of 1 its step
// is 1 / c, and means over stretches that are no whole number of pixels would move edges to and fro, by up to
// 1/8 of a pixel.
//
// Some columns at a time, few enough for the cache.
class column_scan {
public:
    column_scan(image const& source, upright_scan const& scan) : source_(source), scan_(scan) {}

    // Line i of the result, column first + i of the scan, is put where result_line(i) says.
    template <class line_of>
    void run(std::size_t first, std::size_t columns, line_of result_line) {
        double const start = scan_.column_y(first), end = scan_.column_y(first + columns - 1);
        row_range const used(std::min(start, end), std::max(start, end) + scan_.c * scan_.height,
                             rows(source_));
        shear_rows(first, columns, used);

        double const down = scan_.c * (scan_.height / scan_.rows);
        for (std::size_t i = 0; i < columns; ++i) {
            double const y = scan_.column_y(first + i) - used.first;
            resample_line(sheared_.line(i), used.count(), y, down, down > 1, result_line(i), scan_.rows,
                          work_);
        }
    }

private:
    void shear_rows(std::size_t first, std::size_t columns, row_range const& used) {
        sheared_.reset(columns, used.count());
        row_.resize(columns);
        double const shear = -scan_.s / scan_.c, step = scan_.along() / scan_.c;
        double const offset = scan_.x + static_cast<double>(first) * step;
        vector const* const pixels = source_.begin() + used.first;
        for (std::size_t k = 0; k < used.count(); ++k) {
            double const x = offset + (used.first + static_cast<double>(k) + 0.5 - scan_.y) * shear;
            resample_line(pixels[k].begin(), cols(source_), x, step, scan_.along() > 1, row_.data(), columns,
                          work_);
            for (std::size_t i = 0; i < columns; ++i) sheared_.line(i)[k] = row_[i];
        }
    }

    image const& source_;
    upright_scan const& scan_;
    line_block sheared_;
    std::vector<double> row_, work_;
};

// The columns of the scan become rows of the result when they are to be `turned`.
image scanned(image const& source, upright_scan const& scan, bool turned) {
    image result;
    std::vector<double*> const lines = turned ? rows_to_write(result, scan.columns, scan.rows)
                                              : rows_to_write(result, scan.rows, scan.columns);

    std::size_t const longest = std::max<std::size_t>(rows(source), scan.rows);
    std::size_t const most = std::clamp<std::size_t>((std::size_t{1} << 18) / longest, 1, 32);  // up to 2 MiB
    std::size_t const grain = std::max(most, (std::size_t{1} << 16) / longest);
    parallel_for(scan.columns, grain, [&](std::size_t from, std::size_t to) {
        column_scan columns(source, scan);
        line_block lying;
        for (std::size_t first = from; first < to; first += most) {
            std::size_t const count = std::min(most, to - first);
            if (turned) {
                columns.run(first, count, [&](std::size_t i) { return lines[first + i]; });
                continue;
            }
            lying.reset(count, scan.rows);
            columns.run(first, count, [&](std::size_t i) { return lying.line(i); });
            for (std::size_t r = 0; r < scan.rows; ++r) {
                for (std::size_t i = 0; i < count; ++i) lines[r][first + i] = lying.line(i)[r];
            }
        }
    });
    return result;
}

// The sine of pi as a number is not quite 0: the corners of a window of the size of the image, turned by pi,
// lie about 1e-13 outside.
bool lies_within(interval const& extent, double size) {
    constexpr double slack = 1e-9;
    return extent.low >= -slack && extent.high <= size + slack;
}

}  // namespace

image rotate(image source, double x, double y, double angle, double width, unsigned int out_width,
             double height, unsigned int out_height) {
    for (double number : {x, y, angle, width, height}) {
        if (!std::isfinite(number)) return image();
    }
    double const s = std::sin(angle), c = std::cos(angle);
    if (width < 0) {
        return rotate(source, x + width * c, y + width * s, angle, -width, out_width, height, out_height)
            .mirror_y();
    }
    if (height < 0) {
        return rotate(source, x - height * s, y + height * c, angle, width, out_width, -height, out_height)
            .mirror_x();
    }

    // The corners a, b, e, d in the order of the sides, from (x, y) along the width first.
    point const a(true, x, y), b = a + point(false, width * c, width * s),
                               across(false, -height * s, height * c), e = b + across, d = a + across;
    interval extent_x, extent_y;
    for (point const& corner : {a, b, e, d}) {
        extent_x.widen(corner.x());
        extent_y.widen(corner.y());
    }
    constexpr unsigned int longest = std::numeric_limits<int>::max();
    if (rows(source) > longest || cols(source) > longest || is_oversized(out_height, out_width))
        return image();
    if (rows(source) == 0 || cols(source) == 0) return image();
    if (!lies_within(extent_x, cols(source)) || !lies_within(extent_y, rows(source))) return image();
    if (out_height == 0 || out_width == 0) return image(out_height, 0);

    // The side that runs most nearly along the rows, from the left, is a-b, d-a, e-d or b-e. The quadrant of
    // angle + pi / 4, taken from the turned direction: of a large angle the sum would not fit s and c.
    switch (quadrant(c - s, c + s)) {
        case 0:
            return scanned(source, {a.x(), a.y(), c, s, width, height, out_width, out_height}, false);
        case 1:
            return scanned(source, {d.x(), d.y(), s, -c, height, width, out_height, out_width}, true)
                .mirror_x();
        case 2:
            return scanned(source, {e.x(), e.y(), -c, -s, width, height, out_width, out_height}, false)
                .mirror_x()
                .mirror_y();
        default:
            return scanned(source, {b.x(), b.y(), -s, c, height, width, out_height, out_width}, true)
                .mirror_y();
    }
}

}  // namespace tvmath
