#include "closest_ellipse.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bracketed_root.h"
#include "tvmath/scalar.h"

// The ellipse is (cos t, b sin t), in units of its longer half-axis and with 0 <= b <= 1. The derivative of
// half of the squared distance from (x, y) is
//
//     f(t) = x sin t - b y cos t - (1 - b²) sin t cos t
//          = ((x - 1) + 2 sin²(t/2)) sin t + (b sin t - y) b cos t,
//
// and the second form keeps the digits at the end of a flat ellipse, where x and cos t cancel. By symmetry x
// and y may be taken at least 0. Divided by sin t cos t, f = 0 reads
//
//     x / cos t - b y / sin t = 1 - b².
//
// From t = 0 to pi / 2 the left side rises from below to above all bounds: there is exactly one zero, where f
// rises, and it is the nearest point. With t as the unknown the bracket stays bounded on the axes, at the
// centre and for b = 0, where the customary equation in the Lagrange multiplier has poles (D. Eberly,
// Distance from a Point to an Ellipse, an Ellipsoid, or a Hyperellipsoid, Geometric Tools 2013).

inline namespace tvmath {
namespace {

value_and_slope distance_slope(double x, double y, double b, double t) {
    double const s = std::sin(t), c = std::cos(t), half = std::sin(t / 2);
    double const along = (x - 1) + 2 * half * half;
    return {along * s + (b * s - y) * b * c, along * c + s * s + b * (y * s + b * (c - s) * (c + s))};
}

}  // namespace

true_ellipse::true_ellipse(ellipse const& e) : center_(e.basis(0)) {
    point u = e.basis(1), v = e.basis(2);
    phase_ = std::atan2(2 * dot(u, v), dot(u + v, u - v)) / 2;  // as the next line turns them
    orthogonalize_ellipse(u, v);
    a_ = length(xyz(u));
    e1_ = unit(xyz(u));
    // A short second axis holds what the first one's rounding left in it.
    xyz const second = xyz(v) - dot(xyz(v), e1_) * e1_;
    e2_ = unit(second);
    ratio_ = a_ > 0 ? std::min(length(second) / a_, 1.0) : 0;
}

void true_ellipse::into_frame(xyz const& p, double& x, double& y) const {
    xyz const w = p - center_;
    x = dot(w, e1_) / a_;
    y = dot(w, e2_) / a_;
}

// x and y at least 0; the answer lies in the first quadrant.
true_ellipse::angle_at true_ellipse::nearest_angle(double x, double y) const {
    // Of a circle, up to rounding, the direction of the point is the answer.
    double const distance = std::hypot(x, y);
    if (1 - ratio_ <= 4 * std::numeric_limits<double>::epsilon() && distance > 0) {
        return {x / distance, y / distance};
    }
    if (x == 0) return {0, 1};
    // f = 0 at t = 0 as well, which inside the evolute is the farthest place nearby. Flat ellipses end here.
    if (y == 0) {
        double const c = std::min(x / ((1 - ratio_) * (1 + ratio_)), 1.0);
        return {c, std::sqrt((1 - c) * (1 + c))};
    }
    auto const f = [&](double t) { return distance_slope(x, y, ratio_, t); };
    // Not from 0, where f is lost in underflow when y is tiny.
    double const t = bracketed_root(f, 0, pi / 2, std::max(std::atan2(y, ratio_ * x), 1e-8));
    return {std::cos(t), std::sin(t)};
}

// The second minimum of the distance, if there is one, lies across the longer axis. From t = -pi / 2 to 0
// both terms of x / cos t + b y / |sin t| are above 0 and the sum is convex, least where tan³ |t| = b y / x.
// The point lies inside the evolute when it is below 1 - b² there; f then is above 0, and the minimum is on
// the way to -pi / 2.
bool true_ellipse::other_minimum(double x, double y, angle_at const& first, angle_at& t) const {
    if (x == 0 || y == 0 || ratio_ == 0) {  // the mirror image
        t = {first.cosine, -first.sine};
        return true;
    }
    double const top = std::atan2(-std::cbrt(ratio_ * y), std::cbrt(x));
    auto const f = [&](double angle) { return distance_slope(x, y, ratio_, angle); };
    if (!(f(top).value > 0)) return false;
    double const angle = bracketed_root(f, -pi / 2, top, (top - pi / 2) / 2);
    t = {std::cos(angle), std::sin(angle)};
    return true;
}

xyz true_ellipse::closest(xyz const& p) const {
    if (!(a_ > 0)) return center_;
    double x = 0, y = 0;
    into_frame(p, x, y);
    angle_at t = nearest_angle(std::fabs(x), std::fabs(y));
    return at({std::copysign(t.cosine, x), std::copysign(t.sine, y)});
}

xyz true_ellipse::closest_on_arc(xyz const& p, double a1, double a2) const {
    double const sweep = std::fabs(a2 - a1), start = std::min(a1, a2);
    if (sweep >= 2 * pi) return closest(p);
    double x = 0, y = 0;
    into_frame(p, x, y);

    // The ends, then the minima of the whole ellipse that lie within the arc.
    xyz best = at({std::cos(a1 - phase_), std::sin(a1 - phase_)});
    auto const consider = [&](xyz const& q) {
        if (length(q - p) < length(best - p)) best = q;
    };
    consider(at({std::cos(a2 - phase_), std::sin(a2 - phase_)}));
    if (!(a_ > 0)) return best;
    auto const consider_angle = [&](angle_at const& t) {
        double const sine = std::copysign(1, y) * t.sine, cosine = std::copysign(1, x) * t.cosine;
        if (modulus(std::atan2(sine, cosine) + phase_ - start, 2 * pi) <= sweep) consider(at({cosine, sine}));
    };
    angle_at const first = nearest_angle(std::fabs(x), std::fabs(y));
    consider_angle(first);
    if (angle_at second; other_minimum(std::fabs(x), std::fabs(y), first, second)) consider_angle(second);
    return best;
}

}  // namespace tvmath
