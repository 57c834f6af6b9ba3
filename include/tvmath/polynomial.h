#pragma once

#include "tvmath/array.h"
#include "tvmath/complex.h"
#include "tvmath/export.h"
#include "tvmath/vector.h"

inline namespace tvmath {

// Polynomials as lists of coefficients in ascending order, c[0] + c[1] x + c[2] x² + ..., and their roots.
//
// Nothing raises: a search that fails gives a shorter list, and a leading coefficient of 0 leads to the lower
// degree. `poly(double, int, double const*)` stands in scalar.h, `derivative(vector)` in vector.h.

/// Value by Horner's rule; 0 for an empty list.
TVMATH_API double poly(double x, vector const& c);
TVMATH_API complex poly(complex const& x, idioms::array<complex> const& c);

/// Coefficients of the derivative, one fewer; empty for fewer than 2 coefficients.
TVMATH_API idioms::array<complex> derivative(idioms::array<complex> const& c);

/// Synthetic division by (x - root): replaces `c` by the quotient, of one coefficient fewer, and returns the
/// remainder. An empty `c` returns 0 and stays.
TVMATH_API double factor(vector& c, double root);
TVMATH_API complex factor(idioms::array<complex>& c, complex const& root);

/// The root of c0 + c1 x; an empty list when c1 is exactly 0.
TVMATH_API idioms::array<complex> linear(complex c0, complex c1);

// Closed forms for real coefficients. The forms with `roots` write the roots there and return their number;
// `roots` must hold the degree.

/// 0 or 2 real roots, the one with -sqrt of the discriminant first; a double root is reported twice. With c2
/// exactly 0 the one root -c0 / c1, which is not finite when c1 is 0 too.
TVMATH_API int quadratic(double c0, double c1, double c2, double* const roots);
/// 1 or 3 real roots by Cardano's formula and its trigonometric form, unsorted; multiple roots are repeated.
/// With c3 exactly 0 those of the quadratic.
TVMATH_API int cubic(double c0, double c1, double c2, double c3, double* const roots);
TVMATH_API vector quadratic(double c0, double c1, double c2);
TVMATH_API vector cubic(double c0, double c1, double c2, double c3);
/// 0 to 4 real roots, ascending, without duplicates; also when c4 is 0. Empty when a coefficient over c4 is
/// not finite.
///
/// A root is a number at which the quartic over c4 is below 1e-10, or below the rounding of its own
/// evaluation, and that a Newton step does not improve. Two within 1e-10, or that rounding of the
/// coefficients cannot tell apart, are one; a pair of complex roots that near to the real axis is a real
/// double root.
TVMATH_API vector quartic(double c0, double c1, double c2, double c3, double c4);

// Closed forms for complex coefficients: all roots, multiple ones repeated. A leading coefficient with both
// parts below 1e-60 in magnitude counts as 0 and leads to the lower degree.

TVMATH_API idioms::array<complex> quadratic(complex c0, complex c1, complex c2);
TVMATH_API idioms::array<complex> cubic(complex c0, complex c1, complex c2, complex c3);
TVMATH_API idioms::array<complex> quartic(complex c0, complex c1, complex c2, complex c3, complex c4);

/// All roots of a polynomial of any degree by Newton's iteration with deflation, in order of discovery.
/// Leading zeros are dropped. Fewer roots than the degree when a search does not settle within 1000 steps or
/// meets a vanishing derivative; none for a constant.
TVMATH_API idioms::array<complex> solve_nr(idioms::array<complex> c);
/// The real ones among them, where the imaginary part is at most 1e-10 of the real part; not sorted.
TVMATH_API vector solve_nr(vector const& c);

}  // namespace tvmath
