#pragma once

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/quadrature.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// An ellipse: the unit circle carried by the transform it derives from.
///
/// The point at parameter t is basis(0) + cos(t) basis(1) + sin(t) basis(2). basis(1) and basis(2) are
/// conjugate half-diameters, neither orthogonal nor sorted by length, because a camera sees a tilted circle
/// as a sheared one; `orthogonalize_ellipse` gives the true axes. "Major" and "minor" in the names below mean
/// the first and the second.
///
/// Lengths are in the caller's units, angles in radians, anticlockwise from +X. The default is the null
/// ellipse (`is_trivial()`); it measures and renders as the unit circle wherever the formulas allow.
/// Derived shapes add no field, so slicing one to `ellipse` loses nothing.
class TVMATH_API ellipse : public transform {
public:
    ellipse() = default;
    explicit ellipse(transform const& t) : transform(t) {}
    /// A circle about the origin.
    explicit ellipse(double r);
    ellipse(double r, point center);
    /// Half-axes `a` on X and `b` on Y, turned by `angle`, moved to `center`. A zero half-axis is not
    /// refused: it leaves infinities in the inverse map.
    ellipse(double a, double b, double angle);
    ellipse(double a, double b, point center);
    ellipse(double a, double b, double angle, point center);
    /// The conic A x² + B x y + C y² + D x + E y + F = 0 with its true axes, the longer one first,
    /// right-handed; a common factor of the coefficients, of either sign, does not matter. Trivial when that
    /// is no real ellipse (also for a single point, a NaN or an infinity): those tests are exact, so rounding
    /// of the coefficients can make a tiny ellipse of a point. Far from the origin the axes keep what digits
    /// the coefficients have.
    ellipse(double A, double B, double C, double D, double E, double F);
    /// The circle through three points, by `circle_fit`.
    ellipse(point a, point b, point c);
    /// The ellipse through five points, by `ellipse_fit`; null when none passes through them.
    ellipse(point a, point b, point c, point d, point e);

    double semimajor() const { return size(1); }
    double semiminor() const { return size(2); }
    point semimajor_axis() const { return basis(1); }
    point semiminor_axis() const { return basis(2); }
    double major_angle2d() const { return basis(1).angle2d(); }
    double minor_angle2d() const { return basis(2).angle2d(); }

    /// Enclosed area, in squared units: pi |basis(1) x basis(2)|, which holds for oblique half-diameters too.
    /// pi for the null ellipse.
    double area() const;
    /// Circumference, by Romberg's quadrature: within 1e-6 of it, as a rule 1e-8; exact for a circle. For a
    /// few narrow bands of the axis ratio the quadrature sees two equal steps by chance and stops early: the
    /// error then reaches 4e-5 (at a ratio of 0.41735). The half-diameters must be the true axes. 2 pi for
    /// the null ellipse.
    double perimeter() const;
    /// The two foci and the half-axes, `a` along the first true axis and `b` along the second; `a` is the
    /// longer one. Both foci of an ellipse without extent are its centre.
    void calc_ellipse_foci(point& f1, point& f2, double& a, double& b) const;

    /// Number of equal steps of t for a polygon that stays within `tolerance` of the curve: a multiple of 4,
    /// at least 8. The tolerance counts as 5e-6 to 0.3 of the longer half-diameter, a NaN as the smallest
    /// one.
    int rendering_density(double tolerance) const;
    /// The same for the arc from `a1` to `a2`: at least 8.
    int rendering_density(double tolerance, double a1, double a2) const;

    /// Exactly `n` points at equal steps of t (not of arc length), from t = 0; the first is not repeated at
    /// the end. An `n` below 3 counts as 3, so the list is never empty. Sines and cosines come by recurrence,
    /// whose rounding grows to about n² 2e-17 of the size at worst: 2e-12 measured at 1000 points, 6e-8 at
    /// 1e5.
    curve render_ellipse(int n) const;
    /// `n` + 1 points at equal steps from t = a1 to t = a2, both included. An `n` below 2 counts as 2. The
    /// rounding of the recurrence grows to about n² 1e-16: 5e-11 of the size measured at 1000 points, 4e-5 at
    /// 1e6.
    curve render_ellipse(int n, double a1, double a2) const;
    /// The same points moved by `offset` along the outward normal. An offset of exactly 0 gives the points
    /// themselves; with any other they are 3D. Where there is no normal, because the half-diameters are
    /// parallel, points are not moved.
    curve render_ellipse(int n, double offset) const;
    curve render_ellipse(int n, double a1, double a2, double offset) const;
    /// One parallel curve for each offset; all points are 3D.
    idioms::array<curve> render_ellipse(int n, vector offsets) const;
    idioms::array<curve> render_ellipse(int n, vector offsets, double a1, double a2) const;

    /// Closed Bezier path of 13 control points, four arcs from t = pi through pi / 2, 0 and -pi / 2; within
    /// 2.8e-4 of the size of the ellipse.
    curve render_bezier() const;
    /// Bezier path of the arc from `a1` to `a2`, in arcs of at most a quarter turn: 3 n + 1 control points. A
    /// sweep of 2 pi or more gives the whole ellipse as `render_bezier()` does; a sweep of 0 one point. With
    /// a2 below a1 it runs clockwise. Empty when an angle is NaN.
    curve render_bezier(double a1, double a2) const;

    /// Exact extent in XY, for oblique half-diameters too.
    CRealRect get_bounding_rect() const;
    /// Exact extent in XY of the arc between `a1` and `a2`, in either order. All sides are NaN when an angle
    /// is.
    CRealRect get_bounding_rect(double a1, double a2) const;
    /// Extent, in XY, of the curve at distance |offset| outside the ellipse in its own plane, as both lie
    /// after `t`: exact for the outer parallel, and the inner one lies within. The offset is measured before
    /// `t`.
    CRealRect get_bounding_rect(transform t, double offset) const;
    /// The same for the arc between `a1` and `a2`: exact for both parallels of the arc together, the one
    /// outside and the one inside.
    CRealRect get_bounding_rect(double a1, double a2, transform t, double offset) const;
};

/// Replaces two conjugate half-diameters by the true axes of the same ellipse.
TVMATH_API void orthogonalize_ellipse(point& u, point& v);
/// The same by x and y alone; z of 3D points is taken along.
TVMATH_API void orthogonalize_ellipse_2d(point& u, point& v);

/// Speed of an ellipse with true axes along its parameter, 4 sqrt(q sin² t + p): its integral from 0 to pi /
/// 2 is the perimeter.
class TVMATH_API ellipse_perimeter_integrand : public integrand {
public:
    explicit ellipse_perimeter_integrand(ellipse const& e);
    double operator()(double t) const override;
    double upper_bound() const override;

private:
    double p_, q_;  // |basis(2)|², and |basis(1)|² - p
};

}  // namespace tvmath
