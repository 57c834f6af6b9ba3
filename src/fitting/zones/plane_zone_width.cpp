#include "plane_zone_width.h"

#include <deque>
#include <utility>

#include "orientation.h"

inline namespace tvmath {
namespace {

using index = unsigned int;

// The narrowest slab of a convex solid has a face on one side and a corner on the other, or an edge on each.
// On the sphere of normals every face of the solid is a point and every edge the arc between its two faces;
// the opposite side draws the same picture mirrored. Within a region of both pictures the slab touches one
// pair of corners, and its width, their difference seen along the normal, is least at a corner of the region:
// at a face, or where an arc crosses a mirrored arc.
//
// So each arc is followed from face to face,
//
//     m(s) = (1 - s) a + s b,     0 <= s <= 1.
//
// Most arcs need no more than a look. With e on the edge, every corner v bounds the width from below: along m
// it is at least (e - v) . m / |m|. The product is linear in s and |m| is convex, so that where it is not
// below W |m| at both ends of a stretch, W the least width known, it is not below in between. One corner that
// tells this for one end and one for the other are enough when they also tell it where their products are
// equal; if not, a corner farther down is asked there, and each part of the stretch has its two.
//
// Where there is none, the slab is narrower than W. Then the arc is walked from the lowest corner along a: v
// gives way to its neighbour w where (w - v) . m(s) = 0, which is the crossing with the arc of the edge from
// v to w.
class width_search {
public:
    width_search(solid_hull const& hull, slab const& known, bool careful)
        : hull_(hull), best_(known), careful_(careful) {
        list_neighbours();
        normals_.reserve(hull.faces.size());
        for (auto const& f : hull.faces) {
            xyz const &a = at(f.corner[0]), &b = at(f.corner[1]), &c = at(f.corner[2]);
            normals_.push_back(unit(exact_cross(a, b, a, c)));
        }
    }

    slab narrowest() {
        std::vector<index> const opposite = opposites();
        for (index f = 0; f < hull_.faces.size(); ++f) {
            for (unsigned int k = 0; k < 3; ++k) {
                index const beyond = hull_.faces[f].across[k];
                if (beyond < f) continue;
                auto const& corner = hull_.faces[f].corner;
                arc const along{at(corner[k]), at(corner[(k + 1) % 3]), normals_[f], normals_[beyond]};
                if (is_wide(along, opposite[f], opposite[beyond])) continue;
                walk(along, opposite[f]);
            }
        }
        return best_;
    }

private:
    static constexpr index none = ~0u;

    xyz const& at(index corner) const { return hull_.corners[corner]; }

    // The corners at the end of the edges of each corner, one corner after the other.
    void list_neighbours() {
        first_neighbour_.assign(hull_.corners.size() + 1, 0);
        for (auto const& f : hull_.faces) {
            for (index const c : f.corner) ++first_neighbour_[c + 1];
        }
        for (std::size_t i = 1; i < first_neighbour_.size(); ++i)
            first_neighbour_[i] += first_neighbour_[i - 1];
        std::vector<std::size_t> next(first_neighbour_.begin(), first_neighbour_.end() - 1);
        neighbours_.resize(first_neighbour_.back());
        for (auto const& f : hull_.faces) {
            for (unsigned int k = 0; k < 3; ++k) neighbours_[next[f.corner[k]]++] = f.corner[(k + 1) % 3];
        }
    }

    // Below this a slab is narrower than the best one by more than the rounding of its width.
    double bound() const { return best_.width * (1 - 0x1p-48); }

    // How far corner `w` lies above `v` along the normal; 0 when that may be rounding. Every step down is one
    // in truth, so that no descent goes in a circle, and short edges lead on like long ones, because the
    // difference of neighbours has no rounding of their coordinates in it.
    double rise(index v, index w, xyz const& normal) const {
        xyz const d = at(w) - at(v);
        double const x = d.x * normal.x, y = d.y * normal.y, z = d.z * normal.z, sum = x + y + z;
        return std::fabs(sum) > 0x1p-50 * (std::fabs(x) + std::fabs(y) + std::fabs(z)) ? sum : 0;
    }

    // Goes down from corner `v` to the lowest one along the normal, or to one that is `enough` below `from`.
    index descend(xyz const& from, xyz const& normal, index v, double enough) const {
        while (dot(from - at(v), normal) < enough) {
            index lowest = v;
            double least = 0;
            for (std::size_t i = first_neighbour_[v]; i < first_neighbour_[v + 1]; ++i) {
                double const step = rise(v, neighbours_[i], normal);
                if (!(step < least)) continue;
                least = step;
                lowest = neighbours_[i];
            }
            if (lowest == v) break;
            v = lowest;
        }
        return v;
    }

    // Takes the slab along the normal, of that width as far as the corner tells that a descent ended at. On
    // solids as flat as the rounding of their coordinates a descent may end too early, and the width is too
    // small: a careful search asks all corners.
    void take(xyz const& normal, double width) {
        if (careful_) {
            slab const s = slab_along(normal, hull_.corners);
            if (s.width < bound()) best_ = s;
        } else {
            best_.normal = normal;
            best_.width = width;
        }
    }

    // Of each face the corner that bounds the width along its normal. Faces of nearly one direction have
    // neighbouring opposite corners, so each face starts from where its neighbour found one, and neighbours
    // across a blunt edge go first: from the foot of a cone to its side the way leads over the tip, with all
    // its edges, and is taken once.
    std::vector<index> opposites() {
        constexpr double blunt = 0.99;
        std::vector<index> opposite(hull_.faces.size(), none);
        std::deque<std::pair<index, index>> waiting{{0, 0}};  // a face and where to start
        while (!waiting.empty()) {
            auto const [f, start] = waiting.front();
            waiting.pop_front();
            if (opposite[f] != none) continue;
            opposite[f] = opposite_of(f, start);
            for (index const next : hull_.faces[f].across) {
                if (opposite[next] != none) continue;
                if (dot(normals_[f], normals_[next]) > blunt) {
                    waiting.emplace_front(next, opposite[f]);
                } else {
                    waiting.emplace_back(next, opposite[f]);
                }
            }
        }
        return opposite;
    }

    // A corner that bounds the width along the face's normal; when there is none, the face's slab is taken.
    index opposite_of(index f, index start) {
        xyz const &normal = normals_[f], &base = at(hull_.faces[f].corner[0]);
        index const v = descend(base, normal, start, bound());
        double const width = dot(base - at(v), normal);
        if (width < bound() && dot(normal, normal) > 0) take(normal, width);
        return v;
    }

    // An edge, and the normals from one of its faces to the other.
    struct arc {
        xyz start, end, a, b;
        xyz normal(double s) const { return (1 - s) * a + s * b; }
    };

    // True when corner `v` at the first face, `w` at the second, and others where these do not reach, bound
    // the width along the arc from below.
    bool is_wide(arc const& along, index v, index w) {
        stretches_.assign(1, {0, 1, v, w});
        while (!stretches_.empty()) {
            stretch const t = stretches_.back();
            stretches_.pop_back();
            auto const excess = [&](index corner, double s) {
                xyz const m = along.normal(s);
                return dot(along.start - at(corner), m) - bound() * length(m);
            };
            double const v_first = excess(t.v, t.first), v_last = excess(t.v, t.last),
                         w_first = excess(t.w, t.first), w_last = excess(t.w, t.last);
            if (v_first < 0 || w_last < 0) return false;
            if (v_last >= 0 || w_first >= 0) continue;
            double const fall = v_first - w_first, rise = w_last - v_last;
            double const s = t.first + (t.last - t.first) * (fall / (fall + rise));
            if (!(s > t.first && s < t.last)) return false;
            if (excess(t.v, s) >= 0 || excess(t.w, s) >= 0) continue;
            xyz const m = along.normal(s);
            index const lower = descend(along.start, m, t.w, bound() * length(m));
            if (excess(lower, s) < 0) return false;
            stretches_.push_back({t.first, s, t.v, lower});
            stretches_.push_back({s, t.last, lower, t.w});
        }
        return true;
    }

    void walk(arc const& along, index v) {
        auto const& [start, end, a, b] = along;
        v = descend(start, a, v, infinity);
        while (dot(start - at(v), b) < bound()) {
            // The neighbour that is the first to become lower. Each lies lower along b than the one before.
            index next = none;
            double first = infinity;
            for (std::size_t i = first_neighbour_[v]; i < first_neighbour_[v + 1]; ++i) {
                double const at_a = rise(v, neighbours_[i], a), at_b = rise(v, neighbours_[i], b);
                if (!(at_b < 0)) continue;
                double const s = at_a <= 0 ? 0 : at_a / (at_a - at_b);
                if (!(s < first)) continue;
                first = s;
                next = neighbours_[i];
            }
            if (next == none) return;
            xyz const crossing = unit(exact_cross(start, end, at(v), at(next)));
            xyz const outward = dot(crossing, along.normal(first)) < 0 ? -1.0 * crossing : crossing;
            double const width = dot(start - at(v), outward);
            if (width < bound() && dot(outward, outward) > 0) take(outward, width);
            v = next;
        }
    }

    // Of an arc, from one s to another, with a corner that bounds the width at each of them.
    struct stretch {
        double first, last;
        index v, w;
    };

    solid_hull const& hull_;
    slab best_;
    bool careful_;
    std::vector<stretch> stretches_;
    std::vector<xyz> normals_;
    std::vector<std::size_t> first_neighbour_;
    std::vector<index> neighbours_;
};

}  // namespace

slab narrowest_slab(solid_hull const& hull, slab const& known) {
    slab const quick = width_search(hull, known, false).narrowest();
    if (quick.width == known.width) return known;
    slab const found = slab_along(quick.normal, hull.corners);
    double const rounding = 0x1p-52 * length(hull.corners[found.upper] - hull.corners[found.lower]);
    return found.width <= quick.width + rounding ? found : width_search(hull, known, true).narrowest();
}

}  // namespace tvmath
