#include <algorithm>
#include <array>
#include <optional>

#include "fitting/plane_from_normal.h"
#include "geometry/extent.h"
#include "orientation.h"
#include "tvmath/quick_fit.h"
#include "tvmath/zone_fit.h"
#include "zone_points.h"

inline namespace tvmath {
namespace {

using index = unsigned int;

// The points hang under the plate: the lowest plane above all of them, of its height over the reference. Seen
// from above, the contacts turn anticlockwise and hold the reference. A point above their plane takes the
// place of the one contact without which the new triangle still holds the reference; that raises the plane
// over the reference and so never comes back to an earlier triangle. What holds the reference in its inside
// is unique, and the reference is made to lie inside: it counts as moved by an amount too small to matter
// along x and by a still smaller one along y, so that it lies on no line through two points.
//
// All sides are exact. The point farthest above the plane goes first: a handful of passes whatever the list's
// order.
class seating {
public:
    seating(std::vector<xyz> const& points, xyz const& reference) : points_(points), reference_(reference) {}

    // The three contacts; none when no triangle holds the reference.
    std::optional<std::array<index, 3>> contacts() {
        if (!find_start()) return std::nullopt;
        double const n = static_cast<double>(points_.size());
        for (double step = 0; step <= n * n; ++step) {
            std::optional<index> const above = farthest_above();
            if (!above) return contact_;
            exchange(*above);
        }
        return std::nullopt;
    }

private:
    // The side of the reference as seen along the line from a to b: 1 left, -1 right, 0 only when a and b are
    // one point as seen from above. Moving the reference by (e, e^2) adds e (a.y - b.y) + e^2 (b.x - a.x).
    int side_of_reference(index a, index b) const {
        xyz const &p = points_[a], &q = points_[b];
        int const side = orientation_xy(p, q, reference_);
        if (side != 0) return side;
        if (p.y != q.y) return p.y > q.y ? 1 : -1;
        return p.x == q.x ? 0 : q.x > p.x ? 1 : -1;
    }

    // Any triangle around the reference: one point and, of those to the left of it as seen from the
    // reference, the one that is farthest round, and the same to the right.
    bool find_start() {
        index first = 0;
        double most = 0;
        for (index i = 0; i < points_.size(); ++i) {
            xyz const d = points_[i] - reference_;
            double const distance = std::hypot(d.x, d.y);
            if (distance > most) {
                most = distance;
                first = i;
            }
        }
        std::optional<index> left, right;
        for (index i = 0; i < points_.size(); ++i) {
            int const side = side_of_reference(first, i);
            if (side > 0 && (!left || side_of_reference(*left, i) > 0)) left = i;
            if (side < 0 && (!right || side_of_reference(*right, i) < 0)) right = i;
        }
        if (!left || !right) return false;
        contact_ = {first, *left, *right};
        return side_of_reference(*left, *right) > 0;
    }

    // The point farthest above the plane, by more than the rounding of the terms of its distance.
    std::optional<index> farthest_above() const {
        constexpr double term_rounding = 2.220446049250313e-16;
        xyz const &a = points_[contact_[0]], &b = points_[contact_[1]], &c = points_[contact_[2]];
        xyz const normal = exact_cross(a, b, a, c);
        std::optional<index> farthest;
        double most = 0;
        for (index i = 0; i < points_.size(); ++i) {
            xyz const d = points_[i] - a;
            double const x = d.x * normal.x, y = d.y * normal.y, z = d.z * normal.z, v = x + y + z;
            if (!(v > most)) continue;
            if (!(v > term_rounding * (std::fabs(x) + std::fabs(y) + std::fabs(z)))) continue;
            if (orientation(a, b, c, points_[i]) <= 0) continue;
            most = v;
            farthest = i;
        }
        return farthest;
    }

    // The two contacts that stay are those that have the reference on different sides as seen from p. A point
    // straight above a contact replaces that one.
    void exchange(index p) {
        int side[3];
        for (std::size_t i = 0; i < 3; ++i) {
            side[i] = side_of_reference(p, contact_[i]);
            if (side[i] == 0) {
                contact_[i] = p;
                return;
            }
        }
        for (std::size_t i = 0; i < 3; ++i) {
            std::size_t const next = (i + 1) % 3;
            if (side[i] > 0 && side[next] < 0) {
                contact_[(i + 2) % 3] = p;
                return;
            }
        }
    }

    std::vector<xyz> const& points_;
    xyz reference_;
    std::array<index, 3> contact_{};
};

bool all_3d(point_span points) {
    return std::all_of(points.begin(), points.end(), [](point const& p) { return p.is_3d(); });
}

}  // namespace

plane seating_plane_fit(idioms::array<point> points, bool flag, idioms::array<point>& contacts) {
    point_span const all = span_of(points);
    if (all.size() < 3 || !all_3d(all)) return plane();
    zone_points scaled = zone_points_of(all);
    if (scaled.at.empty()) return plane();
    xyz reference = (1 / scaled.unit) * xyz(point_fit(points));
    if (flag) {
        // The other side of the plate, by a mirror in the origin.
        reference = -1.0 * reference;
        for (xyz& p : scaled.at) p = -1.0 * p;
    }
    auto const found = seating(scaled.at, reference).contacts();
    if (!found) return plane();
    xyz const a = scaled.at[(*found)[0]], b = scaled.at[(*found)[1]], c = scaled.at[(*found)[2]];
    double const back = flag ? -scaled.unit : scaled.unit;
    xyz const center = back * (a + (1.0 / 3) * ((b - a) + (c - a))), normal = unit(exact_cross(a, b, a, c));
    plane const result = plane_from_normal(center.location(true), point(false, normal.x, normal.y, normal.z),
                                           all, smallest_plane_extent, smallest_plane_extent);
    if (result.is_trivial()) return result;
    point const touched[] = {all[(*found)[0]], all[(*found)[1]], all[(*found)[2]]};
    contacts = idioms::array<point>(3, touched);
    return result;
}

}  // namespace tvmath
