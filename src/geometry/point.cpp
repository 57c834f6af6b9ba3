#include "tvmath/point.h"

#include "tvmath/scalar.h"

inline namespace tvmath {

point make_polar_point(double r, double angle) {
    return point(true, r * cos(angle), r * sin(angle));
}

point make_cylindrical_point(double r, double angle, double z) {
    return point(true, r * cos(angle), r * sin(angle), z);
}

point make_spherical_point(double r, double longitude, double colatitude) {
    double const s = sin(colatitude);
    return point(true, r * cos(longitude) * s, r * sin(longitude) * s, r * cos(colatitude));
}

double point::angle2d() const {
    return is_trivial() ? 0.0 : atan2(y(), x());
}

double point::latitude() const {
    if (is_trivial()) return 0.0;
    return is_2d() ? pi / 2 : atan2(length2d(), z());
}

point& point::dilate(double sx, double sy) {
    promote2d();
    x() *= sx;
    y() *= sy;
    return *this;
}

point& point::dilate(double sx, double sy, double sz) {
    promote3d();
    x() *= sx;
    y() *= sy;
    z() *= sz;
    return *this;
}

point& point::translate(double dx, double dy) {
    promote2d();
    if (is_direction()) return *this;
    x() += dx;
    y() += dy;
    return *this;
}

point& point::translate(double dx, double dy, double dz) {
    promote3d();
    if (is_direction()) return *this;
    x() += dx;
    y() += dy;
    z() += dz;
    return *this;
}

point& point::rotate(double angle) {
    if (is_trivial() || angle == 0.0) return *this;
    double const c = cos(angle), s = sin(angle), old_x = x();
    x() = c * old_x - s * y();
    y() = s * old_x + c * y();
    return *this;
}

point& point::rotate_90() {
    if (is_trivial()) return *this;
    double const old_x = x();
    x() = -y();
    y() = old_x;
    return *this;
}

point& point::rotate_180() {
    return *this *= -1.0;
}

point& point::rotate_270() {
    if (is_trivial()) return *this;
    double const old_x = x();
    x() = y();
    y() = -old_x;
    return *this;
}

point& point::rotate(point axis, double angle) {
    axis.to_direction();
    double const n = axis.length3d();
    if (n == 0.0) {
        axis = point(false, 0.0, 0.0, 1.0);
    } else {
        axis /= n;
    }
    point const parallel = axis * dot3d(axis, *this);
    point const perpendicular = *this - parallel;
    point const side = cross(axis, *this);
    return *this = parallel + (perpendicular * cos(angle) + side * sin(angle));
}

point& point::shear_x(double a) {
    if (!is_trivial()) x() += a * y();
    return *this;
}

point& point::shear_y(double a) {
    if (!is_trivial()) y() += a * x();
    return *this;
}

point& point::shear_x(double a, double b) {
    if (is_trivial()) return *this;
    promote3d();
    x() += a * y() + b * z();
    return *this;
}

point& point::shear_y(double a, double b) {
    if (is_trivial()) return *this;
    promote3d();
    y() += a * x() + b * z();
    return *this;
}

point& point::shear_z(double a, double b) {
    if (is_trivial()) return *this;
    promote3d();
    z() += a * x() + b * y();
    return *this;
}

point& point::normalize() {
    double const n = length3d();
    if (n > 0.0) *this /= n;  // false for NaN too; a length of exactly 1 leaves the bits alone
    return *this;
}

point cross(point const& a, point const& b) {
    if (a.is_trivial() || b.is_trivial()) return point();
    double const az = a.is_3d() ? a.z() : 0.0, bz = b.is_3d() ? b.z() : 0.0;
    return point(false, a.y() * bz - az * b.y(), az * b.x() - a.x() * bz, cross2d(a, b));
}

namespace {

// Mean of two points of the same dimension, both locations or both unit directions.
point mean(point const& a, point const& b) {
    bool const location = a.is_location() || b.is_location();
    double const x = (a.x() + b.x()) / 2, y = (a.y() + b.y()) / 2;
    point result = a.is_3d() ? point(location, x, y, (a.z() + b.z()) / 2) : point(location, x, y);
    if (!location) result.normalize();
    return result;
}

void normalize_direction(point& p) {
    if (p.is_direction()) p.normalize();
}

}  // namespace

point midpoint(point a, point b) {
    if (a.is_location() && b.is_direction()) return b;
    if (b.is_location() && a.is_direction()) return a;
    normalize_direction(a);
    normalize_direction(b);
    return promote(a, b) == 4 ? mean(a, b) : point();
}

point midpoint2d(point a, point b) {
    bool const direction_b = a.is_location() && b.is_direction();
    bool const direction_a = b.is_location() && a.is_direction();
    a.project2d();
    b.project2d();
    if (direction_b) return b;
    if (direction_a) return a;
    normalize_direction(a);
    normalize_direction(b);
    return mean(a, b);
}

bool _isnan(point const& p) {
    if (p.is_trivial()) return false;
    return std::isnan(p.x()) || std::isnan(p.y()) || (p.is_3d() && std::isnan(p.z()));
}

}  // namespace tvmath
