#pragma once

#include <string>
#include <utility>
#include <vector>

#include "construct/construct_feature.h"
#include "tvmath/circle.h"
#include "tvmath/multi_solution.h"

inline namespace tvmath {

enum class operation { nearest, farthest, intersect, tangent, bisect, angle };

/// The forms of a pair for which there are several constructions.
enum class construct_form {
    only,     ///< there is but one
    xy,       ///< in XY
    space,    ///< in space
    circle,   ///< the answer is a circle, whatever the tilt
    ellipse,  ///< the answer is the true section
};

/// The word of the command line: "xy", "space", ...
char const* form_name(construct_form form);

struct construct_input {
    std::vector<construct_feature> features;
    double radius = 0;
    Angle_Description const* reference = nullptr;  ///< the angle to be found again; null for none
};

/// What a construction gives: records, in its order, and the memory of a choice among them, if it has one.
struct construct_answers {
    std::vector<std::shared_ptr<Geometry_Description>> records;
    idioms::ref<multi_solution> memory;
};

/// One construction: for these kinds, in this order.
struct construct_row {
    operation what;
    std::vector<feature_kind> kinds;
    construct_form form;
    bool takes_radius;
    construct_answers (*make)(construct_input const&);
};

/// All constructions. Of one pair those with the more general answer come first.
std::vector<construct_row> const& construct_rows();

// What follows makes the rows.

void add_distances(std::vector<construct_row>& rows);
void add_intersections(std::vector<construct_row>& rows);
void add_tangents(std::vector<construct_row>& rows);

// Answers of single shapes; none where a shape is trivial.
construct_answers answers_of(point const& p);
construct_answers answers_of(line const& l);
construct_answers answers_of(circle const& c);
construct_answers answers_of(ellipse const& e);
inline construct_answers answers_of(construct_answers made) {
    return made;
}
/// The answers of a construction that fills a list of records and returns its memory.
template <class kind, class function>
construct_answers remembered(function construct) {
    std::vector<kind> list;
    construct_answers answers;
    answers.memory = construct(list);
    for (kind const& record : list) answers.records.push_back(std::make_shared<kind>(record));
    return answers;
}

namespace construct_detail {
template <class function, class... shapes, std::size_t... i>
construct_answers call(construct_input const& in, std::index_sequence<i...>) {
    return answers_of(function{}(shape_of<shapes>(in.features[i])...));
}
}  // namespace construct_detail

/// Adds the construction that `function`, which has no captures, makes of these shapes.
template <class... shapes, class function>
void add_row(std::vector<construct_row>& rows, operation what, construct_form form, function) {
    rows.push_back({what, {feature_kind_of<shapes>...}, form, false, [](construct_input const& in) {
                        return construct_detail::call<function, shapes...>(
                            in, std::index_sequence_for<shapes...>());
                    }});
}

/// The same for both orders of two different shapes.
template <class first, class second, class function>
void add_both(std::vector<construct_row>& rows, operation what, construct_form form, function f) {
    add_row<first, second>(rows, what, form, f);
    add_row<second, first>(rows, what, form, f);
}

}  // namespace tvmath
