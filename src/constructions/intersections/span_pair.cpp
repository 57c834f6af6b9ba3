#include "span_pair.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "path_spans.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using controls = std::array<xy, 4>;

// Beyond: spans with a common stretch. Nine crossings take a few hundred steps.
constexpr int most_steps = 1 << 16;
constexpr std::size_t most_contacts = 1 << 11;
// Of a span's parameter: what rounding may put outside of a piece; what is a common stretch.
constexpr double slack = 1e-12, stretch = 1e-2;
// The widest piece that may count as a touch: straight spans are equal at any width where they overlap.
constexpr double most_touch = 0x1p-20;

struct derivatives {
    xy at, slope, bend;
};

derivatives evaluate(controls const& p, double t) {
    xy const d0 = p[1] - p[0], d1 = p[2] - p[1], d2 = p[3] - p[2];
    xy const e0 = d1 - d0, e1 = d2 - d1;
    xy const a = p[0] + t * d0, b = p[1] + t * d1, c = p[2] + t * d2;
    xy const ab = a + t * (b - a), bc = b + t * (c - b);
    return {ab + t * (bc - ab), 3 * (bc - ab), 6 * (e0 + t * (e1 - e0))};
}

struct box {
    xy low, high;

    explicit box(controls const& p)
        : low(std::min(std::min(p[0].x, p[1].x), std::min(p[2].x, p[3].x)),
              std::min(std::min(p[0].y, p[1].y), std::min(p[2].y, p[3].y))),
          high(std::max(std::max(p[0].x, p[1].x), std::max(p[2].x, p[3].x)),
               std::max(std::max(p[0].y, p[1].y), std::max(p[2].y, p[3].y))) {}
    double extent() const { return size(high - low); }
    bool overlaps(box const& b, double pad) const {
        return low.x <= b.high.x + pad && b.low.x <= high.x + pad && low.y <= b.high.y + pad &&
               b.low.y <= high.y + pad;
    }
};

// The heights of a span over its own chord, and whether another one stays outside of that band. `width` is
// a length; negative without a chord.
struct band {
    double low = 0, high = 0, chord = 0;

    band(controls const& p, controls const& other, double noise, bool& apart) {
        xy const along = p[3] - p[0];
        chord = std::hypot(along.x, along.y);
        if (!(chord > 0)) return;
        auto const height = [&](xy const& q) { return cross(along, q - p[0]) / chord; };
        double const h1 = height(p[1]), h2 = height(p[2]);
        low = std::min({0.0, h1, h2});
        high = std::max({0.0, h1, h2});
        double const o0 = height(other[0]), o1 = height(other[1]), o2 = height(other[2]),
                     o3 = height(other[3]);
        apart = std::min(std::min(o0, o1), std::min(o2, o3)) > high + noise ||
                std::max(std::max(o0, o1), std::max(o2, o3)) < low - noise;
    }
    double width() const { return chord > 0 ? high - low : 0; }
};

// Tangent of the largest angle between a span's directions and its chord; infinite from a right angle on.
double spread(controls const& p) {
    xy const chord = p[3] - p[0];
    double most = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        xy const leg = p[i + 1] - p[i];
        double const along = dot(leg, chord), across = std::fabs(cross(leg, chord));
        if (along <= 0 && size(leg) > 0) return infinity;
        if (along > 0) most = std::max(most, across / along);
    }
    return most;
}

bool share_no_direction(controls const& a, controls const& b) {
    double const x = spread(a), y = spread(b);
    if (!(x * y < 1)) return false;
    xy const u = a[3] - a[0], v = b[3] - b[0];
    // tan(alpha + beta) < tan(angle of the chords), without the quotients.
    return (x + y) * std::fabs(dot(u, v)) < (1 - x * y) * std::fabs(cross(u, v));
}

template <class piece>
void halve(piece const& whole, piece& left, piece& right) {
    controls const& p = whole.p;
    auto const mean = [](xy const& a, xy const& b) { return 0.5 * (a + b); };
    xy const a = mean(p[0], p[1]), b = mean(p[1], p[2]), c = mean(p[2], p[3]), ab = mean(a, b),
             bc = mean(b, c);
    xy const middle = mean(ab, bc);
    left = {{p[0], a, ab, middle}, whole.from, whole.width / 2};
    right = {{middle, bc, c, p[3]}, whole.from + whole.width / 2, whole.width / 2};
}

bool within(double s, double from, double width) {
    return s >= from - slack && s <= from + width + slack;
}

}  // namespace

void span_pair::meet(point const* first, point const* second, std::vector<point>& hits) {
    xy const origin{xyz(first[0])};  // so that curves far away keep their digits
    double most = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        first_[k] = xy(xyz(first[k])) - origin;
        second_[k] = xy(xyz(second[k])) - origin;
        most = std::max({most, size(first_[k]), size(second_[k])});
        if (!std::isfinite(size(first_[k]) + size(second_[k]))) return;
    }
    noise_ = 4 * std::numeric_limits<double>::epsilon() * most;
    steps_left_ = most_steps;
    contacts_.clear();
    search({first_, 0, 1}, {second_, 0, 1});
    merge_touches();
    for (contact const& c : contacts_) {
        double const s = std::clamp(c.s, 0.0, 1.0), t = std::clamp(c.t, 0.0, 1.0);
        xyz const at = 0.5 * (span_point(first, s) + span_point(second, t));
        if (at.is_finite()) hits.push_back(at.location(true));
    }
}

