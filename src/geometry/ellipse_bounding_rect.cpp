#include <algorithm>
#include <cmath>

#include "geometry/ellipse_frame.h"
#include "geometry/extent.h"
#include "geometry/planar_shape.h"
#include "tvmath/ellipse.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The arc of parameters from `start` over `sweep` of an ellipse and its two parallels, as both lie after a
// transform: their extent relative to the centre, so that one far from the origin keeps its digits.
class arc_extent {
public:
    arc_extent(ellipse_frame const& frame, transform const& t, double distance)
        : frame_(frame),
          distance_(distance),
          u_(frame.u * t),
          v_(frame.v * t),
          normal_u_(frame.normal_u * t),
          normal_v_(frame.normal_v * t) {}

    void widen(double parameter) {
        double const c = std::cos(parameter), s = std::sin(parameter);
        double const length = (c * frame_.normal_v + s * frame_.normal_u).length3d();
        point const p = c * u_ + s * v_;
        point const shift = (c * normal_v_ + s * normal_u_) * (length == 0.0 ? 0.0 : distance_ / length);
        x_.widen(p.x() - std::fabs(shift.x()));
        x_.widen(p.x() + std::fabs(shift.x()));
        y_.widen(p.y() - std::fabs(shift.y()));
        y_.widen(p.y() + std::fabs(shift.y()));
    }

    void widen_within(double start, double sweep, double parameter) {
        if (modulus(parameter - start, 2 * pi) <= sweep) widen(parameter);
    }

    // A parallel runs along the tangent of the ellipse, so that it is stationary where the ellipse is: at the
    // vertical and horizontal tangents.
    void widen_at_tangents(double start, double sweep) {
        for (double const t : {std::atan2(v_.x(), u_.x()), std::atan2(v_.y(), u_.y())}) {
            widen_within(start, sweep, t);
            widen_within(start, sweep, t + pi);
        }
    }

    // The inner parallel also turns back where its distance is the radius of curvature speed³ / |u x v|, with
    // speed² = m + r cos(2 t - phase).
    void widen_at_cusps(double start, double sweep) {
        point const &u = frame_.u, &v = frame_.v;
        double const m = (sqr(u) + sqr(v)) / 2, difference = -dot(u + v, u - v) / 2, product = -dot(u, v);
        double const r = std::hypot(difference, product), phase = std::atan2(product, difference);
        double const speed = std::cbrt(distance_ * cross(u, v).length3d());
        double const turn = std::acos((speed * speed - m) / r);  // NaN when there is none
        for (double const t : {(phase + turn) / 2, (phase - turn) / 2}) {
            widen_within(start, sweep, t);
            widen_within(start, sweep, t + pi);
        }
    }

    CRealRect rect_at(point const& center) const {
        return CRealRect(center.x() + x_.low, center.y() + y_.low, center.x() + x_.high,
                         center.y() + y_.high);
    }

private:
    ellipse_frame const& frame_;
    double distance_;
    point u_, v_, normal_u_, normal_v_;
    interval x_, y_;
};

}  // namespace

CRealRect ellipse::get_bounding_rect() const {
    point const u = basis(1), v = basis(2);
    return rect_about(basis(0), std::hypot(u.x(), v.x()), std::hypot(u.y(), v.y()));
}

CRealRect ellipse::get_bounding_rect(double a1, double a2) const {
    return get_bounding_rect(a1, a2, transform(), 0.0);
}

// The outer parallel bounds the sum of the ellipse's disc with a disc of radius |offset| in its plane. The
// half-extent of an affine image of a disc is the length of the axes' coordinates, and half-extents of a sum
// add.
CRealRect ellipse::get_bounding_rect(transform t, double offset) const {
    ellipse_frame const frame(*this);
    point const u = frame.u * t, v = frame.v * t;
    point const longer = sqr(frame.u) > sqr(frame.v) ? frame.u : frame.v;
    point const e1 = normalize(longer), e2 = cross(frame.plane_normal, e1);
    point const x_axis = e1 * t, y_axis = e2 * t;
    double const d = std::fabs(offset);
    return rect_about(frame.center * t, std::hypot(u.x(), v.x()) + d * std::hypot(x_axis.x(), y_axis.x()),
                      std::hypot(u.y(), v.y()) + d * std::hypot(x_axis.y(), y_axis.y()));
}

CRealRect ellipse::get_bounding_rect(double a1, double a2, transform t, double offset) const {
    double const sweep = std::fabs(a2 - a1), undefined = domain_error_value;
    if (std::isnan(sweep)) return CRealRect(undefined, undefined, undefined, undefined);
    if (sweep >= 2 * pi) return get_bounding_rect(t, offset);
    double const start = std::min(a1, a2);
    ellipse_frame const frame(*this);
    arc_extent extent(frame, t, std::fabs(offset));
    extent.widen(a1);
    extent.widen(a2);
    extent.widen_at_tangents(start, sweep);
    if (offset != 0.0) extent.widen_at_cusps(start, sweep);
    return extent.rect_at(frame.center * t);
}

}  // namespace tvmath
