#include <algorithm>
#include <array>
#include <cmath>

#include "fitting/planar/planar_points.h"
#include "geometry/point_lanes.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

using triple = std::array<double, 3>;

// Coordinates (u, v) in which the scatter is the unit matrix. The fit does not change under affine maps, its
// rounding does: in these coordinates the terms of a flat arc are of one size.
struct normal_frame {
    explicit normal_frame(planar_scatter const& s)
        : center(s.center), axis(s.axis), lean(s.lean), along(s.along), across(s.across) {}

    xy inward(xy p) const {
        double const t = dot(p - center, axis), n = dot(p - center, quarter_turned(axis));
        return {t / along, (n - lean * t) / across};
    }
    xy outward_direction(xy d) const {
        double const t = along * d.x;
        return t * axis + (across * d.y + lean * t) * quarter_turned(axis);
    }

    xy center, axis;
    double lean, along, across;
};

// The terms of a conic but the constant: u, v, and p (u² + v²) / 2 + q (u² - v²) / 2 + b u v, so that 4 a c -
// b² of its quadratic part is p² - q² - b². A conic about a given centre has only the quadratic ones.
constexpr unsigned int term_count = 5;
using term_row = std::array<double, term_count>;

term_row terms_of(xy const& w, bool centered) {
    double const uu = w.x * w.x, vv = w.y * w.y;
    return {centered ? 0 : w.x, centered ? 0 : w.y, (uu + vv) / 2, (uu - vv) / 2, w.x * w.y};
}

// The means, which a constant takes away from the terms.
term_row mean_terms(std::vector<xy> const& points, normal_frame const& frame, bool centered) {
    term_row means{};
    for (xy const& p : points) {
        term_row const terms = terms_of(frame.inward(p), centered);
        for (unsigned int k = 0; k < term_count; ++k) means[k] += terms[k];
    }
    for (double& mean : means) mean /= static_cast<double>(points.size());
    return means;
}

// The triangular factor of rows that come one by one. Householder steps on blocks, so that no square of the
// rows is formed and a small residual keeps its digits beside large ones. Each step leads from the factor of
// what came before, on top, and the rows of the block to the next factor.
class triangular_factor {
public:
    void add(term_row const& row) {
        for (unsigned int k = 0; k < term_count; ++k) rows_[k][filled_] = row[k];
        if (++filled_ == block) reduce();
    }
    matrix result() {
        reduce();
        matrix r(term_count, term_count);
        for (unsigned int i = 0; i < term_count; ++i) {
            for (unsigned int k = i; k < term_count; ++k) r(i)(k) = factor_[i][k];
        }
        return r;
    }

private:
    static constexpr unsigned int block = 256;
    using column = std::array<double, block>;  // 0 where no row has come

    // Four sums at a time, which share each instruction.
    [[gnu::always_inline]] static inline double product(column const& a, column const& b) {
        double sums[4] = {};
        for (unsigned int i = 0; i < block; i += 4) {
            for (unsigned int k = 0; k < 4; ++k) sums[k] += a[i + k] * b[i + k];
        }
        return (sums[0] + sums[1]) + (sums[2] + sums[3]);
    }

    TVMATH_WIDE_LOOP void reduce() {
        for (unsigned int k = 0; k < term_count; ++k) {
            column const& a = rows_[k];
            double& top = factor_[k][k];
            double const norm = std::sqrt(top * top + product(a, a));
            if (!(norm > 0)) continue;
            double const diagonal = top > 0 ? -norm : norm, head = top - diagonal;
            for (unsigned int j = k + 1; j < term_count; ++j) {
                column& b = rows_[j];
                double const share = (head * factor_[k][j] + product(a, b)) / (diagonal * head);
                factor_[k][j] += share * head;
                for (unsigned int i = 0; i < block; ++i) b[i] += share * a[i];
            }
            top = diagonal;
        }
        rows_ = {};
        filled_ = 0;
    }

    std::array<term_row, term_count> factor_{};
    alignas(32) std::array<column, term_count> rows_{};
    unsigned int filled_ = 0;
};

