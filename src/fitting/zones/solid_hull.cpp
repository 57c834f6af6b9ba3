#include "solid_hull.h"

#include <algorithm>
#include <limits>

#include "orientation.h"

inline namespace tvmath {
namespace {

using index = unsigned int;
constexpr index none = std::numeric_limits<index>::max();

// A face that grows: with its plane, and the points outside of it, one behind the other in a list.
struct growing_face {
    solid_hull::face sides;
    xyz base, normal;
    double certain = 0;  // farther from the plane than this, the plain product has the right sign
    index first_outside = none, farthest = none;
    double farthest_distance = 0;
    bool is_alive = true, is_visible = false;
};

// An edge between what a new point sees and what it does not, as the seen face runs along it.
struct horizon_edge {
    index from, to, beyond;
};

class quickhull {
public:
    explicit quickhull(std::vector<xyz> const& points)
        : points_(points), next_outside_(points.size(), none), face_from_(points.size(), none) {
        xyz low = points[0], high = points[0];
        for (xyz const& p : points) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        xyz const size = high - low;
        extent_ = std::max({size.x, size.y, size.z});
    }

    solid_hull result() {
        index start[4];
        int const count = find_start(start);
        solid_hull hull;
        if (count < 4) {
            for (int i = 0; count == 3 && i < 3; ++i) hull.corners.push_back(points_[start[i]]);
            return hull;
        }
        open_with(start);
        while (!open_.empty()) {
            index const f = open_.back();
            open_.pop_back();
            if (faces_[f].is_alive && faces_[f].first_outside != none) add(faces_[f].farthest, f);
        }
        return compacted();
    }

private:
    // The index for which `measure` is greatest.
    template <class measure>
    index greatest(measure const& of) const {
        index best = 0;
        double most = -1;
        for (index i = 0; i < points_.size(); ++i) {
            double const m = of(points_[i]);
            if (m > most) {
                most = m;
                best = i;
            }
        }
        return best;
    }

    // `guess` when it passes the test, which is exact, otherwise the first point that does.
    template <class test>
    index first_that(index guess, test const& passes) const {
        if (passes(points_[guess])) return guess;
        auto const found = std::find_if(points_.begin(), points_.end(), passes);
        return found == points_.end() ? none : static_cast<index>(found - points_.begin());
    }

    // Up to four points that span space, far apart so that few points remain outside of their solid.
    // Returns how many there are before all others lie in their span: 1, 2, 3 or 4.
    int find_start(index (&start)[4]) const {
        auto const& p = points_;
        start[0] = greatest([&](xyz const& q) { return length(q - p[0]); });
        xyz const a = p[start[0]];
        start[1] = greatest([&](xyz const& q) { return length(q - a); });
        xyz const b = p[start[1]];
        if (a.x == b.x && a.y == b.y && a.z == b.z) return 1;
        index const wide = greatest([&](xyz const& q) { return length(cross(b - a, q - a)); });
        start[2] = first_that(wide, [&](xyz const& q) { return !are_collinear(a, b, q); });
        if (start[2] == none) return 2;
        xyz const c = p[start[2]], normal = exact_cross(a, b, a, c);
        index const high = greatest([&](xyz const& q) { return std::fabs(dot(normal, q - a)); });
        start[3] = first_that(high, [&](xyz const& q) { return orientation(a, b, c, q) != 0; });
        if (start[3] == none) return 3;
        if (orientation(a, b, c, p[start[3]]) > 0) std::swap(start[1], start[2]);
        return 4;
    }

    // The solid of the four points; the fourth is below the plane of the first three.
    void open_with(index const (&s)[4]) {
        index const corners[4][3] = {{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {2, 3, 0}};
        index const across[4][3] = {{1, 2, 3}, {3, 2, 0}, {1, 3, 0}, {2, 1, 0}};
        std::vector<index> made;
        for (int f = 0; f < 4; ++f) {
            auto const &c = corners[f], &n = across[f];
            made.push_back(new_face({{s[c[0]], s[c[1]], s[c[2]]}, {n[0], n[1], n[2]}}));
        }
        for (index i = 0; i < points_.size(); ++i) place(i, made);
        for (index const f : made) open_.push_back(f);
    }

    index new_face(solid_hull::face const& sides) {
        growing_face f;
        f.sides = sides;
        f.base = points_[sides.corner[0]];
        xyz const u = points_[sides.corner[1]] - f.base, v = points_[sides.corner[2]] - f.base;
        f.normal = cross(u, v);
        // The bound of `orientation` for the farthest point that there can be.
        f.certain = 0x1p-50 * extent_ *
                    (std::fabs(u.y * v.z) + std::fabs(u.z * v.y) + std::fabs(u.z * v.x) +
                     std::fabs(u.x * v.z) + std::fabs(u.x * v.y) + std::fabs(u.y * v.x));
        if (free_.empty()) {
            faces_.push_back(f);
            return static_cast<index>(faces_.size() - 1);
        }
        index const at = free_.back();
        free_.pop_back();
        faces_[at] = f;
        return at;
    }

    // Points in the plane of a face do not see it. So faces of one plane are seen together or not at all,
    // what a point sees is one piece, and no new face has its corners on one line: an edge that points at the
    // new corner belongs to two faces that it does not see.
    bool sees(index p, growing_face const& f, double distance) const {
        if (std::fabs(distance) > f.certain) return distance > 0;
        auto const& c = f.sides.corner;
        return orientation(points_[c[0]], points_[c[1]], points_[c[2]], points_[p]) > 0;
    }
    double distance_of(index p, growing_face const& f) const { return dot(f.normal, points_[p] - f.base); }

    // Gives the point to the first of the faces that it sees. A point that sees none is inside.
    void place(index p, std::vector<index> const& made) {
        for (index const at : made) {
            growing_face& f = faces_[at];
            double const distance = distance_of(p, f);
            if (!sees(p, f, distance)) continue;
            next_outside_[p] = f.first_outside;
            f.first_outside = p;
            if (f.farthest == none || distance > f.farthest_distance) {
                f.farthest = p;
                f.farthest_distance = distance;
            }
            return;
        }
    }

    // All faces that the point sees, and their rim.
    void look_around(index p, index from) {
        seen_.assign(1, from);
        horizon_.clear();
        faces_[from].is_visible = true;
        for (std::size_t i = 0; i < seen_.size(); ++i) {
            auto const sides = faces_[seen_[i]].sides;
            for (unsigned int k = 0; k < 3; ++k) {
                growing_face& beyond = faces_[sides.across[k]];
                if (beyond.is_visible) continue;
                if (sees(p, beyond, distance_of(p, beyond))) {
                    beyond.is_visible = true;
                    seen_.push_back(sides.across[k]);
                } else {
                    horizon_.push_back({sides.corner[k], sides.corner[(k + 1) % 3], sides.across[k]});
                }
            }
        }
    }

    // Replaces what the point sees by the faces from the rim to the point, and deals out the points that were
    // outside of the old ones.
    void add(index p, index from) {
        look_around(p, from);
        made_.clear();
        for (horizon_edge const& edge : horizon_) {
            index const f = new_face({{edge.from, edge.to, p}, {edge.beyond, none, none}});
            face_from_[edge.from] = f;
            made_.push_back(f);
            auto& beyond = faces_[edge.beyond].sides;
            for (unsigned int k = 0; k < 3; ++k) {
                if (beyond.corner[k] == edge.to) beyond.across[k] = f;
            }
        }
        for (index const f : made_) {
            index const following = face_from_[faces_[f].sides.corner[1]];
            faces_[f].sides.across[1] = following;
            faces_[following].sides.across[2] = f;
        }
        for (index const old : seen_) {
            for (index q = faces_[old].first_outside; q != none;) {
                index const next = next_outside_[q];
                if (q != p) place(q, made_);
                q = next;
            }
        }
        for (index const old : seen_) {
            faces_[old].is_alive = false;
            free_.push_back(old);
        }
        for (index const f : made_) {
            if (faces_[f].first_outside != none) open_.push_back(f);
        }
    }

    solid_hull compacted() const {
        solid_hull hull;
        std::vector<index> corner_at(points_.size(), none), face_at(faces_.size(), none);
        for (index f = 0; f < faces_.size(); ++f) {
            if (!faces_[f].is_alive) continue;
            face_at[f] = static_cast<index>(hull.faces.size());
            hull.faces.push_back(faces_[f].sides);
        }
        for (auto& face : hull.faces) {
            for (unsigned int k = 0; k < 3; ++k) {
                face.across[k] = face_at[face.across[k]];
                index& at = corner_at[face.corner[k]];
                if (at == none) {
                    at = static_cast<index>(hull.corners.size());
                    hull.corners.push_back(points_[face.corner[k]]);
                }
                face.corner[k] = at;
            }
        }
        return hull;
    }

    std::vector<xyz> const& points_;
    double extent_ = 0;
    std::vector<growing_face> faces_;
    std::vector<index> next_outside_;  // of the list that the point is in
    std::vector<index> face_from_;     // the new face whose rim edge starts at that point
    std::vector<index> open_, free_, seen_, made_;
    std::vector<horizon_edge> horizon_;
};

}  // namespace

solid_hull solid_hull_of(std::vector<xyz> const& points) {
    return points.empty() ? solid_hull() : quickhull(points).result();
}

}  // namespace tvmath
