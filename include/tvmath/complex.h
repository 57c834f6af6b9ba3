#pragma once

#include <cmath>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/scalar.h"

inline namespace tvmath {

/// A complex number in double precision: a plain value, made for the roots of real polynomials.
///
/// Functions are full-range: where the textbook formula would overflow or lose the branch that the real
/// function of the same name takes, another one stands in. Nothing raises; a division by zero gives
/// infinities and NaN by the rules of floating point. Angles in radians.
///
/// Branch cuts compare with 0, so a part of -0.0 counts as 0: sqrt(-4 - 0i) is 2i. Only `arg` and `log`,
/// which take atan2 as it is, tell the signs of zeros apart.
///
/// Plain bits: zero-filled and copied as bytes by `idioms::array`.
class complex {
public:
    double re;
    double im;

    complex(double real = 0, double imaginary = 0) : re(real), im(imaginary) {}

    inline complex& operator+=(complex const& z);
    inline complex& operator-=(complex const& z);
    inline complex& operator*=(complex const& z);
    inline complex& operator/=(complex const& z);
    inline complex& operator+=(double x);
    inline complex& operator-=(double x);
    inline complex& operator*=(double x);
    inline complex& operator/=(double x);

    static constexpr bool optimize_ctor() { return true; }
    static constexpr bool optimize_copyctor() { return true; }
    static constexpr bool optimize_dtor() { return true; }
};

// Comparisons are exact; a double is a number on the real axis.

/// 1 when both parts are 0, else 0.
inline int operator!(complex const& z) {
    return z.re == 0 && z.im == 0;
}
inline int operator==(complex const& a, complex const& b) {
    return a.re == b.re && a.im == b.im;
}
inline int operator==(double a, complex const& b) {
    return a == b.re && b.im == 0;
}
inline int operator==(complex const& a, double b) {
    return a.re == b && a.im == 0;
}
inline int operator!=(complex const& a, complex const& b) {
    return !(a == b);
}
inline int operator!=(double a, complex const& b) {
    return !(a == b);
}
inline int operator!=(complex const& a, double b) {
    return !(a == b);
}

/// Magnitude, free of overflow and underflow.
inline double abs(complex const& z) {
    return std::hypot(z.re, z.im);
}
/// Squared magnitude, re² + im².
inline double abs2(complex const& z) {
    return z.re * z.re + z.im * z.im;
}
/// Angle from the positive real axis, in [-pi, pi].
inline double arg(complex const& z) {
    return std::atan2(z.im, z.re);
}
inline complex conj(complex const& z) {
    return complex(z.re, -z.im);
}
inline void swap(complex& a, complex& b) {
    complex const copy = a;
    a = b;
    b = copy;
}

/// 1 / z by Smith's scaling, which never forms re² + im².
///
/// Source: R. L. Smith, Algorithm 116: Complex division, Comm. ACM 5 (1962) 435.
inline complex reciprocal(complex const& z) {
    if (z.im == 0) return complex(1 / z.re, 0);
    if (z.re == 0) return complex(0, -1 / z.im);
    double const r = z.re / z.im, s = z.im / z.re;
    return complex(1 / (z.im * s + z.re), -1 / (z.re * r + z.im));
}

inline complex operator-(complex const& z) {
    return complex(-z.re, -z.im);
}
inline complex operator+(complex const& a, complex const& b) {
    return complex(a.re + b.re, a.im + b.im);
}
inline complex operator+(double a, complex const& b) {
    return complex(a + b.re, b.im);
}
inline complex operator+(complex const& a, double b) {
    return complex(a.re + b, a.im);
}
inline complex operator-(complex const& a, complex const& b) {
    return complex(a.re - b.re, a.im - b.im);
}
inline complex operator-(double a, complex const& b) {
    return complex(a - b.re, -b.im);
}
inline complex operator-(complex const& a, double b) {
    return complex(a.re - b, a.im);
}
inline complex operator*(complex const& a, complex const& b) {
    return complex(a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re);
}
inline complex operator*(double a, complex const& b) {
    return complex(a * b.re, a * b.im);
}
inline complex operator*(complex const& a, double b) {
    return complex(a.re * b, a.im * b);
}
/// Times `reciprocal(b)`.
inline complex operator/(complex const& a, complex const& b) {
    return a * reciprocal(b);
}
inline complex operator/(double a, complex const& b) {
    return a * reciprocal(b);
}
inline complex operator/(complex const& a, double b) {
    return complex(a.re / b, a.im / b);
}

inline complex& complex::operator+=(complex const& z) {
    return *this = *this + z;
}
inline complex& complex::operator-=(complex const& z) {
    return *this = *this - z;
}
inline complex& complex::operator*=(complex const& z) {
    return *this = *this * z;
}
inline complex& complex::operator/=(complex const& z) {
    return *this = *this / z;
}
inline complex& complex::operator+=(double x) {
    return *this = *this + x;
}
inline complex& complex::operator-=(double x) {
    return *this = *this - x;
}
inline complex& complex::operator*=(double x) {
    return *this = *this * x;
}
inline complex& complex::operator/=(double x) {
    return *this = *this / x;
}

/// cos x + i sin x.
TVMATH_API complex cis(double x);
/// cosh x + i sinh x, a pair rather than a number: both at the cost of one exponential, overflowing only
/// where cosh x does.
TVMATH_API complex cish(double x);

TVMATH_API complex exp(complex const& z);
/// ln|z| + i arg z.
TVMATH_API complex log(complex const& z);
TVMATH_API complex log(double base, complex const& z);
TVMATH_API complex log10(complex const& z);
inline complex sqr(complex const& z) {
    return z * z;
}
/// The root with a real part of 0 or more; on the negative real axis the one on the positive imaginary axis.
TVMATH_API complex sqrt(complex const& z);

/// Powers by magnitude and angle. An even integer power takes re² + im² and so needs no square root; z to the
/// power 0 is 1.
TVMATH_API complex pow(complex const& z, int n);
TVMATH_API complex pow(complex const& z, double x);
TVMATH_API complex pow(complex const& z, complex const& w);
TVMATH_API complex pow(double x, complex const& w);

TVMATH_API complex sin(complex const& z);
TVMATH_API complex cos(complex const& z);
TVMATH_API complex sinh(complex const& z);
TVMATH_API complex cosh(complex const& z);
/// Full-range: beyond an imaginary part of 18.3685 its hyperbolic tangent is 1 to the last bit.
TVMATH_API complex tan(complex const& z);
TVMATH_API complex cot(complex const& z);
TVMATH_API complex tanh(complex const& z);
TVMATH_API complex coth(complex const& z);

// One over the direct function.
inline complex sec(complex const& z) {
    return reciprocal(cos(z));
}
inline complex csc(complex const& z) {
    return reciprocal(sin(z));
}
inline complex sech(complex const& z) {
    return reciprocal(cosh(z));
}
inline complex csch(complex const& z) {
    return reciprocal(sinh(z));
}

// Inverse functions, principal values. A real argument inside the domain of the real function gives what that
// function gives.

/// Real part in [-pi/2, pi/2]. Real z above 1: pi/2 - i arccosh z; below -1: -pi/2 + i arccosh(-z).
TVMATH_API complex arcsin(complex const& z);
/// Real part in [0, pi]; `pi / 2 - arcsin(z)`.
TVMATH_API complex arccos(complex const& z);
/// Real part in [-pi/2, pi/2]. On the imaginary axis above i it is pi/2, below -i it is -pi/2; infinite at
/// both.
TVMATH_API complex arctan(complex const& z);
/// Imaginary part in [-pi/2, pi/2]. On the imaginary axis above i the real part is positive, below -i
/// negative.
TVMATH_API complex arcsinh(complex const& z);
/// Real part at least 0. Real z inside (-1, 1): i arccos z; below -1: arccosh(-z) + i pi.
TVMATH_API complex arccosh(complex const& z);
/// Imaginary part in [-pi/2, pi/2]. Real z above 1 has the imaginary part pi/2, below -1 it has -pi/2; 1 and
/// -1 give infinities.
TVMATH_API complex arctanh(complex const& z);

// The direct inverse of 1 / z.
inline complex arcsec(complex const& z) {
    return arccos(reciprocal(z));
}
inline complex arccsc(complex const& z) {
    return arcsin(reciprocal(z));
}
inline complex arccot(complex const& z) {
    return arctan(reciprocal(z));
}
inline complex arcsech(complex const& z) {
    return arccosh(reciprocal(z));
}
inline complex arccsch(complex const& z) {
    return arcsinh(reciprocal(z));
}
inline complex arccoth(complex const& z) {
    return arctanh(reciprocal(z));
}

}  // namespace tvmath