// The x of least |r x| with p² - q² - b² = 1. False when r leaves more than one free, or leaves just one
// within `resolution`, and that is no ellipse.
bool least_ellipse(matrix const& r, double resolution, triple& x) {
    matrix u, v;
    vector const values = singular_value_decomposition(r, u, v);
    std::array<unsigned int, 3> order = {0, 1, 2};
    std::sort(order.begin(), order.end(), [&](auto i, auto j) { return values[i] > values[j]; });
    double const largest = values[order[0]], middle = values[order[1]], least = values[order[2]];
    if (!(middle > resolution * largest)) return false;

    // With the singular value decomposition r = u s vᵀ and x = v z the form p² - q² - b² becomes zᵀ k z, and
    // with z = d y, d = least / s, the wanted y belongs to the only positive eigenvalue of d k d. A least
    // value of 0, of exact points, needs no case of its own.
    auto const product = [&](unsigned int i, unsigned int j) {
        return v[0][i] * v[0][j] - v[1][i] * v[1][j] - v[2][i] * v[2][j];
    };
    if (least <= resolution * largest && product(order[2], order[2]) <= 0) return false;
    triple const d = {least / largest, least / middle, 1};
    matrix shifted(3, 3);  // d k d + 1, of which no eigenvalue is below 0
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 3; ++j) {
            shifted(i)(j) = d[i] * d[j] * product(order[i], order[j]) + (i == j);
        }
    }
    matrix left, right;
    vector const eigenvalues = singular_value_decomposition(shifted, left, right);
    unsigned int best = 0;
    for (unsigned int i = 1; i < 3; ++i) best = eigenvalues[i] > eigenvalues[best] ? i : best;
    for (unsigned int k = 0; k < 3; ++k) {
        x[k] = 0;
        for (unsigned int i = 0; i < 3; ++i) x[k] += v[k][order[i]] * d[i] * right[i][best];
    }
    return true;
}

// Fitzgibbon's conic: the quadratic part by the rows that stand below the linear terms, which then follow.
bool constrained_conic(matrix const& r, double resolution, bool centered, term_row& x) {
    triple quadratic{};
    if (!least_ellipse(keep_matrix(r, 2, 3, 2, 3), resolution, quadratic)) return false;
    x = {0, 0, quadratic[0], quadratic[1], quadratic[2]};
    for (unsigned int i = centered ? 0 : 2; i-- > 0;) {
        for (unsigned int k = i + 1; k < term_count; ++k) x[i] -= r[i][k] * x[k];
        x[i] /= r[i][i];
    }
    return true;
}

// The smallest mean square of a conic's value at the points over that of its gradient, in the caller's
// coordinates: for noise that is small against the curvature, of the distance. The means of the gradients'
// products are those of the moments, which the frame has made 0 and 1. False when that is no ellipse.
bool quotient_conic(matrix r, normal_frame const& frame, bool centered, term_row& x) {
    // The covariance of u and v for points of a round scatter, on the scale of the larger one.
    double const tilt = frame.lean, flat = frame.across / frame.along;
    double const uu = flat * flat, uv = -tilt * flat, vv = 1 + tilt * tilt, s = uu + vv, d = uu - vv;
    double const gradients[term_count][term_count] = {
        {uu, uv, 0, 0, 0}, {uv, vv, 0, 0, 0}, {0, 0, s, d, 2 * uv}, {0, 0, d, s, 0}, {0, 0, 2 * uv, 0, s}};
    unsigned int const first = centered ? 2 : 0, n = term_count - first;
    matrix root(n, n);  // lower triangular, root rootᵀ = gradients
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j <= i; ++j) {
            double sum = gradients[first + i][first + j];
            for (unsigned int k = 0; k < j; ++k) sum -= root[i][k] * root[j][k];
            if (i == j && !(sum > 0)) return false;
            root(i)(j) = i == j ? std::sqrt(sum) : sum / root[j][j];
        }
    }
    r = keep_matrix(r, first, n, first, n);
    if (!r.times_inverse_of(transpose(root))) return false;
    matrix u, v;
    vector const values = singular_value_decomposition(r, u, v);
    unsigned int least = 0;
    for (unsigned int i = 1; i < n; ++i) least = values[i] < values[least] ? i : least;
    vector conic = v.col(least);
    if (!conic.times_inverse_of(root)) return false;
    x = {};
    for (unsigned int i = 0; i < n; ++i) x[first + i] = conic[i];
    return x[2] * x[2] - x[3] * x[3] - x[4] * x[4] > 0;
}

