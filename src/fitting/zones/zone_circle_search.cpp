#include "zone_circle_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The powers of points with coordinates up to 1 about the centres in question are rounded by some 1e-16.
constexpr double rounding = 4e-15;
constexpr int most_cuts = 24;

// Shares of the three corners of a triangle, and linear functions by their values there.
using corners = std::array<double, 3>;

double at(corners const& f, corners const& share) {
    return f[0] * share[0] + f[1] * share[1] + f[2] * share[2];
}

zone_center between(std::array<zone_center, 3> const& y, corners const& share) {
    zone_center c{0, 0, 0};
    for (std::size_t i = 0; i < 3; ++i) {
        c.u += share[i] * y[i].u;
        c.v += share[i] * y[i].v;
        c.t += share[i] * y[i].t;
    }
    return c;
}

using index_list = std::vector<std::uint32_t>;

struct triangle {
    std::array<zone_center, 3> corner;
    corners farthest{};          // B at the corners
    double bound = -infinity;    // F is nowhere below
    index_list outside, inside;  // what can be farthest, and nearest, about a centre in it

    bool operator<(triangle const& other) const { return bound > other.bound; }
};

// A short list that allocates nothing.
template <std::size_t capacity>
struct corner_list {
    std::array<corners, capacity> items;
    std::size_t size = 0;

    void add(corners const& c) { items[size++] = c; }
    corners const* begin() const { return items.data(); }
    corners const* end() const { return items.data() + size; }
};

// The minimum over a triangle of the greatest of some linear functions, which come one by one.
class linear_program {
public:
    double value = -infinity;
    corners minimum = {1.0 / 3, 1.0 / 3, 1.0 / 3};

    /// Adds a function that is above `value` at the present minimum: the new one is then where this function
    /// is the greatest. False when rounding leaves no place for that.
    bool add(corners const& f) {
        polygon_.size = 0;
        polygon_.add({1, 0, 0});
        polygon_.add({0, 1, 0});
        polygon_.add({0, 0, 1});
        for (corners const& other : functions_) {
            clip({f[0] - other[0], f[1] - other[1], f[2] - other[2]});
        }
        functions_.add(f);
        if (polygon_.size == 0) return false;
        double least = infinity;
        for (corners const& share : polygon_) {
            double const v = at(f, share);
            if (!(v < least)) continue;
            least = v;
            minimum = share;
        }
        value = std::max(value, least);
        return true;
    }

private:
    corner_list<most_cuts> functions_;
    corner_list<2 * most_cuts + 4> polygon_, clipped_;  // rounding may bend a polygon more than once

    // Keeps the part of the polygon where g is at or above 0.
    void clip(corners const& g) {
        clipped_.size = 0;
        for (std::size_t i = 0; i < polygon_.size; ++i) {
            corners const &p = polygon_.items[i], &q = polygon_.items[(i + 1) % polygon_.size];
            double const gp = at(g, p), gq = at(g, q);
            if (clipped_.size + 2 > clipped_.items.size()) break;
            if (gp >= 0) clipped_.add(p);
            if ((gp >= 0) == (gq >= 0)) continue;
            double const s = gp / (gp - gq);
            clipped_.add({p[0] + s * (q[0] - p[0]), p[1] + s * (q[1] - p[1]), p[2] + s * (q[2] - p[2])});
        }
        std::swap(polygon_, clipped_);
    }
};

class search {
public:
    search(std::vector<xy> const& points, zone_center const& start)
        : points_(points), best_(ring_about(start, points)) {}

    bool run(int& budget, zone_ring& ring) {
        cover_plane();
        while (!heap_.empty() && budget > 0) {
            std::pop_heap(heap_.begin(), heap_.end());
            triangle const t = std::move(heap_.back());
            heap_.pop_back();
            divide(t);
            --budget;
        }
        --budget;  // a call that divides nothing counts too
        ring = best_;
        return heap_.empty();
    }

private:
    std::vector<xy> const& points_;
    std::vector<triangle> heap_;
    zone_ring best_;

