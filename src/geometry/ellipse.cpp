#include "tvmath/ellipse.h"

#include <algorithm>
#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The half-diameters at the parameters t and t + pi / 2 are c u + s v and c v - s u. Their product
// B cos 2t - A / 2 sin 2t, with A = |u|² - |v|² and B = u . v, vanishes at tan 2t = 2 B / A; the quadrant of
// atan2 makes the first one the longer. A is taken as a product because the difference of squares cancels.
void turn_to_true_axes(point& u, point& v, double (*product)(point const&, point const&)) {
    double const t = std::atan2(2 * product(u, v), product(u + v, u - v)) / 2;
    double const c = std::cos(t), s = std::sin(t);
    if (s == 0.0) return;  // exact on purpose: true axes in order stay as they are to the last bit
    point const old_u = u;
    u = c * u + s * v;
    v = c * v - s * old_u;
}

// Half of the angle whose chord stays within `tolerance` of a circle of the longer half-diameter.
double half_step(ellipse const& e, double tolerance) {
    // Of the columns and not by size(), which is 0 for the null ellipse that renders as the unit circle.
    double const r = std::max(e.basis(1).length3d(), e.basis(2).length3d());
    // In this order the bounds also catch a NaN, of a size of 0 or of a tolerance without a value.
    double const sagitta = std::min(0.3, std::max(5e-6, tolerance / r));
    return std::acos(1 - sagitta);
}

// At least 8, also for a NaN, and within the range of the type.
int step_count(double n) {
    return static_cast<int>(std::min(2147483647.0, std::max(8.0, n)));
}

}  // namespace

ellipse::ellipse(double r) : transform(dilation(r)) {}

ellipse::ellipse(double r, point center) : ellipse(r, r, center) {}

ellipse::ellipse(double a, double b, double angle) : transform(dilation(a, b).rotate(angle)) {}

ellipse::ellipse(double a, double b, point center) : transform(dilation(a, b).translate(center)) {}

ellipse::ellipse(double a, double b, double angle, point center)
    : transform(dilation(a, b).rotate(angle).translate(center)) {}

double ellipse::area() const {
    return pi * cross(basis(1), basis(2)).length3d();
}

double ellipse::perimeter() const {
    return is_trivial() ? 2 * pi : integrate(ellipse_perimeter_integrand(*this));
}

void ellipse::calc_ellipse_foci(point& f1, point& f2, double& a, double& b) const {
    point u = basis(1), v = basis(2);
    orthogonalize_ellipse(u, v);
    a = u.length3d();
    b = v.length3d();
    point const& longer = a > b ? u : v;
    double const size = std::max(a, b), eccentricity = std::sqrt(std::fabs((a + b) * (a - b)));
    // An ellipse without extent has both foci at its centre.
    point const focal = longer * (size == 0.0 ? 0.0 : eccentricity / size);
    f1 = center() - focal;
    f2 = center() + focal;
}

int ellipse::rendering_density(double tolerance) const {
    return step_count(4 * std::ceil(pi / 4 / half_step(*this, tolerance)));
}

int ellipse::rendering_density(double tolerance, double a1, double a2) const {
    return step_count(std::ceil(0.5 * std::fabs(a1 - a2) / half_step(*this, tolerance)));
}

void orthogonalize_ellipse(point& u, point& v) {
    turn_to_true_axes(u, v, dot);
}

void orthogonalize_ellipse_2d(point& u, point& v) {
    turn_to_true_axes(u, v, dot2d);
}

ellipse_perimeter_integrand::ellipse_perimeter_integrand(ellipse const& e)
    : p_(e.dot(2, 2)), q_(e.dot(1, 1) - p_) {}

double ellipse_perimeter_integrand::operator()(double t) const {
    double const s = std::sin(t);
    return 4 * std::sqrt(q_ * s * s + p_);
}

double ellipse_perimeter_integrand::upper_bound() const {
    return pi / 2;
}

}  // namespace tvmath
