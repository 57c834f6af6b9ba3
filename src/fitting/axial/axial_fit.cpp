#include "axial_fit.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "geometry/extent.h"
#include "quadric_start.h"
#include "tvmath/matrix.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// A sample of these many points tells the starts apart; all points then refine the winner.
constexpr std::size_t sample_size = 300;
// Few points have more minima than the algebraic distance shows: then the axes of the cube are starts as
// they are.
constexpr std::size_t few_points = 16;
// An arc of this radius, against points of size 1, has a sagitta of 1e-6: beyond it noise of any kind
// decides.
constexpr double most_radius = 1e5;

interval extent_along(axial_surface const& s, std::span<xyz const> points) {
    interval z;
    for (xyz const& p : points) z.widen(dot(p - s.origin, s.w));
    return z;
}

// The tip may lie a little inside the extent, where noise carries points of a full cone beyond it.
bool is_plausible(axial_surface const& s, interval const& z) {
    double const extent = z.high - z.low, low = s.radius_at(z.low), high = s.radius_at(z.high);
    double const allowed = -0.1 * extent * std::fabs(std::tan(s.angle));
    return s.radius_at((z.low + z.high) / 2) > 0 && low >= allowed && high >= allowed &&
           std::max(low, high) < most_radius;
}

std::array<xyz, 3> principal_axes(quadric_moments const& m) {
    matrix scatter(3, 3), u, v;
    for (unsigned int i = 0; i < 3; ++i) {
        for (unsigned int j = 0; j < 3; ++j) scatter(i)(j) = m.scatter[i][j];
    }
    vector const values = singular_value_decomposition(scatter, u, v);
    std::array<unsigned int, 3> order = {0, 1, 2};
    std::sort(order.begin(), order.end(),
              [&](unsigned int i, unsigned int j) { return values[i] < values[j]; });
    std::array<xyz, 3> axes;
    for (unsigned int i = 0; i < 3; ++i) axes[i] = unit(xyz(v[0][order[i]], v[1][order[i]], v[2][order[i]]));
    return axes;
}

// Across the best plane through the points, for a fixed axis the best plane along it.
xyz flat_normal(quadric_moments const& m, axial_task const& task) {
    if (task.free.tilt) return principal_axes(m)[0];
    xyz const a = any_perpendicular(task.axis), b = cross(task.axis, a);
    xyz const ma = times(m, a), mb = times(m, b);
    double const turn = std::atan2(2 * dot(a, mb), dot(a, ma) - dot(b, mb)) / 2;
    return std::cos(turn) * b - std::sin(turn) * a;
}

double plane_sum(std::span<xyz const> points, quadric_moments const& m, axial_task const& task) {
    xyz const normal = flat_normal(m, task);
    double sum = 0;
    for (xyz const& p : points) sum += sqr(dot(p - m.mean, normal));
    return sum;
}

// Points that a plane fits no worse carry no radius. The plane has two unknowns fewer; by Fisher's test
// the chance that plain scatter gives such an advantage to the curved surface is (sum / flat)^(dof / 2).
bool is_curved(double sum, double flat, std::size_t n, std::size_t unknowns, double grain) {
    if (flat <= static_cast<double>(n) * std::pow(4 * grain, 2)) return false;
    double const ratio = sum / flat, dof = static_cast<double>(n - unknowns);
    return ratio < 0.25 || std::pow(ratio, dof / 2) < 0.01;
}

struct candidate {
    axial_surface surface;
    double sum = 0;
};

// Five points may lie on several cylinders: of those that all fit within the rounding of the points the
// one of least radius is taken, whatever the order of the points.
bool is_better(candidate const& a, candidate const& b, double rounding) {
    double const one = std::max(a.sum, rounding), other = std::max(b.sum, rounding);
    return one != other ? one < other : a.surface.offset < b.surface.offset;
}

