#include "outline.h"

#include <algorithm>
#include <cmath>
#include <limits>

inline namespace tvmath {
namespace {

double length(spot a) {
    return std::hypot(a.x, a.y);
}

double dot(spot a, spot b) {
    return a.x * b.x + a.y * b.y;
}

double cross(spot a, spot b) {
    return a.x * b.y - a.y * b.x;
}

spot unit(spot a) {
    double const l = length(a);
    return l > 0 ? (1 / l) * a : spot{};
}

bool turns_left(std::vector<spot> const& p) {
    double area = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        area += cross(p[i] - p[0], p[(i + 1) % p.size()] - p[0]);
    }
    return area > 0;
}

}  // namespace

outline make_outline(std::vector<spot> const& places, bool closed) {
    outline made;
    made.closed = closed;
    // Places as near as rounding brings them would give an edge of any direction.
    double size = 0;
    for (spot const& p : places)
        size = std::max({size, std::fabs(p.x - places[0].x), std::fabs(p.y - places[0].y)});
    auto const differ = [size](spot a, spot b) { return length(a - b) > 1e-9 * size; };
    for (spot const& p : places) {
        if (made.at.empty() || differ(p, made.at.back())) made.at.push_back(p);
    }
    while (closed && made.at.size() > 1 && !differ(made.at.front(), made.at.back())) made.at.pop_back();
    std::size_t const n = made.at.size();
    if (n < 2) {
        made.out.assign(n, {0, 1});
        return made;
    }
    // Left of a line; outside, hence right, of an anticlockwise outline.
    double const side = closed && turns_left(made.at) ? -1 : 1;
    auto const across = [&](std::size_t from) {
        spot const d = unit(made.at[(from + 1) % n] - made.at[from]);
        return spot{-side * d.y, side * d.x};
    };
    for (std::size_t i = 0; i < n; ++i) {
        bool const first = !closed && i == 0, last = !closed && i + 1 == n;
        spot const before = across(first ? 0 : (i + n - 1) % n), after = last ? before : across(i);
        spot const both = unit(before + after);
        made.out.push_back(std::min(4.0, 1 / std::max(dot(both, after), 0.25)) * both);
    }
    return made;
}

outline make_outline(curve const& path, bool closed, point const& origin) {
    std::vector<spot> places;
    for (point const& p : path) places.push_back({p.x() - origin.x(), p.y() - origin.y()});
    return make_outline(places, closed);
}

outline_finder::outline_finder(std::vector<outline> const& outlines) : outlines_(outlines) {
    spot low = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    spot high = -1.0 * low;
    double length = 0;
    for (std::size_t w = 0; w < outlines.size(); ++w) {
        std::vector<spot> const& at = outlines[w].at;
        std::vector<double>& along = along_.emplace_back();
        for (std::size_t i = 0; i < at.size(); ++i) {
            low = {std::min(low.x, at[i].x), std::min(low.y, at[i].y)};
            high = {std::max(high.x, at[i].x), std::max(high.y, at[i].y)};
            along.push_back(length);
            if (i + 1 == at.size() && !outlines[w].closed) break;
            double const edge = tvmath::length(at[(i + 1) % at.size()] - at[i]);
            longest_edge_ = std::max(longest_edge_, edge);
            length += edge;
        }
    }
    by_x_ = high.x - low.x >= high.y - low.y;
    for (std::size_t w = 0; w < outlines.size(); ++w) {
        for (std::size_t i = 0; i < outlines[w].at.size(); ++i) {
            spot const& p = outlines[w].at[i];
            sorted_.push_back({by_x_ ? p.x : p.y, w, i});
        }
    }
    std::sort(sorted_.begin(), sorted_.end(), [](vertex const& a, vertex const& b) { return a.key < b.key; });
}

void outline_finder::try_edge(std::size_t which, std::size_t index, spot p, outline_foot& best,
                              double& best_square) const {
    outline const& o = outlines_[which];
    std::size_t const n = o.at.size(), next = (index + 1) % n;
    if (next == 0 && !o.closed && n > 1) return;
    spot const d = o.at[next] - o.at[index];
    double const square = dot(d, d);
    double const t = square > 0 ? std::clamp(dot(p - o.at[index], d) / square, 0.0, 1.0) : 0.0;
    spot const foot = o.at[index] + t * d, away = p - foot;
    if (!(dot(away, away) < best_square)) return;
    best_square = dot(away, away);
    double const distance = tvmath::length(away);
    // Across the edge; about a corner from the corner, unless that is too near to tell a direction.
    spot const way = o.out[t < 0.5 ? index : next];
    bool const at_corner = t == 0.0 || t == 1.0;
    spot out = !at_corner ? unit({-d.y, d.x}) : distance > 1e-9 * longest_edge_ ? unit(away) : unit(way);
    if (dot(out, way) < 0) out = -1.0 * out;
    best = {foot,  out,   along_[which][index] + t * tvmath::length(d),
            which, index, dot(away, way) < 0 ? -distance : distance};
}

outline_foot outline_finder::nearest(spot p) const {
    outline_foot best;
    double square = std::numeric_limits<double>::infinity();
    double const key = by_x_ ? p.x : p.y;
    auto const start = std::lower_bound(sorted_.begin(), sorted_.end(), key,
                                        [](vertex const& v, double k) { return v.key < k; });
    // An edge reaches no farther than the longest one from its first vertex.
    auto const is_far = [&](vertex const& v) {
        double const gap = std::fabs(v.key - key) - longest_edge_;
        return gap > 0 && gap * gap > square;
    };
    for (auto up = start, down = start; up != sorted_.end() || down != sorted_.begin();) {
        if (up != sorted_.end()) {
            if (is_far(*up)) {
                up = sorted_.end();
            } else {
                try_edge(up->which, up->index, p, best, square);
                ++up;
            }
        }
        if (down != sorted_.begin()) {
            if (is_far(*(down - 1))) {
                down = sorted_.begin();
            } else {
                --down;
                try_edge(down->which, down->index, p, best, square);
            }
        }
    }
    return best;
}

}  // namespace tvmath