    // Centres up to 2 each way, and (+-2, s) / t and (s, +-2) / t for t from 1 to 0.
    void cover_plane() {
        constexpr double side = 2;
        auto const add_pair = [this](zone_center a, zone_center b, zone_center c, zone_center d) {
            index_list all(points_.size());
            for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint32_t>(i);
            examine({{a, b, c}, {}, -infinity, all, all});
            examine({{a, c, d}, {}, -infinity, all, all});
        };
        add_pair({-side, -side, 1}, {side, -side, 1}, {side, side, 1}, {-side, side, 1});
        for (double s : {-side, side}) {
            add_pair({s, -side, 1}, {s, side, 1}, {s, side, 0}, {s, -side, 0});
            add_pair({-side, s, 1}, {side, s, 1}, {side, s, 0}, {-side, s, 0});
        }
    }

    void divide(triangle const& t) {
        std::size_t longest = 0;
        double most = -1;
        for (std::size_t i = 0; i < 3; ++i) {
            zone_center const &a = t.corner[i], &b = t.corner[(i + 1) % 3];
            double const square = sqr(a.u - b.u) + sqr(a.v - b.v) + sqr(a.t - b.t);
            if (square <= most) continue;
            most = square;
            longest = i;
        }
        corners half{};
        half[longest] = half[(longest + 1) % 3] = 0.5;
        zone_center const middle = between(t.corner, half);
        for (std::size_t i : {longest, (longest + 1) % 3}) {
            triangle part = t;
            part.corner[i] = middle;
            examine(std::move(part));
        }
    }

    // Drops the triangle or keeps it for division.
    void examine(triangle t) {
        for (std::size_t i = 0; i < 3; ++i) {
            double most = -infinity;
            for (std::uint32_t p : t.outside) most = std::max(most, power_about(t.corner[i], points_[p]));
            t.farthest[i] = reach(t.corner[i], most);
        }
        linear_program program;
        for (int k = 0; k < most_cuts; ++k) {
            zone_center const y = between(t.corner, program.minimum);
            extreme const far = extreme_of(t.outside, y, 1), near = extreme_of(t.inside, y, -1);
            offer(y, {near.power, far.power});
            corners cut{};
            for (std::size_t i = 0; i < 3; ++i) {
                zone_center const& c = t.corner[i];
                cut[i] = power_about(c, points_[far.index]) - power_about(c, points_[near.index]) -
                         2 * best_.width * t.farthest[i] + sqr(best_.width) * c.t;
            }
            double const slack = rounding * std::max({t.farthest[0], t.farthest[1], t.farthest[2]});
            double const above = at(cut, program.minimum) - program.value;
            if (k == 0) prune(t, far.index, near.index);
            if (above <= 0.25 * slack || !program.add(cut)) break;
            if (program.value >= -slack) return;
        }
        t.bound = std::max(t.bound, program.value);
        heap_.push_back(std::move(t));
        std::push_heap(heap_.begin(), heap_.end());
    }

    struct extreme {
        std::uint32_t index = 0;
        double power = 0;
    };

    extreme extreme_of(index_list const& list, zone_center const& y, double sign) const {
        extreme found;
        double most = -infinity;
        for (std::uint32_t p : list) {
            double const a = sign * power_about(y, points_[p]);
            if (!(a > most)) continue;
            most = a;
            found = {p, sign * a};
        }
        return found;
    }

    // A ring about a point at infinity is taken as a bound only: a minimum that exists is preferred.
    void offer(zone_center const& y, power_range const& range) {
        double const width = range.ring_width(y);
        if (width < best_.width) best_ = {y, width};
    }

    // What is nowhere in the triangle farther than `far`, or nearer than `near`, is of no interest there:
    // powers are linear, so the corners tell.
    void prune(triangle& t, std::uint32_t far, std::uint32_t near) const {
        auto const drop = [&](index_list& list, std::uint32_t against, double sign) {
            corners limit{};
            for (std::size_t i = 0; i < 3; ++i) limit[i] = sign * power_about(t.corner[i], points_[against]);
            std::erase_if(list, [&](std::uint32_t p) {
                for (std::size_t i = 0; i < 3; ++i) {
                    if (sign * power_about(t.corner[i], points_[p]) >= limit[i]) return false;
                }
                return true;
            });
        };
        drop(t.outside, far, 1);
        drop(t.inside, near, -1);
    }
};

}  // namespace

zone_ring ring_about(zone_center const& c, std::vector<xy> const& points) {
    power_range range;
    for (xy p : points) range.widen(power_about(c, p));
    return {c, range.ring_width(c)};
}

bool narrowest_ring(std::vector<xy> const& points, zone_center const& start, int& budget, zone_ring& ring) {
    return search(points, start).run(budget, ring);
}

}  // namespace tvmath
