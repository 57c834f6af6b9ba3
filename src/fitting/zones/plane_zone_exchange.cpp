#include "plane_zone_exchange.h"

#include <algorithm>

#include "orientation.h"

inline namespace tvmath {
namespace {

// The exchange. The slab with unit normal n touches the upper points U and the lower points L; its width is
//
//     w(n) = (u - l) . n     for every u of U and l of L.
//
// Tilt n towards a unit direction g at a right angle to it: n(t) = n cos t + g sin t. A pair of contacts
// changes the width at the rate (u - l) . g, and the width, which is the largest over all pairs of points,
// changes at the largest of these rates. It falls when (u - l) . g < 0 for all pairs: when g leads away from
// all the points
//
//     x = (u - l) - ((u - l) . n) n,      u of U, l of L,
//
// of the plane across n. The steepest g leads away from the point x* of their convex hull that is nearest to
// the origin, g = -x* / |x*|, and no tilt makes the slab narrower when that is the origin itself: when the
// triangles, edges and points of the contacts overlap as seen along n. Pairs for which x . g = -|x*| stay in
// contact; the others draw back. So the cases of one contact against one, one against two, one against three,
// and two against two are all one: of one against one, x* is their difference; of one against two, n turns
// about the edge of the two unless one of them is nearer; of one against three, and of two against two, one
// contact at least is given up.
//
// The tilt ends where the slab touches a new point r, which becomes a contact of its side:
//
//     (r - u) . n(t) = 0    at    tan t = ((u - r) . n) / ((r - u) . g),     for (r - u) . g > 0
//
// and below likewise with both signs turned. Every tilt lowers the width; a tilt by an angle of 0 only brings
// in a contact, and there is a limit to the steps should rounding let these turn in a circle.
constexpr int step_limit = 200;

struct planar {
    double x, y;
};
double dot(planar a, planar b) {
    return a.x * b.x + a.y * b.y;
}
double cross(planar a, planar b) {
    return a.x * b.y - a.y * b.x;
}

// The points of one side that the slab touches, at most three.
struct contacts {
    unsigned int at[3];
    int count = 0;
    void add(unsigned int i) {
        if (count < 3 && std::find(at, at + count, i) == at + count) at[count++] = i;
    }
};

struct pair_of_contacts {
    unsigned int upper, lower;
    planar x;
};

class exchange {
public:
    exchange(xyz const& normal, std::vector<xyz> const& points) : points_(points), normal_(normal) {
        slab const start = slab_along(normal, points);
        upper_.add(start.upper);
        lower_.add(start.lower);
    }

    xyz settled_normal() {
        for (int step = 0; step < step_limit && tilt(); ++step) {}
        if (upper_.count + lower_.count < 4) return normal_;
        // The normal once more from the contacts, without the rounding of all the tilts.
        contacts const& more = upper_.count >= lower_.count ? upper_ : lower_;
        contacts const& less = upper_.count >= lower_.count ? lower_ : upper_;
        auto const& second = more.count == 3 ? more : less;
        xyz const exact = unit(exact_cross(points_[more.at[0]], points_[more.at[1]], points_[second.at[0]],
                                           points_[second.at[second.count - 1]]));
        if (!(dot(exact, exact) > 0)) return normal_;  // of two parallel edges
        return dot(exact, normal_) < 0 ? -1.0 * exact : exact;
    }

private:
    // The nearest point to the origin of the convex hull of the pairs' points: the origin itself when it is
    // inside, otherwise on one of them or between two. `kept` are the pairs it lies on.
    planar nearest(std::vector<pair_of_contacts> const& pairs, std::vector<pair_of_contacts>& kept) const {
        planar best = pairs[0].x;
        kept.assign(1, pairs[0]);
        for (auto const& p : pairs) {
            if (dot(p.x, p.x) >= dot(best, best)) continue;
            best = p.x;
            kept.assign(1, p);
        }
        for (auto const& p : pairs) {
            for (auto const& q : pairs) {
                planar const e{q.x.x - p.x.x, q.x.y - p.x.y};
                double const s = -dot(p.x, e), ee = dot(e, e);
                if (!(s > 0 && s < ee)) continue;
                double const height = cross(p.x, e) / ee;  // along e turned by a quarter
                planar const foot{height * e.y, -height * e.x};
                if (dot(foot, foot) >= dot(best, best)) continue;
                best = foot;
                kept.assign({p, q});
            }
        }
        return surrounds_origin(pairs) ? planar{0, 0} : best;
    }

    static bool surrounds_origin(std::vector<pair_of_contacts> const& pairs) {
        for (auto const& p : pairs) {
            for (auto const& q : pairs) {
                for (auto const& r : pairs) {
                    if (cross(p.x, q.x) > 0 && cross(q.x, r.x) > 0 && cross(r.x, p.x) > 0) return true;
                }
            }
        }
        return false;
    }

    // One step; false when no tilt makes the slab narrower.
    bool tilt() {
        xyz const e1 = any_perpendicular(normal_), e2 = cross(normal_, e1);
        std::vector<pair_of_contacts> pairs, kept;
        double extent = 0;
        for (int i = 0; i < upper_.count; ++i) {
            for (int j = 0; j < lower_.count; ++j) {
                xyz const d = points_[upper_.at[i]] - points_[lower_.at[j]];
                pairs.push_back({upper_.at[i], lower_.at[j], {dot(d, e1), dot(d, e2)}});
                extent = std::max(extent, length(d));
            }
        }
        planar const x = nearest(pairs, kept);
        double const size = std::hypot(x.x, x.y);
        if (size <= 0x1p-50 * extent) return false;  // the origin, as far as rounding lets it be seen
        upper_.count = lower_.count = 0;
        for (auto const& p : kept) {
            upper_.add(p.upper);
            lower_.add(p.lower);
        }
        return turn_to_contact(-x.x / size * e1 + -x.y / size * e2);
    }

    bool turn_to_contact(xyz const& g) {
        xyz const u = points_[upper_.at[0]], l = points_[lower_.at[0]];
        double least = infinity;
        unsigned int touched = 0;
        bool on_top = true;
        auto const meet = [&](unsigned int i, xyz const& d, bool top) {
            double const gain = dot(d, g), room = -dot(d, normal_);
            // Points in line with the contacts that stay do not come nearer, whatever rounding says.
            if (!(gain > 0x1p-48 * length(d)) || !(std::max(room, 0.0) < least * gain)) return;
            least = std::max(room, 0.0) / gain;
            touched = i;
            on_top = top;
        };
        for (unsigned int i = 0; i < points_.size(); ++i) {
            if (!is_contact(upper_, i)) meet(i, points_[i] - u, true);
            if (!is_contact(lower_, i)) meet(i, l - points_[i], false);
        }
        if (!(least < infinity)) return false;
        (on_top ? upper_ : lower_).add(touched);
        normal_ = unit(normal_ + least * g);
        return true;
    }

    static bool is_contact(contacts const& c, unsigned int i) {
        return std::find(c.at, c.at + c.count, i) != c.at + c.count;
    }

    std::vector<xyz> const& points_;
    xyz normal_;
    contacts upper_, lower_;
};

}  // namespace

slab slab_along(xyz const& normal, std::vector<xyz> const& points) {
    slab s{normal, 0, 0, 0};
    double low = infinity, high = -infinity;
    for (unsigned int i = 0; i < points.size(); ++i) {
        double const along = dot(points[i] - points[0], normal);
        if (along < low) {
            low = along;
            s.lower = i;
        }
        if (along > high) {
            high = along;
            s.upper = i;
        }
    }
    s.width = dot(points[s.upper] - points[s.lower], normal);
    return s;
}

slab exchanged_slab(xyz const& normal, std::vector<xyz> const& points) {
    return slab_along(exchange(normal, points).settled_normal(), points);
}

}  // namespace tvmath