struct planar_ellipse {
    xy center, major, minor;
};

bool fit_scatter(planar_points const& points, planar_scatter const& scatter, bool centered,
                 planar_ellipse& fitted) {
    // Points whose distance from a line is not above the rounding of their coordinates show no ellipse.
    double const rounding = 4 * (points.resolution + 1e-16 * scatter.along);
    if (!(scatter.across > rounding) || !std::isfinite(scatter.along)) return false;
    normal_frame const frame(scatter);
    term_row const means = mean_terms(points.at, frame, centered);
    triangular_factor factor;
    for (xy const& p : points.at) {
        term_row row = terms_of(frame.inward(p), centered);
        for (unsigned int k = 0; k < term_count; ++k) row[k] -= means[k];
        factor.add(row);
    }
    matrix const r = factor.result();
    term_row x{};
    if (!constrained_conic(r, std::max(1e-13, points.resolution / scatter.across), centered, x)) return false;
    if (term_row better{}; quotient_conic(r, frame, centered, better)) x = better;

    double constant = 0;
    for (unsigned int k = 0; k < term_count; ++k) constant -= x[k] * means[k];
    ellipse const normal((x[2] + x[3]) / 2, x[4], (x[2] - x[3]) / 2, x[0], x[1], constant);
    if (normal.is_trivial()) return false;
    auto const outward = [&](point const& d) { return frame.outward_direction({d.x(), d.y()}); };
    fitted = {frame.center + outward(normal.basis(0)), outward(normal.basis(1)), outward(normal.basis(2))};
    return true;
}

bool write(planar_points const& points, planar_ellipse const& fitted, point& center, point& major,
           point& minor) {
    point u(false, fitted.major.x, fitted.major.y), v(false, fitted.minor.x, fitted.minor.y);
    orthogonalize_ellipse_2d(u, v);
    if (!std::isfinite(sqr(u)) || !(sqr(v) > 0)) return false;
    center = points.place(fitted.center);
    major = u;
    minor = v;
    return true;
}

template <class list>
bool fit(list const& points, point& center, point& major, point& minor) {
    if (span_of(points).size() < 5) return false;
    planar_points const relative = relative_to(point_fit(points), span_of(points));
    planar_ellipse fitted;
    return !relative.is_empty() && fit_scatter(relative, scatter_of(relative.at), false, fitted) &&
           write(relative, fitted, center, major, minor);
}

template <class list>
bool fit_centered(point center, list const& points, point& center_out, point& major, point& minor) {
    if (span_of(points).size() < 3) return false;
    planar_points const relative = relative_to(center, span_of(points));
    planar_ellipse fitted;
    return !relative.is_empty() && fit_scatter(relative, scatter_about({}, relative.at), true, fitted) &&
           write(relative, fitted, center_out, major, minor);
}

}  // namespace

bool ellipse_quick_fit(std::vector<point> const& points, point& center, point& major, point& minor) {
    return fit(points, center, major, minor);
}

bool ellipse_quick_fit(idioms::array<point> points, point& center, point& major, point& minor) {
    return fit(points, center, major, minor);
}

bool ellipse_quick_centered_fit(point center, std::vector<point> const& points, point& center_out,
                                point& major, point& minor) {
    return fit_centered(center, points, center_out, major, minor);
}

bool ellipse_quick_centered_fit(point center, idioms::array<point> points, point& center_out, point& major,
                                point& minor) {
    return fit_centered(center, points, center_out, major, minor);
}

}  // namespace tvmath
