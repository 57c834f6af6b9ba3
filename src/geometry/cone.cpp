#include "tvmath/cone.h"

#include <cmath>

#include "axial_shape.h"
#include "direction_angles.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

point z_axis() {
    return point(false, 0, 0, 1);
}

circle end_circle(transform const& frame, point const& center, double radius) {
    return circle(make_transform(center, frame.basis(1) * radius, frame.basis(2) * radius, frame.basis(3)));
}

// A straight line as a cubic; thirds give it even speed.
curve straight_bezier(point const& from, point const& to) {
    point const step = (to - from) / 3;
    curve line(4);
    point* const p = line.lazycopy_begin();
    p[0] = from;
    p[1] = from + step;
    p[2] = to - step;
    p[3] = to;
    return line;
}

}  // namespace

cone::cone(point a, point b, double ra, double rb)
    : base(a), top(b), base_radius(ra), top_radius(rb), axis(b - a) {
    axis.to_direction();
    axis.normalize();
}

point cone::center() const {
    return is_trivial() ? point() : (base + top) / 2;
}

double cone::angle() const {
    if (is_trivial()) return domain_error_value;
    return atan2(top_radius - base_radius, distance3d(top, base));
}

double cone::slope() const {
    if (is_trivial() || base == top) return domain_error_value;
    return (top_radius - base_radius) / distance3d(top, base);
}

point cone::vertex() const {
    // Exact on purpose: a slight taper is an honest tip far away.
    if (is_trivial() || top_radius == base_radius) return point();
    return base - (top - base) * (base_radius / (top_radius - base_radius));
}

double cone::pitch() const {
    return pitch_of(is_trivial() ? z_axis() : axis);
}

double cone::yaw() const {
    return yaw_of(is_trivial() ? z_axis() : axis);
}

void cone::get_ends(circle& at_base, circle& at_top) const {
    transform const frame = make_transform();
    at_base = is_trivial() ? circle(frame) : end_circle(frame, base, base_radius);
    at_top = is_trivial() ? circle(frame) : end_circle(frame, top, top_radius);
}

CRealRect cone::get_bounding_rect() const {
    if (is_trivial()) return CRealRect();
    circle at_base, at_top;
    get_ends(at_base, at_top);
    return ends_rect(at_base, at_top);
}

transform cone::make_transform() const {
    if (is_trivial()) return transform();
    // Ends that coincide leave no axis; seen from above they then are two circles all the same.
    return transform::extrusion(sqr(axis) == 0.0 ? z_axis() : axis).translate(base);
}

namespace {

// After the points: the radii follow the first axis of the map, whose squared length is `d`.
void scale(cone& c, double d) {
    if (d == 1.0) return;  // exact on purpose: a rotation that has drifted scales by what it has drifted
    double const s = sqrt(d);
    c.base_radius *= s;
    c.top_radius *= s;
    c.axis /= s;
}

bool changes(cone const& c, transform const& t) {
    return !c.is_trivial() && (t.is_2d() || t.is_3d());
}

}  // namespace

cone& cone::operator*=(transform const& t) {
    if (!changes(*this, t)) return *this;
    base *= t;
    top *= t;
    axis *= t;
    scale(*this, t.dot(1, 1));
    return *this;
}

cone& cone::operator/=(transform const& t) {
    if (!changes(*this, t)) return *this;
    base /= t;
    top /= t;
    axis /= t;
    scale(*this, t.inverse_dot(1, 1));
    return *this;
}

cone& cone::operator+=(point const& p) {
    point step = p;
    step.to_direction();  // the ends keep their weight whatever that of p
    if (base.is_location()) base += step;
    if (top.is_location()) top += step;
    return *this;
}

cone& cone::operator-=(point const& p) {
    return *this += -p;
}

void cone::render_cone(std::vector<curve>& paths) const {
    if (is_trivial()) return;
    circle at_base, at_top;
    get_ends(at_base, at_top);
    paths.push_back(at_base.render_bezier());
    paths.push_back(at_top.render_bezier());

    // With r(t) = cos(t) e1 + sin(t) e2 the surface's normal is r(t) cos(angle) - axis sin(angle). Its z is
    // 0 where r(t).z = axis.z tan(angle). r.z is greatest at `high`, where it is the length of the axis in
    // XY, and p cos(t - high) = q is left, with tan(angle) and the lengths multiplied out.
    transform const frame = make_transform();
    point const e1 = frame.basis(1), e2 = frame.basis(2), a = frame.basis(3);
    double const p = distance2d(top, base), q = a.z() * (top_radius - base_radius);
    if (is_along_z(a) || !(p > std::fabs(q))) return;  // one end hides the other
    double const high = atan2(e2.z(), e1.z());
    double const half = atan2(sqrt((p - q) * (p + q)), q);  // acos(q / p) with all its digits near 0 and pi
    for (double const t : {high - half, high + half}) {     // left of the axis, then right
        point const r = cos(t) * e1 + sin(t) * e2;
        paths.push_back(straight_bezier(base + base_radius * r, top + top_radius * r));
    }
}

}  // namespace tvmath
