#include "distance_pair_search.h"

#include <algorithm>
#include <array>
#include <queue>
#include <vector>

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

class pair_search {
public:
    pair_search(searched_path const& p, searched_path const& q, bool nearest, place_pair& best)
        : p_(p), q_(q), nearest_(nearest), sign_(nearest ? 1 : -1), best_(best) {}

    void run(int& long_searches_left) {
        auto const ps = first_pieces(p_), qs = first_pieces(q_);
        for (piece const& a : ps) {
            for (piece const& b : qs) push(a, b);
        }
        for (int step = 0; !queue_.empty() && can_improve(queue_.top().bound); ++step) {
            if (step == (long_searches_left > 0 ? step_limit : short_limit)) {
                if (long_searches_left > 0) search_grid();
                --long_searches_left;
                return;
            }
            piece_pair const top = queue_.top();
            queue_.pop();
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
    static constexpr int step_limit = 2000, short_limit = 300, grid_size = 48;

    // The last resort: the local extremes nearby all places of a grid that are better than their neighbours.
    void search_grid() {
        std::vector<xyz> on_p, on_q;
        auto const parameter = [](searched_path const& path, int i) {
            return path.low + i * (path.high - path.low) / grid_size;
        };
        for (int i = 0; i <= grid_size; ++i) {
            on_p.push_back(p_.position(parameter(p_, i)));
            on_q.push_back(q_.position(parameter(q_, i)));
        }
        auto const cost_at = [&](int i, int j) {
            xyz const d = on_p[static_cast<std::size_t>(i)] - on_q[static_cast<std::size_t>(j)];
            return sign_ * dot(d, d);
        };
        for (int i = 0; i <= grid_size; ++i) {
            for (int j = 0; j <= grid_size; ++j) {
                double const here = cost_at(i, j);
                bool const is_least = (i == 0 || cost_at(i - 1, j) >= here) &&
                                      (j == 0 || cost_at(i, j - 1) >= here) &&
                                      (i == grid_size || cost_at(i + 1, j) >= here) &&
                                      (j == grid_size || cost_at(i, j + 1) >= here);
                if (is_least) refine_from(parameter(p_, i), parameter(q_, j));
            }
        }
    }
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
        refine_from(s, t);
    }
    void refine_from(double s, double t) {
        refine_pair(p_, q_, sign_, s, t);
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

void search_pair(searched_path const& p, searched_path const& q, bool nearest, place_pair& best,
                 int& long_searches_left) {
    pair_search(p, q, nearest, best).run(long_searches_left);
}

}  // namespace tvmath
