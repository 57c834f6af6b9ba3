#include "orthogonal_ellipse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "orthogonal_sums.h"

inline namespace tvmath {
namespace {

using row = ellipse_system::row;

// The ellipse with the half-axes' matrix and the centre moved by `step`, in its own frame. Half-axes at or
// below 0 say that there is none.
planar_ellipse moved(planar_ellipse const& e, row const& step) {
    double const n11 = e.a + step[2], n12 = step[3], n22 = e.b + step[4];
    // Half-angle and eigenvalues of a symmetric matrix; the smaller one by the determinant, which keeps its
    // digits.
    double const mean = (n11 + n22) / 2, part = std::hypot((n11 - n22) / 2, n12);
    double const cosine = std::cos(e.angle), sine = std::sin(e.angle);
    planar_ellipse next;
    next.center = e.center + xy{cosine * step[0] - sine * step[1], sine * step[0] + cosine * step[1]};
    next.a = mean + part;
    next.b = (n11 * n22 - n12 * n12) / next.a;
    next.angle = e.angle + std::atan2(2 * n12, n11 - n22) / 2;
    return next;
}

double half_extent(std::vector<xy> const& points) {
    auto const [left, right] =
        std::minmax_element(points.begin(), points.end(), [](xy const& p, xy const& q) { return p.x < q.x; });
    auto const [low, high] =
        std::minmax_element(points.begin(), points.end(), [](xy const& p, xy const& q) { return p.y < q.y; });
    return std::hypot(right->x - left->x, high->y - low->y) / 2;
}

double sqr(double x) {
    return x * x;
}

double largest(row const& step) {
    double most = 0;
    for (double s : step) most = std::max(most, std::fabs(s));
    return most;
}

// Newton's iteration, with Levenberg and Marquardt's damping, and with Gauss and Newton's matrix where the
// full one has no minimum.
class descent {
public:
    descent(std::vector<xy> const& points, bool centered, planar_ellipse const& start)
        : points_(points),
          free_{!centered, !centered, true, true, true},
          longest_(1e4 * half_extent(points)),
          now_(start),
          at_(sum_distances(points, start)) {
        if (!(now_.a >= now_.b)) swap_axes();
    }

    bool run() {
        constexpr int most_sums = 200;  // valleys of short arcs are long
        for (sums_ = 1; sums_ < most_sums;) {
            row step;
            if (!next_step(step)) return false;
            if (is_last(step)) return true;
            planar_ellipse const next = moved(now_, step);
            if (next.a > longest_) return false;
            if (!accept(next)) damping_ = std::max(10 * damping_, 1e-6);
        }
        return false;
    }

    planar_ellipse const& result() const { return now_; }
    double half_squares() const { return at_.half_squares; }

private:
    void swap_axes() {
        std::swap(now_.a, now_.b);
        now_.angle += std::acos(0.0);
        at_ = sum_distances(points_, now_);
    }

    bool next_step(row& step) {
        constexpr double least_pivot = 1e-15;
        row downhill = at_.gradient;
        for (double& g : downhill) g = -g;
        for (; damping_ < 1e12; damping_ = std::max(10 * damping_, 1e-12)) {
            ellipse_system system;
            is_newton_ = system.factor(at_.hessian, free_, damping_, least_pivot);
            if (!is_newton_ && !system.factor(at_.gauss_newton, free_, damping_, least_pivot)) continue;
            step = system.solve(downhill);
            return true;
        }
        return false;
    }

    // Newton's steps square what is left: behind a step of 1e-9 there is nothing. Where the points determine
    // the ellipse less well, steps stay longer: then it ends when what they promise to take off the sum is
    // made of rounding, or is below the rounding of the sum and has ceased to fall.
    bool is_last(row const& step) {
        if (!is_newton_ || damping_ != 0.0) return false;
        double promise = 0;
        for (std::size_t i = 0; i < step.size(); ++i) promise -= at_.gradient[i] * step[i] / 2;
        if (promise >= last_promise_ / 2) ++stalls_;
        last_promise_ = promise;
        constexpr int most_stalls = 4;
        bool const is_stuck =
            promise <= squared_rounding() || (promise <= rounding() && stalls_ >= most_stalls);
        if (largest(step) > 1e-9 * now_.b && !is_stuck) return false;
        planar_ellipse const next = moved(now_, step);
        if (next.b > 0) now_ = next;
        return true;
    }

    bool accept(planar_ellipse const& next) {
        if (!(next.b > 0)) return false;
        orthogonal_sums const sums = sum_distances(points_, next);
        ++sums_;
        if (!(sums.half_squares <= at_.half_squares + rounding())) return false;
        now_ = next;
        at_ = sums;
        damping_ = damping_ < 1e-5 ? 0 : damping_ / 10;
        return true;
    }

    // Distances are differences of lengths as long as the ellipse.
    double squared_rounding() const {
        constexpr double epsilon = std::numeric_limits<double>::epsilon();
        return sqr(epsilon * now_.a) * static_cast<double>(points_.size());
    }
    double rounding() const {
        return 8 * (squared_rounding() + std::sqrt(squared_rounding() * at_.half_squares));
    }

    std::vector<xy> const& points_;
    std::array<bool, 5> free_;
    double longest_;
    planar_ellipse now_;
    orthogonal_sums at_;
    double damping_ = 0, last_promise_ = std::numeric_limits<double>::infinity();
    bool is_newton_ = false;
    int sums_ = 0, stalls_ = 0;
};

// Whether the points see the centre on one side.
bool is_arc(std::vector<xy> const& points, xy center) {
    xy mean;
    for (xy const& p : points) mean = mean + (p - center);
    return std::all_of(points.begin(), points.end(), [&](xy const& p) { return dot(p - center, mean) > 0; });
}

}  // namespace

bool refine_ellipse(std::vector<xy> const& points, bool centered, planar_ellipse& e,
                    planar_ellipse const* circle) {
    descent first(points, centered, e);
    bool found = first.run();
    planar_ellipse best = first.result();
    double half_squares = first.half_squares();
    if (circle && is_arc(points, circle->center)) {
        descent other(points, centered, *circle);
        bool const other_found = other.run();
        // The way to a better sum that has no end says that there is no best ellipse.
        if (other.half_squares() < half_squares) {
            found = other_found;
            best = other.result();
            half_squares = other.half_squares();
        }
    }
    // Narrow ellipses around the scatter of an arc or of a line tell nothing of the shape.
    constexpr double least_half_axis = 3;  // in units of the root mean square of the distances
    double const mean_square = 2 * half_squares / static_cast<double>(points.size());
    if (!found || sqr(best.b) < sqr(least_half_axis) * mean_square) return false;
    e = best;
    return true;
}

}  // namespace tvmath
