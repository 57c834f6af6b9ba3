#include "construct/construct_table.h"

inline namespace tvmath {
namespace {

template <class kind, class shape>
construct_answers one(shape const& geometry) {
    construct_answers answers;
    if (geometry.is_trivial()) return answers;
    auto const record = std::make_shared<kind>();
    record->geometry = geometry;
    answers.records.push_back(record);
    return answers;
}

}  // namespace

char const* form_name(construct_form form) {
    static char const* const names[] = {"", "xy", "space", "circle", "ellipse"};
    return names[static_cast<int>(form)];
}

construct_answers answers_of(point const& p) {
    construct_answers answers;
    if (p.is_trivial()) return answers;
    auto const record = std::make_shared<Point_Description>();
    record->position = p;
    answers.records.push_back(record);
    return answers;
}

construct_answers answers_of(line const& l) {
    return one<Segment_Description>(l);
}

construct_answers answers_of(circle const& c) {
    return one<Circle_Description>(c);
}

construct_answers answers_of(ellipse const& e) {
    return one<Ellipse_Description>(e);
}

std::vector<construct_row> const& construct_rows() {
    static std::vector<construct_row> const all = [] {
        std::vector<construct_row> rows;
        add_distances(rows);
        add_intersections(rows);
        add_tangents(rows);
        return rows;
    }();
    return all;
}

}  // namespace tvmath
