#include <algorithm>
#include <cmath>

#include "geometry/bracketed_root.h"
#include "geometry/closest_ellipse.h"
#include "nearest_answer.h"
#include "tvmath/nearest_point.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

struct angle_at {
    double cosine, sine;
};

// The point farthest from (x, y), both at least 0, on (cos t, b sin t) with 0 <= b <= 1, as the angle less
// pi. The derivative of the squared distance of (-cos t, -b sin t), halved and with its sign changed, is
//
//     f(t) = x sin t - b y cos t + (1 - b²) sin t cos t.
//
// Divided by sin t cos t it rises from below to above all bounds between 0 and pi / 2: there is exactly one
// zero, and it is the farthest place.
angle_at farthest_angle(double x, double y, double b) {
    double const by = b * y, flatness = (1 - b) * (1 + b);
    if (by == 0) return {1, 0};
    if (x == 0) {
        double const s = by < flatness ? by / flatness : 1;
        return {std::sqrt((1 - s) * (1 + s)), s};
    }
    auto const f = [&](double t) -> value_and_slope {
        double const s = std::sin(t), c = std::cos(t);
        return {x * s - by * c + flatness * s * c, x * c + by * s + flatness * (c - s) * (c + s)};
    };
    double const t = bracketed_root(f, 0, pi / 2, std::atan2(by, x + flatness));
    return {std::cos(t), std::sin(t)};
}

// An ellipse by the axes that it has in XY; their z comes along.
struct axes_in_xy {
    xyz center, u, v;  // the longer one first
    xyz e1, e2;        // unit vectors in XY; e2 across e1
    double long_, short_;

    explicit axes_in_xy(ellipse const& e) : center(e.basis(0)) {
        point first = e.basis(1), second = e.basis(2);
        orthogonalize_ellipse_2d(first, second);
        u = xyz(first);
        v = xyz(second);
        e1 = unit({u.x, u.y, 0});
        e2 = {-e1.y, e1.x, 0};
        if (e1.x * v.y - e1.y * v.x < 0) e2 = -1.0 * e2;
        long_ = std::hypot(u.x, u.y);
        short_ = std::min(std::fabs(dot(v, e2)), long_);
    }
    xyz at(angle_at const& t) const { return center + t.cosine * u + t.sine * v; }

    // The place of the ellipse above `q`, which lies on it in XY. Of an ellipse seen along its plane the
    // cosine alone tells it, and both halves are equally good.
    xyz above(xyz const& q) const {
        xyz const w = q - center;
        double const cosine = std::clamp(dot(w, e1) / long_, -1.0, 1.0);
        double const rest = std::sqrt((1 - cosine) * (1 + cosine));
        double const sine = dot(w, e2) / short_;
        bool const is_thin = !(short_ > 1e-8 * long_);
        double const z = center.z + cosine * u.z + (is_thin ? rest : sine) * v.z;
        return {q.x, q.y, z};
    }
};

// The places where the tangent runs along the line, and the signed distances of both from it.
struct tangent_places {
    bool is_valid = false;
    xyz left, right;
    double left_distance = 0, right_distance = 0;

    tangent_places(line const& l, ellipse const& e) {
        if (l.is_trivial() || e.is_trivial()) return;
        xyz const o(l.basis(0)), d(l.basis(1)), along = unit({d.x, d.y, 0}), normal(-along.y, along.x, 0);
        xyz const c(e.basis(0)), u(e.basis(1)), v(e.basis(2));
        double const nu = dot(normal, u), nv = dot(normal, v), reach = std::hypot(nu, nv);
        is_valid = dot(along, along) > 0;
        // An ellipse seen as a segment along the line is everywhere equally far from it.
        xyz const offset = reach > 0 ? (nu / reach) * u + (nv / reach) * v : u;
        left = c + offset;
        right = c - offset;
        double const middle = dot(c - o, normal);
        left_distance = middle + reach;
        right_distance = middle - reach;
    }
};

}  // namespace

point point_nearest3d_on(point const& p, ellipse e) {
    if (p.is_trivial() || e.is_trivial() || !xyz(p).is_finite()) return point();
    return answer(true_ellipse(e).closest(xyz(p)), e.is_3d());
}

point point_nearest_on(point const& p, ellipse e) {
    if (p.is_trivial() || e.is_trivial() || !xyz(p).is_finite()) return point();
    xyz const in_xy(p.x(), p.y(), 0);
    if (!e.is_3d()) return answer(true_ellipse(e).closest(in_xy), false);
    ellipse flat = e;
    flat.project2d();
    axes_in_xy const axes(e);
    if (!(axes.long_ > 0)) return answer(axes.at({1, 0}), true);
    return answer(axes.above(true_ellipse(flat).closest(in_xy)), true);
}

point point_farthest_on(point const& p, ellipse e) {
    if (p.is_trivial() || e.is_trivial() || !xyz(p).is_finite()) return point();
    axes_in_xy const axes(e);
    if (!(axes.long_ > 0)) return answer(axes.at({1, 0}), e.is_3d());
    xyz const w(p.x() - axes.center.x, p.y() - axes.center.y, 0);
    double const x = dot(w, axes.e1) / axes.long_, y = dot(w, axes.e2) / axes.long_;
    if (!std::isfinite(x) || !std::isfinite(y)) return point();
    angle_at const t = farthest_angle(std::fabs(x), std::fabs(y), axes.short_ / axes.long_);
    return answer(axes.at({-std::copysign(t.cosine, x), -std::copysign(t.sine, y)}), e.is_3d());
}

point point_nearest_on(line l, ellipse e) {
    tangent_places const t(l, e);
    if (!t.is_valid) return point();
    bool const is_left = std::fabs(t.left_distance) <= std::fabs(t.right_distance);
    return answer(is_left ? t.left : t.right, e.is_3d());
}

point point_farthest_on(line l, ellipse e) {
    tangent_places const t(l, e);
    if (!t.is_valid) return point();
    bool const is_left = std::fabs(t.left_distance) >= std::fabs(t.right_distance);
    return answer(is_left ? t.left : t.right, e.is_3d());
}

}  // namespace tvmath
