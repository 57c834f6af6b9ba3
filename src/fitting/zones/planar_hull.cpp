#include "planar_hull.h"

#include <algorithm>
#include <utility>

#include "orientation.h"

inline namespace tvmath {
namespace {

using indices = std::vector<unsigned int>;

bool comes_before(xyz const& a, xyz const& b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

// The part of the hull from corner `first` to corner `last`, both known, with the points outside of that edge
// at `begin` to `end` in the list.
struct open_chain {
    unsigned int first, last;
    std::size_t begin, end;
};

class hull_search {
public:
    explicit hull_search(std::vector<xyz> const& points) : points_(points) {}

    indices corners() {
        unsigned int const n = static_cast<unsigned int>(points_.size());
        unsigned int left = 0, right = 0;
        for (unsigned int i = 1; i < n; ++i) {
            if (comes_before(points_[i], points_[left])) left = i;
            if (comes_before(points_[right], points_[i])) right = i;
        }
        if (!comes_before(points_[left], points_[right])) return {left};
        outside_.resize(n);
        for (unsigned int i = 0; i < n; ++i) outside_[i] = i;
        auto const [lower, upper] = split({left, left, 0, n}, right);
        follow({left, right, 0, lower});
        follow({right, left, lower, upper});
        return corners_;
    }

private:
    bool is_outside(unsigned int p, unsigned int first, unsigned int last) const {
        return orientation_xy(points_[first], points_[last], points_[p]) < 0;
    }

    // Keeps of the chain's points those outside of the edge from its first corner to the new one, and behind
    // them those outside of the edge from there to its last; returns where each of these parts ends. All stay
    // in the order of the list, so that the memory is read forwards.
    std::pair<std::size_t, std::size_t> split(open_chain const& c, unsigned int corner) {
        std::size_t end = c.begin;
        far_.clear();
        for (std::size_t i = c.begin; i < c.end; ++i) {
            unsigned int const p = outside_[i];
            if (is_outside(p, c.first, corner)) {
                outside_[end++] = p;
            } else if (is_outside(p, corner, c.last)) {
                far_.push_back(p);
            }
        }
        std::copy(far_.begin(), far_.end(), outside_.begin() + static_cast<std::ptrdiff_t>(end));
        return {end, end + far_.size()};
    }

    // The point farthest from the edge; of several at one distance, which lie on a parallel to it, the one at
    // the end of their row, which alone is sure to be a corner.
    unsigned int farthest(open_chain const& c) const {
        xyz const &a = points_[c.first], &b = points_[c.last];
        bool const onwards = comes_before(a, b);
        unsigned int best = outside_[c.begin];
        for (std::size_t i = c.begin + 1; i < c.end; ++i) {
            unsigned int const p = outside_[i];
            int const turn = turn_xy(a, b, points_[best], points_[p]);
            if (turn < 0 || (turn == 0 && comes_before(points_[best], points_[p]) == onwards)) best = p;
        }
        return best;
    }

    // Splits the chain at its farthest point until nothing is outside; appends all corners but the last. An
    // own stack, because the depth is that of the list's worst case.
    void follow(open_chain const& whole) {
        std::vector<open_chain> open{whole};
        while (!open.empty()) {
            open_chain const c = open.back();
            open.pop_back();
            if (c.begin == c.end) {
                corners_.push_back(c.first);
                continue;
            }
            unsigned int const corner = farthest(c);
            auto const [near, far] = split(c, corner);
            open.push_back({corner, c.last, near, far});
            open.push_back({c.first, corner, c.begin, near});
        }
    }

    std::vector<xyz> const& points_;
    indices outside_, far_, corners_;
};

xyz centroid_of(std::vector<xyz> const& points) {
    xyz sum;
    for (xyz const& p : points) sum = sum + (p - points[0]);
    return points[0] + (1 / static_cast<double>(points.size())) * sum;
}

}  // namespace

std::vector<unsigned int> planar_hull(std::vector<xyz> const& points) {
    if (points.empty()) return {};
    indices corners = hull_search(points).corners();
    xyz const centroid = centroid_of(points);
    auto const angle = [&](unsigned int i) {
        return std::atan2(points[i].y - centroid.y, points[i].x - centroid.x);
    };
    std::rotate(corners.begin(),
                std::min_element(corners.begin(), corners.end(),
                                 [&](unsigned int a, unsigned int b) { return angle(a) < angle(b); }),
                corners.end());
    return corners;
}

}  // namespace tvmath
