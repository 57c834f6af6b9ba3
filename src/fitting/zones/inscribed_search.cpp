#include "inscribed_search.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "inscribed_walk.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Distances of coordinates up to 1 are rounded by some 1e-16, a centre by a few more.
constexpr double rounding = 1e-14;
// Below, all triangles are tried; 56 of 8 points cost less than to divide the square.
constexpr std::size_t few = 8;
constexpr std::size_t most_walked = 256;
// A right angle by rounding counts as one: on a grid the centre lies on the hypotenuse.
constexpr double least_cosine = -1e-13;

double cross(xy a, xy b) {
    return a.x * b.y - a.y * b.x;
}
double length(xy a) {
    return std::sqrt(dot(a, a));
}

using index_list = std::vector<std::uint32_t>;

struct square_of_centers {
    xy middle;
    double half = 0;
    double bound = infinity;
    index_list near;  // all points that a circle about a centre in the square can touch

    bool operator<(square_of_centers const& other) const { return bound < other.bound; }
    double half_diagonal() const { return half * 1.4142135623730952; }
};

// The cone of directions spanned so far, of less than half a turn, from `first` anticlockwise to `last`.
struct cone {
    xy first, last;
    bool is_pointed = true;

    void widen(xy v) {
        double const past_first = cross(first, v), past_last = cross(last, v);
        if (past_first >= 0 && past_last <= 0 && dot(v, first + last) > 0) return;
        if (past_first > 0 && past_last > 0) {
            last = v;
        } else if (past_first < 0 && past_last < 0) {
            first = v;
        } else {
            is_pointed = false;
        }
    }
};

class search {
public:
    explicit search(std::vector<xy> const& points) : points_(points) {
        // A start only; along a ragged arc the walk drops point after point, each at the cost of a pass.
        if (points.size() > most_walked) return;
        contact_circle const walked = inscribed_walk(points);
        if (walked.contacts == 3) offer(walked, points_.size(), [](std::size_t i) { return i; });
    }

    contact_circle run() {
        square_of_centers whole{{0, 0}, 1, infinity, index_list(points_.size())};
        for (std::size_t i = 0; i < points_.size(); ++i) whole.near[i] = static_cast<std::uint32_t>(i);
        heap_.push_back(std::move(whole));
        while (!heap_.empty()) {
            std::pop_heap(heap_.begin(), heap_.end());
            square_of_centers s = std::move(heap_.back());
            heap_.pop_back();
            if (s.bound <= best_.radius + rounding) break;  // and so is every other one's
            examine(s);
        }
        return best_;
    }

private:
    std::vector<xy> const& points_;
    std::vector<square_of_centers> heap_;
    contact_circle best_;
    std::vector<double> distance_;

    // Takes the circle if it is the largest so far, encloses its centre and is empty.
    template <class indexing>
    void offer(contact_circle const& c, std::size_t n, indexing const& index) {
        if (!(c.radius > best_.radius) || largest_angle(c.contact).cosine < least_cosine) return;
        double const least = std::fmax(0.0, c.radius - rounding);
        for (std::size_t i = 0; i < n; ++i) {
            xy const d = points_[index(i)] - c.center;
            if (dot(d, d) < least * least) return;
        }
        best_ = c;
    }
    void offer(contact_circle const& c, index_list const& near) {
        offer(c, near.size(), [&near](std::size_t i) { return near[i]; });
    }

    void examine(square_of_centers& s) {
        double const h = s.half_diagonal();
        double least = infinity;
        distance_.resize(s.near.size());
        for (std::size_t i = 0; i < s.near.size(); ++i) {
            distance_[i] = length(points_[s.near[i]] - s.middle);
            least = std::min(least, distance_[i]);
        }
        if (least + h <= best_.radius + rounding) return;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < s.near.size(); ++i) {
            if (distance_[i] <= least + 2 * h + rounding) s.near[kept++] = s.near[i];
        }
        s.near.resize(kept);
        if (!may_enclose(s, h)) return;
        if (kept <= few) return try_all(s);
        if (h < rounding) return try_enclosing(s);
        for (int k = 0; k < 4; ++k) {
            double const q = s.half / 2;
            xy const middle = s.middle + xy{k & 1 ? q : -q, k & 2 ? q : -q};
            heap_.push_back({middle, q, least + h, s.near});
            std::push_heap(heap_.begin(), heap_.end());
        }
    }

    // False when some direction has every near point ahead of every centre in the square.
    bool may_enclose(square_of_centers const& s, double h) const {
        if (s.near.size() < 3) return false;
        xy const start = points_[s.near[0]] - s.middle;
        cone directions{start, start};
        for (std::uint32_t i : s.near) {
            directions.widen(points_[i] - s.middle);
            if (!directions.is_pointed) return true;
        }
        xy const a = directions.first, b = directions.last;
        xy ahead = 1 / length(a) * a + 1 / length(b) * b;
        ahead = 1 / length(ahead) * ahead;
        for (std::uint32_t i : s.near) {
            if (!(dot(points_[i] - s.middle, ahead) > h + rounding)) return true;
        }
        return false;
    }

    void try_all(square_of_centers const& s) {
        for (std::size_t i = 2; i < s.near.size(); ++i) {
            for (std::size_t j = 1; j < i; ++j) {
                for (std::size_t k = 0; k < j; ++k) {
                    contact_circle const c =
                        circle_through(points_[s.near[i]], points_[s.near[j]], points_[s.near[k]]);
                    xy const off = c.center - s.middle;
                    // The near points are all that count only about centres in the square.
                    if (std::fmax(std::fabs(off.x), std::fabs(off.y)) <= s.half + rounding) offer(c, s.near);
                }
            }
        }
    }

    // Many points at one distance, as of a perfect circle: of three that enclose the middle. The last one
    // before and the first one after the point opposite to one of them will do.
    void try_enclosing(square_of_centers const& s) {
        std::size_t const starts = std::min<std::size_t>(s.near.size(), 16);
        for (std::size_t k = 0; k < starts; ++k) {
            std::uint32_t const first = s.near[k];
            xy const a = points_[first] - s.middle;
            xy left = a, right = a;
            double left_cosine = 2, right_cosine = 2;
            for (std::uint32_t i : s.near) {
                xy const v = points_[i] - s.middle;
                double const cosine = dot(a, v) / (length(a) * length(v));
                bool const is_left = cross(a, v) > 0;
                double& most = is_left ? left_cosine : right_cosine;
                if (!(cosine < most)) continue;
                most = cosine;
                (is_left ? left : right) = v;
            }
            contact_circle const c = circle_through(points_[first], s.middle + left, s.middle + right);
            offer(c, s.near);
            if (best_.contacts == 3 && best_.radius >= c.radius) return;
        }
    }
};

}  // namespace

contact_circle inscribed_search(std::vector<xy> const& points) {
    return search(points).run();
}

}  // namespace tvmath
