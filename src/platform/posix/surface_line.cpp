#include <algorithm>
#include <cmath>

#include "platform/posix/surface_memory.h"

inline namespace tvmath {
namespace {

// Coordinates up to 2^40 multiply to 2^83.
__extension__ using wide_int = __int128;

// The pixels of a line of width 1: pixel i, of 0 to length - 1, is i steps along the longer axis from the
// start, and on the other axis at
//     ceil(i rise / length - 1/2)
// from it: rounded to the nearest, a tie to the smaller one.
struct thin_line {
    std::int64_t start, step, side_start, rise, length;

    std::int64_t side(std::int64_t i) const {
        wide_int const over = wide_int{2} * i * rise - length, unit = wide_int{2} * length;
        wide_int const cut = over / unit;
        return side_start + static_cast<std::int64_t>(cut + (cut * unit < over));
    }
};

// The first i from `low` on that holds, if all after the first one do; `high` if none below it does.
template <class predicate>
std::int64_t first_of(std::int64_t low, std::int64_t high, predicate holds) {
    while (low < high) {
        std::int64_t const middle = low + (high - low) / 2;
        if (holds(middle)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

// Calls plot(along, side) for the pixels of the line on a surface of that size. The part on the surface is
// found first, so that what lies beside it costs nothing and the pixels on it are those of the whole line.
template <class plotter>
void walk_thin(thin_line const& line, int size, int side_size, plotter plot) {
    std::int64_t first = std::max<std::int64_t>(0, line.step > 0 ? -line.start : line.start - (size - 1));
    std::int64_t last = std::min(line.length, line.step > 0 ? size - line.start : line.start + 1);
    if (first >= last) return;
    // The side never turns back.
    auto const from_low = [&](std::int64_t i) { return line.side(i) >= 0; };
    auto const from_high = [&](std::int64_t i) { return line.side(i) >= side_size; };
    if (line.rise >= 0) {
        first = first_of(first, last, from_low);
        last = first_of(first, last, from_high);
    } else {
        first = first_of(first, last, [&](std::int64_t i) { return !from_high(i); });
        last = first_of(first, last, [&](std::int64_t i) { return !from_low(i); });
    }
    if (first >= last) return;

    // From here on Bresenham's steps: `over` is how far the tie is passed, in units of 1 / (2 length).
    std::int64_t const unit = 2 * line.length;
    std::int64_t side = line.side(first);
    auto over = static_cast<std::int64_t>(wide_int{2} * first * line.rise - line.length -
                                          wide_int{unit} * (side - line.side_start));
    for (std::int64_t i = first; i < last; ++i) {
        plot(line.start + i * line.step, side);
        over += 2 * line.rise;
        if (over > 0) {
            over -= unit;
            ++side;
        } else if (over <= -unit) {
            over += unit;
            --side;
        }
    }
}

void draw_thin(HBITMAP__& target, std::int64_t x, std::int64_t y, std::int64_t dx, std::int64_t dy,
               std::uint32_t colour) {
    std::int64_t const along_x = std::abs(dx), along_y = std::abs(dy);
    if (along_x >= along_y) {
        walk_thin({x, dx < 0 ? -1 : 1, y, dy, along_x}, target.width, target.height,
                  [&](std::int64_t column, std::int64_t row) { target.row(row)[column] = colour; });
    } else {
        walk_thin({y, dy < 0 ? -1 : 1, x, dx, along_y}, target.height, target.width,
                  [&](std::int64_t row, std::int64_t column) { target.row(row)[column] = colour; });
    }
}

// What is known of x along a row.
struct row_part {
    double low = -HUGE_VAL, high = HUGE_VAL;

    // Leaves the x for which slope x + offset lies between `least` and `most`.
    void narrow(double slope, double offset, double least, double most) {
        if (slope == 0.0) {
            if (!(offset >= least && offset <= most)) high = -HUGE_VAL;
            return;
        }
        double const a = (least - offset) / slope, b = (most - offset) / slope;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
    }
    void join(row_part const& other) {
        if (!(other.low <= other.high)) return;
        bool const was_empty = !(low <= high);
        low = was_empty ? other.low : std::min(low, other.low);
        high = was_empty ? other.high : std::max(high, other.high);
    }
};

// The part of a row that a disc covers, `dy` from its middle.
row_part disc_part(double x, double dy, double radius) {
    double const square = radius * radius - dy * dy;
    if (square < 0) return {HUGE_VAL, -HUGE_VAL};
    double const half = std::sqrt(square);
    return {x - half, x + half};
}

// A disc swept along a straight line: a strip with a disc at either end, convex, so that each row has one
// part in it.
void draw_wide(HBITMAP__& target, double x, double y, double dx, double dy, double width,
               std::uint32_t colour) {
    double const steps = std::max(std::fabs(dx), std::fabs(dy)), kept = (steps - 1) / steps;
    double const radius = width / 2, middle = std::fmod(width, 2) == 0 ? 0.5 : 0.0;
    double const length = std::sqrt(dx * dx + dy * dy), ux = dx / length, uy = dy / length;
    x -= middle;
    y -= middle;
    double const end_x = x + dx * kept, end_y = y + dy * kept;

    double const lowest = std::ceil(std::min(y, end_y) - radius),
                 highest = std::floor(std::max(y, end_y) + radius);
    auto const first = static_cast<int>(std::clamp<double>(lowest, 0, target.height));
    auto const last = static_cast<int>(std::clamp<double>(highest, -1, target.height - 1));
    for (int row = first; row <= last; ++row) {
        row_part part;
        part.narrow(uy, -(row - y) * ux - x * uy, -radius, radius);
        part.narrow(ux, (row - y) * uy - x * ux, 0, length * kept);
        part.join(disc_part(x, row - y, radius));
        part.join(disc_part(end_x, row - end_y, radius));
        double const from = std::max(std::ceil(part.low), 0.0),
                     to = std::min(std::floor(part.high), target.width - 1.0);
        if (!(from <= to)) continue;
        std::uint32_t* const pixels = target.row(row);
        std::fill(pixels + static_cast<int>(from), pixels + static_cast<int>(to) + 1, colour);
    }
}

}  // namespace

void line_to(HDC__* device, std::int64_t x, std::int64_t y) {
    std::int64_t const from_x = device->x, from_y = device->y;
    move_to(device, x, y);
    std::int64_t const dx = device->x - from_x, dy = device->y - from_y;
    if (dx == 0 && dy == 0) return;
    std::uint32_t const colour = visible_colour(device->pen.colour);
    if (device->pen.width == 1) {
        draw_thin(*device->target, from_x, from_y, dx, dy, colour);
    } else {
        draw_wide(*device->target, static_cast<double>(from_x), static_cast<double>(from_y),
                  static_cast<double>(dx), static_cast<double>(dy), device->pen.width, colour);
    }
}

}  // namespace tvmath
