#include "cubic_spline.h"

#include <cmath>

inline namespace tvmath {
namespace {

// Rows of a tridiagonal system; lower[0] stands in the last column and upper[n - 1] in the first, both 0
// unless the system is cyclic. Elimination without pivoting: every row is dominated by its diagonal, or
// becomes so by the first step from an end.
struct tridiagonal {
    std::vector<double> lower, diagonal, upper;

    explicit tridiagonal(std::size_t n) : lower(n), diagonal(n), upper(n) {}
    std::size_t size() const { return diagonal.size(); }
    void set(std::size_t i, double low, double middle, double up) {
        lower[i] = low;
        diagonal[i] = middle;
        upper[i] = up;
    }

    // Replaces `right` by the solution, the corners left out (L. H. Thomas).
    template <class T>
    void solve(std::vector<T>& right) const {
        std::size_t const n = size();
        std::vector<double> factor(n);
        double pivot = diagonal[0];
        right[0] = (1 / pivot) * right[0];
        for (std::size_t i = 1; i < n; ++i) {
            factor[i] = upper[i - 1] / pivot;
            pivot = diagonal[i] - lower[i] * factor[i];
            right[i] = (1 / pivot) * (right[i] - lower[i] * right[i - 1]);
        }
        for (std::size_t i = n - 1; i-- > 0;) right[i] = right[i] - factor[i + 1] * right[i + 1];
    }

    // The same with the corners, as a correction of rank one: J. Sherman, W. J. Morrison, Ann. Math. Stat. 21
    // (1950) 124-127.
    void solve_cyclic(std::vector<xyz>& right) {
        std::size_t const last = size() - 1;
        double const g = -diagonal[0], corner = lower[0] / g;
        diagonal[0] -= g;
        diagonal[last] -= upper[last] * corner;
        std::vector<double> z(size());
        z[0] = g;
        z[last] = upper[last];
        solve(right);
        solve(z);
        xyz const f = (1 / (1 + z[0] + corner * z[last])) * (right[0] + corner * right[last]);
        for (std::size_t i = 0; i <= last; ++i) right[i] = right[i] - z[i] * f;
    }
};

// The row that makes the third derivative continuous at the second point, as de Boor's CUBSPL has it: `h`,
// `chord` of the first interval, `h2`, `chord2` of the next.
void set_not_a_knot(double h, xyz const& chord, double h2, xyz const& chord2, double& at_end, double& inside,
                    xyz& right) {
    at_end = h2;
    inside = h + h2;
    right = (1 / inside) * ((h + 2 * inside) * h2 * chord + h * h * chord2);
}

// Through 2 or 3 points without end conditions: the straight line and the parabola.
std::vector<xyz> slopes_of_few(std::vector<xyz> const& chords, std::vector<double> const& h) {
    if (chords.size() == 1) return {chords[0], chords[0]};
    xyz const middle = (1 / (h[0] + h[1])) * (h[1] * chords[0] + h[0] * chords[1]);
    return {2 * chords[0] - middle, middle, 2 * chords[1] - middle};
}

}  // namespace

// Continuity of the second derivative at point i, with the slope of the chord c_i = (p_i+1 - p_i) / h_i:
//     h_i d_i-1 + 2 (h_i-1 + h_i) d_i + h_i-1 d_i+1 = 3 (h_i c_i-1 + h_i-1 c_i)
std::vector<xyz> spline_slopes(std::vector<xyz> const& points, std::vector<double> const& h,
                               spline_ends ends) {
    std::size_t const n = points.size();
    std::vector<xyz> chords(h.size()), slopes(n);
    for (std::size_t i = 0; i < h.size(); ++i) {
        chords[i] = (1 / h[i]) * (points[i + 1 == n ? 0 : i + 1] - points[i]);
    }
    if (n == 2 || (n == 3 && ends == spline_ends::not_a_knot)) return slopes_of_few(chords, h);

    tridiagonal rows(n);
    auto const set_row = [&](std::size_t before, std::size_t i) {
        rows.set(i, h[i], 2 * (h[before] + h[i]), h[before]);
        slopes[i] = 3 * (h[i] * chords[before] + h[before] * chords[i]);
    };
    for (std::size_t i = 1; i + 1 < n; ++i) set_row(i - 1, i);
    std::size_t const last = n - 1;
    if (ends == spline_ends::periodic) {
        set_row(last, 0);
        set_row(last - 1, last);
        rows.solve_cyclic(slopes);
        return slopes;
    }
    if (ends == spline_ends::natural) {
        rows.set(0, 0, 2, 1);
        rows.set(last, 1, 2, 0);
        slopes[0] = 3 * chords[0];
        slopes[last] = 3 * chords[last - 1];
    } else {
        set_not_a_knot(h[0], chords[0], h[1], chords[1], rows.diagonal[0], rows.upper[0], slopes[0]);
        set_not_a_knot(h[last - 1], chords[last - 1], h[last - 2], chords[last - 2], rows.diagonal[last],
                       rows.lower[last], slopes[last]);
    }
    rows.solve(slopes);
    return slopes;
}

// The control point of the three knots u, t, v around point t is the polar form of the spline there,
//     p + ((u - t) + (v - t)) / 3 p' + (u - t) (v - t) / 6 p''.
// Source: L. Ramshaw, Blossoms are polar forms, CAGD 6 (1989) 323-358.
cubic_bspline to_bspline(std::vector<xyz> const& points, std::vector<double> const& steps,
                         std::vector<xyz> const& slopes, bool closed) {
    std::size_t const n = points.size(), spans = steps.size();
    std::vector<double> at(spans + 1);
    for (std::size_t i = 0; i < spans; ++i) at[i + 1] = at[i] + steps[i];
    auto const control_at = [&](std::size_t i) {
        std::size_t const before = i == 0 ? n - 1 : i - 1, after = i + 1 == n ? 0 : i + 1;
        // p'' from the longer side, where the quotient is the better known one.
        bool const ahead = steps[i] >= steps[before];
        double const h = ahead ? steps[i] : -steps[before];
        std::size_t const other = ahead ? after : before;
        xyz const bend = (2 / h) * ((3 / h) * (points[other] - points[i]) - 2 * slopes[i] - slopes[other]);
        return points[i] + ((steps[i] - steps[before]) / 3) * slopes[i] -
               (steps[i] * steps[before] / 6) * bend;
    };
    cubic_bspline result;
    for (std::size_t i = 0; i <= spans + 6; ++i) {
        bool const is_before = i<3, is_after = i> spans + 3;
        if (closed) {
            double const turn = is_before ? -at[spans] : is_after ? at[spans] : 0;
            result.knots.push_back(turn + at[is_before ? spans + i - 3 : is_after ? i - 3 - spans : i - 3]);
        } else {
            result.knots.push_back(is_before ? 0 : is_after ? at[spans] : at[i - 3]);
        }
    }
    if (closed) {
        result.controls.push_back(control_at(n - 1));
        for (std::size_t i = 0; i + 1 < n; ++i) result.controls.push_back(control_at(i));
        for (std::size_t i = 0; i < 3; ++i) result.controls.push_back(xyz(result.controls[i]));
        return result;
    }
    result.controls.push_back(points[0]);
    result.controls.push_back(points[0] + (steps[0] / 3) * slopes[0]);
    for (std::size_t i = 1; i + 1 < n; ++i) result.controls.push_back(control_at(i));
    result.controls.push_back(points[n - 1] - (steps[spans - 1] / 3) * slopes[n - 1]);
    result.controls.push_back(points[n - 1]);
    return result;
}

// The two inner points of a span divide the leg of the control polygon over it in the ratio of the knots
// (W. Boehm, Inserting new knots into B-spline curves); a joint divides the line between its neighbours.
std::vector<xyz> to_bezier(cubic_bspline const& spline) {
    std::vector<double> const& t = spline.knots;
    auto const between = [](xyz const& a, xyz const& b, double part, double whole) {
        return a + (part / whole) * (b - a);
    };
    // Control points 1 and 2 of the span from knot k.
    auto const inner = [&](std::size_t k, std::size_t end) {
        return between(spline.controls[k - 2], spline.controls[k - 1], t[end] - t[k - 1],
                       t[k + 2] - t[k - 1]);
    };
    std::size_t const spans = spline.spans();
    std::vector<xyz> path;
    path.reserve(3 * spans + 1);
    for (std::size_t k = 3; k < 3 + spans; ++k) {
        xyz const first = inner(k, k), second = inner(k, k + 1);
        if (k == 3) {
            // What lies before the range: nothing at a clamped end, whose knots coincide.
            double const before = t[3] - t[2];
            path.push_back(before > 0 ? between(between(spline.controls[0], spline.controls[1], t[3] - t[1],
                                                        t[4] - t[1]),
                                                first, before, t[4] - t[2])
                                      : spline.controls[0]);
        } else {
            path.push_back(between(xyz(path.back()), first, t[k] - t[k - 1], t[k + 1] - t[k - 1]));
        }
        path.push_back(first);
        path.push_back(second);
    }
    std::size_t const e = 3 + spans;
    double const after = t[e + 1] - t[e];
    path.push_back(after > 0 ? path.front() : spline.controls.back());
    return path;
}

}  // namespace tvmath
