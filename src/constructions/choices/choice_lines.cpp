#include <algorithm>
#include <utility>

#include "choice_text.h"
#include "constructions/flat_ellipse.h"
#include "tvmath/construction_choice.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

std::vector<line_ends> ends_of(std::vector<line> const& lines) {
    std::vector<line_ends> list;
    for (line const& l : lines) {
        line_ends ends;
        if (!is_empty(l)) ends = {l.basis(0) - l.basis(1), l.basis(0) + l.basis(1)};
        list.push_back(ends);
    }
    return list;
}

}  // namespace

tangent_line_multi::tangent_line_multi(std::vector<line> const& lines) : solution_list(ends_of(lines)) {}

wide_string tangent_line_multi::answers_text() const {
    std::vector<point> points;
    for (line_ends const& ends : answers_) {
        for (point p : {ends.start, ends.end}) {
            if (!p.is_trivial()) p.project2d();
            points.push_back(p);
        }
    }
    return as_wide(u" ") + Persistence::to_ascii(points, 8);
}

bool tangent_line_multi::from_text(unsigned short const* text) {
    unsigned int index = 0;
    std::vector<point> points;
    if (!read_index_and_points(text, index, points) || points.size() % 2 != 0) return false;
    index_ = index;
    answers_.clear();
    for (std::size_t i = 0; i < points.size(); i += 2) answers_.push_back({points[i], points[i + 1]});
    return true;
}

tangent_line_multi_old::tangent_line_multi_old(std::vector<std::vector<point>> lists)
    : lists_(std::move(lists)) {}

bool tangent_line_multi_old::has(unsigned int index) const {
    return index < lists_.size() && std::any_of(lists_[index].begin(), lists_[index].end(),
                                                [](point const& p) { return !p.is_trivial(); });
}

bool tangent_line_multi_old::update_from(multi_solution const* previous) {
    auto const* const old = dynamic_cast<tangent_line_multi_old const*>(previous);
    if (!old || !old->has(old->index_) || !has(old->index_)) return false;
    index_ = old->index_;
    return true;
}

void tangent_line_multi_old::apply_transform(transform, transform move) {
    for (std::vector<point>& list : lists_) {
        for (point& p : list) {
            if (!p.is_trivial()) p *= move;
        }
    }
}

wide_string tangent_line_multi_old::answers_text() const {
    wide_string text;
    for (std::vector<point> const& list : lists_) {
        if (list.empty()) break;
        for (point const& p : list) {
            if (p.is_trivial()) return text;
            text += number_item(p.x()) + number_item(p.y());
        }
    }
    return text;
}

bool tangent_line_multi_old::from_text(unsigned short const* text) {
    std::vector<double> numbers;
    if (!read_index_and_numbers(text, 2, index_, numbers)) return false;
    lists_.clear();
    for (std::size_t i = 0; i < numbers.size(); i += 2) {
        if (i % 4 == 0) lists_.emplace_back();
        lists_.back().push_back(point(true, numbers[i], numbers[i + 1]));
    }
    return true;
}

}  // namespace tvmath
