#include <algorithm>
#include <array>

#include "orientation.h"
#include "tvmath/zone_fit.h"
#include "zone_points.h"

inline namespace tvmath {
namespace {

// Up to four points with weights that are not negative and sum to 1. Their weighted mean is the centre of a
// ball, and the square of the radius of every sphere around the points is at least
//
//     sum w_i |p_i - c|²,     c = sum w_i p_i,
//
// whatever the weights are (Lagrangian duality). The smallest sphere is the one for which its own radius
// reaches that bound.
struct support {
    std::array<xyz, 5> point;  // one more than can stay
    std::array<double, 5> weight{};
    std::size_t count = 0;
    xyz center;
    double bound = 0;

    void weigh() {
        xyz sum;
        for (std::size_t i = 1; i < count; ++i) sum = sum + weight[i] * (point[i] - point[0]);
        center = point[0] + sum;
        bound = 0;
        for (std::size_t i = 0; i < count; ++i) {
            xyz const d = point[i] - center;
            bound += weight[i] * dot(d, d);
        }
    }
};

// Solves the normal equations of up to three edges by elimination with the largest pivot. False when the
// edges lie, but for rounding, in fewer dimensions than there are of them.
bool solve(double (&g)[3][4], std::size_t k, double (&solution)[3]) {
    std::size_t order[3] = {0, 1, 2};
    for (std::size_t i = 0; i < k; ++i) {
        std::size_t pivot = i;
        for (std::size_t j = i + 1; j < k; ++j) {
            if (g[order[j]][order[j]] > g[order[pivot]][order[pivot]]) pivot = j;
        }
        std::swap(order[i], order[pivot]);
        std::size_t const p = order[i];
        if (!(g[p][p] > 0x1p-50)) return false;  // of edges of length 1
        for (std::size_t j = i + 1; j < k; ++j) {
            std::size_t const q = order[j];
            double const factor = g[q][p] / g[p][p];
            for (std::size_t l = i; l < k; ++l) g[q][order[l]] -= factor * g[p][order[l]];
            g[q][3] -= factor * g[p][3];
        }
    }
    for (std::size_t i = k; i-- > 0;) {
        std::size_t const p = order[i];
        double sum = g[p][3];
        for (std::size_t l = i + 1; l < k; ++l) sum -= g[p][order[l]] * solution[order[l]];
        solution[p] = sum / g[p][p];
    }
    return true;
}

// The sphere with the points on it whose centre lies among them: c = p_0 + sum m_j e_j is as far from both
// ends of every edge e_j = q_j - p_j of a tree of shortest edges,
//
//     e_j . (c - p_j) = |e_j|² / 2.
//
// Edges of the tree and not those from one point, so that of two points close together their short difference
// enters as it is. What rounding leaves of the equations is solved for once more.
// False when the points lie on no sphere of their own, or when its centre is not among them.
bool weigh_sphere(support& s) {
    std::size_t const k = s.count - 1;
    std::size_t from[3];
    xyz edge[3];
    double size[3];
    for (std::size_t j = 0; j < k; ++j) {  // grows the tree by the point nearest to it (R. C. Prim, 1957)
        double least = infinity;
        std::size_t next = 0;
        for (std::size_t a = 0; a <= j; ++a) {
            for (std::size_t b = j + 1; b <= k; ++b) {
                double const distance = length(s.point[b] - s.point[a]);
                if (!(distance < least)) continue;
                least = distance;
                from[j] = a;
                next = b;
            }
        }
        if (!(least > 0) || next == 0) return false;
        std::swap(s.point[j + 1], s.point[next]);
        edge[j] = unit(s.point[j + 1] - s.point[from[j]]);
        size[j] = least;
    }
    double along[3] = {0, 0, 0};  // of the centre, from the first point along each unit edge
    xyz center = s.point[0];
    for (int round = 0; round < 3; ++round) {
        double equations[3][4], step[3];
        for (std::size_t i = 0; i < k; ++i) {
            for (std::size_t j = 0; j < k; ++j) equations[i][j] = dot(edge[i], edge[j]);
            equations[i][3] = size[i] / 2 - dot(edge[i], center - s.point[from[i]]);
        }
        if (!solve(equations, k, step)) return false;
        xyz by;
        for (std::size_t j = 0; j < k; ++j) {
            along[j] += step[j];
            by = by + step[j] * edge[j];
        }
        center = center + by;
    }
    s.weight.fill(0);
    s.weight[0] = 1;
    for (std::size_t j = 0; j < k; ++j) {
        double const share = along[j] / size[j];
        s.weight[j + 1] += share;
        s.weight[from[j]] -= share;
    }
    for (std::size_t i = 0; i <= k; ++i) {
        if (!(s.weight[i] >= 0)) return false;
    }
    s.weigh();
    return true;
}

double squared_distance(xyz const& a, xyz const& b) {
    xyz const d = a - b;
    return dot(d, d);
}

// The smallest sphere around the support and one more point, which lies outside of its sphere and so on the
// new one. Of the smallest spheres around any of them that have the added one in the support it is the one
// that holds all; the one that comes nearest to it where rounding leaves none.
support with_point(support const& old, xyz const& added) {
    support best = old;
    double least = infinity;
    for (unsigned int chosen = 1; chosen < (1u << old.count); ++chosen) {
        support s;
        s.point[s.count++] = added;
        for (std::size_t i = 0; i < old.count; ++i) {
            if (chosen >> i & 1) s.point[s.count++] = old.point[i];
        }
        if (s.count > 4 || !weigh_sphere(s)) continue;
        double reach = squared_distance(added, s.center);
        for (std::size_t i = 0; i < old.count; ++i) {
            reach = std::max(reach, squared_distance(old.point[i], s.center));
        }
        if (!(reach < least)) continue;
        least = reach;
        best = s;
    }
    return best;
}

xyz const& farthest_from(xyz const& center, std::vector<xyz> const& points) {
    xyz const* farthest = &points[0];
    double most = -1;
    for (xyz const& p : points) {
        double const distance = squared_distance(p, center);
        if (distance > most) {
            most = distance;
            farthest = &p;
        }
    }
    return *farthest;
}

// The mean, to which all points are moved: near to it their differences have no rounding that matters.
xyz move_to_mean(std::vector<xyz>& points) {
    xyz const first = points[0];
    xyz sum;
    for (xyz const& p : points) sum = sum + (p - first);
    xyz const mean = first + (1 / static_cast<double>(points.size())) * sum;
    for (xyz& p : points) p = p - mean;
    return mean;
}

// The lower bound of the radius rises with every exchange and there are finitely many supports, so the search
// ends: no point lies outside but for rounding. Near to that the bound no longer rises visibly, because it is
// off by the square of what the centre is off by; then a few exchanges more bring the centre home. After that
// many without a rise the sphere that held the points best is taken.
xyz smallest_ball_center(std::vector<xyz> const& points) {
    constexpr double visible = 1 + 0x1p-50;
    constexpr int idle_limit = 16;
    support s;
    s.point[0] = farthest_from(xyz(), points);
    s.weight[0] = 1;
    s.count = 1;
    s.weigh();
    support best = s;
    double least = infinity, highest = 0;
    for (int idle = 0; idle < idle_limit; ++idle) {
        xyz const& outside = farthest_from(s.center, points);
        double const reach = squared_distance(outside, s.center);
        if (reach <= least) {
            least = reach;
            best = s;
        }
        if (reach <= s.bound * (1 + 0x1p-49)) break;
        if (s.bound > highest * visible) {
            highest = s.bound;
            idle = 0;
        }
        s = with_point(s, outside);
    }
    return best.center;
}

}  // namespace

bool minimum_circumscribed_sphere(std::vector<point> const& points, point& center, double& radius) {
    if (std::none_of(points.begin(), points.end(), [](point const& p) { return p.is_3d(); })) return false;
    zone_points scaled = zone_points_of(points);
    if (scaled.at.empty()) return false;
    xyz const mean = move_to_mean(scaled.at), c = smallest_ball_center(scaled.at);
    // Those that hold the sphere are the farthest ones; taken over all points, rounding leaves none outside.
    double const reach = scaled.unit * length(farthest_from(c, scaled.at) - c);
    if (!std::isfinite(reach)) return false;
    center = (scaled.unit * (mean + c)).location(true);
    radius = reach;
    return true;
}

sphere minimum_circumscribed_sphere(std::vector<point> const& points) {
    point center;
    double radius = 0;
    return minimum_circumscribed_sphere(points, center, radius) ? sphere(radius, center) : sphere();
}

}  // namespace tvmath
