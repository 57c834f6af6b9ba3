#include "tvmath/curve.h"

#include <algorithm>
#include <limits>

#include "geometry/extent.h"

inline namespace tvmath {
namespace {

// Applies `change` to every point of a block that the path owns alone.
template <class operation>
curve& change_points(curve& c, operation change) {
    point* const first = c.lazycopy_begin();
    std::for_each(first, first + c.capacity(), change);
    return c;
}

// Applies `change` to every path of a list; a trivial transform leaves the list shared, as it does a path.
template <class operation>
idioms::array<curve>& change_paths(idioms::array<curve>& list, transform const& t, operation change) {
    if (!t.is_2d() && !t.is_3d()) return list;
    curve* const first = list.lazycopy_begin();
    std::for_each(first, first + list.capacity(), change);
    return list;
}

}  // namespace

curve::curve(point const& p) : array(1, p) {}

curve::curve(point const& a, point const& b) : array(2) {
    point* const p = lazycopy_begin();
    p[0] = a;
    p[1] = b;
}

curve::curve(point const& a, point const& b, point const& c) : array(3) {
    point* const p = lazycopy_begin();
    p[0] = a;
    p[1] = b;
    p[2] = c;
}

curve& curve::operator*=(double s) {
    if (s == 1.0) return *this;
    return change_points(*this, [s](point& p) { p *= s; });
}

curve& curve::operator/=(double s) {
    if (s == 1.0) return *this;
    return change_points(*this, [s](point& p) { p /= s; });
}

curve& curve::operator*=(transform const& t) {
    static_cast<idioms::array<point>&>(*this) *= t;
    return *this;
}

curve& curve::operator/=(transform const& t) {
    static_cast<idioms::array<point>&>(*this) /= t;
    return *this;
}

curve& curve::operator+=(point const& shift) {
    if (shift.is_trivial()) return *this;
    return change_points(*this, [p = shift](point& q) {  // a copy, since `shift` may be a point of this path
        if (!q.is_location()) return;                    // the point's own translate would raise these to 3D
        if (p.is_2d()) {
            q.translate(p.x(), p.y());
        } else {
            q.translate(p.x(), p.y(), p.z());
        }
    });
}

curve& curve::operator-=(point const& p) {
    return *this += -p;
}

curve& curve::promote2d() {
    return change_points(*this, [](point& p) { p.promote2d(); });
}

curve& curve::promote3d() {
    return change_points(*this, [](point& p) { p.promote3d(); });
}

curve& curve::project2d() {
    return change_points(*this, [](point& p) { p.project2d(); });
}

curve& curve::protrude(transform const& t) {
    return change_points(*this, [&t](point& p) { p = tvmath::protrude(t, p); });
}

curve protrude(transform const& t, curve c) {
    return c.protrude(t);
}

idioms::array<curve>& operator*=(idioms::array<curve>& list, transform const& t) {
    return change_paths(list, t, [&t](curve& c) { c *= t; });
}

idioms::array<curve>& operator/=(idioms::array<curve>& list, transform const& t) {
    return change_paths(list, t, [&t](curve& c) { c /= t; });
}

CRealRect curve::get_bounding_rect() const {
    interval x, y;
    for (point const& p : *this) {
        x.widen(p.x());
        y.widen(p.y());
    }
    return rectangle_over(x, y);
}

idioms::array<double> curve::to_double_array() const {
    if (capacity() > std::numeric_limits<unsigned int>::max() / 3) return idioms::array<double>();
    idioms::array<double> numbers(3 * capacity());
    double* to = numbers.lazycopy_begin();
    for (point const& p : *this) {
        *to++ = p.x();
        *to++ = p.y();
        *to++ = p.z();
    }
    return numbers;
}

}  // namespace tvmath