void span_pair::search(piece const& a, piece const& b) {
    if (--steps_left_ < 0 || contacts_.size() >= most_contacts) return;
    box const box_a(a.p), box_b(b.p);
    if (!box_a.overlaps(box_b, noise_)) return;
    bool apart = false;
    band const band_a(a.p, b.p, noise_, apart);
    if (apart) return;
    band const band_b(b.p, a.p, noise_, apart);
    if (apart) return;
    if (cross_once(a, b)) return;
    double const extent_a = box_a.extent(), extent_b = box_b.extent();
    bool const straight = band_a.width() <= noise_ && band_b.width() <= noise_;
    bool const alike = extent_a <= 2 * extent_b && extent_b <= 2 * extent_a;
    bool const tiny = a.width < 0x1p-40 && b.width < 0x1p-40;
    xy const u = a.p[3] - a.p[0], v = b.p[3] - b.p[0];
    bool const parallel = std::fabs(cross(u, v)) <= 2 * noise_ * std::min(size(u), size(v));
    if (tiny || (straight && alike && parallel && a.width < most_touch) ||
        (extent_a <= noise_ && extent_b <= noise_)) {
        contacts_.push_back({a.from + a.width / 2, b.from + b.width / 2, a.width});
        return;
    }
    bool const first = a.width > 0x1p-44 && (extent_a >= extent_b || b.width <= 0x1p-44);
    piece left, right;
    halve(first ? a : b, left, right);
    search(first ? left : a, first ? b : left);
    search(first ? right : a, first ? b : right);
}

// Newton's iteration from the middles. A zero elsewhere tells nothing about these pieces.
bool span_pair::cross_once(piece const& a, piece const& b) {
    if (!share_no_direction(a.p, b.p)) return false;
    double s = a.from + a.width / 2, t = b.from + b.width / 2, last = infinity;
    for (int step = 0; step < 12; ++step) {
        derivatives const p = evaluate(first_, s), q = evaluate(second_, t);
        xy const gap = q.at - p.at;
        double const d = cross(p.slope, q.slope);
        double const ds = cross(gap, q.slope) / d, dt = cross(gap, p.slope) / d;
        s += ds;
        t += dt;
        double const moved = std::max(std::fabs(ds), std::fabs(dt));
        if (!(moved < 2 * last) || !(std::fabs(s) < 4 && std::fabs(t) < 4)) return false;
        // As far as rounding of the coordinates lets it come.
        if (moved <= 1e-15 || (moved >= last / 2 && size(gap) <= noise_)) {
            if (!within(s, a.from, a.width) || !within(t, b.from, b.width)) return false;
            // At a touch the gap is lost in rounding before the place is found.
            bool const touches = std::fabs(d) < 1e-6 * size(p.slope) * size(q.slope);
            contacts_.push_back({s, t, touches ? 0x1p-26 : 0});
            return true;
        }
        last = moved;
    }
    return false;
}

// Neighbouring touches are one. Crossings stay as they are.
void span_pair::merge_touches() {
    bool const overflow = steps_left_ < 0 || contacts_.size() >= most_contacts;
    std::stable_sort(contacts_.begin(), contacts_.end(),
                     [](contact const& a, contact const& b) { return a.s < b.s; });
    std::vector<contact> merged;
    for (std::size_t i = 0; i < contacts_.size();) {
        std::size_t last = i;
        double low = contacts_[i].s, high = low;
        while (contacts_[i].reach > 0 && last + 1 < contacts_.size() && contacts_[last + 1].reach > 0 &&
               std::fabs(contacts_[last + 1].s - contacts_[last].s) <=
                   8 * (contacts_[last].reach + contacts_[last + 1].reach)) {
            ++last;
            low = std::min(low, contacts_[last].s);
            high = std::max(high, contacts_[last].s);
        }
        contact c = contacts_[i];
        bool const touch = c.reach > 0;
        if (touch) {
            c.s = (low + high) / 2;
            c.t = (contacts_[i].t + contacts_[last].t) / 2;
            settle_touch(c);
        }
        if (!touch || (!overflow && high - low < stretch)) merged.push_back(c);
        i = last + 1;
    }
    contacts_.swap(merged);
}

// The ends of both spans where they are the same place, else where the tangents are parallel and the gap is
// across them; unchanged where that does not settle nearby.
void span_pair::settle_touch(contact& c) const {
    auto const gap_at = [&](double s, double t) { return evaluate(first_, s).at - evaluate(second_, t).at; };
    double const s_end = std::round(c.s), t_end = std::round(c.t);
    if (std::fabs(c.s - s_end) < 4 * most_touch && std::fabs(c.t - t_end) < 4 * most_touch &&
        size(gap_at(s_end, t_end)) <= noise_) {
        c = {s_end, t_end, c.reach};
        return;
    }
    double x = c.s, y = c.t;
    for (int step = 0; step < 8; ++step) {
        derivatives const p = evaluate(first_, x), q = evaluate(second_, y);
        xy const gap = p.at - q.at;
        double const f = dot(gap, p.slope), g = cross(p.slope, q.slope);
        double const fx = dot(p.slope, p.slope) + dot(gap, p.bend), fy = -dot(q.slope, p.slope);
        double const gx = cross(p.bend, q.slope), gy = cross(p.slope, q.bend), d = fx * gy - fy * gx;
        x -= (f * gy - g * fy) / d;
        y -= (g * fx - f * gx) / d;
        if (!(std::fabs(x - c.s) < 1e-3 && std::fabs(y - c.t) < 1e-3)) return;
    }
    if (within(x, 0, 1) && within(y, 0, 1) && size(gap_at(x, y)) <= 4 * noise_) c = {x, y, c.reach};
}

}  // namespace tvmath
