#include <algorithm>

#include "tvmath/polynomial.h"

// Closed forms of degree 2 and 3 for real coefficients, by the textbook's formulas and with exact tests of
// their discriminants: no tolerance would be right without the scale of the caller's units. Where their
// accuracy ends is said at each.

inline namespace tvmath {
namespace {

// By power, which is an ulp or so off at a perfect cube.
double real_cube_root(double x) {
    constexpr double third = 0.3333333333333333;
    return x == 0 ? 0 : std::copysign(std::pow(fabs(x), third), x);
}

}  // namespace

// The root that is small beside the other one is a difference: it has an absolute error of some ulp of the
// large one. c1² overflows for coefficients beyond 1e154.
int quadratic(double c0, double c1, double c2, double* const roots) {
    if (c2 == 0) {
        roots[0] = -c0 / c1;
        return 1;
    }
    double const d = c1 * c1 - 4 * c0 * c2;
    if (d < 0) return 0;
    double const root = sqrt(d);
    roots[0] = (-c1 - root) / (2 * c2);
    roots[1] = (-c1 + root) / (2 * c2);
    return 2;
}

// With x = z - c/3: z³ + p z + q. Each root has an absolute error of some ulp of the largest, and a double
// root of half the digits: the sign of a D that is all rounding decides whether it is found as two roots or
// not at all. The powers of p and q run out of range for roots beyond 1e51 or below 1e-51.
int cubic(double c0, double c1, double c2, double c3, double* const roots) {
    if (c3 == 0) return quadratic(c0, c1, c2, roots);
    double const a = c0 / c3, b = c1 / c3, c = c2 / c3, shift = c / 3;
    double const p = b - c * c / 3, q = 2 * c * c * c / 27 - c * b / 3 + a;
    double const p3 = p * p * p / 27, discriminant = q * q / 4 + p3;
    if (discriminant < 0) {
        // Three roots, by the cosine of the triple angle. Rounding may carry the quotient an ulp beyond 1.
        double const t = acos(std::clamp(-q / 2 / sqrt(-p3), -1.0, 1.0)) / 3, m = 2 * sqrt(-p / 3);
        roots[0] = m * cos(t) - shift;
        roots[1] = m * cos(t + 2 * pi / 3) - shift;
        roots[2] = m * cos(t + 4 * pi / 3) - shift;
        return 3;
    }
    if (discriminant == 0) {
        double const u = real_cube_root(-q / 2);
        roots[0] = 2 * u - shift;
        roots[1] = roots[2] = -u - shift;
        return 3;
    }
    double const r = sqrt(discriminant);
    roots[0] = real_cube_root(-q / 2 + r) + real_cube_root(-q / 2 - r) - shift;
    return 1;
}

vector quadratic(double c0, double c1, double c2) {
    double roots[2];
    int const count = quadratic(c0, c1, c2, roots);
    return vector(static_cast<unsigned int>(count), roots);
}

vector cubic(double c0, double c1, double c2, double c3) {
    double roots[3];
    int const count = cubic(c0, c1, c2, c3, roots);
    return vector(static_cast<unsigned int>(count), roots);
}

}  // namespace tvmath
