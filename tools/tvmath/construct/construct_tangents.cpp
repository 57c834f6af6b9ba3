#include "construct/construct_table.h"
#include "tvmath/angle.h"
#include "tvmath/bisector.h"
#include "tvmath/tangent.h"
#include "tvmath/tangent_circle.h"

inline namespace tvmath {
namespace {

construct_answers tangent_lines(construct_input const& in) {
    return remembered<Segment_Description>([&in](auto& list) {
        return line_tangent(in.features[0].record.get(), in.features[1].record.get(), list);
    });
}

construct_answers circles_at_lines(construct_input const& in) {
    return remembered<Circle_Description>([&in](auto& list) {
        return circle_tangent_tangent_value(shape_of<line>(in.features[0]), shape_of<line>(in.features[1]),
                                            in.radius, list);
    });
}

construct_answers circles_at_ellipses(construct_input const& in) {
    return remembered<Circle_Description>([&in](auto& list) {
        return circle_arc_tangent_tangent_value(shape_of<ellipse>(in.features[0]),
                                                shape_of<ellipse>(in.features[1]), in.radius, list);
    });
}

construct_answers circles_through(line const& a, line const& b, point const& p) {
    return remembered<Circle_Description>(
        [&](auto& list) { return circle_tangent_tangent_fit(a, b, p, list); });
}

construct_answers circles_at_three(line const& a, line const& b, line const& c) {
    return remembered<Circle_Description>(
        [&](auto& list) { return circle_tangent_tangent_tangent(a, b, c, list); });
}

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

void add_circles(std::vector<construct_row>& rows) {
    auto const op = operation::tangent;
    auto const only = construct_form::only;
    add_row<point, line>(rows, op, only,
                         [](point const& p, line const& l) { return circle_centered_tangent(p, l); });
    add_row<line, point>(rows, op, only,
                         [](line const& l, point const& p) { return circle_centered_tangent(p, l); });
    rows.push_back({op, {feature_kind::line, feature_kind::line}, only, true, circles_at_lines});
    rows.push_back({op, {feature_kind::ellipse, feature_kind::ellipse}, only, true, circles_at_ellipses});
    add_row<line, line, line>(rows, op, only, [](line const& a, line const& b, line const& c) {
        return circles_at_three(a, b, c);
    });
    add_row<line, line, point>(rows, op, only, [](line const& a, line const& b, point const& p) {
        return circles_through(a, b, p);
    });
    add_row<line, point, line>(rows, op, only, [](line const& a, point const& p, line const& b) {
        return circles_through(a, b, p);
    });
    add_row<point, line, line>(rows, op, only, [](point const& p, line const& a, line const& b) {
        return circles_through(a, b, p);
    });
}

void add_bisectors(std::vector<construct_row>& rows) {
    auto const op = operation::bisect;
    auto const only = construct_form::only;
    auto const bisector = [](auto const& a, auto const& b) { return line_bisect(a, b); };
    add_row<line, line>(rows, op, only, [](line const& a, line const& b) {
        return remembered<Segment_Description>([&](auto& list) { return line_bisect(a, b, list); });
    });
    add_both<point, line>(rows, op, only, bisector);
    add_row<point, point>(rows, op, only, bisector);
}

}  // namespace

void add_tangents(std::vector<construct_row>& rows) {
    auto const only = construct_form::only;
    rows.push_back(
        {operation::tangent, {feature_kind::point, feature_kind::ellipse}, only, false, tangent_lines});
    rows.push_back(
        {operation::tangent, {feature_kind::ellipse, feature_kind::point}, only, false, tangent_lines});
    rows.push_back(
        {operation::tangent, {feature_kind::ellipse, feature_kind::ellipse}, only, false, tangent_lines});
    add_circles(rows);
    add_bisectors(rows);
    rows.push_back({operation::angle, {feature_kind::line, feature_kind::line}, only, false, angles});
}

}  // namespace tvmath
