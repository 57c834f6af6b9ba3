#pragma once

#include "geometry/xyz.h"
#include "tvmath/curve.h"

inline namespace tvmath {

/// True for a Bezier path of at least one span.
inline bool has_spans(curve const& c) {
    return !!c && c.capacity() >= 4 && c.capacity() % 3 == 1;
}

/// The point of a span in the Bernstein form; the ends are control points to the last bit.
inline xyz span_point(point const* control, double t) {
    double const s = 1 - t;
    return (s * s * s) * xyz(control[0]) + (3 * s * s * t) * xyz(control[1]) +
           (3 * s * t * t) * xyz(control[2]) + (t * t * t) * xyz(control[3]);
}

}  // namespace tvmath
