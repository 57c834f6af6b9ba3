#include "orthogonal_sums.h"

#include <algorithm>
#include <cmath>

#include "fitting/geometry_fitter/row_block.h"
#include "geometry/closest_ellipse.h"

// In the frame of the half-axes, relative to the centre, the foot of a point p is E = (a u, b v) with (u, v)
// = (cos t, sin t), and e = E - p. Half the squared distance F(q, t) = |e|² / 2 is least at t = t(q), where
// F_t = e E_t = 0, E_t = (-a v, b u). What is left is a function of q alone, with the derivatives
//
//     F_q     and     F_qq - F_qt F_tq / F_tt,      F_tt = |E_t|² - e E,
//
// that is Newton's method for the distances themselves. E is linear in q = (cx, cy, n11, n12, n22):
//
//     E_q  = ( (1, 0)  (0, 1)  (u, 0)  (v, u)  (0, v) ),     F_q = e E_q,     F_qq = E_q E_q,
//     F_qt = E_q E_t + e E_qt.
//
// As e is r n, with n the unit normal at the foot, F_q = r g for g = n E_q, the gradient of the distance.

inline namespace tvmath {
namespace {

using geometry_fitter::row_block;

struct raw_sums {
    double gradients[row_block<6>::products] = {};  // of (g, r)
    double tangents[row_block<5>::products] = {};   // of F_qt / sqrt(F_tt)
    double u = 0, v = 0, uu = 0, uv = 0, vv = 0;
};

// Points of a block in the frame, and the places of their feet.
struct feet {
    static constexpr std::size_t size = row_block<6>::size;
    alignas(32) double x[size], y[size], u[size], v[size], off[size];
};

// A place of the unit circle in the first quadrant.
struct place {
    double u, v;
};

[[gnu::always_inline]] inline place unit_place(double u, double v) {
    double const n = 1 / std::sqrt(u * u + v * v);
    return {u * n, v * n};
}

// All steps below are arithmetic without a choice, which would keep the loops from taking several points at
// once.

// One round towards the foot of (x, y), both at least 0: where the ray from the centre of curvature through
// the point meets the circle of curvature (M. Nurnberg, Distance from a point to an ellipse, 2006).
[[gnu::always_inline]] inline place walk_to_foot(double a, double b, double x, double y, place p) {
    double const e2 = a * a - b * b, cx = e2 * p.u * p.u * p.u / a, cy = -e2 * p.v * p.v * p.v / b;
    double const rx = a * p.u - cx, ry = b * p.v - cy, qx = x - cx, qy = y - cy;
    double const t = std::sqrt((rx * rx + ry * ry) / (qx * qx + qy * qy));
    double const u = (qx * t + cx) / a, v = (qy * t + cy) / b;
    return unit_place((u + std::fabs(u)) / 2, (v + std::fabs(v)) / 2);  // not below 0
}

// Newton's step for F_t = 0 makes of `p` the next place. Returns the size of the step, and a huge number
// where it leads to the farthest point or out of the quadrant, where the nearest point is not.
[[gnu::always_inline]] inline double step_to_foot(double a, double b, double x, double y, place& p) {
    double const ex = a * p.u - x, ey = b * p.v - y, tx = -a * p.v, ty = b * p.u;
    double const curvature = tx * tx + ty * ty - ex * (a * p.u) - ey * (b * p.v);
    double const step = -(ex * tx + ey * ty) / curvature;
    p = unit_place(p.u - step * p.v, p.v + step * p.u);
    double const astray =
        (std::fabs(curvature) - curvature) / (a * a) + (std::fabs(p.u) - p.u) + (std::fabs(p.v) - p.v);
    return std::fabs(step) + 1e20 * astray;
}

// A step is the last one below this: squared, and once more, it is below rounding.
constexpr double settled = 1e-7;

[[gnu::always_inline]] inline void start_feet(feet& f, double a, double b) {
    double const by_a = 1 / a, by_b = 1 / b;
    for (std::size_t i = 0; i < feet::size; ++i) {
        place const p = unit_place(std::fabs(f.x[i]) * by_a, std::fabs(f.y[i]) * by_b);
        f.u[i] = p.u;
        f.v[i] = p.v;
    }
}

[[gnu::always_inline]] inline void walk_all(feet& f, double a, double b) {
    for (std::size_t i = 0; i < feet::size; ++i) {
        place const p = walk_to_foot(a, b, std::fabs(f.x[i]), std::fabs(f.y[i]), {f.u[i], f.v[i]});
        f.u[i] = p.u;
        f.v[i] = p.v;
    }
}

// Newton's steps for all points of a block alike, until all have settled or the steps are used up.
[[gnu::always_inline]] inline bool settle_feet(feet& f, double a, double b) {
    constexpr int most_steps = 4;
    for (int step = 0; step < most_steps; ++step) {
        for (std::size_t i = 0; i < feet::size; ++i) {
            place p{f.u[i], f.v[i]};
            f.off[i] = step_to_foot(a, b, std::fabs(f.x[i]), std::fabs(f.y[i]), p);
            f.u[i] = p.u;
            f.v[i] = p.v;
        }
        double sum[4] = {};  // NaN stays
        for (std::size_t i = 0; i < feet::size; i += 4) {
            for (std::size_t k = 0; k < 4; ++k) sum[k] += f.off[i + k];
        }
        if (sum[0] + sum[1] + sum[2] + sum[3] < settled) return true;
    }
    return false;
}

// From the directions of the points, which for measured points are close to those of the feet. Where that is
// not close enough, as at the ends of a narrow ellipse, from places that two rounds of the walk improve.
[[gnu::always_inline]] inline void find_feet(feet& f, double a, double b) {
    start_feet(f, a, b);
    if (!settle_feet(f, a, b)) {
        start_feet(f, a, b);
        walk_all(f, a, b);
        walk_all(f, a, b);
        settle_feet(f, a, b);
    }
    for (std::size_t i = 0; i < feet::size; ++i) {
        f.u[i] = std::copysign(f.u[i], f.x[i]);
        f.v[i] = std::copysign(f.v[i], f.y[i]);
    }
}

// The few points whose steps have not settled, such as those near the centre of curvature.
void search_feet(feet& f, double a, double b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (f.off[i] < settled) continue;  // and on for NaN
        xyz const foot = true_ellipse(ellipse(a, b, 0, point(true, 0, 0))).closest(xyz(f.x[i], f.y[i], 0));
        place const p = unit_place(foot.x / a, foot.y / b);
        f.u[i] = p.u;
        f.v[i] = p.v;
    }
}

TVMATH_WIDE_LOOP void add_block(feet const& f, double a, double b, std::size_t count, raw_sums& sums) {
    row_block<6> gradients;
    row_block<5> tangents;
    for (std::size_t i = 0; i < feet::size; ++i) {
        double const u = f.u[i], v = f.v[i], ex = a * u - f.x[i], ey = b * v - f.y[i];
        double const tx = -a * v, ty = b * u, t2 = tx * tx + ty * ty, t = std::sqrt(t2);
        double const nx = ty / t, ny = -tx / t;
        double const g[] = {nx, ny, u * nx, v * nx + u * ny, v * ny, ex * nx + ey * ny};
        double const curvature = t2 - ex * (a * u) - ey * (b * v);
        // At a centre of curvature the foot is anywhere, and this has no bound: what is left is safe.
        double const w = 1 / std::sqrt(curvature > 1e-6 * t2 ? curvature : infinity);
        double const h[] = {tx, ty, u * tx - v * ex, v * tx + u * ty + u * ex - v * ey, v * ty + u * ey};
        for (std::size_t k = 0; k < 6; ++k) gradients.column[k][i] = g[k];
        for (std::size_t k = 0; k < 5; ++k) tangents.column[k][i] = w * h[k];
    }
    gradients.add_products(sums.gradients, count);
    tangents.add_products(sums.tangents, count);
    for (std::size_t i = 0; i < count; ++i) {
        sums.u += f.u[i];
        sums.v += f.v[i];
        sums.uu += f.u[i] * f.u[i];
        sums.uv += f.u[i] * f.v[i];
        sums.vv += f.v[i] * f.v[i];
    }
}

TVMATH_WIDE_LOOP void place_block(xy const* points, planar_ellipse const& e, double cosine, double sine,
                                  std::size_t count, feet& f) {
    for (std::size_t i = 0; i < count; ++i) {
        double const dx = points[i].x - e.center.x, dy = points[i].y - e.center.y;
        f.x[i] = cosine * dx + sine * dy;
        f.y[i] = cosine * dy - sine * dx;
    }
    std::fill(f.x + count, f.x + feet::size, f.x[0]);  // what is not there settles with the rest
    std::fill(f.y + count, f.y + feet::size, f.y[0]);
    find_feet(f, e.a, e.b);
}

orthogonal_sums derivatives(raw_sums const& raw, double n) {
    orthogonal_sums s;
    // F_qq, the lower triangle.
    s.hessian = {{{n}, {0, n}, {raw.u, 0, raw.uu}, {raw.v, raw.u, raw.uv, n}, {0, raw.v, 0, raw.uv, raw.vv}}};
    double const* g = raw.gradients;
    double const* t = raw.tangents;
    for (std::size_t i = 0; i < 5; ++i) {
        for (std::size_t j = i; j < 5; ++j) {
            s.gauss_newton[j][i] = *g++;
            s.hessian[j][i] -= *t++;
        }
        s.gradient[i] = *g++;
    }
    s.half_squares = *g / 2;
    return s;
}

}  // namespace

orthogonal_sums sum_distances(std::vector<xy> const& points, planar_ellipse const& e) {
    double const cosine = std::cos(e.angle), sine = std::sin(e.angle);
    raw_sums raw;
    feet f;
    for (std::size_t first = 0; first < points.size(); first += feet::size) {
        std::size_t const count = std::min(feet::size, points.size() - first);
        place_block(points.data() + first, e, cosine, sine, count, f);
        search_feet(f, e.a, e.b, count);
        add_block(f, e.a, e.b, count, raw);
    }
    return derivatives(raw, static_cast<double>(points.size()));
}

}  // namespace tvmath