std::vector<candidate> refined(std::vector<axial_surface> const& starts, std::span<xyz const> points,
                               axial_freedom free, double rounding) {
    std::vector<candidate> found;
    for (axial_surface const& start : starts) {
        candidate c{start, 0};
        if (refine_axial_surface(points, free, c.surface, c.sum) &&
            is_plausible(c.surface, extent_along(c.surface, points))) {
            found.push_back(c);
        }
    }
    std::sort(found.begin(), found.end(),
              [&](candidate const& a, candidate const& b) { return is_better(a, b, rounding); });
    return found;
}

// For a free axis the minima of the algebraic distance, and the principal axes of the points: on a wire
// and on a short arc the algebraic distance has no minimum near the best surface, but one of these axes is
// close to its own.
std::vector<axial_surface> all_starts(quadric_moments const& m, axial_task const& task, bool few) {
    std::vector<axial_surface> starts = task.starts;
    bool const tapered = task.free.angle;
    if (task.free.tilt) {
        auto const minima = quadric_starts(m, tapered);
        starts.insert(starts.end(), minima.begin(), minima.end());
        std::vector<xyz> axes;
        if (few) axes = cube_axes();
        for (xyz const& axis : principal_axes(m)) axes.push_back(axis);
        for (xyz const& axis : axes) starts.push_back(quadric_start_about(axis, m, tapered));
    } else {
        starts.push_back(quadric_start_about(task.axis, m, tapered));
    }
    if (task.free.shift) return starts;
    for (axial_surface& s : starts) {
        s.offset += std::sin(s.angle) * dot(task.center - s.origin, s.w);
        s.origin = task.center;
    }
    return starts;
}

// Repeats determine nothing, and what rounding makes of a system of too few points may look regular.
bool has_distinct(std::span<xyz const> points, std::size_t needed) {
    std::vector<xyz> seen;
    for (xyz const& p : points) {
        if (seen.size() >= needed) break;
        bool const known = std::any_of(seen.begin(), seen.end(),
                                       [&](xyz const& q) { return p.x == q.x && p.y == q.y && p.z == q.z; });
        if (!known) seen.push_back(p);
    }
    return seen.size() >= needed;
}

}  // namespace

bool hold_axis(axial_task& task, local_points const& local, point const* center, point const* axis) {
    if (local.points.empty()) return false;
    task.free.shift = center == nullptr;
    task.free.tilt = axis == nullptr;
    if (center) {
        if (center->is_trivial() || !xyz(*center).is_finite()) return false;
        task.center = local.to_local(xyz(*center));
    }
    if (axis) task.axis = unit(xyz(*axis));
    return !axis || dot(task.axis, task.axis) != 0.0;
}

axial_fit_result fit_axial_surface(local_points const& local, axial_task const& task) {
    axial_fit_result result;
    std::span<xyz const> const points = local.points;
    if (!has_distinct(points, unknowns(task.free))) return result;
    double const rounding = static_cast<double>(points.size()) * std::pow(8 * local.grain, 2);

    quadric_moments const m = moments_of(points);
    std::vector<axial_surface> starts = all_starts(m, task, points.size() <= few_points);
    if (points.size() > sample_size) {
        std::vector<xyz> const sample = sample_of(local.points, sample_size);
        auto const tried = refined(starts, sample, task.free, rounding);
        // A sample of many repeats may determine nothing, though the list does.
        if (!tried.empty()) starts.clear();
        for (candidate const& c : tried) {
            // What is far worse in the sample is not the best of all; equal sums are the same surface.
            if (c.sum > 1.5 * tried[0].sum) break;
            if (starts.empty() || c.sum > tried[0].sum * (1 + 1e-6)) starts.push_back(c.surface);
        }
    }
    auto const found = refined(starts, points, task.free, rounding);
    if (found.empty()) return result;
    candidate const& best = found[0];
    if (task.free.shift &&
        !is_curved(best.sum, plane_sum(points, m, task), points.size(), unknowns(task.free), local.grain)) {
        return result;
    }
    interval const z = extent_along(best.surface, points);
    if (!(z.high - z.low > 8 * local.grain)) return result;
    return {true, best.surface, z.low, z.high};
}

}  // namespace tvmath
