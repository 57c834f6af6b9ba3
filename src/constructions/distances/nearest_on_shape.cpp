#include <array>
#include <cmath>

#include "geometry/closest_point.h"
#include "nearest_answer.h"
#include "tvmath/nearest_point.h"

inline namespace tvmath {
namespace {

// The foot of `offset` on the line along `d`, both relative to the origin of the line: by the direction as a
// unit vector, so that a line of any length keeps its digits and no square overflows.
xyz foot_along(xyz const& offset, xyz const& d, xyz const& measured) {
    double const most =
        std::fmax(std::fmax(std::fabs(measured.x), std::fabs(measured.y)), std::fabs(measured.z));
    xyz const m = (1 / most) * measured;
    return (dot(offset, m) / dot(m, m)) * ((1 / most) * d);
}

}  // namespace

point point_nearest_on(point const& p, line l) {
    if (p.is_trivial() || l.is_trivial()) return point();
    xyz const o(l.basis(0)), d(l.basis(1)), in_xy(d.x, d.y, 0);
    return answer(o + foot_along(xyz(p) - o, d, in_xy), l.is_3d());
}

point point_nearest3d_on(point const& p, line l) {
    if (p.is_trivial() || l.is_trivial()) return point();
    xyz const o(l.basis(0)), d(l.basis(1));
    return answer(o + foot_along(xyz(p) - o, d, d), l.is_3d());
}

// By the unit normal of both axes: the normal equations of the axes themselves lose twice the digits when the
// axes are nearly parallel. Of a point far from the plane the first foot keeps a part of the rounding of the
// distance, which the second one removes.
point point_nearest3d_on(point const& p, plane s) {
    if (p.is_trivial() || s.is_trivial()) return point();
    xyz const normal = unit(cross(unit(xyz(s.basis(1))), unit(xyz(s.basis(2)))));
    if (dot(normal, normal) == 0) return point();
    xyz const o(s.basis(0)), foot = closest_on_plane(xyz(p), o, normal);
    return answer(closest_on_plane(foot, o, normal), s.is_3d());
}

point point_nearest_on(point const& p, plane s) {
    return point_nearest3d_on(p, s);
}

point point_nearest_on(point const& p, rectangle r) {
    if (p.is_trivial() || r.is_trivial()) return point();
    xyz const o(r.basis(0)), u(r.basis(1)), v(r.basis(2));
    xyz const corners[] = {o - u - v, o + u - v, o + u + v, o - u + v};
    std::array<segment_ends, 4> const sides = {{{corners[0], corners[1]},
                                                {corners[1], corners[2]},
                                                {corners[2], corners[3]},
                                                {corners[3], corners[0]}}};
    return xyz(p).is_finite() ? answer(closest_on_segments(xyz(p), sides), r.is_3d()) : point();
}

}  // namespace tvmath
