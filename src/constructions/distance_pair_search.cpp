#include "distance_pair_search.h"

#include <algorithm>
#include <queue>
#include <vector>

#include "geometry/closest_point.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

struct piece {
    double from, width;
    xyz start, end;

    double middle() const { return from + width / 2; }
};

struct piece_pair {
    double bound;  // no pair of places in it has a lower cost
    piece p, q;
    bool operator<(piece_pair const& other) const { return bound > other.bound; }  // the least is the top
};

std::vector<piece> first_pieces(searched_path const& path) {
    std::vector<piece> pieces;
    double const width = (path.high - path.low) / path.pieces;
    for (unsigned int i = 0; i < path.pieces; ++i) {
        double const from = path.low + i * width;
        pieces.push_back({from, width, path.position(from), path.position(from + width)});
    }
    return pieces;
}

// Newton's iteration on half of the squared distance, times the sign of the search, over both parameters,
// which stay in their ranges.
class newton_search {
public:
    newton_search(searched_path const& p, searched_path const& q, double sign) : p_(p), q_(q), sign_(sign) {}

    // Moves s and t downhill, to the local extreme as a rule. A step that does not improve is halved; the
    // iteration ends when 6 halvings do not help, or after 40 steps, with the best parameters so far.
    void refine(double& s, double& t) const {
        double cost = cost_at(s, t);
        for (int round = 0; round < 40; ++round) {
            double ds = 0, dt = 0;
            step_from(s, t, ds, dt);
            if (ds == 0 && dt == 0) return;
            bool improved = false;
            for (int halving = 0; halving < 7 && !improved; ++halving, ds /= 2, dt /= 2) {
                double const next_s = within(p_, s + ds), next_t = within(q_, t + dt);
                double const next = cost_at(next_s, next_t);
                improved = next < cost;
                // The last digits of the parameters do not show in the distance: one full step more.
                bool const is_last = halving == 0 && next <= cost + 8e-16 * std::fabs(cost) &&
                                     std::fabs(ds) < 1e-6 && std::fabs(dt) < 1e-6;
                if (!improved && !is_last) continue;
                s = next_s;
                t = next_t;
                cost = next;
                if (!improved) return;
            }
            if (!improved) return;
        }
    }

private:
    static double within(searched_path const& path, double t) {
        return path.is_closed ? t : std::clamp(t, path.low, path.high);
    }
    double cost_at(double s, double t) const {
        xyz const d = p_.position(s) - q_.position(t);
        return sign_ * dot(d, d) / 2;
    }
    // A parameter at the end of its range, with the cost falling outward, does not take part.
    static bool is_stuck(searched_path const& path, double t, double slope) {
        return !path.is_closed && ((t <= path.low && slope > 0) || (t >= path.high && slope < 0));
    }
    void step_from(double s, double t, double& ds, double& dt) const {
        auto const a = p_.at(s), b = q_.at(t);
        xyz const d = a.position - b.position;
        double const gs = sign_ * dot(d, a.slope), gt = -sign_ * dot(d, b.slope);
        bool const fixed_s = is_stuck(p_, s, gs), fixed_t = is_stuck(q_, t, gt);
        double const aa = dot(a.slope, a.slope), bb = dot(b.slope, b.slope);
        double const ss = sign_ * (aa + dot(d, a.bend)), tt = sign_ * (bb - dot(d, b.bend));
        double const st = -sign_ * dot(a.slope, b.slope);
        if (fixed_s && fixed_t) return;
        // Of one parameter, downhill in any case: where the second derivative is not above 0, a step by the
        // speed, which is the right one at a crossing.
        auto const alone = [](double g, double second, double speed) {
            double const by = second > 1e-12 * speed ? second : speed;
            return by > 0 ? -g / by : 0.0;
        };
        double const determinant = ss * tt - st * st;
        if (!fixed_s && !fixed_t && ss > 0 && tt > 0 && determinant > 1e-14 * ss * tt) {
            ds = -(gs * tt - gt * st) / determinant;
            dt = -(gt * ss - gs * st) / determinant;
            return;
        }
        // Not the neighbourhood of a regular extreme: downhill along each parameter, half as far where both
        // are free, so that both together do not go too far.
        double const part = fixed_s || fixed_t ? 1 : 0.5;
        if (!fixed_s) ds = part * alone(gs, ss, aa);
        if (!fixed_t) dt = part * alone(gt, tt, bb);
    }

