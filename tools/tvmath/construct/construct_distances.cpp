#include "construct/construct_table.h"
#include "tvmath/distance.h"

inline namespace tvmath {
namespace {

using list = std::vector<point>;

// Searches in space take no flat points.
template <class shape>
shape raised(shape s) {
    if constexpr (std::is_same_v<shape, point>) s.promote3d();
    if constexpr (std::is_same_v<shape, list>) {
        for (point& p : s) p.promote3d();
    }
    return s;
}

point flat(point p) {
    p.project2d();
    return p;
}

// From a point to the place that `foot` finds for it, in the order of the arguments.
template <class shape, class function>
line to_foot(point const& p, shape const& s, function foot) {
    return distance_fit(p, foot(p, s));
}
template <class shape, class function>
line to_foot(shape const& s, point const& p, function foot) {
    return distance_fit(foot(p, s), p);
}

void add_nearest_of_lists(std::vector<construct_row>& rows) {
    auto const op = operation::nearest;
    auto const xy = construct_form::xy, space = construct_form::space;
    auto const in_space = [](auto const& a, auto const& b) { return distance_near_3d(raised(a), raised(b)); };
    auto const in_xy = [](auto const& a, auto const& b) { return distance_near_2d(a, b); };
    add_row<list, list>(rows, op, space, in_space);
    add_both<point, list>(rows, op, space, in_space);
    add_both<point, list>(rows, op, xy, in_xy);
    add_both<list, line>(rows, op, space, in_space);
    add_both<list, line>(rows, op, xy, in_xy);
    add_both<list, plane>(rows, op, space, in_space);
    add_both<list, curve>(
        rows, op, space, [](auto const& a, auto const& b) { return distance_near_2d(raised(a), raised(b)); });
}

void add_nearest(std::vector<construct_row>& rows) {
    auto const op = operation::nearest;
    auto const xy = construct_form::xy, space = construct_form::space;
    auto const near = [](auto const& a, auto const& b) { return distance_near(raised(a), raised(b)); };
    auto const fit = [](auto const& a, auto const& b) { return distance_fit(a, b); };
    add_row<point, point>(rows, op, space, fit);
    add_row<point, point>(rows, op, xy,
                          [](auto const& a, auto const& b) { return distance_fit(flat(a), flat(b)); });
    add_both<point, line>(rows, op, space, [](auto const& a, auto const& b) { return distance_fit3d(a, b); });
    add_both<point, line>(rows, op, xy, fit);
    add_both<point, plane>(rows, op, space, fit);
    add_both<point, rectangle>(rows, op, space, [](auto const& a, auto const& b) {
        return to_foot(a, b, [](point const& p, rectangle const& r) { return point_nearest_on(p, r); });
    });
    add_both<point, ellipse>(rows, op, space, [](auto const& a, auto const& b) {
        return to_foot(a, b, [](point const& p, ellipse const& e) { return point_nearest3d_on(p, e); });
    });
    add_both<point, ellipse>(rows, op, xy, [](auto const& a, auto const& b) { return distance_near(a, b); });
    add_both<point, curve>(rows, op, space, near);
    add_both<line, curve>(rows, op, xy, near);
    add_both<line, ellipse>(rows, op, xy, near);
    add_row<ellipse, ellipse>(rows, op, space, near);
    add_row<curve, curve>(rows, op, space, near);
}

void add_farthest(std::vector<construct_row>& rows) {
    auto const op = operation::farthest;
    auto const xy = construct_form::xy, space = construct_form::space;
    auto const in_space = [](auto const& a, auto const& b) { return distance_far_3d(raised(a), raised(b)); };
    auto const in_xy = [](auto const& a, auto const& b) { return distance_far_2d(a, b); };
    auto const far = [](auto const& a, auto const& b) { return distance_far(raised(a), raised(b)); };
    add_row<list, list>(rows, op, space, in_space);
    add_both<point, list>(rows, op, space, in_space);
    add_both<point, list>(rows, op, xy, in_xy);
    add_both<list, line>(rows, op, space, in_space);
    add_both<list, line>(rows, op, xy, in_xy);
    add_both<list, plane>(rows, op, space, in_space);
    add_both<list, curve>(rows, op, space,
                          [](auto const& a, auto const& b) { return distance_far_2d(raised(a), raised(b)); });
    add_both<point, ellipse>(rows, op, xy, [](auto const& a, auto const& b) { return distance_far(a, b); });
    add_both<point, curve>(rows, op, space, far);
    add_both<line, curve>(rows, op, xy, far);
    add_both<line, ellipse>(rows, op, xy, far);
    add_row<ellipse, ellipse>(rows, op, space, far);
}

}  // namespace

void add_distances(std::vector<construct_row>& rows) {
    add_nearest_of_lists(rows);
    add_nearest(rows);
    add_farthest(rows);
}

}  // namespace tvmath
