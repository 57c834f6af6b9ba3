#pragma once

#include <cmath>

inline namespace tvmath {
namespace Delaunay {

/// The order of points along one axis, ties along the other. Parts that are apart in this order can be parted
/// by a line.
template <int axis>
bool precedes(double const* p, double const* q) {
    return p[axis] != q[axis] ? p[axis] < q[axis] : p[1 - axis] < q[1 - axis];
}

/// The two questions that a triangulation asks, answered with the exact sign for any coordinates.
///
/// First in plain double precision with a bound on the rounding; a value within the bound is decided by
/// expansions, exact sums of doubles. A triangulation that trusts a rounded sign of nearly collinear points
/// can tear or fold.
///
/// Source: J. Shewchuk, Adaptive precision floating-point arithmetic and fast robust geometric predicates,
/// Discrete Comput. Geom. 18 (1997) 305-363.
class predicates {
public:
    /// Every coordinate is a multiple of `quantum`, a power of 2, and none is beyond `largest`. No product of
    /// four differences may leave the range of double, nor its last digit: `quantum` is at least 2^-255,
    /// `largest` at most 2^250.
    predicates(double quantum, double largest);

    /// Positive when a, b, c run anticlockwise, negative clockwise, 0 on one line. The magnitude is rounded.
    double turn(double const* a, double const* b, double const* c) const {
        double const left = (a[0] - c[0]) * (b[1] - c[1]), right = (a[1] - c[1]) * (b[0] - c[0]);
        double const area = left - right, size = std::fabs(left) + std::fabs(right);
        if (std::fabs(area) > turn_rounding * size || size <= exact_area_) return area;
        return exact_turn(a, b, c);
    }

    /// Positive when d lies inside the circle through a, b, c, which run anticlockwise, negative outside. On
    /// the circle the last of the four points in the order along x counts as moved out of it, so that there
    /// is one answer to every question and one triangulation of every set of points: the one to which
    /// insertion in that order leads. 0 when d is one of the others.
    double in_circle(double const* a, double const* b, double const* c, double const* d) const {
        double const ax = a[0] - d[0], bx = b[0] - d[0], cx = c[0] - d[0];
        double const ay = a[1] - d[1], by = b[1] - d[1], cy = c[1] - d[1];
        double const bxcy = bx * cy, cxby = cx * by, cxay = cx * ay, axcy = ax * cy, axby = ax * by,
                     bxay = bx * ay;
        double const aa = ax * ax + ay * ay, bb = bx * bx + by * by, cc = cx * cx + cy * cy;
        double const power = aa * (bxcy - cxby) + bb * (cxay - axcy) + cc * (axby - bxay);
        double const size = aa * (std::fabs(bxcy) + std::fabs(cxby)) +
                            bb * (std::fabs(cxay) + std::fabs(axcy)) +
                            cc * (std::fabs(axby) + std::fabs(bxay));
        if (std::fabs(power) > circle_rounding * size) return power;
        return near_circle(a, b, c, d, power, size);
    }

private:
    // Bounds A of the source; u is half an ulp of 1.
    static constexpr double u = 0x1p-53;
    static constexpr double turn_rounding = (3 + 16 * u) * u;
    static constexpr double circle_rounding = (10 + 96 * u) * u;

    static double exact_turn(double const* a, double const* b, double const* c);
    double near_circle(double const* a, double const* b, double const* c, double const* d, double power,
                       double size) const;

    // Terms below these sizes are integer multiples of quantum² or quantum^4 with 53 bits, so that nothing
    // was rounded: on pixel grids, where four points on a circle are the rule, their 0 is known to be exact.
    double exact_area_, exact_power_;
};

}  // namespace Delaunay
}  // namespace tvmath
