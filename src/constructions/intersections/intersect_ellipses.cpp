#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "constructions/flat_ellipse.h"
#include "intersect_roots.h"
#include "tvmath/intersection.h"
#include "tvmath/scalar.h"
#include "two_points.h"

inline namespace tvmath {

// Along the unit normal n of the line the ellipse is level - g with level = alpha cos t + beta sin t, so that
// with s² = alpha² + beta² the meeting points are (cos t, sin t) = (g (alpha, beta) -+ h (-beta, alpha)) /
// s², h² = s² - g². The second step runs along the line, against it in a left-handed frame.
idioms::array<point> point_intersect(line l, ellipse e) {
    if (is_empty(l) || is_empty(e)) return {};
    xyz const p(l.basis(0)), d(l.basis(1)), c(e.basis(0)), u(e.basis(1)), v(e.basis(2));
    double const along = std::hypot(d.x, d.y);
    xy const n = xy(-d.y / along, d.x / along), gap = xy(p) - xy(c);
    double const alpha = dot(xy(u), n), beta = dot(xy(v), n), g = dot(gap, n), s = std::hypot(alpha, beta);
    if (!(s >= std::fabs(g)) || s == 0 || !std::isfinite(s)) return {};
    double const h = std::sqrt((s - g) * (s + g));
    auto const at = [&](double step) {
        double const cosine = (g * alpha - step * beta) / (s * s), sine = (g * beta + step * alpha) / (s * s);
        xyz const w = cosine * u + sine * v;
        double const t = dot(xy(w) - gap, xy(d)) / (along * along);
        return xyz(c.x + w.x, c.y + w.y, (c.z + w.z + p.z + t * d.z) / 2);
    };
    bool const right_handed = cross(xy(u), xy(v)) > 0;
    return two_points(at(right_handed ? h : -h), at(right_handed ? -h : h));
}

namespace {

// Where the order of the answers starts; the two halves meet a quarter turn beside it. Any angle that no
// drawing uses: shapes meet on their axes more often than elsewhere, and a touch at a seam could be lost to
// rounding.
constexpr double seam = 0.6180339887498949;

// One half of the ellipse `mover` in the unit frame of another one: with tau = 2 t - 1 for t from 0 to 1,
// tangent of half the angle, the point is W / (1 + tau²), W = (q + a) + 2 b tau + (q - a) tau².
struct half_turn {
    xy q, a, b;

    xy place(double t, xy& slope) const {
        double const tau = 2 * t - 1, d = 1 + tau * tau;
        xy const at = (1 / d) * (q + a + (2 * tau) * b + (tau * tau) * (q - a));
        slope = (2 / d) * (2 * b + (2 * tau) * (q - a) - (2 * tau) * at);
        return at;
    }
    // |W|² / (1 + tau²)² - 1, 0 on the other ellipse.
    value_and_slope operator()(double t) const {
        xy slope;
        xy const at = place(t, slope);
        return {dot(at, at) - 1, 2 * dot(at, slope)};
    }
    // Of (|W|² - (1 + tau²)²) / 4, as a function of t.
    std::array<double, 5> coefficients() const {
        xy const first = q - b, last = q + b;
        return {dot(first, first) - 1, dot(first, a), (dot(first, last) + 2 * dot(a, a) - 1) / 3,
                dot(last, a), dot(last, last) - 1};
    }
};

struct meeting {
    double angle;  // on the first ellipse, from the seam
    point at;
};

// The ellipse that moves is the smaller one: in the frame of the larger its coordinates are small and keep
// their digits.
void meet(flat_ellipse const& mover, flat_ellipse const& frame, bool exchanged, std::vector<meeting>& found) {
    xyz const u = std::cos(seam) * mover.u + std::sin(seam) * mover.v;
    xyz const v = std::cos(seam) * mover.v - std::sin(seam) * mover.u;
    xy const q = frame.location(mover.center), a = frame.direction(u), b = frame.direction(v);
    double const most = size(q) + size(a) + size(b);
    double const noise = 2 * std::numeric_limits<double>::epsilon() * (most * most + 1);
    for (double const side : {-1.0, 1.0}) {
        half_turn const half = {q, side * a, side * b};
        for (double const t : bernstein_zeros<5, half_turn>(half.coefficients(), noise, false, half)) {
            double const tau = 2 * t - 1, d = 1 + tau * tau;
            xyz const w = (side * (1 - tau) * (1 + tau) / d) * u + (side * 2 * tau / d) * v;
            xy slope;
            xy const other = half.place(t, slope);
            double const height = frame.center.z + other.x * frame.u.z + other.y * frame.v.z;
            double const angle =
                exchanged ? std::atan2(other.y, other.x) - seam : 2 * std::atan(tau) + (side < 0 ? pi : 0);
            xyz const place = mover.center + w;
            xyz const mean(place.x, place.y, (place.z + height) / 2);
            if (mean.is_finite()) found.push_back({modulus(angle, 2 * pi), mean.location(true)});
        }
    }
}

}  // namespace

idioms::array<point> point_intersect(ellipse e1, ellipse e2) {
    if (is_empty(e1) || is_empty(e2)) return {};
    flat_ellipse first(e1), second(e2);
    bool exchanged = second.squared_size() < first.squared_size();
    if ((exchanged ? first : second).is_flat()) exchanged = !exchanged;
    flat_ellipse const& mover = exchanged ? second : first;
    flat_ellipse const& frame = exchanged ? first : second;
    if (frame.is_flat()) return {};
    std::vector<meeting> found;
    meet(mover, frame, exchanged, found);
    std::stable_sort(found.begin(), found.end(),
                     [](meeting const& a, meeting const& b) { return a.angle < b.angle; });
    idioms::array<point> result(static_cast<unsigned int>(found.size()));
    point* to = result.lazycopy_begin();
    for (meeting const& m : found) *to++ = m.at;
    return result;
}

}  // namespace tvmath
