#include <algorithm>
#include <limits>

#include "persistence/number_text.h"
#include "persistence/text_items.h"
#include "persistence/token_reader.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace Persistence {

using namespace token_reader;

namespace {

template <class list, class element>
list as_list(std::vector<element> const& elements, list const& fallback) {
    if (elements.size() > std::numeric_limits<unsigned int>::max()) return fallback;
    return list(idioms::array<element>(static_cast<unsigned int>(elements.size()), elements.data()));
}

point made_point(bool location, double const* numbers, int count, point const& fallback) {
    switch (count) {
        case 2:
            return point(location, numbers[0], numbers[1]);
        case 3:
            return point(location, numbers[0], numbers[1], numbers[2]);
        default:
            return fallback;
    }
}

// Room for a list whose items are about as long as the first one. Never more than for items of eight units,
// because a text may start with the shortest and ask for far more memory than it takes itself.
std::size_t likely_items(std::size_t length, std::ptrdiff_t first_item) {
    return length / static_cast<std::size_t>(std::max<std::ptrdiff_t>(first_item, 8)) / 8 * 9 + 1;
}

}  // namespace

point read_point(bool location, wide_string_view text, point const& fallback) {
    double numbers[3];
    return made_point(location, numbers, read_numbers(text, numbers, 3), fallback);
}

void read_points(wide_string_view text, std::vector<point>& points) {
    points.clear();
    double numbers[3];
    for (item_walk items(text); !items.at_end();) {
        wide_char const* const start = items.position();
        int const count = items.next_numbers(numbers, 3);
        points.push_back(made_point(*start == '(', numbers, count, point()));
        if (points.size() == 1) points.reserve(likely_items(text.size(), items.position() - start));
    }
}

curve read_curve(wide_string_view text, curve const& fallback) {
    if (text.empty()) return fallback;
    std::vector<point> points;
    read_points(text, points);
    return as_list(points, fallback);
}

vector read_vector(wide_string_view text, vector const& fallback) {
    if (text.empty()) return fallback;
    std::vector<double> numbers;
    for (item_walk items(text); !items.at_end();) numbers.push_back(items.next_number());
    return as_list(numbers, fallback);
}

transform read_transform(wide_string_view text, transform const& fallback) {
    wide_string_view rows[6];
    item_walk items(text);
    int count = 0;
    while (!items.at_end() && count < 6) rows[count++] = interior(items.next());
    if (!items.at_end() || (count != 4 && count != 6)) return fallback;

    int const columns = count == 4 ? 3 : 4;
    idioms::array<double> block(static_cast<unsigned int>(count * columns));
    double* to = block.lazycopy_begin();
    for (int row = 0; row < count; ++row, to += columns) {
        double numbers[4];
        int const found = read_numbers(rows[row], numbers, columns);
        if (found >= columns - 1) std::copy_n(numbers, found, to + (columns - found));
    }
    return transform(block);
}

double to_real(unsigned short const* text, double fallback) {
    return text && *text ? number_text::read_number(text) : fallback;
}

point to_point(bool location, unsigned short const* text, point fallback) {
    return read_point(location, whole(text), fallback);
}

bool from_ascii(unsigned short const* text, std::vector<point>& points) {
    if (!text || !*text) return false;
    read_points(whole(text), points);
    return true;
}

curve to_curve(unsigned short const* text, curve fallback) {
    return read_curve(whole(text), fallback);
}

vector to_vector(unsigned short const* text, vector fallback) {
    return read_vector(whole(text), fallback);
}

transform to_transform(unsigned short const* text, transform fallback) {
    return read_transform(whole(text), fallback);
}

}  // namespace Persistence
}  // namespace tvmath
