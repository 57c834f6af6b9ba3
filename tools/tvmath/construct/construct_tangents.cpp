#include "construct/construct_table.h"
#include "tvmath/angle.h"

inline namespace tvmath {
namespace {

// The four angles of two lines. With a reference the first one is that angle, found again.
construct_answers angles(construct_input const& in) {
    line const a = shape_of<line>(in.features[0]), b = shape_of<line>(in.features[1]);
    Angle_Description first;
    construct_answers answers;
    if (!(in.reference ? angle_intersect(a, b, *in.reference, first) : angle_intersect(a, b, first)))
        return answers;
    std::vector<Angle_Description> all;
    get_angle_solutions(first, all);
    for (Angle_Description const& angle : all)
        answers.records.push_back(std::make_shared<Angle_Description>(angle));
    return answers;
}

}  // namespace

void add_tangents(std::vector<construct_row>& rows) {
    rows.push_back(
        {operation::angle, {feature_kind::line, feature_kind::line}, construct_form::only, false, angles});
}

}  // namespace tvmath
