#include <cmath>
#include <typeinfo>
#include <utility>

#include "choice_text.h"
#include "geometry/xyz.h"
#include "tvmath/construction_choice.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

bool exists(point const& p) {
    return !p.is_trivial() && xyz(p).is_finite();
}
bool exists(circle const& c) {
    return exists(c.basis(0)) && std::isfinite(c.radius());
}
bool exists(line_ends const& l) {
    return exists(l.start) && exists(l.end);
}

double apart(point const& a, point const& b) {
    return distance2d(a, b);
}
double apart(circle const& a, circle const& b) {
    return std::hypot(distance2d(a.basis(0), b.basis(0)), a.radius() - b.radius());
}
// Of the same line whichever way it runs: swapped arguments of a construction reverse its answers.
double apart(line_ends const& a, line_ends const& b) {
    return std::min(apart(a.start, b.start) + apart(a.end, b.end),
                    apart(a.start, b.end) + apart(a.end, b.start));
}

template <class shape>
void carry(shape& s, transform const& t) {
    s *= t;
}
void carry(line_ends& l, transform const& t) {
    l.start *= t;
    l.end *= t;
}

}  // namespace

void indexed_solution::select(unsigned int index) {
    index_ = index;
}

void indexed_solution::selected(unsigned int& index) const {
    index = index_;
}

wide_string indexed_solution::to_text() const {
    return as_wide(u"(") + as_wide(key()) + as_wide(u" ") + index_text(index_) + answers_text() +
           as_wide(u")");
}

template <class answer>
solution_list<answer>::solution_list(std::vector<answer> answers) : answers_(std::move(answers)) {}

template <class answer>
solution_list<answer> const* solution_list<answer>::same_class(multi_solution const* other) const {
    return other && typeid(*other) == typeid(*this) ? static_cast<solution_list const*>(other) : nullptr;
}

template <class answer>
answer const* solution_list<answer>::chosen() const {
    return index_ < answers_.size() && exists(answers_[index_]) ? &answers_[index_] : nullptr;
}

template <class answer>
bool solution_list<answer>::update_from(multi_solution const* previous) {
    solution_list const* const old = same_class(previous);
    answer const* const wanted = old ? old->chosen() : nullptr;
    if (!wanted) return false;
    std::size_t nearest = answers_.size();
    double least = infinity;
    for (std::size_t i = 0; i < answers_.size(); ++i) {
        if (!exists(answers_[i])) continue;
        double const d = apart(*wanted, answers_[i]);
        if (d < least) {
            least = d;
            nearest = i;
        }
    }
    if (nearest == answers_.size()) return false;
    index_ = static_cast<unsigned int>(nearest);
    return true;
}

template <class answer>
void solution_list<answer>::apply_transform(transform, transform move) {
    for (answer& a : answers_) {
        if (exists(a)) carry(a, move);
    }
}

template class solution_list<point>;
template class solution_list<circle>;
template class solution_list<line_ends>;

}  // namespace tvmath
