#include <algorithm>
#include <cmath>

#include "distance_pair_search.h"

inline namespace tvmath {
namespace {

struct step {
    double s = 0, t = 0;
};

double within(searched_path const& path, double t) {
    return path.is_closed ? t : std::clamp(t, path.low, path.high);
}

// A parameter at the end of its range, with the cost falling outward, does not take part.
bool is_stuck(searched_path const& path, double t, double slope) {
    return !path.is_closed && ((t <= path.low && slope > 0) || (t >= path.high && slope < 0));
}

// Of one parameter: where the second derivative is not above 0, a step by the speed, which is the right one
// at a crossing.
double step_alone(double slope, double second, double speed) {
    double const by = second > 1e-12 * speed ? second : speed;
    return by > 0 ? -slope / by : 0.0;
}

// Newton's step for a function with the gradient (gx, gy) and the second derivatives xx, xy, yy, along the
// eigenvectors and downhill on each: divided by the eigenvalue's magnitude.
step downhill_step(double gx, double gy, double xx, double xy, double yy) {
    double const mean = (xx + yy) / 2, difference = (xx - yy) / 2, radius = std::hypot(difference, xy);
    // The eigenvalue that does not cancel, and the other one by the product of both.
    double const large = mean >= 0 ? mean + radius : mean - radius;
    if (large == 0) return {-gx, -gy};
    double const small = (xx * yy - xy * xy) / large;
    double const upper = mean >= 0 ? large : small, lower = mean >= 0 ? small : large;
    double const angle = std::atan2(xy, difference) / 2, c = std::cos(angle), s = std::sin(angle);
    double const least = 1e-14 * std::fabs(large);
    double const along = -(c * gx + s * gy) / std::max(std::fabs(upper), least);
    double const across = -(c * gy - s * gx) / std::max(std::fabs(lower), least);
    return {c * along - s * across, s * along + c * across};
}

// Half of the squared distance, times the sign of the search, around a pair of parameters.
struct local_cost {
    double slope_s, slope_t, speed_s, speed_t;  // speeds squared
    double ss, st, tt;

    local_cost(searched_path const& p, searched_path const& q, double sign, double s, double t) {
        auto const a = p.at(s), b = q.at(t);
        xyz const d = a.position - b.position;
        slope_s = sign * dot(d, a.slope);
        slope_t = -sign * dot(d, b.slope);
        speed_s = dot(a.slope, a.slope);
        speed_t = dot(b.slope, b.slope);
        ss = sign * (speed_s + dot(d, a.bend));
        tt = sign * (speed_t - dot(d, b.bend));
        st = -sign * dot(a.slope, b.slope);
    }
};

step step_from(searched_path const& p, searched_path const& q, double sign, double s, double t) {
    local_cost const c(p, q, sign, s, t);
    bool const fixed_s = is_stuck(p, s, c.slope_s), fixed_t = is_stuck(q, t, c.slope_t);
    step by;
    if (!fixed_s && !fixed_t && c.speed_s > 0 && c.speed_t > 0) {
        // In units of length on both paths, so that neither parameter outweighs the other.
        double const us = 1 / std::sqrt(c.speed_s), ut = 1 / std::sqrt(c.speed_t);
        by = downhill_step(c.slope_s * us, c.slope_t * ut, c.ss * us * us, c.st * us * ut, c.tt * ut * ut);
        by.s *= us;
        by.t *= ut;
    } else {
        if (!fixed_s) by.s = step_alone(c.slope_s, c.ss, c.speed_s);
        if (!fixed_t) by.t = step_alone(c.slope_t, c.tt, c.speed_t);
    }
    // A quarter of the range at most: farther away the derivatives tell nothing.
    double const reach =
        std::max({1.0, 4 * std::fabs(by.s) / (p.high - p.low), 4 * std::fabs(by.t) / (q.high - q.low)});
    return {by.s / reach, by.t / reach};
}

}  // namespace

// Newton's iteration. A step that does not improve is halved, and the second parameter then follows the first
// one to where the distance is extreme for it, so that the way along a narrow, curved valley is not lost by
// the cost of leaving it. The iteration ends when a step of 2^-20 of Newton's does not help, or after 100
// steps, with the best parameters so far.
void refine_pair(searched_path const& p, searched_path const& q, double sign, double& s, double& t) {
    auto const cost_at = [&](double at_s, double at_t) {
        xyz const d = p.position(at_s) - q.position(at_t);
        return sign * dot(d, d) / 2;
    };
    double cost = cost_at(s, t);
    for (int round = 0; round < 100; ++round) {
        step by = step_from(p, q, sign, s, t);
        if (by.s == 0 && by.t == 0) return;
        bool const is_small = std::fabs(by.s) < 1e-6 && std::fabs(by.t) < 1e-6;
        bool improved = false;
        for (int halving = 0; halving < 20 && !improved; ++halving, by.s /= 2, by.t /= 2) {
            double const next_s = within(p, s + by.s);
            double next_t = within(q, t + by.t);
            if (halving > 0) {
                local_cost const c(p, q, sign, next_s, next_t);
                next_t = within(q, next_t + step_alone(c.slope_t, c.tt, c.speed_t));
            }
            double const next = cost_at(next_s, next_t);
            improved = next < cost;
            // The last digits of the parameters do not show in the distance: one full step more.
            bool const is_last = is_small && next <= cost + 8e-16 * std::fabs(cost);
            if (improved || is_last) {
                s = next_s;
                t = next_t;
                cost = next;
            }
            if (is_small && !improved) return;
        }
        if (!improved) return;
    }
}

}  // namespace tvmath
