#include "tvmath/xml_geometry.h"

#include <algorithm>
#include <cmath>

#include "geometry/direction_angles.h"

inline namespace tvmath {
namespace TVXML {

namespace {

// From -pi up to, not including, pi.
double wrapped(double angle) {
    return modulus(angle, -pi, pi);
}

double orientation_of(transform const& t) {
    return normalize(t.basis(1)).angle2d();
}

// Of planar shapes that are made in the same way: two sizes, the angle and the centre.
template <class shape>
shape shape_of(XmlPoint const& center, double along, double across, double angle) {
    if (center.is_trivial()) return shape();
    return shape(along, across, angle, center.get_point());
}

circle circle_of(XmlPoint const& center, double radius, double angle) {
    return circle(shape_of<ellipse>(center, radius, radius, angle));
}

// With the yaw 0 and the X axis along Z or -Z, the Y axis is (-sin or sin, cos, 0) of the roll.
double roll_of_upright(transform const& t) {
    point const y = t.direction(2);
    return std::atan2(t.pitch() > 0 ? -y.x() : y.x(), y.y());
}

}  // namespace

XmlPosition::XmlPosition(point const& p) {
    if (p.is_trivial()) return;
    x = p.x();
    y = p.y();
    if (p.is_3d()) z = p.z();
}

point XmlPosition::make_point(bool location) const {
    if (!has_xy()) return point();
    return is_3d() ? point(location, x, y, z) : point(location, x, y);
}

XmlLine::XmlLine(line const& l) {
    if (l.is_trivial()) return;
    start = XmlPoint(l.basis(0) - l.basis(1));
    end = XmlPoint(l.basis(0) + l.basis(1));
}

point XmlLine::get_position() const {
    point const a = start.get_point(), b = end.get_point();
    return a.is_trivial() || b.is_trivial() ? point() : (a + b) / 2;
}

XmlLine::operator line() const {
    point a = start.get_point(), b = end.get_point();
    if (a.is_trivial() || b.is_trivial()) return line();
    if (promote(a, b) < 4 || a.z() == b.z()) return line(a, b);
    // A line of two points is level, so one with a slope is made of its axes.
    point const u = (b - a) / 2;
    bool const upright = u.x() == 0 && u.y() == 0;
    point const v = upright ? point(false, 0, u.length3d(), 0) : point(false, -u.y(), u.x(), 0);
    return line(make_transform(a + u, u, v, normalize(cross(u, v))));
}

XmlPlacement::XmlPlacement(transform const& t) : position(t.basis(0)) {
    if (t.is_trivial()) return;
    yaw = t.yaw();
    pitch = t.pitch();
    roll = t.is_3d() && is_along_z(t.basis(1)) ? roll_of_upright(t) : t.roll();
}

transform XmlPlacement::placement() const {
    if (position.is_trivial()) return transform();
    bool const flat = position.is_2d() && pitch == 0.0 && roll == 0.0;
    transform turned = flat ? transform::rotation(yaw) : transform::rotation(yaw, pitch, roll);
    return turned.translate(position.get_point());
}

XmlCircle::XmlCircle(circle const& c) : center(c.basis(0)), radius(c.radius()) {}

XmlCircle::operator circle() const {
    return circle_of(center, radius, 0);
}

XmlArc::XmlArc(Arc_Description const& d) {
    if (d.circle.is_trivial()) return;
    static_cast<XmlCircle&>(*this) = XmlCircle(d.circle);
    double const bisector = orientation_of(d.circle), half = std::fabs(d.included_angle) / 2;
    start_angle = wrapped(bisector - half);
    end_angle = wrapped(bisector + half);
}

void XmlArc::fill(Arc_Description& d) const {
    constexpr double digits = 1e-7;  // twice half a unit of the eighth digit of pi
    double included = modulus(end_angle - start_angle, 0, 2 * pi);
    if (included < digits || included > 2 * pi - digits) included = 2 * pi;
    d.circle = circle_of(center, radius, start_angle + included / 2);
    d.included_angle = included;
}

XmlEllipse::XmlEllipse(ellipse const& e) {
    if (e.is_trivial()) return;
    point u = e.basis(1), v = e.basis(2);
    // Not for rounding alone, which would exchange the axes of an upright ellipse.
    if (std::fabs(e.dot(1, 2)) > 1e-12 * e.size(1) * e.size(2)) orthogonalize_ellipse(u, v);
    center = XmlPoint(e.basis(0));
    major_radius = u.length3d();
    minor_radius = v.length3d();
    orientation = normalize(u).angle2d();
}

XmlEllipse::operator ellipse() const {
    return shape_of<ellipse>(center, major_radius, minor_radius, orientation);
}

XmlSlot::XmlSlot(slot const& s)
    : XmlOval{XmlPoint(s.basis(0)), s.semimajor(), s.semiminor(), orientation_of(s)} {}

XmlSlot::operator slot() const {
    return shape_of<slot>(center, major_radius, minor_radius, orientation);
}

XmlRectangle::XmlRectangle(rectangle const& r)
    : XmlBox{XmlPoint(r.basis(0)), r.width(), r.height(), orientation_of(r)} {}

XmlRectangle::operator rectangle() const {
    return shape_of<rectangle>(center, width, height, orientation);
}

XmlGap::XmlGap(gap const& g) : XmlBox{XmlPoint(g.basis(0)), g.length(), g.distance(), orientation_of(g)} {}

XmlGap::operator gap() const {
    return shape_of<gap>(center, width, height, orientation);
}

XmlAngle::XmlAngle(Angle_Description const& d) {
    if (d.arc.is_trivial()) return;
    vertex = XmlPoint(d.arc.basis(0));
    start_angle = d.start_angle;
    included_angle = d.included_angle;
    bisector_direction = orientation_of(d.arc);
}

void XmlAngle::fill(Angle_Description& d) const {
    d.arc = circle_of(vertex, 1, bisector_direction);
    d.start_angle = start_angle;
    d.included_angle = included_angle;
}

XmlORing::XmlORing(ORing_Description const& d) {
    if (d.placement.is_trivial()) return;
    center = XmlPoint(d.placement.basis(0));
    inner_radius = d.inner.radius();
    outer_radius = d.outer.radius();
}

void XmlORing::fill(ORing_Description& d) const {
    d.placement = transform(center.get_point());
    d.inner = ring(inner_radius);
    d.outer = ring(outer_radius);
}

XmlCurve::XmlCurve(curve const& c) {
    points.reserve(c.capacity());
    for (point const& p : c) points.emplace_back(p);
}

point XmlCurve::get_position() const {
    bool const is_3d = std::any_of(points.begin(), points.end(), [](XmlPoint const& p) { return p.is_3d(); });
    curve const c(*this);
    return is_3d ? centroid3d(c) : centroid2d(c);
}

XmlCurve::operator curve() const {
    curve result(static_cast<unsigned int>(points.size()));
    if (!points.empty()) {
        std::transform(points.begin(), points.end(), result.lazycopy_begin(),
                       [](XmlPoint const& p) { return p.get_point(); });
    }
    return result;
}

void XmlOpenSpline::fill(OpenSpline_Description& d) const {
    d.path = curve(path);
    calculate_bezier_length(d.path, d.length);
}

void XmlClosedSpline::fill(ClosedSpline_Description& d) const {
    d.path = curve(path);
    calculate_bezier_length(d.path, d.length);
    calculate_closed_bezier_moments(d.path, d.area, d.centroid);
}

XmlPlane::XmlPlane(plane const& p) {
    if (p.is_trivial()) return;
    center = XmlPoint(p.basis(0));
    normal = XmlDirection(p.normal());
}

XmlPlane::operator plane() const {
    if (center.is_trivial() || normal.get_point().length3d() == 0.0) return plane();
    return plane(center.get_point(), normal.get_point());
}

XmlSphere::XmlSphere(sphere const& s) : center(s.basis(0)), radius(s.radius()) {}

XmlSphere::operator sphere() const {
    return center.is_trivial() ? sphere() : sphere(radius, center.get_point());
}

XmlCylinder::XmlCylinder(cylinder const& c) {
    if (c.is_trivial()) return;
    center = XmlPoint(c.basis(0));
    direction = XmlDirection(c.direction(3));
    radius = c.radius();
    height = c.height();
}

XmlCylinder::operator cylinder() const {
    if (center.is_trivial() || direction.get_point().length3d() == 0.0) return cylinder();
    return cylinder(radius, height, center.get_point(), direction.get_point());
}

XmlCone::XmlCone(cone const& c)
    : point0(c.base), point1(c.top), radius0(c.base_radius), radius1(c.top_radius) {}

XmlCone::operator cone() const {
    if (point0.is_trivial() || point1.is_trivial()) return cone();
    return cone(point0.get_point(), point1.get_point(), radius0, radius1);
}

}  // namespace TVXML
}  // namespace tvmath
