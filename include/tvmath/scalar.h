#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "tvmath/export.h"

inline namespace tvmath {

// The standard functions stand in one overload set with those of the library, so that plain `abs(-2.5)` and
// `abs(v)` both mean what they should in a program that includes this header.
using std::abs;
using std::acos;
using std::asin;
using std::atan;
using std::atan2;
using std::cos;
using std::cosh;
using std::exp;
using std::fabs;
using std::floor;
using std::log;
using std::pow;
using std::sin;
using std::sinh;
using std::sqrt;
using std::tan;
using std::tanh;

inline constexpr double pi = 3.14159265358979323846;

/// The library's undefined value: the quiet NaN with its sign bit set (high word 0xFFF80000).
TVMATH_API extern double const domain_error_value;
/// Positive infinity.
inline constexpr double infinity = std::numeric_limits<double>::infinity();

inline double sqr(double x) {
    return x * x;
}

// Reciprocal functions: one over the direct function. Angles in radians.
inline double sec(double x) {
    return 1 / cos(x);
}
inline double csc(double x) {
    return 1 / sin(x);
}
inline double cot(double x) {
    return 1 / tan(x);
}
inline double sech(double x) {
    return 1 / cosh(x);
}
inline double csch(double x) {
    return 1 / sinh(x);
}
inline double coth(double x) {
    return 1 / tanh(x);
}

inline double arcsin(double x) {
    return asin(x);
}
inline double arccos(double x) {
    return acos(x);
}
inline double arctan(double x) {
    return atan(x);
}
/// Angle of (x, y) from +X, in (-pi, pi].
inline double arctan(double y, double x) {
    return atan2(y, x);
}

/// Inverse hyperbolic cosine, within a few ulp. `domain_error_value` for x below 1.
///
/// A rational approximation carries the square-root behaviour near 1, where the logarithm of the definition
/// would cancel; above 8192 the first terms of the asymptotic series avoid squaring x.
TVMATH_API double arccosh(double x);

/// Inverse hyperbolic sine, odd, within a few ulp; a rational approximation up to 1, the asymptotic series
/// above 8192.
TVMATH_API double arcsinh(double x);

/// Inverse hyperbolic tangent, odd, within a few ulp. `domain_error_value` for a magnitude of 1 or more.
TVMATH_API double arctanh(double x);

// Inverses of the reciprocal functions: the direct inverse of 1/x.
inline double arcsec(double x) {
    return arccos(1 / x);
}
inline double arccsc(double x) {
    return arcsin(1 / x);
}
inline double arccot(double x) {
    return arctan(1 / x);
}
inline double arcsech(double x) {
    return arccosh(1 / x);
}
inline double arccsch(double x) {
    return arcsinh(1 / x);
}
inline double arccoth(double x) {
    return arctanh(1 / x);
}

/// x reduced by whole multiples of m; carries the sign of m. `m` must not be 0.
inline double modulus(double x, double m) {
    return x - floor(x / m) * m;
}
/// x wrapped into [lo, hi).
inline double modulus(double x, double lo, double hi) {
    return x - floor((x - lo) / (hi - lo)) * (hi - lo);
}

/// Quadrant 0 to 3 of an angle in radians, each including its lower bound.
TVMATH_API int quadrant(double angle);
/// Quadrant 0 to 3 of the direction (x, y). On the X axis: 2 for negative x, otherwise 0.
TVMATH_API int quadrant(double x, double y);
TVMATH_API int quadrant(int x, int y);

/// x = mantissa(x) * 2^exponent(x), with the magnitude of the mantissa in [0.5, 1), or 0 for 0.
TVMATH_API double mantissa(double x);
TVMATH_API int exponent(double x);

/// Logarithm of x to any base.
inline double log(double base, double x) {
    return std::log2(x) / std::log2(base);
}

/// Integer powers by repeated squaring: powers of 2.0 are exact. 0 to the power 0 is 1.
TVMATH_API double pow(double x, unsigned long n);
TVMATH_API double pow(double x, long n);
inline double pow(double x, unsigned int n) {
    return tvmath::pow(x, static_cast<unsigned long>(n));
}
inline double pow(double x, float y) {
    return std::pow(x, static_cast<double>(y));
}
inline double pow(double x, long double y) {
    return std::pow(x, static_cast<double>(y));
}

/// Polynomial of n coefficients in ascending powers, c[0] + c[1] x + ..., by Horner's rule. 0 for n below 1.
TVMATH_API double poly(double x, int n, double const* c);

/// sin(x) / x, 1 at 0, within a few ulp.
TVMATH_API double sinc(double x);

/// n!, from a table that is not tested: n up to 12, and up to 20.
TVMATH_API std::int32_t factorial32(unsigned int n);
TVMATH_API std::int64_t factorial64(unsigned int n);

/// Binomial coefficient n over k, from a table that is not tested: k up to n, n up to 33, and up to 66.
TVMATH_API std::int32_t binomial32(unsigned int n, unsigned int k);
TVMATH_API std::int64_t binomial64(unsigned int n, unsigned int k);

}  // namespace tvmath
