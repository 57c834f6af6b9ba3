#include "support/bench_name.h"
#include "support/seeded_random.h"
#include "tvmath/cone_fit.h"
#include "tvmath/cylinder_fit.h"

inline namespace tvmath {
namespace {

// Points of a surface of radius 20 amid them and of length 50, 1e-3 off it, about a tilted axis at (100, 50,
// 30).
idioms::array<point> scanned_surface(std::int64_t n, double slope) {
    seeded_random random(1);
    point const center(true, 100, 50, 30), axis = normalize(point(false, 0.2, -0.3, 1));
    point const u = normalize(cross(axis, point(false, 1, 0, 0))), v = cross(axis, u);
    idioms::array<point> list(static_cast<unsigned int>(n));
    point* const p = list.lazycopy_begin();
    for (std::int64_t i = 0; i < n; ++i) {
        double const turn = random.uniform(0, 6.283185307179586), z = random.uniform(-25, 25);
        double const r = 20 + slope * z + 1e-3 * random.normal();
        p[i] = center + u * (r * std::cos(turn)) + v * (r * std::sin(turn)) + axis * z;
    }
    return list;
}

template <class fit>
void run(benchmark::State& state, double slope, fit const& of) {
    auto const points = scanned_surface(state.range(0), slope);
    for (auto _ : state) benchmark::DoNotOptimize(of(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void free_cylinder(benchmark::State& state) {
    run(state, 0, [](auto const& points) { return cylinder_fit(points); });
}

void parallel_cylinder(benchmark::State& state) {
    point const axis(false, 0.2, -0.3, 1);
    run(state, 0, [&](auto const& points) { return cylinder_parallel_fit(axis, points); });
}

void free_cone(benchmark::State& state) {
    run(state, 0.3, [](auto const& points) { return cone_fit(points, cone()); });
}

void parallel_cone(benchmark::State& state) {
    point const axis(false, 0.2, -0.3, 1);
    run(state, 0.3, [&](auto const& points) { return cone_parallel_fit(axis, points); });
}

point const middle(true, 100, 50, 30), along(false, 0.2, -0.3, 1);

void centered_cylinder(benchmark::State& state) {
    run(state, 0, [](auto const& points) { return cylinder_parallel_centered_fit(middle, along, points); });
}

void centered_cone(benchmark::State& state) {
    run(state, 0.3, [](auto const& points) { return cone_centered_fit(middle, points, cone()); });
}

void parallel_centered_cone(benchmark::State& state) {
    run(state, 0.3, [](auto const& points) { return cone_parallel_centered_fit(middle, along, points); });
}

int const registered = [] {
    // 1e2: a touched bore, where the choice among the starts costs most; 1e6: a scan, where the passes do.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("cylinder_fit", "tvmath", free_cylinder, sizes);
    register_sizes("cylinder_parallel_fit", "tvmath", parallel_cylinder, sizes);
    register_sizes("cone_fit", "tvmath", free_cone, sizes);
    register_sizes("cone_parallel_fit", "tvmath", parallel_cone, sizes);
    register_sizes("cylinder_parallel_centered_fit", "tvmath", centered_cylinder, sizes);
    register_sizes("cone_centered_fit", "tvmath", centered_cone, sizes);
    register_sizes("cone_parallel_centered_fit", "tvmath", parallel_centered_cone, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
