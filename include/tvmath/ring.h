#pragma once

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// A measured closed outline, its radius being a Fourier series of the angle:
/// r(a) = c0 + c1 cos a + c2 sin a + c3 cos 2a + c4 sin 2a + ...
///
/// A copy-on-write list of the coefficients, in the caller's units; angles in radians, anticlockwise from +X.
/// c0 is the mean radius, (c1, c2) the centre of the outline to first order. A list that ends after a cosine
/// has no sine of that order. The default is the empty series, which is 0 everywhere.
class TVMATH_API ring : public idioms::array<double> {
public:
    ring() = default;
    explicit ring(idioms::array<double> const& coefficients) : array(coefficients) {}
    /// A circle about the origin: coefficients r, 0, 0.
    explicit ring(double r);

    /// (c1, c2) as a 2D location; trivial for fewer than 3 coefficients.
    point center() const;
    /// Radius of the circle of equal area, the root of the mean of r². 0 for a list of even size.
    double radius() const;
    double area() const;
    double perimeter() const;  ///< Of the circle of equal area.
    /// How far `p` lies outside the outline, along the ray from the origin; negative inside. 0 for a trivial
    /// `p`.
    double distance(point const& p) const;
    /// The 2D point of the outline in the direction `angle`.
    point render_point(double angle) const;
    /// `n` points at equal steps of the angle from 0; the first is not repeated. Empty for `n` below 1.
    curve render_ring(int n) const;
    /// Number of points for a polygon that stays within `tolerance` of the mean circle and follows every
    /// harmonic: a multiple of 4, at least 8, or twice the number of coefficients where that is more. The
    /// tolerance counts as 5e-6 to 0.3 of c0, as 5e-6 when c0 is negative. 0 for an empty series.
    int rendering_density(double tolerance) const;
};

}  // namespace tvmath
