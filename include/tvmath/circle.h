#pragma once

#include "tvmath/ellipse.h"
#include "tvmath/export.h"

inline namespace tvmath {

/// A circle: an ellipse whose half-diameters are orthogonal and equally long.
class TVMATH_API circle : public ellipse {
public:
    circle() = default;
    explicit circle(transform const& t) : ellipse(t) {}
    explicit circle(double radius) : ellipse(radius) {}
    circle(double radius, point center) : ellipse(radius, center) {}
    /// The circle through three points, by `circle_fit`.
    circle(point a, point b, point c);

    double radius() const { return size(1); }  ///< 0 for the null circle, so it is no test of success.
    double perimeter() const { return 2 * pi * size(1); }  ///< 0 for the null circle.
};

}  // namespace tvmath