    searched_path const &p_, &q_;
    double sign_;
};

class pair_search {
public:
    pair_search(searched_path const& p, searched_path const& q, bool nearest, place_pair& best)
        : p_(p), q_(q), nearest_(nearest), sign_(nearest ? 1 : -1), best_(best) {}

    void run() {
        auto const ps = first_pieces(p_), qs = first_pieces(q_);
        for (piece const& a : ps) {
            for (piece const& b : qs) push(a, b);
        }
        for (int step = 0; step < 3000 && !queue_.empty(); ++step) {
            piece_pair const top = queue_.top();
            queue_.pop();
            if (!can_improve(top.bound)) return;
            consider(top.p.middle(), top.q.middle());
            // The piece that strays farther from its chord.
            if (stray(p_, top.p) >= stray(q_, top.q)) {
                for (piece const& half : halves(p_, top.p)) push(half, top.q);
            } else {
                for (piece const& half : halves(q_, top.q)) push(top.p, half);
            }
        }
    }

private:
    double cost(double distance) const { return sign_ * distance; }
    bool can_improve(double bound) const {
        return !best_.found || bound < cost(best_.distance) - 1e-13 * (p_.size + q_.size);
    }
    static double stray(searched_path const& path, piece const& s) {
        return path.greatest_bend * s.width * s.width / 8;
    }
    static std::array<piece, 2> halves(searched_path const& path, piece const& s) {
        double const half = s.width / 2, middle = s.from + half;
        xyz const m = path.position(middle);
        return {{{s.from, half, s.start, m}, {middle, half, m, s.end}}};
    }
    void push(piece const& a, piece const& b) {
        double const away = stray(p_, a) + stray(q_, b);
        double bound = 0;
        if (nearest_) {
            bound = std::max(0.0, segment_distance(a.start, a.end, b.start, b.end) - away);
        } else {
            // A distance is a convex function: greatest at ends of the chords.
            double const far = std::max({length(a.start - b.start), length(a.start - b.end),
                                         length(a.end - b.start), length(a.end - b.end)});
            bound = -(far + away);
        }
        if (can_improve(bound)) queue_.push({bound, a, b});
    }
    void consider(double s, double t) {
        if (best_.found && !(cost(length(p_.position(s) - q_.position(t))) < cost(best_.distance))) return;
        newton_search(p_, q_, sign_).refine(s, t);
        xyz const a = p_.position(s), b = q_.position(t);
        double const distance = length(a - b);
        if (!best_.found || cost(distance) < cost(best_.distance)) best_ = {true, a, b, distance};
    }

    searched_path const &p_, &q_;
    bool nearest_;
    double sign_;
    place_pair& best_;
    std::priority_queue<piece_pair> queue_;
};

}  // namespace

// The least of the distances of the four ends from the other segment, and of the lines where their nearest
// places are inside both. Of nearly parallel segments the latter is lost in rounding, and the former then
// tell the distance.
double segment_distance(xyz const& a, xyz const& b, xyz const& c, xyz const& d) {
    xyz const u = b - a, v = d - c, w = a - c;
    double const uu = dot(u, u), uv = dot(u, v), vv = dot(v, v), uw = dot(u, w), vw = dot(v, w);
    auto const square = [](xyz const& x) { return dot(x, x); };
    auto const part = [](double x, double whole) {
        return whole > 0 ? std::clamp(x / whole, 0.0, 1.0) : 0.0;
    };
    double least = std::min({square(w - part(vw, vv) * v), square(w + u - part(vw + uv, vv) * v),
                             square(w + part(-uw, uu) * u), square(w - v + part(uv - uw, uu) * u)});
    if (double const determinant = uu * vv - uv * uv; determinant > 0) {
        double const s = (uv * vw - vv * uw) / determinant, t = (uu * vw - uv * uw) / determinant;
        if (s > 0 && s < 1 && t > 0 && t < 1) least = std::min(least, square(w + s * u - t * v));
    }
    return std::sqrt(least);
}

void search_pair(searched_path const& p, searched_path const& q, bool nearest, place_pair& best) {
    pair_search(p, q, nearest, best).run();
}

}  // namespace tvmath
