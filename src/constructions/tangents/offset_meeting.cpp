#include <algorithm>
#include <cmath>
#include <utility>

#include "circle_answers.h"
#include "offset_oval.h"

inline namespace tvmath {
namespace {

// Ellipses of which large parts are equal but for their last digits have no answer that means anything, and
// end the search here; others take some hundreds of steps.
constexpr int most_steps = 1 << 17;

double angle_between(xy const& a, xy const& b) {
    return std::atan2(cross(a, b), dot(a, b));
}

double distance(offset_oval::place const& a, offset_oval::place const& b) {
    xy const gap = b.at - a.at;
    return std::sqrt(dot(gap, gap));
}

xy tangent(offset_oval::place const& p) {
    return {-p.normal.y, p.normal.x};
}

}  // namespace

offset_meeting::offset_meeting(convex_arcs& p, convex_arcs& q, double reach)
    : p_(p), q_(q), reach_(reach), noise_(rounding_at(reach)), steps_left_(most_steps) {
    for (std::size_t i = 0; i < p.count(); ++i) {
        for (std::size_t j = 0; j < q.count(); ++j) search(i, j);
    }
    settle_contacts();
}

// Whether b is on one side of the band about the chord of a.
bool offset_meeting::lies_beside(arc const& a, arc const& b) const {
    xy const chord = a.to.at - a.from.at;
    double const reach = a.chord * (a.bulge + b.bulge + noise_);
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
    arc const &a = p_[i], &b = q_[j];
    bool const is_straight = std::max(a.bulge, b.bulge) <= noise_;
    if (is_straight && std::max(a.chord, b.chord) <= 1e-4 * reach_) {
        place const p = p_.middle(i), q = q_.middle(j);
        contacts_.push_back({p, q, std::atan2(p.k.y, p.k.x), a.chord});
        return;
    }
    if (is_straight ? a.chord >= b.chord : a.bulge >= b.bulge) {
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
    return distance(p, q) <= noise_;
}

// Newton's iteration for p = q; false when it leaves its reach or does not end where the places are equal. At
// a cusp, where a speed is 0, it only halves the error: 40 steps.
bool offset_meeting::cross_from(place& p, place& q, double reach_p, double reach_q) const {
    double moved_p = 0, moved_q = 0;
    for (int step = 0; step < 40; ++step) {
        xy const gap = q.at - p.at, along_p = p.speed * tangent(p), along_q = q.speed * tangent(q);
        double const det = cross(along_p, along_q);
        double dp = cross(gap, along_q) / det, dq = cross(gap, along_p) / det;
        // Where one is a point, as at the cusps, the other one goes to it.
        if (std::fabs(q.speed) <= noise_) {
            dp = dot(gap, along_p) / dot(along_p, along_p);
            dq = 0;
        } else if (std::fabs(p.speed) <= noise_) {
            dp = 0;
            dq = -dot(gap, along_q) / dot(along_q, along_q);
        }
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
bool offset_meeting::touch_from(place& p, place& q, double reach) const {
    xy const start = p.at;
    for (int step = 0; step < 40; ++step) {
        xy const gap = p.at - q.at, t = tangent(p);
        double const cosine = dot(p.normal, q.normal), sine = cross(p.normal, q.normal), ahead = dot(gap, t);
        // Derivatives of the sine and of the gap ahead by both parameters.
        double const sine_p = -p.turn * cosine, sine_q = q.turn * cosine,
                     ahead_p = p.speed - p.turn * dot(gap, p.normal), ahead_q = -q.speed * dot(tangent(q), t);
        double const det = sine_p * ahead_q - sine_q * ahead_p;
        double const dp = (sine_q * ahead - sine * ahead_q) / det,
                     dq = (sine * ahead_p - sine_p * ahead) / det;
        if (!(std::fabs(dp) + std::fabs(dq) <= 1)) return false;
        p = p_.oval().beyond(p, dp);
        q = q_.oval().beyond(q, dq);
        if (size(p.at - start) > reach) return false;
        if (std::fabs(dp * p.speed) + std::fabs(dq * q.speed) <= noise_) break;
    }
    return meet(p, q);
}

void offset_meeting::settle_contacts() {
    std::stable_sort(contacts_.begin(), contacts_.end(),
                     [](contact const& a, contact const& b) { return a.angle < b.angle; });
    contact const *first = contacts_.data(), *const end = first + contacts_.size();
    for (contact const* next = first; next != end; ++next) {
        if (next + 1 == end || distance(next->p, next[1].p) > 2 * (next->width + next[1].width) + noise_) {
            settle(first, next);
            first = next + 1;
        }
    }
}

// From the middle of the neighbourhood to its touch, or from its ends to the crossings.
void offset_meeting::settle(contact const* first, contact const* last) {
    double const length = distance(first->p, last->p) + 8 * (first->width + last->width);
    if (length > 0.01 * reach_) return;
    contact const& middle = first[(last - first) / 2];
    for (hit const& h : hits_) {
        if (distance(h.p, middle.p) <= length) return;
    }
    place p = middle.p, q = middle.q;
    if (touch_from(p, q, length)) return hits_.push_back({p, q});
    for (contact const* c : {first, last}) {
        p = c->p;
        q = c->q;
        if (cross_from(p, q, 1, 1) && distance(p, c->p) <= length) hits_.push_back({p, q});
    }
}

}  // namespace tvmath
