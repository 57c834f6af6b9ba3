#include "construct/construct_table.h"
#include "tvmath/intersection.h"
#include "tvmath/intersection_choice.h"

inline namespace tvmath {

void add_intersections(std::vector<construct_row>& rows) {
    auto const op = operation::intersect;
    auto const xy = construct_form::xy, space = construct_form::space;
    auto const one = [](auto const& a, auto const& b) { return point_intersect(a, b); };
    auto const points = [](auto const& a, auto const& b) {
        return remembered<Point_Description>([&](auto& list) { return point_intersect(a, b, list); });
    };
    add_row<line, line>(rows, op, space, one);
    add_both<line, plane>(rows, op, space, one);
    add_row<plane, plane>(rows, op, space, [](auto const& a, auto const& b) {
        line const common = line_intersect(a, b);
        return common.size(1) > 0 ? common : line();  // parallel planes have a line without extent
    });
    add_both<line, sphere>(rows, op, space, points);
    add_both<line, cylinder>(rows, op, space, points);
    add_both<line, cone>(rows, op, space, points);
    add_both<line, ellipse>(rows, op, xy, points);
    add_both<line, curve>(rows, op, xy, points);
    add_row<ellipse, ellipse>(rows, op, xy, points);
    add_both<ellipse, curve>(rows, op, xy, points);
    add_row<curve, curve>(rows, op, xy, points);

    auto const as_circle = [](auto const& a, auto const& b) { return circle_intersect(a, b); };
    auto const as_ellipse = [](auto const& a, auto const& b) { return ellipse_intersect(a, b); };
    add_both<plane, sphere>(rows, op, construct_form::circle, as_circle);
    add_both<plane, cylinder>(rows, op, construct_form::ellipse, as_ellipse);
    add_both<plane, cylinder>(rows, op, construct_form::circle, as_circle);
    add_both<plane, cone>(rows, op, construct_form::ellipse, as_ellipse);
    add_both<plane, cone>(rows, op, construct_form::circle, as_circle);
    add_both<cylinder, cone>(rows, op, construct_form::circle, as_circle);
}

}  // namespace tvmath
