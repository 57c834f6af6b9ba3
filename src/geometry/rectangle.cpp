#include "tvmath/rectangle.h"

#include <algorithm>
#include <cmath>

#include "planar_shape.h"

inline namespace tvmath {
namespace {

// Segments of one side. Four sides of the largest count still have a number of points that 32 bits hold.
unsigned int segments(int n) {
    return static_cast<unsigned int>(std::clamp(n, 1, (1 << 30) - 1));
}

// The unit outline. (2 i - n) / n and not i times a step: exact at the corners, and opposite sides mirror
// each other to the last bit.
curve unit_outline(unsigned int n, unsigned int m) {
    curve outline(2 * (n + m));
    point* p = outline.lazycopy_begin();
    auto const along = [](unsigned int i, unsigned int count) { return (2.0 * i - count) / count; };
    for (unsigned int i = 0; i < n; ++i) *p++ = point(true, along(i, n), -1);
    for (unsigned int i = 0; i < m; ++i) *p++ = point(true, 1, along(i, m));
    for (unsigned int i = 0; i < n; ++i) *p++ = point(true, -along(i, n), 1);
    for (unsigned int i = 0; i < m; ++i) *p++ = point(true, -1, -along(i, m));
    return outline;
}

// The map whose rectangle is the parallel outline. Moving the sides that follow v by d along their normal
// lengthens u by d / sin(angle between the axes), whatever the lengths, and the other pair does the same to
// v.
transform widened(transform const& t, double d) {
    if (d == 0.0) return t;
    auto const [u, v] = unit_axes_of(t);
    double const reach = d / cross(u, v).length3d();
    point const wide_u = t.basis(1) + u * reach, wide_v = t.basis(2) + v * reach;
    return t.is_3d() ? make_transform(t.basis(0), wide_u, wide_v, t.basis(3))
                     : make_transform(t.basis(0), wide_u, wide_v);
}

}  // namespace

rectangle::rectangle(double width, double height, double angle, point center)
    : transform(dilation(width / 2, height / 2).rotate(angle).translate(center)) {}

double rectangle::area() const {
    return 4 * cross(basis(1), basis(2)).length3d();
}

CRealRect rectangle::get_bounding_rect() const {
    return carried_square_rect(*this);
}

CRealRect rectangle::get_bounding_rect(transform t, double offset) const {
    transform const carried = (*this * t).project2d();
    auto const [u, v] = unit_axes_of(carried);
    double const d = std::fabs(offset);
    CRealRect extent = carried_square_rect(carried);
    extent.InflateRect(d * (std::fabs(u.x()) + std::fabs(v.x())), d * (std::fabs(u.y()) + std::fabs(v.y())));
    return extent;
}

curve rectangle::render_unit_rectangle() {
    return unit_outline(1, 1);
}

curve rectangle::render_rectangle() const {
    return render_unit_rectangle() * *this;
}

curve rectangle::render_rectangle(int n, int m) const {
    return unit_outline(segments(n), segments(m)) * *this;
}

curve rectangle::render_rectangle(int n, double offset, int m) const {
    return unit_outline(segments(n), segments(m)) * widened(*this, offset);
}

idioms::array<curve> rectangle::render_rectangle(int n, vector offsets, int m) const {
    curve const outline = unit_outline(segments(n), segments(m));
    idioms::array<curve> outlines(offsets.capacity());
    std::transform(offsets.begin(), offsets.end(), outlines.lazycopy_begin(),
                   [&](double offset) { return outline * widened(*this, offset); });
    return outlines;
}

rectangle rotate_rectangle(rectangle r, int k) {
    if (r.is_trivial()) return r;
    int const turns = k & 3;  // also of a negative k: the remainder from 0 to 3
    if (turns == 2) r.flip_axis(1).flip_axis(2);
    if (turns == 1 || turns == 3) r.exchange_axes(1, 2).flip_axis(turns == 1 ? 2 : 1);
    return r;
}

}  // namespace tvmath
