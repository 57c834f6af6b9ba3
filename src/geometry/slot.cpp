#include "tvmath/slot.h"

#include <cmath>

#include "planar_shape.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The end: `w` towards the end, `v` to the side, both as long as the end's radius.
struct end_axes {
    point w, v;
};

end_axes end_axes_of(slot const& s) {
    point const v = s.basis(2);
    return {unit_axes_of(s).u * v.length3d(), v};
}

circle end_circle(slot const& s, double side) {
    if (s.is_trivial()) return circle(s);
    point const center = s.basis(0) + s.basis(1) * side;
    double const radius = s.size(2);
    if (!s.is_3d()) return circle(radius, center);
    auto const [u, v] = unit_axes_of(s);
    point const normal = normalize(cross(u, v));
    return circle(make_transform(center, u * radius, cross(normal, u) * radius, normal));
}

}  // namespace

slot::slot(double length, double width, double angle, point center)
    : transform(dilation(length - width, width).rotate(angle).translate(center)) {}

double slot::area() const {
    return 4 * cross(basis(1), basis(2)).length3d() + pi * dot(2, 2);
}

circle slot::get_left_end() const {
    return end_circle(*this, -1);
}

circle slot::get_right_end() const {
    return end_circle(*this, 1);
}

CRealRect slot::get_bounding_rect() const {
    auto const [w, v] = end_axes_of(*this);
    point const u = basis(1);
    return rect_about(basis(0), std::hypot(w.x(), v.x()) + std::fabs(u.x()),
                      std::hypot(w.y(), v.y()) + std::fabs(u.y()));
}

curve slot::render_bezier() const {
    // Quarter arcs: the handle (sqrt(2) - 1) 4/3 puts the middle of the cubic on the circle. Straight sides:
    // thirds, for even speed.
    constexpr double k = 0.55228474983079339840, t = 1.0 / 3;
    constexpr struct {
        double u, w, v;
    } controls[] = {{-1, 0, -1}, {-t, 0, -1}, {t, 0, -1},   {1, 0, -1},   {1, k, -1}, {1, 1, -k}, {1, 1, 0},
                    {1, 1, k},   {1, k, 1},   {1, 0, 1},    {t, 0, 1},    {-t, 0, 1}, {-1, 0, 1}, {-1, -k, 1},
                    {-1, -1, k}, {-1, -1, 0}, {-1, -1, -k}, {-1, -k, -1}, {-1, 0, -1}};
    point const center = basis(0), u = basis(1);
    auto const [w, v] = end_axes_of(*this);
    curve path(19);
    point* p = path.lazycopy_begin();
    // The centre comes last, so that far from the origin each point is rounded once.
    for (auto const& c : controls) *p++ = center + (c.u * u + c.w * w + c.v * v);
    return path;
}

}  // namespace tvmath
