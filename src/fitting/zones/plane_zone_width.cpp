#include "plane_zone_width.h"

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
// So each arc is followed from face to face: from the corner that is lowest along the first face's normal a,
// over all corners v that become the lowest on the way to b,
//
//     m(s) = (1 - s) a + s b,       v gives way to its neighbour w where (w - v) . m(s) = 0,
//
// each of which is a crossing of the edge with the edge from v to w. Nothing is missed and little is looked
// at: a corner v bounds the width from below, at the normal m by (e - v) . m / |m| with e on the edge. That
// product is linear in s and |m| is at most 1, so where it is not below the least width known at both ends of
// a stretch, it is not below in between.
class width_search {
public:
    width_search(solid_hull const& hull, slab const& known) : hull_(hull), best_(known) {
        list_neighbours();
        normals_.reserve(hull.faces.size());
        for (auto const& f : hull.faces) {
            xyz const &a = at(f.corner[0]), &b = at(f.corner[1]), &c = at(f.corner[2]);
            normals_.push_back(unit(exact_cross(b - a, c - a)));
        }
    }

    slab narrowest() {
        // Neighbouring faces have neighbouring opposite corners: each face starts from where its neighbour
        // found one.
        std::vector<index> opposite(hull_.faces.size(), none), order{0};
        opposite[0] = 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            index const f = order[i];
            opposite[f] = opposite_of(f, opposite[f]);
            for (index const next : hull_.faces[f].across) {
                if (opposite[next] != none) continue;
                opposite[next] = opposite[f];
                order.push_back(next);
            }
        }
        for (index f = 0; f < hull_.faces.size(); ++f) {
            for (unsigned int k = 0; k < 3; ++k) {
                if (hull_.faces[f].across[k] > f) follow_arc(f, k, opposite[f]);
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

    // The corners tell a width too small where rounding hides the lowest one; all of them decide.
    void try_normal(xyz const& normal) {
        slab const s = slab_along(normal, hull_.corners);
        if (s.width < bound()) best_ = s;
    }

    // A corner that bounds the width along the face's normal; when there is none, the face's slab is tried.
    index opposite_of(index f, index start) {
        xyz const &normal = normals_[f], &base = at(hull_.faces[f].corner[0]);
        index const v = descend(base, normal, start, bound());
        if (dot(base - at(v), normal) < bound()) try_normal(normal);
        return v;
    }

    void follow_arc(index f, unsigned int k, index v) {
        auto const& face = hull_.faces[f];
        xyz const &start = at(face.corner[k]), edge = at(face.corner[(k + 1) % 3]) - start;
        xyz const &a = normals_[f], &b = normals_[face.across[k]];
        if (dot(start - at(v), b) >= bound() && dot(start - at(v), a) >= bound()) return;
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
            xyz const crossing = unit(exact_cross(edge, at(next) - at(v)));
            xyz const outward = dot(crossing, (1 - first) * a + first * b) < 0 ? -1.0 * crossing : crossing;
            if (dot(start - at(v), outward) < bound() && dot(outward, outward) > 0) try_normal(outward);
            v = next;
        }
    }

    solid_hull const& hull_;
    slab best_;
    std::vector<xyz> normals_;
    std::vector<std::size_t> first_neighbour_;
    std::vector<index> neighbours_;
};

}  // namespace

slab narrowest_slab(solid_hull const& hull, slab const& known) {
    return width_search(hull, known).narrowest();
}

}  // namespace tvmath
