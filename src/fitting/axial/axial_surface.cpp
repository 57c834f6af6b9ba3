#include "axial_surface.h"

#include <algorithm>
#include <cmath>

#include "axial_sums.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Pivots of the scaled system at which the points do not determine the surface. An arc of 5 degrees leaves
// 1e-9, exactly dependent unknowns the rounding of some sums, up to 1e-15.
constexpr double singular_pivot = 1e-13;

std::array<bool, axial_unknowns> free_unknowns(axial_freedom const& free) {
    return {free.tilt, free.tilt, free.shift, free.shift, free.angle, true};
}

// Steps beyond these leave the region where the derivatives say anything.
void limit(axial_system::row& step, axial_surface const& s) {
    double const turn = std::max(std::hypot(step[tilt_u], step[tilt_v]), std::fabs(step[taper]));
    double const reach = std::max(1.0, std::fabs(s.offset));
    double const move = std::max(std::hypot(step[shift_u], step[shift_v]), std::fabs(step[offset]));
    double const factor = std::min(1.0, std::min(0.4 / turn, reach / move));
    if (factor < 1) {
        for (double& x : step) x *= factor;
    }
}

axial_surface moved(axial_surface s, axial_system::row const& step, bool keep_origin) {
    s.origin = s.origin + step[shift_u] * s.u + step[shift_v] * s.v;
    s.offset += step[offset];
    s.angle = std::clamp(s.angle + step[taper], -1.55, 1.55);
    double const turn = std::hypot(step[tilt_u], step[tilt_v]);
    if (turn > 0) {
        xyz const to = (step[tilt_u] / turn) * s.u + (step[tilt_v] / turn) * s.v;
        s.w = unit(std::cos(turn) * s.w + std::sin(turn) * to);
        s.u = unit(s.u - dot(s.u, s.w) * s.w);
        s.v = cross(s.w, s.u);
    }
    if (!keep_origin) {
        double const along = -dot(s.origin, s.w);
        s.origin = s.origin + along * s.w;
        s.offset += std::sin(s.angle) * along;
    }
    return s;
}

// Largest change of an unknown, lengths relative to the radius where that is larger than the data.
double size_of(axial_system::row const& step, axial_surface const& s) {
    double const reach = std::max(1.0, std::fabs(s.offset));
    double const turn = std::max({std::fabs(step[tilt_u]), std::fabs(step[tilt_v]), std::fabs(step[taper])});
    double const move =
        std::max({std::fabs(step[shift_u]), std::fabs(step[shift_v]), std::fabs(step[offset])});
    return std::max(turn, move / reach);
}

// The step to the minimum of the quadratic model: Newton's where that is convex, else damped
// Gauss-Newton's.
bool find_step(axial_sums const& sums, std::array<bool, axial_unknowns> const& free, double damping,
               axial_system::row& step) {
    axial_system system;
    if (!system.factor(sums.newton, free, damping, singular_pivot) &&
        !system.factor(sums.gauss, free, std::max(damping, 1e-6), singular_pivot)) {
        return false;
    }
    axial_system::row downhill = sums.gradient;
    for (double& x : downhill) x = -x;
    step = system.solve(downhill);
    return true;
}

}  // namespace

axial_surface axial_surface_about(xyz const& origin, xyz const& axis) {
    axial_surface s;
    s.origin = origin;
    s.w = axis;
    s.u = any_perpendicular(axis);
    s.v = cross(s.w, s.u);
    return s;
}

bool refine_axial_surface(std::span<xyz const> points, axial_freedom free, axial_surface& surface,
                          double& sum) {
    auto const unknowns_free = free_unknowns(free);
    axial_sums now = axial_sums_at(surface, points);
    sum = now.squares;
    double damping = 0, last_size = infinity;
    bool settled = false;
    for (int round = 0; round < 20 && !settled; ++round) {
        axial_system::row step{};
        if (!find_step(now, unknowns_free, damping, step)) return false;
        limit(step, surface);
        double const size = size_of(step, surface);
        axial_surface const trial = moved(surface, step, !free.shift);
        axial_sums const next = axial_sums_at(trial, points);
        if (!std::isfinite(next.squares)) return false;
        // Small steps are judged by their size: the sums then differ by less than their rounding.
        bool const small = size < 1e-6;
        if (next.squares > now.squares && !small) {
            damping = damping == 0 ? 1e-3 : 10 * damping;
            continue;
        }
        settled = size <= 1e-14 || (size < 1e-9 && size > last_size / 4);
        last_size = size;
        damping = damping < 1e-3 ? 0 : damping / 10;
        surface = trial;
        now = next;
        sum = next.squares;
    }
    axial_system judge;
    return (settled || last_size < 1e-9) && judge.factor(now.gauss, unknowns_free, 0, singular_pivot);
}

}  // namespace tvmath
