#pragma once

#include <cmath>
#include <cstdint>

#include "tvmath/export.h"

inline namespace tvmath {

class transform;
class vector;

/// A homogeneous coordinate with an explicit dimension: a 2D or 3D location, a 2D or 3D direction, or the
/// trivial point, which is the library's undefined value.
///
/// Locations (weight 1) are moved by translations, directions (weight exactly 0) are not. Where points of
/// different dimension meet, the lower one is raised (`promote`): a trivial point becomes the 2D origin, a 2D
/// point gets z = 0. Lengths are in the caller's units, angles in radians, anticlockwise from +X. Comparison
/// is exact; nothing here raises, and a trivial operand gives 0.0 or the trivial point.
///
/// Plain bits: 40 bytes, zero-filled when trivial, copied as bytes.
class TVMATH_API point {
public:
    point() = default;
    /// 2D location or direction.
    point(bool location, double x, double y) : dimension_(2), slots_{location ? 1.0 : 0.0, x, y, 0.0} {}
    /// 3D location or direction.
    point(bool location, double x, double y, double z)
        : dimension_(3), slots_{location ? 1.0 : 0.0, x, y, z} {}
    /// Coordinates from a vector of 2 or 3 elements; other sizes are not valid input.
    point(bool location, vector v);

    /// 0 for the trivial point, 2 or 3.
    std::uint32_t dimension() const { return dimension_; }
    bool is_trivial() const { return dimension_ == 0; }
    bool is_2d() const { return dimension_ == 2; }
    bool is_3d() const { return dimension_ == 3; }
    bool is_location() const { return dimension_ != 0 && slots_[0] != 0.0; }   ///< false on a trivial point
    bool is_direction() const { return dimension_ != 0 && slots_[0] == 0.0; }  ///< false on a trivial point
    /// Number of homogeneous slots: 0, 3 or 4.
    unsigned int capacity() const { return dimension_ == 0 ? 0 : dimension_ + 1; }

    // Slots 0 to 3 are weight, x, y, z; the index is not tested.
    double const& operator[](unsigned int i) const { return slots_[i]; }
    double& operator[](unsigned int i) { return slots_[i]; }
    double const& operator()(unsigned int i) const { return slots_[i]; }
    double& operator()(unsigned int i) { return slots_[i]; }
    double x() const { return slots_[1]; }
    double& x() { return slots_[1]; }
    double y() const { return slots_[2]; }
    double& y() { return slots_[2]; }
    double z() const { return slots_[3]; }  ///< meaningful on a 3D point only
    double& z() { return slots_[3]; }

    /// Angle of (x, y) from +X, in (-pi, pi].
    double angle2d() const;
    double longitude() const { return angle2d(); }
    /// Angle from +Z, a colatitude; pi / 2 for a 2D point, which lies at the equator of the polar axis.
    double latitude() const;
    /// sqrt(x² + y²), also of a 3D point.
    double length2d() const;
    /// Length by dimension.
    double length3d() const;

    /// Makes the point at least 2D: only a trivial point changes, it becomes the origin.
    void promote2d() {
        if (is_trivial()) *this = point(true, 0.0, 0.0);
    }
    /// Makes the point 3D: a trivial point becomes the origin, a 2D point gets z = 0.
    void promote3d() { promote_to(4); }
    /// Makes the point 2D: a trivial point becomes the origin, z is forgotten.
    void project2d() {
        promote2d();
        dimension_ = 2;
    }
    /// The same as `promote3d`.
    void project3d() { promote3d(); }
    /// Raises the point to a capacity of 3 or 4, if it has less.
    void promote_to(unsigned int capacity) {
        if (dimension_ + 1 >= capacity) return;
        promote2d();
        if (capacity == 4) slots_[3] = 0.0;
        dimension_ = capacity - 1;
    }
    void to_location() { slots_[0] = 1.0; }
    void to_direction() { slots_[0] = 0.0; }

    /// Sum; a direction only when both are directions.
    point& operator+=(point p);
    /// Difference; a direction when both are locations or both directions.
    point& operator-=(point p);
    /// Scales x, y (z); a factor of exactly 1 changes nothing, nor does any factor a trivial point.
    point& operator*=(double s);
    point& operator/=(double s);
    /// Carries the point through the transform: a location with the offset, a direction without. A 2D
    /// transform keeps dimension and z; a 3D transform makes the point 3D. A trivial point becomes the
    /// transform's origin.
    inline point& operator*=(transform const& t);  // defined, as the next one, in transform.h
    /// The same through the inverse of the transform.
    inline point& operator/=(transform const& t);

    point& dilate(double s) { return *this *= s; }
    /// Scales x and y; z of a 3D point stays.
    point& dilate(double sx, double sy);
    point& dilate(double sx, double sy, double sz);
    /// Moves a location; a direction is left as it is.
    point& translate(double dx, double dy);
    /// The same in 3D; the point becomes 3D.
    point& translate(double dx, double dy, double dz);
    /// Turns x and y about the origin; z stays.
    point& rotate(double angle);
    // Exact quarter turns.
    point& rotate_90();
    point& rotate_180();
    point& rotate_270();
    /// Turns right-handed about an axis through the origin, +Z when the axis has length 0. The axis counts as
    /// a direction whatever its weight. The result is 3D. Source: Rodrigues' rotation formula.
    point& rotate(point axis, double angle);
    point& shear_x(double a);            ///< x += a y
    point& shear_y(double a);            ///< y += a x
    point& shear_x(double a, double b);  ///< x += a y + b z, in 3D
    point& shear_y(double a, double b);  ///< y += a x + b z, in 3D
    point& shear_z(double a, double b);  ///< z += a x + b y, in 3D
    /// Divides by the length; the weight stays. Unchanged when the length is 0, NaN or exactly 1.
    point& normalize();

    static void swap(point& a, point& b) {
        point const copy = a;
        a = b;
        b = copy;
    }

    static constexpr bool optimize_ctor() { return true; }
    static constexpr bool optimize_copyctor() { return true; }
    static constexpr bool optimize_dtor() { return true; }

private:
    std::uint32_t dimension_ = 0;
    double slots_[4] = {0.0, 0.0, 0.0, 0.0};  // weight, x, y, z
};

/// 2D location at distance r from the origin.
TVMATH_API point make_polar_point(double r, double angle);
/// 3D location at distance r from the Z axis.
TVMATH_API point make_cylindrical_point(double r, double angle, double z);
/// 3D location; the colatitude counts from +Z.
TVMATH_API point make_spherical_point(double r, double longitude, double colatitude);

/// Exact, with no tolerance: equal dimension, weight and coordinates. Two trivial points are equal.
inline bool operator==(point const& a, point const& b) {
    if (a.dimension() != b.dimension()) return false;
    if (a.is_trivial()) return true;
    return a[0] == b[0] && a.x() == b.x() && a.y() == b.y() && (a.is_2d() || a.z() == b.z());
}

/// Raises both points to the larger capacity of the two and returns it; 0 when both are trivial.
inline unsigned int promote(point& a, point& b) {
    unsigned int const capacity = a.capacity() > b.capacity() ? a.capacity() : b.capacity();
    a.promote_to(capacity);
    b.promote_to(capacity);
    return capacity;
}

inline point& point::operator+=(point p) {
    unsigned int const capacity = promote(*this, p);
    if (capacity == 0) return *this;
    x() += p.x();
    y() += p.y();
    if (capacity == 4) z() += p.z();
    slots_[0] = slots_[0] == 0.0 && p[0] == 0.0 ? 0.0 : 1.0;
    return *this;
}

inline point& point::operator-=(point p) {
    unsigned int const capacity = promote(*this, p);
    if (capacity == 0) return *this;
    x() -= p.x();
    y() -= p.y();
    if (capacity == 4) z() -= p.z();
    slots_[0] = slots_[0] == p[0] ? 0.0 : 1.0;
    return *this;
}

inline point& point::operator*=(double s) {
    if (s == 1.0 || is_trivial()) return *this;
    x() *= s;
    y() *= s;
    if (is_3d()) z() *= s;
    return *this;
}

inline point& point::operator/=(double s) {
    if (s == 1.0 || is_trivial()) return *this;
    x() /= s;
    y() /= s;
    if (is_3d()) z() /= s;
    return *this;
}

inline point operator+(point a, point const& b) {
    return a += b;
}
inline point operator-(point a, point const& b) {
    return a -= b;
}
/// Negates x, y (z); a location stays a location.
inline point operator-(point p) {
    return p *= -1.0;
}
inline point operator*(point p, double s) {
    return p *= s;
}
inline point operator*(double s, point p) {
    return p *= s;
}
inline point operator/(point p, double s) {
    return p /= s;
}

/// Scalar product in 2D; 0 when either is trivial.
inline double dot2d(point const& a, point const& b) {
    return a.is_trivial() || b.is_trivial() ? 0.0 : a.x() * b.x() + a.y() * b.y();
}
/// Scalar product by the smaller dimension of the two: a 3D point with a 2D point ignores z.
inline double dot(point const& a, point const& b) {
    return a.is_3d() && b.is_3d() ? a.x() * b.x() + a.y() * b.y() + a.z() * b.z() : dot2d(a, b);
}
inline double dot3d(point const& a, point const& b) {
    return dot(a, b);
}
/// Squared length by dimension.
inline double sqr(point const& p) {
    return dot(p, p);
}
/// z of the vector product in 2D; 0 when either is trivial.
inline double cross2d(point const& a, point const& b) {
    return a.is_trivial() || b.is_trivial() ? 0.0 : a.x() * b.y() - a.y() * b.x();
}
/// Vector product, always a 3D direction; a missing z counts as 0. Trivial when either operand is.
TVMATH_API point cross(point const& a, point const& b);

inline double point::length2d() const {
    return std::sqrt(dot2d(*this, *this));
}
inline double point::length3d() const {
    return std::sqrt(sqr(*this));
}

/// Distance in XY, whatever z; a trivial point counts as the origin.
inline double distance2d(point a, point b) {
    a.promote2d();
    b.promote2d();
    double const dx = a.x() - b.x(), dy = a.y() - b.y();
    return std::sqrt(dx * dx + dy * dy);
}
/// Distance in space; a 2D point lies in the plane z = 0, a trivial point at the origin.
inline double distance3d(point a, point b) {
    a.promote3d();
    b.promote3d();
    double const dx = a.x() - b.x(), dy = a.y() - b.y(), dz = a.z() - b.z();
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

inline point normalize(point p) {
    return p.normalize();
}

/// Mean of two points in space, or the bisector, of unit length, of two directions. A direction outranks a
/// location: of one of each, the direction comes back as it is. Two points of which none is 3D give the
/// trivial point; their midpoint is `midpoint2d`.
TVMATH_API point midpoint(point a, point b);
/// The same for the projections of both points into XY; the result is 2D.
TVMATH_API point midpoint2d(point a, point b);

/// True when a coordinate that counts is NaN; false on a trivial point.
TVMATH_API bool _isnan(point const& p);

}  // namespace tvmath
