#include <iterator>
#include <string>

#include "persistence/number_text.h"
#include "persistence/text_elements.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace Persistence {
namespace {

using number_text::slot_size, number_text::write_number;

// Blanks between the numbers, without brackets. Takes `n` slots.
char* write_numbers(char* to, double const* numbers, unsigned int n, int precision) {
    for (unsigned int i = 0; i < n; ++i) {
        if (i != 0) *to++ = ' ';
        to = write_number(to, numbers[i], precision);
    }
    return to;
}

// Takes three slots and two brackets.
char* write_point(char* to, point const& p, int precision) {
    bool const direction = p.is_direction();
    *to++ = direction ? '{' : '(';
    to = write_numbers(to, &p[1], p.dimension(), precision);
    *to++ = direction ? '}' : ')';
    return to;
}

wide_string write_points(point const* points, std::size_t n, int precision) {
    return text_elements::bracketed(n, 3 * slot_size(precision) + 2, [=](char* to, std::size_t i) {
        return write_point(to, points[i], precision);
    });
}

wide_string write_list(double const* numbers, std::size_t n, int precision) {
    return text_elements::bracketed(n, slot_size(precision), [=](char* to, std::size_t i) {
        return write_number(to, numbers[i], precision);
    });
}

// The text of one element.
template <class writer>
wide_string written(std::size_t slot, writer const& write) {
    wide_string text;
    text_elements::append(text, 1, slot, [&](char* to, std::size_t) { return write(to); });
    return text;
}

bool has_offset(double const* block, std::size_t rows, std::size_t columns) {
    for (std::size_t row = 0; row < rows; ++row) {
        if (block[row * columns] != 0.0) return true;
    }
    return false;
}

}  // namespace

wide_string to_ascii(double value, int precision) {
    return written(slot_size(precision), [=](char* to) { return write_number(to, value, precision); });
}

wide_string to_ascii(point p, int precision) {
    return written(3 * slot_size(precision) + 2, [&](char* to) { return write_point(to, p, precision); });
}

wide_string to_ascii(std::vector<point> const& points, int precision) {
    return write_points(points.data(), points.size(), precision);
}

wide_string to_ascii(curve c, int precision) {
    return write_points(c.begin(), c.capacity(), precision);
}

wide_string to_ascii(vector v, int precision) {
    return write_list(v.begin(), v.capacity(), precision);
}

wide_string to_ascii(transform t, int precision) {
    unsigned int const columns = t.is_3d() ? 4 : 3, rows = t.is_3d() ? 6 : t.is_2d() ? 4 : 0;
    double const* const block = t.begin();
    unsigned int const left_out = has_offset(block, rows, columns) ? 0 : 1;
    std::size_t const slot = columns * slot_size(precision) + 3;
    return text_elements::bracketed(rows, slot, [=](char* to, std::size_t row) {
        if (row == rows / 2) *to++ = ' ';  // a second blank, in front of the inverse map
        *to++ = '(';
        to = write_numbers(to, block + row * columns + left_out, columns - left_out, precision);
        *to++ = ')';
        return to;
    });
}

wide_string to_ascii(nurb n, int precision) {
    TQ3NURBCurveData const& data = static_cast<nurb const&>(n);
    if (n.is_trivial()) return as_wide(u"()");
    wide_string text = as_wide(u"(") + to_wide(std::to_string(data.order)) + as_wide(u" ") +
                       to_wide(std::to_string(data.point_count));
    std::size_t const slot = slot_size(precision);
    text_elements::append(text, data.point_count, 4 * slot,
                          [=, points = data.control_points](char* to, std::size_t i) {
                              double const numbers[] = {points[i].x, points[i].y, points[i].z, points[i].w};
                              *to++ = ' ';
                              return write_numbers(to, numbers, 4, precision);
                          });
    text_elements::append(text, n.knots(), slot, [=, knots = data.knot_values](char* to, std::size_t i) {
        *to++ = ' ';
        return write_number(to, knots[i], precision);
    });
    text.push_back(')');
    return text;
}

wide_string to_ascii(cone const& c, int precision) {
    if (c.is_trivial()) return as_wide(u"()");
    double const numbers[] = {c.base.x(),    c.base.y(),   c.base.z(), c.top.x(),  c.top.y(), c.top.z(),
                              c.base_radius, c.top_radius, c.axis.x(), c.axis.y(), c.axis.z()};
    return write_list(numbers, std::size(numbers), precision);
}

}  // namespace Persistence
}  // namespace tvmath
