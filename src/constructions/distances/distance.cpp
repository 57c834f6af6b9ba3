#include "tvmath/distance.h"

#include <cmath>

#include "geometry/xyz.h"

inline namespace tvmath {
namespace {

line line_in_xy(xyz const& middle, xyz const& half) {
    point const axis(false, half.x, half.y), across(false, -half.y, half.x);
    return line(make_transform(middle.location(false), axis, across));
}

line line_in_space(xyz const& middle, xyz const& half) {
    // Exact on purpose: any other direction has a perpendicular in XY, however short.
    bool const is_along_z = half.x == 0 && half.y == 0;
    double const size = length(half), in_xy = std::hypot(half.x, half.y);
    xyz const second = is_along_z ? xyz(1, 0, 0) : xyz(-half.y / in_xy * size, half.x / in_xy * size, 0);
    xyz const third = is_along_z ? cross(half, second) : cross((1 / size) * half, second);
    auto const axis = [](xyz const& a) { return point(false, a.x, a.y, a.z); };
    return line(make_transform(middle.location(true), axis(half), axis(second), axis(third)));
}

// The reverse of a line: each function that takes its arguments in the other order asks the first one with
// the ends exchanged, which changes no bit of the coordinates.
line reversed(line const& l) {
    if (l.is_trivial()) return l;
    point const middle = l.basis(0), half = l.basis(1);
    return l.is_3d() ? line_in_space(xyz(middle), -1.0 * xyz(half))
                     : line_in_xy(xyz(middle), -1.0 * xyz(half));
}

}  // namespace

line distance_fit(point const& a, point const& b) {
    if (a.is_trivial() || b.is_trivial()) return line();
    xyz const p(a), q(b), middle = 0.5 * (p + q), half = 0.5 * (q - p);
    if (!middle.is_finite() || !half.is_finite()) return line();
    return a.is_2d() && b.is_2d() ? line_in_xy(middle, half) : line_in_space(middle, half);
}

line distance_fit(point const& p, line l) {
    return distance_fit(p, point_nearest_on(p, l));
}

line distance_fit(line l, point const& p) {
    return reversed(distance_fit(p, l));
}

line distance_fit3d(point const& p, line l) {
    return distance_fit(p, point_nearest3d_on(p, l));
}

line distance_fit3d(line l, point const& p) {
    return reversed(distance_fit3d(p, l));
}

line distance_fit(point const& p, plane s) {
    return distance_fit(p, point_nearest3d_on(p, s));
}

line distance_fit(plane s, point const& p) {
    return reversed(distance_fit(p, s));
}

// A list and another feature: the point of the list first, then its distance.

line distance_near_3d(std::vector<point> const& list, point const& p) {
    return distance_fit(point_nearest_on_3d(p, list), p);
}

line distance_far_3d(std::vector<point> const& list, point const& p) {
    return distance_fit(point_farthest_on_3d(p, list), p);
}

line distance_near_3d(std::vector<point> const& list, line l) {
    return distance_fit3d(point_nearest_on_3d(l, list), l);
}

line distance_far_3d(std::vector<point> const& list, line l) {
    return distance_fit3d(point_farthest_on_3d(l, list), l);
}

line distance_near_3d(std::vector<point> const& list, plane s) {
    return distance_fit(point_nearest_on_3d(s, list), s);
}

line distance_far_3d(std::vector<point> const& list, plane s) {
    return distance_fit(point_farthest_on_3d(s, list), s);
}

line distance_near_2d(std::vector<point> const& list, point const& p) {
    return distance_fit(point_nearest_on_2d(p, list), p);
}

line distance_far_2d(std::vector<point> const& list, point const& p) {
    return distance_fit(point_farthest_on_2d(p, list), p);
}

line distance_near_2d(std::vector<point> const& list, line l) {
    return distance_fit(point_nearest_on_2d(l, list), l);
}

line distance_far_2d(std::vector<point> const& list, line l) {
    return distance_fit(point_farthest_on_2d(l, list), l);
}

line distance_near_2d(std::vector<point> const& list, curve c) {
    return distance_near(point_nearest_on_2d(c, list), c);
}

line distance_far_2d(std::vector<point> const& list, curve c) {
    return distance_far(point_farthest_on_2d(c, list), c);
}

// Two shapes.

line distance_near(point const& p, curve c) {
    return distance_fit(p, point_nearest_on(p, c));
}

line distance_far(point const& p, curve c) {
    return distance_fit(p, point_farthest_on(p, c));
}

line distance_near(line l, curve c) {
    return distance_fit(l, point_nearest_on(l, c));
}

line distance_far(line l, curve c) {
    return distance_fit(l, point_farthest_on(l, c));
}

line distance_near(point const& p, ellipse e) {
    return distance_fit(p, point_nearest_on(p, e));
}

line distance_far(point const& p, ellipse e) {
    return distance_fit(p, point_farthest_on(p, e));
}

line distance_near(line l, ellipse e) {
    return distance_fit(l, point_nearest_on(l, e));
}

line distance_far(line l, ellipse e) {
    return distance_fit(l, point_farthest_on(l, e));
}

// The other order.

line distance_near_3d(point const& p, std::vector<point> const& list) {
    return reversed(distance_near_3d(list, p));
}

line distance_far_3d(point const& p, std::vector<point> const& list) {
    return reversed(distance_far_3d(list, p));
}

line distance_near_3d(line l, std::vector<point> const& list) {
    return reversed(distance_near_3d(list, l));
}

line distance_far_3d(line l, std::vector<point> const& list) {
    return reversed(distance_far_3d(list, l));
}

line distance_near_3d(plane s, std::vector<point> const& list) {
    return reversed(distance_near_3d(list, s));
}

line distance_far_3d(plane s, std::vector<point> const& list) {
    return reversed(distance_far_3d(list, s));
}

line distance_near_2d(point const& p, std::vector<point> const& list) {
    return reversed(distance_near_2d(list, p));
}

line distance_far_2d(point const& p, std::vector<point> const& list) {
    return reversed(distance_far_2d(list, p));
}

line distance_near_2d(line l, std::vector<point> const& list) {
    return reversed(distance_near_2d(list, l));
}

line distance_far_2d(line l, std::vector<point> const& list) {
    return reversed(distance_far_2d(list, l));
}

line distance_near_2d(curve c, std::vector<point> const& list) {
    return reversed(distance_near_2d(list, c));
}

line distance_far_2d(curve c, std::vector<point> const& list) {
    return reversed(distance_far_2d(list, c));
}

line distance_near(curve c, point const& p) {
    return reversed(distance_near(p, c));
}

line distance_far(curve c, point const& p) {
    return reversed(distance_far(p, c));
}

line distance_near(curve c, line l) {
    return reversed(distance_near(l, c));
}

line distance_far(curve c, line l) {
    return reversed(distance_far(l, c));
}

line distance_near(ellipse e, point const& p) {
    return reversed(distance_near(p, e));
}

line distance_far(ellipse e, point const& p) {
    return reversed(distance_far(p, e));
}

line distance_near(ellipse e, line l) {
    return reversed(distance_near(l, e));
}

line distance_far(ellipse e, line l) {
    return reversed(distance_far(l, e));
}

}  // namespace tvmath
