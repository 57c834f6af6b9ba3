#include "planar_hull.h"

#include <algorithm>

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
        std::size_t const lower = move_outside_to_front(left, right, 0, n);
        std::size_t const upper = move_outside_to_front(right, left, lower, n);
        follow({left, right, 0, lower});
        follow({right, left, lower, upper});
        return corners_;
    }

private:
    bool is_outside(unsigned int p, unsigned int first, unsigned int last) const {
        return orientation_xy(points_[first], points_[last], points_[p]) < 0;
    }

    // Those of the list that lie outside of the edge are moved to its front; the end of that part.
    std::size_t move_outside_to_front(unsigned int first, unsigned int last, std::size_t begin,
                                      std::size_t end) {
        auto const from = outside_.begin() + static_cast<std::ptrdiff_t>(begin);
        auto const middle = std::partition(from, outside_.begin() + static_cast<std::ptrdiff_t>(end),
                                           [&](unsigned int p) { return is_outside(p, first, last); });
        return static_cast<std::size_t>(middle - outside_.begin());
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
            std::size_t const near = move_outside_to_front(c.first, corner, c.begin, c.end);
            std::size_t const far = move_outside_to_front(corner, c.last, near, c.end);
            open.push_back({corner, c.last, near, far});
            open.push_back({c.first, corner, c.begin, near});
        }
    }

    std::vector<xyz> const& points_;
    indices outside_, corners_;
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
