#include <cmath>
#include <utility>

#include "imaging/row_pointers.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

// The pixel row or column of a coordinate that lies from 0 to `size` but for rounding, which may carry it
// over the border by a little. False for a coordinate that is farther out or no number: where those come
// from, the line is too far away for its numbers to tell where it meets the image.
bool find_index(double coordinate, int size, int& index) {
    if (!(coordinate > -0.5 && coordinate < size + 0.5)) return false;
    int const i = static_cast<int>(std::floor(coordinate));
    index = i < 0 ? 0 : i >= size ? size - 1 : i;
    return true;
}

bool lies_between(double x, double a, double b) {
    return (a > x) != (b > x);
}
// With the ends. Where these are one, they are too far away to be told apart, or the line runs along them.
bool lies_within(double x, double a, double b) {
    return a != b && ((a <= x && x <= b) || (b <= x && x <= a));
}

// A line against an image of some columns and rows, less a margin that keeps floor() off their numbers.
class clipped_line {
public:
    clipped_line(double x, double y, double dx, double dy, int columns, int rows)
        : x_(x), y_(y), dx_(dx), dy_(dy), columns_(columns), rows_(rows) {}

    bool find_ends(pixel& first, pixel& second) const {
        double const margin = 1e-10, top = margin, bottom = rows_ - margin;
        double left = margin, right = columns_ - margin;
        if ((dx_ < 0) != (dy_ < 0)) std::swap(left, right);
        // Each border's place along the line, times dx dy.
        double const a = (left - x_) * dy_, b = (right - x_) * dy_;
        double const c = (top - y_) * dx_, d = (bottom - y_) * dx_;
        return find_end(left, top, a, c, b, d, first) && find_end(right, bottom, b, d, a, c, second);
    }

private:
    // The end at a column border, if its place `at_column` is between those of the row borders, or else at a
    // row border. A line through a corner is between neither, so what the strict tests leave may lie on
    // the borders.
    bool find_end(double column, double row, double at_column, double at_row, double other_column,
                  double other_row, pixel& end) const {
        if (lies_between(at_column, at_row, other_row)) return end_at_column(column, at_column, end);
        if (lies_between(at_row, at_column, other_column)) return end_at_row(row, at_row, end);
        if (lies_within(at_column, at_row, other_row)) return end_at_column(column, at_column, end);
        if (lies_within(at_row, at_column, other_column)) return end_at_row(row, at_row, end);
        return false;
    }
    bool end_at_column(double column, double place, pixel& end) const {
        return find_index(column, columns_, end.x) && find_index(place / dx_ + y_, rows_, end.y);
    }
    bool end_at_row(double row, double place, pixel& end) const {
        return find_index(place / dy_ + x_, columns_, end.x) && find_index(row, rows_, end.y);
    }

    double x_, y_, dx_, dy_;
    int columns_, rows_;
};

}  // namespace

bool image::edge_points(double x, double y, double dx, double dy, pixel& first, pixel& second) const {
    int const c = static_cast<int>(cols(*this)), r = static_cast<int>(rows(*this));
    pixel one, two;
    if (c == 0 || !std::isfinite(x) || !std::isfinite(y) || !std::isfinite(dx) || !std::isfinite(dy))
        return false;
    if (!clipped_line(x, y, dx, dy, c, r).find_ends(one, two)) return false;
    first = one;
    second = two;
    return true;
}

image& image::hough(int offsets, int angles) {
    image lines(static_cast<unsigned int>(offsets > 0 ? offsets : 0),
                static_cast<unsigned int>(angles > 0 ? angles : 0));
    row_pointers const row(*this);
    unsigned int const middle_x = cols(*this) / 2, middle_y = rows(*this) / 2;
    vector* const result = lines.lazycopy_begin();
    for (unsigned int a = 0; a < cols(lines); ++a) {
        double const theta = pi / 2 - 0.2 + (a + 0.5) * 0.4 / angles;
        double const c = std::cos(theta), s = std::sin(theta), start = 0.5 - offsets / 2.0;
        double x = middle_x + start * c, y = middle_y + start * s;
        for (int r = 0; r < offsets; ++r, x += c, y += s) {
            pixel first, second;
            if (edge_points(x, y, -s, c, first, second)) result[r](a) = mean_under_line(row, first, second);
        }
    }
    return *this = lines.enhance();
}

}  // namespace tvmath
