#pragma once

#include <cmath>
#include <limits>

#include "geometry/xy.h"
#include "tvmath/ellipse.h"

inline namespace tvmath {

/// True for a shape that says nothing, also when its handle is null.
inline bool is_empty(idioms::array<double> const& shape) {
    return !shape || shape.is_trivial();
}

/// An ellipse as it is seen along Z, with the map into the frame in which it is the unit circle.
struct flat_ellipse {
    xyz center, u, v;
    double determinant;

    explicit flat_ellipse(ellipse const& e)
        : center(e.basis(0)), u(e.basis(1)), v(e.basis(2)), determinant(cross(xy(u), xy(v))) {}

    double squared_size() const { return dot(xy(u), xy(u)) + dot(xy(v), xy(v)); }
    /// Seen edge-on, up to rounding, or not finite: there is no frame.
    bool is_flat() const {
        double const least =
            8 * std::numeric_limits<double>::epsilon() * std::sqrt(dot(xy(u), xy(u)) * dot(xy(v), xy(v)));
        return !(std::fabs(determinant) > least && std::isfinite(determinant));
    }
    xy direction(xyz const& d) const {
        return {cross(xy(d), xy(v)) / determinant, cross(xy(u), xy(d)) / determinant};
    }
    xy location(xyz const& p) const { return direction(p - center); }
};

}  // namespace tvmath
