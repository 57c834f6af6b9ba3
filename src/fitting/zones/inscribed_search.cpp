#include "inscribed_search.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "inscribed_walk.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Distances of coordinates up to 1 are rounded by some 1e-16, a centre by a few more.
constexpr double rounding = 1e-14;
// Up to so many, all triangles are tried, which costs less than to divide the square again and again.
constexpr std::size_t few = 16;
// Looks at a point, some ten seconds of them: 1e6 points of a filled disc take a tenth of that, but between
// the turns of a spiral the circles are all nearly equal, and no square can be left out early.
constexpr double most_looks = 5e9;
constexpr std::size_t most_walked = 256;
// A right angle by rounding counts as one: on a grid the centre lies on the hypotenuse.
constexpr double least_cosine = -1e-13;

double cross(xy a, xy b) {
    return a.x * b.y - a.y * b.x;
}
double length(xy a) {
    return std::sqrt(dot(a, a));
}

using point_list = std::shared_ptr<std::vector<xy> const>;

struct square_of_centers {
    xy middle;
    double half = 0;
    double bound = infinity;
    point_list near;  // all points that a circle about a centre in the square can touch

    bool operator<(square_of_centers const& other) const { return bound < other.bound; }
    double half_diagonal() const { return half * 1.4142135623730952; }
};

// The cone of directions spanned so far, of less than half a turn, from `first` anticlockwise to `last`.
struct cone {
    xy first, last;
    bool is_pointed = true;

    void widen(xy v) {
        double const past_first = cross(first, v), past_last = cross(last, v);
        // A single direction has an opposite that passes the test of the sides.
        bool const between = past_first >= 0 && past_last <= 0;
        if (between && (cross(first, last) > 0 || dot(first, v) > 0)) return;
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
    explicit search(std::vector<xy> const& points) {
        heap_.push_back({{0, 0}, 1, infinity, std::make_shared<std::vector<xy> const>(points)});
        // A start only; along a ragged arc the walk drops point after point, each at the cost of a pass.
        if (points.size() > most_walked) return;
        contact_circle const walked = inscribed_walk(points);
        if (walked.contacts == 3) offer(walked, points);
    }

    contact_circle run() {
        for (double looks = 0; !heap_.empty();) {
            std::pop_heap(heap_.begin(), heap_.end());
            square_of_centers s = std::move(heap_.back());
            heap_.pop_back();
            if (s.bound <= best_.radius + rounding) break;  // and so is every other one's
            looks += static_cast<double>(s.near->size());
            if (looks > most_looks) return {};
            examine(s);
        }
        return best_;
    }

private:
    std::vector<square_of_centers> heap_;
    contact_circle best_;
    std::vector<double> squares_;

    // Takes the circle if it is the largest so far, encloses its centre and is empty.
    void offer(contact_circle const& c, std::vector<xy> const& near) {
        if (!(c.radius > best_.radius) || largest_angle(c.contact).cosine < least_cosine) return;
        double const least = std::fmax(0.0, c.radius - rounding);
        for (xy p : near) {
            if (dot(p - c.center, p - c.center) < least * least) return;
        }
        best_ = c;
    }

    void examine(square_of_centers const& s) {
        double const h = s.half_diagonal();
        std::vector<xy> const& candidates = *s.near;
        double least = infinity;
        squares_.resize(candidates.size());
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            squares_[i] = dot(candidates[i] - s.middle, candidates[i] - s.middle);
            least = std::min(least, squares_[i]);
        }
        least = std::sqrt(least);
        if (least + h <= best_.radius + rounding) return;
        double const most = sqr(least + 2 * h + rounding);
        auto const kept = std::make_shared<std::vector<xy>>();
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            if (squares_[i] <= most) kept->push_back(candidates[i]);
        }
        if (!may_enclose(s.middle, h, *kept)) return;
        if (kept->size() <= few) return try_all(s, *kept);
        if (h < rounding) return try_enclosing(s.middle, *kept);
        for (int k = 0; k < 4; ++k) {
            double const q = s.half / 2;
            xy const middle = s.middle + xy{k & 1 ? q : -q, k & 2 ? q : -q};
            heap_.push_back({middle, q, least + h, kept});
            std::push_heap(heap_.begin(), heap_.end());
        }
    }

    // False when some direction has every near point ahead of every centre within h of the middle.
    static bool may_enclose(xy middle, double h, std::vector<xy> const& near) {
        if (near.size() < 3) return false;
        cone directions{near[0] - middle, near[0] - middle};
        for (xy p : near) {
            directions.widen(p - middle);
            if (!directions.is_pointed) return true;
        }
        xy const a = directions.first, b = directions.last;
        xy ahead = 1 / length(a) * a + 1 / length(b) * b;
        ahead = 1 / length(ahead) * ahead;
        for (xy p : near) {
            if (!(dot(p - middle, ahead) > h + rounding)) return true;
        }
        return false;
    }

    void try_all(square_of_centers const& s, std::vector<xy> const& near) {
        for (std::size_t i = 2; i < near.size(); ++i) {
            for (std::size_t j = 1; j < i; ++j) {
                for (std::size_t k = 0; k < j; ++k) {
                    contact_circle const c = circle_through(near[i], near[j], near[k]);
                    xy const off = c.center - s.middle;
                    // The near points are all that count only about centres in the square.
                    if (std::fmax(std::fabs(off.x), std::fabs(off.y)) <= s.half + rounding) offer(c, near);
                }
            }
        }
    }

    // Many points at one distance, as of a perfect circle: of three that enclose the middle. The last one
    // before and the first one after the point opposite to one of them will do.
    void try_enclosing(xy middle, std::vector<xy> const& near) {
        std::size_t const starts = std::min<std::size_t>(near.size(), 16);
        for (std::size_t k = 0; k < starts; ++k) {
            xy const a = near[k] - middle;
            xy left = a, right = a;
            double left_cosine = 2, right_cosine = 2;
            for (xy p : near) {
                xy const v = p - middle;
                double const cosine = dot(a, v) / (length(a) * length(v));
                bool const is_left = cross(a, v) > 0;
                double& most = is_left ? left_cosine : right_cosine;
                if (!(cosine < most)) continue;
                most = cosine;
                (is_left ? left : right) = v;
            }
            contact_circle const c = circle_through(near[k], middle + left, middle + right);
            offer(c, near);
            if (best_.contacts == 3 && best_.radius >= c.radius) return;
        }
    }
};

}  // namespace

contact_circle inscribed_search(std::vector<xy> const& points) {
    return search(points).run();
}

}  // namespace tvmath
