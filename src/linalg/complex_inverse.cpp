#include <limits>

#include "tvmath/complex.h"

inline namespace tvmath {
namespace {

// Inverse functions keep the digits of both parts everywhere: the logarithm of z + sqrt(z² ± 1) cancels near
// the branch points and for half of all directions, and overflows for large z.
//
// On a cut that lies on the imaginary axis (arcsinh and arctan beyond i and -i) the functions are odd: a real
// part of 0, whatever its sign, goes with the side that the sign of the imaginary part names.

// Of a point x + i y of the first quadrant.
struct first_quadrant {
    double arcsin;   // real part of arcsin
    double arccos;   // real part of arccos, pi / 2 less the former
    double arccosh;  // imaginary part of arcsin: arccosh of the mean distance from 1 and -1
};

// Beyond these bounds the squares of the general case overflow or lose digits.
double const largest_safe = sqrt(std::numeric_limits<double>::max()) / 8;
double const smallest_safe = sqrt(std::numeric_limits<double>::min()) * 4;
constexpr double ln_2 = 0.6931471805599453;

// Source: T. E. Hull, T. F. Fairgrieve, P. T. P. Tang, Implementing the complex arcsine and arccosine
// functions using exception handling, ACM Trans. Math. Softw. 23 (1997) 299-335.
first_quadrant near_or_far(double x, double y) {
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    double const above = x + 1, beyond = x - 1;
    if (std::isnan(x + y)) return {x + y, x + y, x + y};
    if (y <= epsilon * fabs(beyond)) {  // as good as on the real axis
        if (x < 1) {
            double const root = sqrt(above * -beyond);
            return {asin(x), acos(x), y / root};
        }
        bool const squares = std::numeric_limits<double>::max() / above > beyond;
        double const root = sqrt(above) * sqrt(beyond);
        return {pi / 2, root > 0 ? y / root : 0, squares ? std::log1p(beyond + root) : ln_2 + log(x)};
    }
    if (y < smallest_safe) {  // x is 1: the square root of the branch point
        double const root = sqrt(y);
        return {pi / 2 - root, root, root};
    }
    if (epsilon * y - 1 >= x) return {x / y, pi / 2, ln_2 + log(y)};
    if (x > 1) return {atan(x / y), atan(y / x), ln_2 + log(y) + 0.5 * std::log1p(sqr(x / y))};
    double const a = sqrt(1 + y * y);
    return {x / a, pi / 2, 0.5 * std::log1p(2 * y * (y + a))};
}

first_quadrant inverse_in_first_quadrant(double x, double y) {
    if (!(x < largest_safe && y < largest_safe && x > smallest_safe && y > smallest_safe))
        return near_or_far(x, y);
    // a = (r + s) / 2 is the half-axis of the ellipse with the foci -1 and 1 that z lies on, b = x / a the
    // sine sought. Each quantity that cancels, a - 1 and a - x, is rebuilt from r - (x + 1) = y² / (r + (x +
    // 1)) and its like.
    constexpr double a_crossover = 1.5, b_crossover = 0.6417;
    double const above = x + 1, beyond = x - 1, y2 = y * y;
    double const r = sqrt(above * above + y2), s = sqrt(beyond * beyond + y2);
    double const a = 0.5 * (r + s), b = x / a;
    double const r_excess = y2 / (r + above), s_excess = beyond < 0 ? s - beyond : y2 / (s + beyond);
    first_quadrant result;
    if (b <= b_crossover) {
        result.arcsin = asin(b);
        result.arccos = acos(b);
    } else {
        double const root = x <= 1 ? sqrt(0.5 * (a + x) * (r_excess + s_excess))
                                   : y * sqrt(0.5 * ((a + x) / (r + above) + (a + x) / (s + beyond)));
        result.arcsin = atan(x / root);
        result.arccos = atan(root / x);
    }
    if (a <= a_crossover) {
        double const a_less_1 = 0.5 * (r_excess + (beyond < 0 ? y2 / (s - beyond) : s + beyond));
        result.arccosh = std::log1p(a_less_1 + sqrt(a_less_1 * (a + 1)));
    } else {
        result.arccosh = log(a + sqrt(a * a - 1));
    }
    return result;
}

// arctanh of a magnitude of 1 or more, less its imaginary part: ln((x + 1) / (x - 1)) / 2.
double arctanh_beyond_1(double x) {
    return 0.5 * std::log1p(2 / (x - 1));
}

}  // namespace

complex arcsin(complex const& z) {
    if (z.im != 0) {
        complex const a = arcsinh(complex(-z.im, z.re));
        return complex(a.im, -a.re);
    }
    if (z.re > 1) return complex(pi / 2, -arccosh(z.re));
    if (z.re < -1) return complex(-pi / 2, arccosh(-z.re));
    return complex(asin(z.re), 0);
}

complex arccos(complex const& z) {
    if (z.im != 0) {
        first_quadrant const q = inverse_in_first_quadrant(fabs(z.re), fabs(z.im));
        return complex(z.re < 0 ? pi - q.arccos : q.arccos, std::copysign(q.arccosh, -z.im));
    }
    if (z.re > 1) return complex(0, arccosh(z.re));
    if (z.re < -1) return complex(pi, -arccosh(-z.re));
    return complex(acos(z.re), 0);
}

complex arcsinh(complex const& z) {
    if (z.im == 0) return complex(arcsinh(z.re), 0);
    first_quadrant const q = inverse_in_first_quadrant(fabs(z.im), fabs(z.re));
    return complex(std::copysign(q.arccosh, z.re == 0 ? z.im : z.re), std::copysign(q.arcsin, z.im));
}

complex arccosh(complex const& z) {
    if (z.im != 0) {
        complex const a = arccos(z);  // its imaginary part has the opposite sign of z.im
        return z.im > 0 ? complex(-a.im, a.re) : complex(a.im, -a.re);
    }
    if (z.re < -1) return complex(arccosh(-z.re), pi);
    if (z.re < 1) return complex(0, acos(z.re));
    return complex(arccosh(z.re), 0);
}

complex arctan(complex const& z) {
    if (z.im == 0) return complex(atan(z.re), 0);
    double const m = fabs(z.im);
    if (z.re == 0 && m >= 1) {
        return complex(m > 1 ? std::copysign(pi / 2, z.im) : 0, std::copysign(arctanh_beyond_1(m), z.im));
    }
    complex const a = arctanh(complex(-z.im, z.re));
    return complex(a.im, -a.re);
}

complex arctanh(complex const& z) {
    double const x = fabs(z.re), y = fabs(z.im);
    if (z.im == 0) {
        if (x < 1) return complex(arctanh(z.re), 0);
        // At 1 itself the function has a pole, and no side to take the imaginary part from.
        return complex(std::copysign(arctanh_beyond_1(x), z.re), x > 1 ? std::copysign(pi / 2, z.re) : 0);
    }
    // Real part ln(|1 + z|² / |1 - z|²) / 4 with |1 + z|² = |1 - z|² + 4x; imaginary part half the angle of
    // (1 + z) (1 - conj z). Far out, where the squares would overflow, they are those of 1 / z and pi / 2.
    constexpr double far = 1e100;
    double real, imaginary;
    if (x > far || y > far) {
        real = reciprocal(complex(x, y)).re;
        imaginary = pi / 2;
    } else {
        // A y² that underflows matters at x = 1 alone, where |1 - z|² is y².
        real =
            x == 1 && y < 1 / far ? 0.5 * (ln_2 - log(y)) : 0.25 * std::log1p(4 * x / (sqr(1 - x) + y * y));
        imaginary = 0.5 * atan2(2 * y, (1 - x) * (1 + x) - y * y);
    }
    return complex(std::copysign(real, z.re), std::copysign(imaginary, z.im));
}

}  // namespace tvmath
