#include <cmath>

#include "side_fit.h"
#include "tvmath/quick_fit.h"
#include "tvmath/shape_fit.h"

inline namespace tvmath {
namespace {

transform placed(planar_points const& points, planar_box const& box) {
    return points.place(box.center(), (box.right - box.left) / 2 * box.axis,
                        (box.top - box.bottom) / 2 * quarter_turned(box.axis));
}

planar_box turned_right(planar_box const& box) {
    return is_rightward(box.axis) ? box : box.turned().turned();
}

// The nominal rectangle among the points. False when it has no direction.
bool box_of(rectangle const& nominal, point const& origin, planar_box& box) {
    point const u = nominal.basis(1), v = nominal.basis(2);
    double const a = u.length2d(), b = v.length2d();
    if (nominal.is_trivial() || !(a > 0) || !std::isfinite(a + b)) return false;
    point const c = nominal.basis(0) - origin;
    if (!std::isfinite(c.x() + c.y())) return false;
    box.axis = {u.x() / a, u.y() / a};
    double const t = box.along({c.x(), c.y()}), n = box.across({c.x(), c.y()});
    box = {box.axis, t - a, t + a, n - b, n + b};
    return true;
}

// The same rectangle with its axis along the one that is wanted.
planar_box turned_towards(planar_box box, xy axis) {
    if (std::fabs(dot(box.axis, axis)) < std::fabs(dot(quarter_turned(box.axis), axis))) box = box.turned();
    return dot(box.axis, axis) < 0 ? box.turned().turned() : box;
}

template <class list>
gap fit_gap(list const& points) {
    planar_points const relative = relative_to(point_fit(points), span_of(points));
    fitted_box fitted;
    if (relative.at.size() < 3 || !fit_box(relative, box_sides::bottom_and_top, nullptr, fitted))
        return gap();
    planar_box const span = box_around(relative.at, fitted.box.axis);
    fitted.box.left = span.left;
    fitted.box.right = span.right;
    return gap(placed(relative, turned_right(fitted.box)));
}

}  // namespace

rectangle rectangle_fit(idioms::array<point> points, rectangle nominal) {
    planar_points const relative = relative_to(point_fit(points), span_of(points));
    planar_box start;
    bool const has_nominal = !relative.is_empty() && box_of(nominal, relative.origin, start);
    fitted_box fitted;
    if (relative.at.size() < 5 ||
        !fit_box(relative, box_sides::all, has_nominal ? &start : nullptr, fitted)) {
        return rectangle();
    }
    planar_box const box = fitted.box;
    if (has_nominal) return rectangle(placed(relative, turned_towards(box, start.axis)));
    bool const is_upright = box.top - box.bottom > box.right - box.left;
    return rectangle(placed(relative, turned_right(is_upright ? box.turned() : box)));
}

gap gap_fit(std::vector<point> const& points) {
    return fit_gap(points);
}

gap gap_fit(idioms::array<point> points) {
    return fit_gap(points);
}

}  // namespace tvmath
