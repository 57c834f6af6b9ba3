#include <cmath>

#include "support/bench_name.h"
#include "support/fit_models.h"
#include "support/seeded_points.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/feature_fit.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"
#ifdef TVMATH_HAS_EIGEN
#include "support/eigen_peer.h"
#endif
#ifdef TVMATH_HAS_CERES
#include "support/ceres_peer.h"
#endif

// The fits beside the same fits by Eigen and Ceres. All work on one thread with one set of compiler options.
// The peers get their points in the layout they like, their memory and the algebraic start before the clock
// runs; the time of tvmath includes its start and the check of the points.

inline namespace tvmath {
namespace {

// What is fitted: the points, and the start of the peers' iterations.
struct problem {
    std::vector<point> points;
    std::vector<double> start;
};

std::vector<point> in_space(std::vector<point> points) {
    for (point& p : points) p.promote3d();
    return points;
}

problem circle_problem(std::int64_t n) {
    problem all{in_space(rippled_circle(n)), {}};
    point c;
    double r = 0;
    circle_quick_fit(all.points, c, r);
    all.start = {c.x(), c.y(), r};
    return all;
}

problem sphere_problem(std::int64_t n) {
    problem all{rippled_sphere(n), {}};
    point c;
    double r = 0;
    sphere_quick_fit(all.points, c, r);
    all.start = {c.x(), c.y(), c.z(), r};
    return all;
}

problem ellipse_problem(std::int64_t n) {
    problem all{in_space(rippled_ellipse(n)), {}};
    point c, a, b;
    ellipse_quick_fit(all.points, c, a, b);
    all.start = {c.x(), c.y(), a.length2d(), b.length2d(), a.angle2d()};
    return all;
}

problem plane_problem(std::int64_t n) {
    return {rippled_plane(n), {-0.29, 0.21, 4.5}};  // -0.3, 0.2 and some 4.7 come out
}

void count_points(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <auto make, auto fit>
void by_tvmath(benchmark::State& state) {
    std::vector<point> const points = make(state.range(0)).points;
    for (auto _ : state) {
        auto const found = fit(points);
        if (found.is_trivial()) state.SkipWithError("no result");
        benchmark::DoNotOptimize(found);
    }
    count_points(state);
}

void plane_by_tvmath(benchmark::State& state) {
    std::vector<point> const list = plane_problem(state.range(0)).points;
    idioms::array<point> const points(static_cast<unsigned int>(list.size()), list.data());
    for (auto _ : state) benchmark::DoNotOptimize(plane_fit(points));
    count_points(state);
}

// The yardstick: as many plain passes as the iteration needs rounds from the algebraic start, each of which
// forms the residual of every point, its derivatives and their products.
template <class model, auto make>
void plain_rounds(benchmark::State& state) {
    constexpr unsigned int n = model::unknowns;
    problem const all = make(state.range(0));
    int rounds = 0;
    for (auto _ : state) {
        vector q(n, all.start.data());
        rounds = 0;
        for (double moved = 1; moved > 1e-16 * dot(q, q) && rounds < 30; ++rounds) {
            double products[n][n] = {}, right[n] = {}, g[n];
            model const present(q.begin());
            for (point const& p : all.points) {
                double const r = present.row(&p[1], g);
                for (unsigned int i = 0; i < n; ++i) {
                    for (unsigned int j = i; j < n; ++j) products[i][j] += g[i] * g[j];
                    right[i] += g[i] * r;
                }
            }
            matrix normal(n, n);
            for (unsigned int i = 0; i < n; ++i) {
                for (unsigned int j = i; j < n; ++j) normal(i)(j) = normal(j)(i) = products[i][j];
            }
            vector step(n, right);
            if (!step.times_inverse_of(std::move(normal))) state.SkipWithError("singular");
            q -= step;
            moved = dot(step, step);
        }
        benchmark::DoNotOptimize(q.begin());
    }
    state.counters["rounds"] = rounds;
    count_points(state);
}

#ifdef TVMATH_HAS_EIGEN
eigen_points columns_of(std::vector<point> const& points, int coordinates) {
    eigen_points columns(static_cast<Eigen::Index>(points.size()), coordinates);
    Eigen::Index i = 0;
    for (point const& p : points) {
        for (int k = 0; k < coordinates; ++k) columns(i, k) = p[static_cast<unsigned int>(k) + 1];
        ++i;
    }
    return columns;
}

template <class model, auto make>
void by_eigen(benchmark::State& state) {
    problem const all = make(state.range(0));
    eigen_points const points = columns_of(all.points, model::coordinates);
    eigen_peer<model> peer(points);
    for (auto _ : state) {
        typename eigen_peer<model>::unknowns q(all.start.data());
        if (!peer.solve(q)) state.SkipWithError("no result");
        benchmark::DoNotOptimize(q.data());
    }
    count_points(state);
}

void plane_by_eigen(benchmark::State& state) {
    Eigen::Matrix3Xd const points = columns_of(plane_problem(state.range(0)).points, 3).transpose();
    Eigen::Vector3d center, normal;
    for (auto _ : state) {
        eigen_plane(points, center, normal);
        benchmark::DoNotOptimize(normal.data());
    }
    count_points(state);
}
#endif

#ifdef TVMATH_HAS_CERES
flat_points flattened(std::vector<point> const& points, int coordinates) {
    flat_points flat;
    for (point const& p : points) flat.numbers.insert(flat.numbers.end(), &p[1], &p[1] + coordinates);
    flat.count = static_cast<int>(points.size());
    return flat;
}

template <class model, auto make, bool one_block>
void by_ceres(benchmark::State& state) {
    problem const all = make(state.range(0));
    flat_points const points = flattened(all.points, model::coordinates);
    ceres_peer<model> peer(points, one_block);
    for (auto _ : state) {
        if (!peer.solve(all.start.data())) state.SkipWithError("no result");
        benchmark::DoNotOptimize(peer.unknowns());
    }
    count_points(state);
}

template <class model, auto make>
void by_tiny_ceres(benchmark::State& state) {
    problem const all = make(state.range(0));
    flat_points const points = flattened(all.points, model::coordinates);
    tiny_ceres_peer<model> peer(points);
    for (auto _ : state) {
        typename tiny_ceres_peer<model>::unknowns q(all.start.data());
        peer.solve(q);
        benchmark::DoNotOptimize(q.data());
    }
    count_points(state);
}
#endif

// 1e2: a touched feature; 1e4: an edge tool; 1e6: a scan, beyond every cache.
std::vector<std::int64_t> const sizes = {100, 10000, 1000000};

template <class model, auto make>
void register_ceres([[maybe_unused]] char const* family) {
#ifdef TVMATH_HAS_CERES
    register_sizes(family, "ceres", by_ceres<model, make, true>, sizes);
    register_sizes(family, "ceres_per_point", by_ceres<model, make, false>, sizes);
    register_sizes(family, "ceres_tiny", by_tiny_ceres<model, make>, sizes);
#endif
}

template <class model, auto make>
void register_peers(char const* family) {
    register_sizes(family, "plain_rounds", plain_rounds<model, make>, sizes);
#ifdef TVMATH_HAS_EIGEN
    register_sizes(family, "eigen", by_eigen<model, make>, sizes);
#endif
    register_ceres<model, make>(family);
}

circle fit_circle(std::vector<point> const& points) {
    return circle_fit(points);
}
ellipse fit_ellipse(std::vector<point> const& points) {
    return ellipse_fit(points);
}

int const registered = [] {
    register_sizes("circle_fit", "tvmath", by_tvmath<circle_problem, fit_circle>, sizes);
    register_peers<circle_model, circle_problem>("circle_fit");
    register_sizes("sphere_fit", "tvmath", by_tvmath<sphere_problem, sphere_fit>, sizes);
    register_peers<sphere_model, sphere_problem>("sphere_fit");
    register_sizes("ellipse_fit", "tvmath", by_tvmath<ellipse_problem, fit_ellipse>, sizes);
    register_peers<ellipse_model, ellipse_problem>("ellipse_fit");
    register_sizes("plane_fit", "tvmath", plane_by_tvmath, sizes);
#ifdef TVMATH_HAS_EIGEN
    register_sizes("plane_fit", "eigen", plane_by_eigen, sizes);
#endif
    register_ceres<plane_model, plane_problem>("plane_fit");
    return 0;
}();

}  // namespace
}  // namespace tvmath
