#include <algorithm>
#include <cstddef>

#include "tvmath/nurb.h"

inline namespace tvmath {
namespace {

// The points of a path as control points of weight 1, and knots that are all 0.
nurb with_points(curve const& c, unsigned int degree) {
    nurb n(degree + 1, c.capacity());
    TQ3NURBCurveData& d = n;
    std::transform(c.begin(), c.end(), d.control_points, [](point p) {
        p.promote3d();
        return TQ3RationalPoint4D{p.x(), p.y(), p.z(), 1};
    });
    return n;
}

}  // namespace

nurb bezier_to_nurb(curve const& c, unsigned int degree) {
    unsigned int const size = c.capacity();
    if (degree == 0 || size <= degree || (size - 1) % degree != 0) return nurb();
    nurb n = with_points(c, degree);
    TQ3NURBCurveData& d = n;
    // Knots 1 to size - 1 are the joints, `degree` times each; the first and the last stand alone.
    double* const knots = d.knot_values;
    unsigned int const segments = (size - 1) / degree;
    for (unsigned int joint = 0; joint < segments; ++joint) {
        std::fill_n(knots + 1 + std::size_t{joint} * degree, degree, joint);
    }
    std::fill_n(knots + size, degree + 1, segments);
    return n;
}

nurb uniform_bspline_to_nurb(curve const& c, unsigned int degree) {
    if (c.capacity() <= degree) return nurb();
    nurb n = with_points(c, degree);
    TQ3NURBCurveData& d = n;
    for (unsigned int i = 0; i < d.order + d.point_count; ++i) d.knot_values[i] = i;
    return n;
}

}  // namespace tvmath
