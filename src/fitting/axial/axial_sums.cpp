#include "axial_sums.h"

#include <cmath>

#include "geometry/point_lanes.h"

inline namespace tvmath {
namespace {

// The sums that all derivatives are made of. With the unit vector n = (nu, nv) from the axis to the point,
// t = cos z + sin rho its place along the slant and d = cos rho - sin z - offset its distance:
//     grad d = -(nu t, nv t, cos nu, cos nv, t, 1),
// and the second derivatives follow from rho² = |p - origin|² - z², z turning by the exact rotation.
// e = d / rho.
// clang-format off
enum term : std::size_t {
    dd, d_tu, d_tv, d_u, d_v, d_t, d_1,
    ttuu, ttuv, ttvv, tuu, tuv, tvv, uu, uv, vv, ttu, ttv, tu, tv, tt, u_1, v_1, t_1,
    bend_uu, bend_uv, bend_vv, ez_vv, ez_uv, ez_uu, e_vv, e_uv, e_uu, d_z, along_u, along_v, along_1,
    terms
};
// clang-format on

inline void take_root(double& x) {
    x = std::sqrt(x);
}
inline void take_root(point_lanes& x) {
    for (int i = 0; i < 4; ++i) x[i] = std::sqrt(x[i]);
}

// One point, or four in lanes.
template <class number>
__attribute__((always_inline)) inline void add_terms(axial_surface const& s, double c, double k,
                                                     number const& px, number const& py, number const& pz,
                                                     number* sum) {
    number const qx = px - s.origin.x, qy = py - s.origin.y, qz = pz - s.origin.z;
    number const x = qx * s.u.x + qy * s.u.y + qz * s.u.z, y = qx * s.v.x + qy * s.v.y + qz * s.v.z;
    number const z = qx * s.w.x + qy * s.w.y + qz * s.w.z;
    number rho = x * x + y * y;
    take_root(rho);
    // On the axis no direction leads away from it, and the distance has a kink: no gradient but along t.
    number const zero{}, inverse = rho > 0 ? 1 / rho : zero;
    number const nu = x * inverse, nv = y * inverse, nuu = nu * nu, nuv = nu * nv, nvv = nv * nv;
    number const t = c * z + k * rho, d = c * rho - k * z - s.offset, pu = t * nu, pv = t * nv;
    sum[dd] += d * d;
    sum[d_tu] += d * pu;
    sum[d_tv] += d * pv;
    sum[d_u] += d * nu;
    sum[d_v] += d * nv;
    sum[d_t] += d * t;
    sum[d_1] += d;

    sum[ttuu] += pu * pu;
    sum[ttuv] += pu * pv;
    sum[ttvv] += pv * pv;
    sum[tuu] += pu * nu;
    sum[tuv] += pu * nv;
    sum[tvv] += pv * nv;
    sum[uu] += nuu;
    sum[uv] += nuv;
    sum[vv] += nvv;
    sum[ttu] += t * pu;
    sum[ttv] += t * pv;
    sum[tu] += pu;
    sum[tv] += pv;
    sum[tt] += t * t;
    sum[u_1] += nu;
    sum[v_1] += nv;
    sum[t_1] += t;

    number const e = d * inverse, ez = e * z, ezz = ez * z, er = d * rho, along = d * (k * z - c * rho);
    sum[bend_uu] += ezz * nvv - er * nuu;
    sum[bend_uv] -= (ezz + er) * nuv;
    sum[bend_vv] += ezz * nuu - er * nvv;
    sum[ez_vv] += ez * nvv;
    sum[ez_uv] -= ez * nuv;
    sum[ez_uu] += ez * nuu;
    sum[e_vv] += e * nvv;
    sum[e_uv] -= e * nuv;
    sum[e_uu] += e * nuu;
    sum[d_z] += d * z;
    sum[along_u] += along * nu;
    sum[along_v] += along * nv;
    sum[along_1] += along;
}

// Four points at a time, the rest alone; the order of the additions is the same on every machine.
TVMATH_WIDE_LOOP void add_all_terms(axial_surface const& s, double c, double k, xyz const* p, std::size_t n,
                                    double* total) {
    point_lanes lanes[terms] = {};
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        add_terms(s, c, k, point_lanes{p[i].x, p[i + 1].x, p[i + 2].x, p[i + 3].x},
                  point_lanes{p[i].y, p[i + 1].y, p[i + 2].y, p[i + 3].y},
                  point_lanes{p[i].z, p[i + 1].z, p[i + 2].z, p[i + 3].z}, lanes);
    }
    for (std::size_t j = 0; j < terms; ++j) {
        total[j] = (lanes[j][0] + lanes[j][1]) + (lanes[j][2] + lanes[j][3]);
    }
    for (; i < n; ++i) add_terms(s, c, k, p[i].x, p[i].y, p[i].z, total);
}

}  // namespace

axial_sums axial_sums_at(axial_surface const& surface, std::span<xyz const> points) {
    double const c = std::cos(surface.angle), k = std::sin(surface.angle);
    double s[terms];
    add_all_terms(surface, c, k, points.data(), points.size(), s);
    double const n = static_cast<double>(points.size());

    axial_sums sums;
    sums.squares = s[dd];
    sums.gradient = {-s[d_tu], -s[d_tv], -c * s[d_u], -c * s[d_v], -s[d_t], -s[d_1]};
    // Lower triangles, in the order of the unknowns.
    sums.gauss = {{{s[ttuu]},
                   {s[ttuv], s[ttvv]},
                   {c * s[tuu], c * s[tuv], c * c * s[uu]},
                   {c * s[tuv], c * s[tvv], c * c * s[uv], c * c * s[vv]},
                   {s[ttu], s[ttv], c * s[tu], c * s[tv], s[tt]},
                   {s[tu], s[tv], c * s[u_1], c * s[v_1], s[t_1], n}}};
    axial_system::square const bend = {{{c * s[bend_uu] + k * s[d_z]},
                                        {c * s[bend_uv], c * s[bend_vv] + k * s[d_z]},
                                        {c * s[ez_vv] + k * s[d_1], c * s[ez_uv], c * s[e_vv]},
                                        {c * s[ez_uv], c * s[ez_uu] + k * s[d_1], c * s[e_uv], c * s[e_uu]},
                                        {s[along_u], s[along_v], k * s[d_u], k * s[d_v], s[along_1]},
                                        {}}};
    sums.newton = sums.gauss;
    for (std::size_t i = 0; i < axial_unknowns; ++i) {
        for (std::size_t j = 0; j <= i; ++j) sums.newton[i][j] += bend[i][j];
    }
    return sums;
}

}  // namespace tvmath
