#include <algorithm>
#include <cmath>
#include <limits>

#include "distance_pair_search.h"
#include "tvmath/distance.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

class searched_ellipse : public searched_path {
public:
    searched_ellipse(ellipse const& e, xyz const& origin)
        : searched_path(0, 2 * pi, true, 8), center_(xyz(e.basis(0)) - origin) {
        point u = e.basis(1), v = e.basis(2);
        orthogonalize_ellipse(u, v);
        u_ = xyz(u);
        v_ = xyz(v);
        size = greatest_bend = length(u_);  // the second derivative is the way back to the centre
    }
    place at(double t) const override {
        double const c = std::cos(t), s = std::sin(t);
        xyz const outward = c * u_ + s * v_;
        return {center_ + outward, c * v_ - s * u_, -1.0 * outward};
    }
    xyz position(double t) const override { return center_ + (std::cos(t) * u_ + std::sin(t) * v_); }

    xyz const& center() const { return center_; }
    bool is_circle() const {
        return length(v_) >= size * (1 - 4 * std::numeric_limits<double>::epsilon()) && size > 0;
    }
    xyz const& axis() const { return u_; }
    xyz normal() const { return unit(cross(unit(u_), unit(v_))); }

private:
    xyz center_, u_, v_;
};

// Circles in parallel planes: both places are on the line of the centres in the plane, or anywhere when that
// has no direction. False for others, and for circles that cross when seen along the normal, of which the
// nearest places are off that line.
bool places_of_circles(searched_ellipse const& p, searched_ellipse const& q, bool nearest, place_pair& best) {
    if (!p.is_circle() || !q.is_circle()) return false;
    xyz const n = p.normal();
    if (!(length(cross(n, q.normal())) <= 4 * std::numeric_limits<double>::epsilon())) return false;
    xyz const offset = q.center() - p.center(), in_plane = offset - dot(offset, n) * n;
    double const d = length(in_plane), r1 = p.size, r2 = q.size;
    if (nearest && d >= std::fabs(r1 - r2) && d <= r1 + r2) return false;
    xyz const e = d > 0 ? unit(in_plane) : unit(p.axis());
    double const towards_q = nearest && (d > r1 + r2 || r1 > r2) ? 1 : -1;
    double const towards_p = nearest && (d > r1 + r2 || r2 > r1) ? 1 : -1;
    xyz const a = p.center() + towards_q * r1 * e, b = q.center() - towards_p * r2 * e;
    best = {true, a, b, length(a - b)};
    return true;
}

// Any order of the ellipses that depends on them alone, so that exchanged arguments give the same places.
bool comes_first(ellipse const& a, ellipse const& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

line between(ellipse a, ellipse b, bool nearest) {
    if (a.is_trivial() || b.is_trivial()) return line();
    bool const is_turned = comes_first(b, a);
    if (is_turned) ellipse::swap(a, b);
    // Relative to one of the centres: figures far from the origin keep their digits.
    xyz const origin(a.basis(0));
    searched_ellipse const p(a, origin), q(b, origin);
    if (!origin.is_finite() || !q.center().is_finite() || !std::isfinite(p.size + q.size)) return line();
    place_pair best;
    int long_searches_left = 1;
    if (!places_of_circles(p, q, nearest, best)) search_pair(p, q, nearest, best, long_searches_left);
    if (!best.found) return line();
    point const from = (origin + best.a).location(a.is_3d()), to = (origin + best.b).location(b.is_3d());
    return is_turned ? distance_fit(to, from) : distance_fit(from, to);
}

}  // namespace

line distance_near(ellipse a, ellipse b) {
    return between(a, b, true);
}

line distance_far(ellipse a, ellipse b) {
    return between(a, b, false);
}

}  // namespace tvmath
