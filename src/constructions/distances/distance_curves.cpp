#include <algorithm>
#include <cmath>
#include <queue>
#include <vector>

#include "distance_pair_search.h"
#include "nearest_spans.h"
#include "tvmath/distance.h"

inline namespace tvmath {
namespace {

class searched_span : public searched_path {
public:
    searched_span(cubic_span const& s, xyz const& origin) : searched_path(0, 1, false, 1) {
        for (unsigned int k = 0; k < 4; ++k) {
            span_.control[k] = s.control[k] - origin;
            size = std::max(size, length(span_.control[k] - span_.control[0]));
        }
        auto const& c = span_.control;
        first_bend_ = 6.0 * ((c[2] - c[1]) - (c[1] - c[0]));
        last_bend_ = 6.0 * ((c[3] - c[2]) - (c[2] - c[1]));
        greatest_bend = std::max(length(first_bend_), length(last_bend_));
    }
    place at(double t) const override {
        auto const& c = span_.control;
        double const u = 1 - t;
        xyz const slope = 3.0 * (u * u * (c[1] - c[0]) + 2 * u * t * (c[2] - c[1]) + t * t * (c[3] - c[2]));
        return {span_.at(t), slope, u * first_bend_ + t * last_bend_};
    }
    xyz position(double t) const override { return span_.at(t); }

private:
    cubic_span span_;
    xyz first_bend_, last_bend_;
};

// A binary tree of boxes over the spans of a path in order: neighbours along the path are near each other.
class box_tree {
public:
    struct node {
        xyz low, high;
        std::size_t first, count, left, right;  // children only when count is above 1
        bool is_leaf() const { return count == 1; }
        double diagonal() const { return length(high - low); }
    };

    explicit box_tree(std::vector<cubic_span> const& spans) {
        nodes_.reserve(2 * spans.size());
        build(spans, 0, spans.size());
    }
    node const& operator[](std::size_t i) const { return nodes_[i]; }

private:
    std::size_t build(std::vector<cubic_span> const& spans, std::size_t first, std::size_t count) {
        std::size_t const at = nodes_.size();
        nodes_.push_back({spans[first].control[0], spans[first].control[0], first, count, 0, 0});
        if (count == 1) {
            for (xyz const& c : spans[first].control) widen(nodes_[at], c, c);
            return at;
        }
        std::size_t const left = build(spans, first, count / 2);
        std::size_t const right = build(spans, first + count / 2, count - count / 2);
        nodes_[at].left = left;
        nodes_[at].right = right;
        for (std::size_t const child : {left, right})
            widen(nodes_[at], nodes_[child].low, nodes_[child].high);
        return at;
    }
    static void widen(node& n, xyz const& low, xyz const& high) {
        n.low = {std::min(n.low.x, low.x), std::min(n.low.y, low.y), std::min(n.low.z, low.z)};
        n.high = {std::max(n.high.x, high.x), std::max(n.high.y, high.y), std::max(n.high.z, high.z)};
    }

    std::vector<node> nodes_;
};

double box_distance(box_tree::node const& a, box_tree::node const& b) {
    auto const gap = [](double low1, double high1, double low2, double high2) {
        return std::max({0.0, low1 - high2, low2 - high1});
    };
    return length({gap(a.low.x, a.high.x, b.low.x, b.high.x), gap(a.low.y, a.high.y, b.low.y, b.high.y),
                   gap(a.low.z, a.high.z, b.low.z, b.high.z)});
}

struct node_pair {
    double bound;
    std::size_t a, b;
    // The top of the queue is the pair with the least bound, and of equals the one farther down in the trees,
    // so that crossing paths soon come to spans.
    bool operator<(node_pair const& other) const {
        return bound > other.bound || (bound == other.bound && a + b < other.a + other.b);
    }
};

place_pair nearest_places(std::vector<cubic_span> const& as, std::vector<cubic_span> const& bs,
                          xyz const& origin) {
    box_tree const a(as), b(bs);
    int long_searches_left = 10;  // of all pairs together, for paths at a constant distance
    double const rounding = 1e-15 * (a[0].diagonal() + b[0].diagonal());
    place_pair best;
    std::priority_queue<node_pair> queue;
    auto const push = [&](std::size_t i, std::size_t j) {
        double const bound = box_distance(a[i], b[j]);
        if (!best.found || bound < best.distance - rounding) queue.push({bound, i, j});
    };
    push(0, 0);
    while (!queue.empty()) {
        node_pair const top = queue.top();
        queue.pop();
        if (best.found && !(top.bound < best.distance - rounding)) break;
        box_tree::node const &p = a[top.a], &q = b[top.b];
        if (p.is_leaf() && q.is_leaf()) {
            search_pair(searched_span(as[p.first], origin), searched_span(bs[q.first], origin), true, best,
                        long_searches_left);
        } else if (q.is_leaf() || (!p.is_leaf() && p.diagonal() >= q.diagonal())) {
            push(p.left, top.b);
            push(p.right, top.b);
        } else {
            push(top.a, q.left);
            push(top.a, q.right);
        }
    }
    return best;
}

// Any order of the paths that depends on them alone, so that exchanged arguments give the same places.
bool comes_first(curve const& a, curve const& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](point const& p, point const& q) {
                                            xyz const u(p), v(q);
                                            if (u.x != v.x) return u.x < v.x;
                                            return u.y != v.y ? u.y < v.y : u.z < v.z;
                                        });
}

}  // namespace

line distance_near(curve a, curve b) {
    bool const is_turned = comes_first(b, a);
    if (is_turned) curve::swap(a, b);
    span_list const p(a), q(b);
    if (p.is_empty() || q.is_empty()) return line();
    // Relative to a point of one path: small paths far from the origin keep their digits.
    xyz const origin = p.spans().front().control[0];
    place_pair const best = nearest_places(p.spans(), q.spans(), origin);
    if (!best.found) return line();
    point const from = (origin + best.a).location(p.is_3d()), to = (origin + best.b).location(q.is_3d());
    return is_turned ? distance_fit(to, from) : distance_fit(from, to);
}

}  // namespace tvmath
