#include "tvmath/quick_fit.h"

#include <cmath>
#include <span>

#include "geometry/point_lanes.h"
#include "point_span.h"
#include "principal_axis.h"

inline namespace tvmath {
namespace {

// Both list forms run the same steps over the same memory, so that they agree to the last bit.
// Sums of all points with the rounding error of every addition kept beside them: far from the origin a plain
// sum of 1e6 coordinates loses up to three digits that the points still have. Source: D. Knuth, TAOCP
// 2, 4.2.2, theorem B (the error of an addition, without a branch).
struct coordinate_sums {
    point_lanes sum{}, error{};
    std::size_t count_3d = 0;
    bool any_trivial = false;

    // The sum alone where it ran over: the error is NaN then.
    double value(int lane) const { return std::isfinite(error[lane]) ? sum[lane] + error[lane] : sum[lane]; }
};

TVMATH_WIDE_LOOP coordinate_sums sum_coordinates(point_span points) {
    point_lanes sum{}, error{};
    std::size_t count_3d = 0;
    bool any_trivial = false;
    for (point const& p : points) {
        point_lanes term;
        TVMATH_LOAD_LANES(term, p);
        point_lanes const next = sum + term, of_term = next - sum;
        error += (sum - (next - of_term)) + (term - of_term);
        sum = next;
        count_3d += p.is_3d();
        any_trivial |= p.is_trivial();
    }
    return {sum, error, count_3d, any_trivial};
}

point centroid_of(point_span points) {
    if (points.empty()) return point();
    coordinate_sums const sums = sum_coordinates(points);
    if (sums.any_trivial) return point();
    double const n = static_cast<double>(points.size()), x = sums.value(1) / n, y = sums.value(2) / n;
    if (sums.count_3d == points.size()) return point(true, x, y, sums.value(3) / n);
    return point(true, x, y);
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

    point const axis = principal_axis(points, centroid);
    if (axis.is_trivial()) return false;
    direction = axis;
    center = centroid;
    return true;
}

// Sums over u = x - cx and v = y - cy. Relative to the centroid, because uu vv - uv² cancels: at coordinates
// of 1e6, sums of raw squares keep no digit of a radius of 5.
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
    // Exact on purpose: nearly collinear points are an honest, very large circle, and a tolerance would need
    // a length scale that the caller's units do not give us.
    if (d == 0.0) return false;

    double const a = (uuu * vv - vvv * uv) / d;
    double const b = (vvv * uu - uuu * uv) / d;
    center = centroid + point(false, a, b);
    radius = std::sqrt((uu + vv) / static_cast<double>(points.size()) + a * a + b * b);
    return true;
}

// Sums over u, v, w relative to the centroid, in lanes 1 to 3.
struct space_scatter {
    point_lanes squares{};   // uu, vv, ww
    point_lanes products{};  // uv, vw, wu
    point_lanes moments{};   // of s u, s v and s w, s = u² + v² + w²
};

TVMATH_WIDE_LOOP space_scatter scatter_in_space(point_span points, point const& centroid) {
    point_lanes center, squares{}, products{}, moments{};
    TVMATH_LOAD_LANES(center, centroid);
    for (point const& p : points) {
        point_lanes term;
        TVMATH_LOAD_LANES(term, p);
        point_lanes const d = term - center;
        point_lanes const next = {d[0], d[2], d[3], d[1]};
        point_lanes const dd = d * d;
        double const s = dd[1] + dd[2] + dd[3];
        squares += dd;
        products += d * next;
        moments += d * s;
    }
    return {squares, products, moments};
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
    space_scatter const sums = scatter_in_space(points, centroid);
    double const uu = sums.squares[1], uv = sums.products[1], wu = sums.products[3];
    double vv = sums.squares[2], ww = sums.squares[3], vw = sums.products[2];
    double const x = sums.moments[1];
    double y = sums.moments[2], z = sums.moments[3];
    double const total = uu + vv + ww;

    // Normal equations: the scatter matrix times twice the centre is (x, y, z). Gaussian elimination in fixed
    // order is safe without pivoting, because the scatter matrix is positive semidefinite.
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
