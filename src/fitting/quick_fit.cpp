#include "tvmath/quick_fit.h"

#include <cmath>
#include <span>

inline namespace tvmath {
namespace {

// Both list forms run the same steps over the same memory, so that they agree to the last bit.
using point_span = std::span<point const>;

point_span span_of(idioms::array<point> const& points) {
    return {points.begin(), points.end()};
}

// A running sum with the rounding error of every addition kept beside it: far from the origin a plain sum of 1e6
// coordinates loses up to three digits that the points still have.
// Source: D. Knuth, TAOCP 2, 4.2.2, theorem B (the error of an addition, without a branch).
struct compensated_sum {
    double sum = 0, error = 0;

    void add(double x) {
        double const next = sum + x, of_x = next - sum;
        error += (sum - (next - of_x)) + (x - of_x);
        sum = next;
    }
    // The sum alone where it ran over: the error is NaN then.
    double value() const { return std::isfinite(error) ? sum + error : sum; }
};

point centroid_of(point_span points) {
    if (points.empty()) return point();
    compensated_sum x, y, z;
    std::size_t count_3d = 0;
    for (point const& p : points) {
        if (p.is_trivial()) return point();
        x.add(p.x());
        y.add(p.y());
        if (!p.is_3d()) continue;
        z.add(p.z());
        ++count_3d;
    }
    double const n = static_cast<double>(points.size());
    if (count_3d == points.size()) return point(true, x.value() / n, y.value() / n, z.value() / n);
    return point(true, x.value() / n, y.value() / n);
}

bool fit_line(point_span points, point& center, point& direction) {
    point const centroid = centroid_of(points);
    if (points.size() < 2 || centroid.is_trivial()) return false;
    if (points.size() == 2) {
        point const &first = points[0], &second = points[1];
        direction = normalize(point(false, second.x() - first.x(), second.y() - first.y()));
        center = centroid;
        return true;
    }

    double uu = 0, uv = 0, vv = 0;
    for (point const& p : points) {
        double const u = p.x() - centroid.x(), v = p.y() - centroid.y();
        uu += u * u;
        uv += u * v;
        vv += v * v;
    }
    // Exact on purpose: any difference, however small, is a principal axis that the data has.
    if (uu == vv && uv == 0.0) return false;

    // With t the axis' angle: a = h cos 2t, b = h sin 2t, and (a + b + h, b - a + h) is a multiple of (cos t, sin t).
    // For negative b its terms would cancel; the other multiple has none.
    double const a = uu - vv, b = 2 * uv, h = std::sqrt(a * a + b * b);
    direction = normalize(b >= 0 ? point(false, a + b + h, b - a + h) : point(false, a - b + h, a + b - h));
    center = centroid;
    return true;
}

// Sums over u = x - cx and v = y - cy. Relative to the centroid, because uu vv - uv² cancels: at coordinates of
// 1e6, sums of raw squares keep no digit of a radius of 5.
bool fit_circle(point_span points, point& center, double& radius) {
    point const centroid = centroid_of(points);
    if (centroid.is_trivial() || points.size() < 3) return false;
    double uu = 0, uv = 0, vv = 0;
    double uuu = 0, vvv = 0;  // of (u² + v²) u and of (u² + v²) v
    for (point const& p : points) {
        double const u = p.x() - centroid.x(), v = p.y() - centroid.y(), r2 = u * u + v * v;
        uu += u * u;
        uv += u * v;
        vv += v * v;
        uuu += r2 * u;
        vvv += r2 * v;
    }

    // Normal equations for the centre (a, b) relative to the centroid, where sum u = sum v = 0:
    //     uu a + uv b = uuu / 2
    //     uv a + vv b = vvv / 2        and  r² = (uu + vv) / n + a² + b².     Cramer's rule:
    double const d = 2 * (uu * vv - uv * uv);
    // Exact on purpose: nearly collinear points are an honest, very large circle, and a tolerance would need a
    // length scale that the caller's units do not give us.
    if (d == 0.0) return false;

    double const a = (uuu * vv - vvv * uv) / d;
    double const b = (vvv * uu - uuu * uv) / d;
    center = centroid + point(false, a, b);
    radius = std::sqrt((uu + vv) / static_cast<double>(points.size()) + a * a + b * b);
    return true;
}

}  // namespace

point point_fit(std::vector<point> const& points) {
    return centroid_of(points);
}

point point_fit(idioms::array<point> points) {
    return centroid_of(span_of(points));
}

bool line_quick_fit(std::vector<point> const& points, point& center, point& direction) {
    return fit_line(points, center, direction);
}

bool line_quick_fit(idioms::array<point> points, point& center, point& direction) {
    return fit_line(span_of(points), center, direction);
}

bool circle_quick_fit(std::vector<point> const& points, point& center, double& radius) {
    return fit_circle(points, center, radius);
}

bool circle_quick_fit(idioms::array<point> points, point& center, double& radius) {
    return fit_circle(span_of(points), center, radius);
}

bool sphere_quick_fit(std::vector<point> const& points, point& center, double& radius) {
    if (points.size() < 4) return false;
    point const centroid = centroid_of(points);
    if (!centroid.is_3d()) return false;
    double uu = 0, vv = 0, ww = 0, uv = 0, vw = 0, wu = 0;
    double x = 0, y = 0, z = 0;  // of s u, s v and s w, s = u² + v² + w²
    for (point const& p : points) {
        double const u = p.x() - centroid.x(), v = p.y() - centroid.y(), w = p.z() - centroid.z();
        double const s = u * u + v * v + w * w;
        uu += u * u;
        vv += v * v;
        ww += w * w;
        uv += u * v;
        vw += v * w;
        wu += w * u;
        x += u * s;
        y += v * s;
        z += w * s;
    }
    double const total = uu + vv + ww;

    // Normal equations: the scatter matrix times twice the centre is (x, y, z). Gaussian elimination in fixed order
    // is safe without pivoting, because the scatter matrix is positive semidefinite.
    if (uu == 0.0) return false;
    double const l1 = uv / uu, l2 = wu / uu;
    vv -= l1 * uv;
    vw -= l1 * wu;
    ww -= l2 * wu;
    y -= l1 * x;
    z -= l2 * x;
    if (vv == 0.0) return false;
    double const l3 = vw / vv;
    ww -= l3 * vw;
    z -= l3 * y;
    if (ww == 0.0) return false;
    double const c = z / ww, b = (y - vw * c) / vv, a = (x - uv * b - wu * c) / uu;
    point const offset(false, a / 2, b / 2, c / 2);
    center = centroid + offset;
    radius = std::sqrt(total / static_cast<double>(points.size()) + sqr(offset));
    return true;
}

}  // namespace tvmath
