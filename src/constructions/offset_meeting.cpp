#include <algorithm>
#include <cmath>
#include <utility>

#include "offset_oval.h"

inline namespace tvmath {
namespace {

// Ellipses of which large parts are equal but for their last digits have no answer that means anything, and
// end the search here; others take some hundreds of steps.
constexpr int most_steps = 1 << 18;

double angle_between(xy const& a, xy const& b) {
    return std::atan2(cross(a, b), dot(a, b));
}

xy tangent(offset_oval::place const& p) {
    return {-p.normal.y, p.normal.x};
}

}  // namespace

offset_meeting::offset_meeting(convex_arcs& p, convex_arcs& q, double noise)
    : p_(p), q_(q), noise_(noise), steps_left_(most_steps) {
    for (std::size_t i = 0; i < p.count(); ++i) {
        for (std::size_t j = 0; j < q.count(); ++j) search(i, j);
    }
}

// Whether b is on one side of the band about the chord of a.
bool offset_meeting::lies_beside(arc const& a, arc const& b) const {
    xy const chord = a.to.at - a.from.at;
    double const n = std::sqrt(dot(chord, chord)), reach = n * (a.bulge + b.bulge + noise_);
    double const from = cross(chord, b.from.at - a.from.at), to = cross(chord, b.to.at - a.from.at);
    return std::min(from, to) > reach || std::max(from, to) < -reach;
}

bool offset_meeting::are_apart(arc const& a, arc const& b) const {
    double const reach = a.bulge + b.bulge + noise_;
    auto const gap = [&](double a0, double a1, double b0, double b1) {
        return std::min(a0, a1) - std::max(b0, b1) > reach || std::min(b0, b1) - std::max(a0, a1) > reach;
    };
    return gap(a.from.at.x, a.to.at.x, b.from.at.x, b.to.at.x) ||
           gap(a.from.at.y, a.to.at.y, b.from.at.y, b.to.at.y) || lies_beside(a, b) || lies_beside(b, a);
}

void offset_meeting::search(std::size_t i, std::size_t j) {
    if (steps_left_ <= 0 || are_apart(p_[i], q_[j])) return;
    --steps_left_;
    if (cross_once(i, j)) return;
    double const bulge_p = p_[i].bulge, bulge_q = q_[j].bulge;
    if (std::max(bulge_p, bulge_q) <= noise_) return settle(i, j);
    if (bulge_p >= bulge_q) {
        std::size_t const half = p_.halves(i);
        search(half, j);
        search(half + 1, j);
    } else {
        std::size_t const half = q_.halves(j);
        search(i, half);
        search(i, half + 1);
    }
}

// True when the arcs were seen to meet once or not at all. Their directions vary little enough, and their
// speeds too, that a first step of Newton's iteration from the middles is wrong by less than its length.
bool offset_meeting::cross_once(std::size_t i, std::size_t j) {
    arc const &a = p_[i], &b = q_[j];
    auto const is_even = [](arc const& c) {
        double const v = std::fabs(c.from.speed), w = std::fabs(c.to.speed);
        return std::min(v, w) > 0.5 * std::max(v, w);
    };
    double const sine = std::fabs(cross(a.from.normal, b.from.normal));
    if (!(sine > 4 * (a.turn + b.turn)) || !is_even(a) || !is_even(b)) return false;
    place p = p_.middle(i), q = q_.middle(j);
    double const width_a = angle_between(a.from.k, a.to.k), width_b = angle_between(b.from.k, b.to.k);
    place const middle_p = p, middle_q = q;
    if (!cross_from(p, q, 2 * width_a, 2 * width_b)) return true;
    // The neighbours find what lies clearly beyond the ends.
    if (std::fabs(angle_between(middle_p.k, p.k)) > 0.75 * width_a ||
        std::fabs(angle_between(middle_q.k, q.k)) > 0.75 * width_b) {
        return true;
    }
    hits_.push_back({p, q});
    return true;
}

bool offset_meeting::meet(place const& p, place const& q) const {
    xy const gap = p.at - q.at;
    return dot(gap, gap) <= noise_ * noise_;
}

// Newton's iteration for p = q; false when it leaves its reach or does not end where the places are equal. At
// a cusp, where a speed is 0, it only halves the error: 40 steps.
bool offset_meeting::cross_from(place& p, place& q, double reach_p, double reach_q) const {
    double moved_p = 0, moved_q = 0;
    for (int step = 0; step < 40; ++step) {
        xy const gap = q.at - p.at, along_p = p.speed * tangent(p), along_q = q.speed * tangent(q);
        double const det = cross(along_p, along_q);
        double const dp = cross(gap, along_q) / det, dq = cross(gap, along_p) / det;
        moved_p += dp;
        moved_q += dq;
        if (!(std::fabs(moved_p) <= reach_p && std::fabs(moved_q) <= reach_q)) return meet(p, q);
        p = p_.oval().beyond(p, dp);
        q = q_.oval().beyond(q, dq);
        if (std::fabs(dp * p.speed) + std::fabs(dq * q.speed) <= noise_ / 64) break;
    }
    return meet(p, q);
}

// Newton's iteration for the places next to each other, where the tangents are parallel and the gap is along
// the normal.
bool offset_meeting::touch_from(place& p, place& q, double reach_p, double reach_q) const {
    double moved_p = 0, moved_q = 0;
    for (int step = 0; step < 40; ++step) {
        xy const gap = p.at - q.at, t = tangent(p);
        double const cosine = dot(p.normal, q.normal), sine = cross(p.normal, q.normal), ahead = dot(gap, t);
        // Derivatives of the sine and of the gap ahead by both parameters.
        double const sine_p = -p.turn * cosine, sine_q = q.turn * cosine,
                     ahead_p = p.speed - p.turn * dot(gap, p.normal), ahead_q = -q.speed * dot(tangent(q), t);
        double const det = sine_p * ahead_q - sine_q * ahead_p;
        double const dp = (sine_q * ahead - sine * ahead_q) / det,
                     dq = (sine * ahead_p - sine_p * ahead) / det;
        moved_p += dp;
        moved_q += dq;
        if (!(std::fabs(moved_p) <= reach_p && std::fabs(moved_q) <= reach_q)) return false;
        p = p_.oval().beyond(p, dp);
        q = q_.oval().beyond(q, dq);
        if (std::fabs(dp * p.speed) + std::fabs(dq * q.speed) <= noise_) return meet(p, q);
    }
    return meet(p, q);
}

// Both arcs are straight within rounding.
void offset_meeting::settle(std::size_t i, std::size_t j) {
    arc const &a = p_[i], &b = q_[j];
    place const p = p_.middle(i), q = q_.middle(j);
    double const reach_a = 8 * angle_between(a.from.k, a.to.k), reach_b = 8 * angle_between(b.from.k, b.to.k);
    place p1 = p, q1 = q;
    if (touch_from(p1, q1, reach_a, reach_b)) return hits_.push_back({p1, q1});
    p1 = p;
    q1 = q;
    if (cross_from(p1, q1, reach_a, reach_b)) hits_.push_back({p1, q1});
}

}  // namespace tvmath
