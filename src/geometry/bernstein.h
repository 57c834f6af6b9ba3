#pragma once

#include <vector>

inline namespace tvmath {

// Polynomials over [0, 1] by their Bernstein coefficients, in scaled form: coefficient k already carries the
// binomial factor, so that a product is a plain convolution.

/// Binomial coefficients of one row, as numbers, for any n.
std::vector<double> binomial_row(unsigned int n);

/// Adds `factor` times the product of two polynomials in scaled form to `sum`, of the degree of both
/// together.
void add_product(std::vector<double>& sum, double factor, std::vector<double> const& a,
                 std::vector<double> const& b);

/// Arguments in (0, 1) at which the polynomial rises through 0, and possibly others at which it is 0.
/// `coefficients` are plain, not scaled; a stretch over which all of them are at most `noise` is reported by
/// its middle.
///
/// The number of zeros is at most that of the coefficients' sign changes (Descartes' rule in Bernstein form),
/// so halving until there is at most one finds all of them; then Newton's iteration within the bracket.
///
/// Source: J. M. Lane, R. F. Riesenfeld, Bounds on a polynomial, BIT 21 (1981) 112-117.
std::vector<double> rising_zeros(std::vector<double> const& coefficients, double noise);

}  // namespace tvmath
