#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "tvmath/ellipse.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// a b - c d within two units in the last place, where the plain difference would cancel.
// Source: W. Kahan's algorithm; C.-P. Jeannerod, N. Louvet, J.-M. Muller, Further analysis of Kahan's
// algorithm for the accurate computation of 2 x 2 determinants, Math. Comp. 82 (2013) 2245-2264.
double difference_of_products(double a, double b, double c, double d) {
    double const cd = c * d, rounding = std::fma(-c, d, cd);
    return std::fma(a, b, -cd) + rounding;
}

struct factors {
    double a, b;
};

// Sum of products as if in twice the precision. Source: T. Ogita, S. M. Rump, S. Oishi, Accurate sum and dot
// product, SIAM J. Sci. Comput. 26 (2005) 1955-1988.
double accurate_dot(std::initializer_list<factors> products) {
    double sum = 0, rounding = 0;
    for (auto const& [a, b] : products) {
        double const product = a * b, next = sum + product, part = next - sum;
        rounding += std::fma(a, b, -product) + ((sum - (next - part)) + (product - part));
        sum = next;
    }
    return sum + rounding;
}

// Binary exponent of the largest magnitude; below that of any number when all are 0.
int common_exponent(std::initializer_list<double> numbers) {
    double largest = 0;
    for (double const x : numbers) largest = std::max(largest, std::fabs(x));
    return largest == 0 ? -10000 : std::ilogb(largest);
}

// a x² + 2 b x y + c y² + 2 d x + 2 e y + f, with a + c > 0, about 1 in size: the units of the coefficients
// and of the coordinates are scaled by powers of two, so no square overflows and no digit is lost.
struct scaled_conic {
    double a, b, c, d, e, f;
    int length_exponent;  // the conic's coordinates times 2^this are the caller's

    scaled_conic(double A, double B, double C, double D, double E, double F) {
        int const unit = common_exponent({A, B, C});
        double const sign = A + C < 0 ? -1 : 1;
        a = sign * std::ldexp(A, -unit);
        b = sign * std::ldexp(B, -unit - 1);
        c = sign * std::ldexp(C, -unit);
        length_exponent = std::max(common_exponent({D, E}) - unit, (common_exponent({F}) - unit) / 2);
        d = sign * std::ldexp(D, -unit - 1 - length_exponent);
        e = sign * std::ldexp(E, -unit - 1 - length_exponent);
        f = sign * std::ldexp(F, -unit - 2 * length_exponent);
    }
};

// Unit vector at half the angle of (x, y), or opposite to it; X for (0, 0). By the half-angle formulas that
// do not cancel, so that axes along X and Y come out exact.
point direction_at_half_angle(double x, double y) {
    double const r = std::hypot(x, y);
    if (r == 0.0) return point(false, 1, 0);
    return normalize(x >= 0 ? point(false, r + x, y) : point(false, y, r - x));
}

}  // namespace

ellipse::ellipse(double A, double B, double C, double D, double E, double F) {
    for (double const coefficient : {A, B, C, D, E, F}) {
        if (!std::isfinite(coefficient)) return;
    }
    auto const [a, b, c, d, e, f, exponent] = scaled_conic(A, B, C, D, E, F);
    // Exact on purpose, as the next one: a tolerance would need to know the noise of the coefficients.
    double const det = difference_of_products(a, c, b, b);
    if (!(det > 0)) return;

    // The gradient vanishes at the centre: a x + b y = -d, b x + c y = -e.
    double const x = difference_of_products(b, e, c, d) / det;
    double const y = difference_of_products(b, d, a, e) / det;
    // The value there. With the rounded centre the gradient counts: the form f + d x + e y would carry an
    // error of d times the rounding of x, here it is of second order. An ellipse far from the origin is the
    // small difference of large terms.
    double const slope_x = accurate_dot({{a, x}, {b, y}, {d, 1}});
    double const slope_y = accurate_dot({{b, x}, {c, y}, {e, 1}});
    double const value = accurate_dot({{f, 1}, {d, x}, {e, y}, {slope_x, x}, {slope_y, y}});
    if (!(value < 0)) return;

    // Eigenvalues of (a b; b c); the smaller one by the product of both, since the difference cancels.
    double const difference = (c - a) / 2, radius = std::hypot(difference, b);
    double const larger = (a + c) / 2 + radius, smaller = det / larger;
    double const longest = std::ldexp(std::sqrt(-value / smaller), exponent);
    double const shortest = std::ldexp(std::sqrt(-value / larger), exponent);
    // At the angle t the quadratic form is (a + c) / 2 - (difference cos 2t - b sin 2t), least on the long
    // axis.
    point const axis = direction_at_half_angle(difference, 0 - b);
    point across = axis;
    across.rotate_90();
    point const center(true, std::ldexp(x, exponent), std::ldexp(y, exponent));
    static_cast<transform&>(*this) = make_transform(center, longest * axis, shortest * across);
}

}  // namespace tvmath
