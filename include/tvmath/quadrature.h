#pragma once

#include "tvmath/export.h"

inline namespace tvmath {

/// A function of one variable to be integrated: an object, so that its parameters travel with it.
class TVMATH_API integrand {
public:
    virtual double operator()(double x) const = 0;
    virtual double lower_bound() const;  ///< 0 unless a derived class says otherwise.
    virtual double upper_bound() const;  ///< 1 unless a derived class says otherwise.
    virtual ~integrand();
};

/// Integral by Romberg's method with at most 12 rows, 2049 samples. It stops when the last two diagonal
/// values differ by less than 1e-6 of the last, strictly, so that an integral of exactly 0 runs all rows; an
/// integrand that never settles gives the value of row 12. The reverse bounds give the negated integral.
///
/// Source: W. Romberg, Vereinfachte numerische Integration, Norske Vid. Selsk. Forh. 28 (1955) 30-36.
TVMATH_API double integrate(integrand const& f);
TVMATH_API double integrate(integrand const& f, double lower, double upper);

}  // namespace tvmath
