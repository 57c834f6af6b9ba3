#include <algorithm>
#include <array>
#include <cmath>

#include "choice_text.h"
#include "persistence/token_reader.h"
#include "tvmath/construction_choice.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

std::vector<point> as_vector(idioms::array<point> const& list) {
    return std::vector<point>(list.begin(), list.end());
}

wide_string planar_text(std::vector<point> const& points) {
    wide_string text;
    for (point const& p : points) {
        if (p.is_trivial()) break;
        text += number_item(p.x()) + number_item(p.y());
    }
    return text;
}

constexpr std::size_t most = 4;  // common points of two ellipses

// Squared distances, row by old point and column by new one; -1 where one of both does not exist.
using distance_table = std::array<std::array<double, most>, most>;

distance_table squared_distances(std::vector<point> const& old, std::vector<point> const& fresh) {
    distance_table table;
    for (std::size_t i = 0; i < most; ++i) {
        for (std::size_t k = 0; k < most; ++k) {
            table[i][k] = -1;
            if (i >= old.size() || k >= fresh.size()) continue;
            if (old[i].is_trivial() || fresh[k].is_trivial()) continue;
            double const d = distance2d(old[i], fresh[k]), squared = d * d;
            if (std::isfinite(squared)) table[i][k] = squared;
        }
    }
    return table;
}

// The column that the row is assigned to, `most` for none: as many pairs as can be, then the least sum.
std::size_t assigned_column(distance_table const& table, std::size_t row) {
    std::array<std::size_t, most> columns{0, 1, 2, 3};
    std::size_t found = most;
    int most_pairs = 0;
    double least = 0;
    do {
        int pairs = 0;
        double sum = 0;
        for (std::size_t i = 0; i < most; ++i) {
            double const d = table[i][columns[i]];
            if (d < 0) continue;
            ++pairs;
            sum += d;
        }
        if (pairs < most_pairs || (pairs == most_pairs && !(sum < least))) continue;
        most_pairs = pairs;
        least = sum;
        found = table[row][columns[row]] < 0 ? most : columns[row];
    } while (std::next_permutation(columns.begin(), columns.end()));
    return found;
}

}  // namespace

intersect_curve::intersect_curve(idioms::array<point> const& points) : solution_list(as_vector(points)) {}

wide_string intersect_curve::answers_text() const {
    return planar_text(answers_);
}

bool intersect_curve::from_text(unsigned short const* text) {
    std::vector<double> numbers;
    if (!read_index_and_numbers(text, 2, index_, numbers)) return false;
    answers_.clear();
    for (std::size_t i = 0; i < numbers.size(); i += 2) {
        answers_.push_back(point(true, numbers[i], numbers[i + 1]));
    }
    return true;
}

intersect_ellipse_ellipse::intersect_ellipse_ellipse(idioms::array<point> const& points)
    : solution_list(as_vector(points)) {
    if (answers_.size() > most) answers_.resize(most);
}

wide_string intersect_ellipse_ellipse::answers_text() const {
    return planar_text(answers_);
}

bool intersect_ellipse_ellipse::update_from(multi_solution const* previous) {
    if (!same_class(previous)) return false;
    auto const& old = static_cast<intersect_ellipse_ellipse const&>(*previous);
    if (!old.chosen()) return false;
    std::size_t const column = assigned_column(squared_distances(old.answers_, answers_), old.index_);
    if (column == most) return false;
    index_ = static_cast<unsigned int>(column);
    return true;
}

bool intersect_ellipse_ellipse::from_text(unsigned short const* text) {
    choice_reader reader(token_reader::whole(text));
    unsigned int index = 0;
    if (!reader.take_index(index)) return false;
    std::vector<point> points;
    for (double x, y; points.size() < most && reader.take_number(x);) {
        if (!reader.take_number(y)) return false;
        points.push_back(point(true, x, y));
    }
    index_ = index;
    answers_ = std::move(points);
    return true;
}

multsln_closest_point3d::multsln_closest_point3d(curve const& candidates)
    : solution_list(as_vector(candidates)) {}

void multsln_closest_point3d::select(unsigned int index) {
    if (index < answers_.size()) index_ = index;
}

wide_string multsln_closest_point3d::answers_text() const {
    return as_wide(u" ") + Persistence::to_ascii(answers_, 8);
}

bool multsln_closest_point3d::from_text(unsigned short const* text) {
    unsigned int index = 0;
    std::vector<point> points;
    if (!read_index_and_points(text, index, points)) return false;
    if (index != 0 && index >= points.size()) return false;
    index_ = index;
    answers_ = std::move(points);
    return true;
}

}  // namespace tvmath
