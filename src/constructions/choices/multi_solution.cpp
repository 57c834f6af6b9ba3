#include "tvmath/multi_solution.h"

#include <algorithm>

#include "tvmath/construction_choice.h"

inline namespace tvmath {

multi_solution::~multi_solution() = default;

void multi_solution::on_zero_reference_count() {
    storage::on_zero_reference_count();
}

void multi_solution::apply_transform(transform, transform) {}

namespace dynamic {
namespace {

using link = abstract_factory<multi_solution>;

// Set before any static object is made, so that factories may register in any order.
constinit link* head = nullptr;

}  // namespace

link::abstract_factory() : next_(head) {
    head = this;
}

link::~abstract_factory() {
    for (link** at = &head; *at; at = &(*at)->next_) {
        if (*at != this) continue;
        *at = next_;
        return;
    }
}

link* link::first() {
    return head;
}

namespace {

// Here, beside the only reader of the list, so that no linker leaves them out.
template <class kind>
struct known : factory<kind, multi_solution> {
    known() : factory<kind, multi_solution>(as_wide(kind().key())) {}
};
known<circle_tan_tan_fit_multi> circle_fit;
known<circle_tan_tan_tan_multi> circle_tangent;
known<circle_tan_tan_val_multi> circle_value;
known<bisect_line_line> bisectors;
known<tangent_line_multi> tangent_lines;
known<tangent_line_multi_old> tangent_lines_old;
known<intersect_ellipse_ellipse> ellipse_points;
known<intersect_line_ellipse> line_points;
known<intersect_curve> curve_points;
known<multsln_closest_point3d> closest_points;

}  // namespace
}  // namespace dynamic

namespace Persistence {

wide_string to_ascii(idioms::ref<multi_solution> const& solution) {
    return !solution ? as_wide(u"()") : solution->to_text();
}

idioms::ref<multi_solution> to_multi_solution(unsigned short const* text) {
    if (!text) return {};
    wide_string_view const whole(text);
    std::size_t const start = std::min(whole.find_first_not_of(' '), whole.size());
    std::size_t const end = std::min(whole.find(' ', start), whole.size());
    std::size_t const rest = std::min(whole.find_first_not_of(' ', end), whole.size());
    wide_string const key(whole.substr(start, end - start));
    for (dynamic::link* at = dynamic::link::first(); at; at = at->next()) {
        idioms::ref<multi_solution> made(at->create(key.c_str()));
        if (!made) continue;
        if (made->from_text(whole.data() + rest)) return made;
        break;
    }
    return {};
}

}  // namespace Persistence
}  // namespace tvmath
