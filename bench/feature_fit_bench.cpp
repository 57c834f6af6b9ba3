#include "tvmath/feature_fit.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/residuals.h"

inline namespace tvmath {
namespace {

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// The yardstick: one plain pass over the same memory.
void plain_sum(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    for (auto _ : state) {
        double x = 0, y = 0, z = 0;
        for (point const& p : points) {
            x += p.x();
            y += p.y();
            z += p.z();
        }
        benchmark::DoNotOptimize(x + y + z);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_line(benchmark::State& state) {
    auto const points = as_array(space_cloud(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(line_fit(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_plane(benchmark::State& state) {
    auto const points = as_array(space_cloud(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(plane_fit(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class record>
void residuals(benchmark::State& state, record const& feature) {
    auto const points = space_cloud(state.range(0));
    std::vector<double> errors;
    for (auto _ : state) {
        calculate_errors(feature, points, errors);
        benchmark::DoNotOptimize(errors.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void circle_residuals(benchmark::State& state) {
    Circle_Description feature;
    feature.geometry = circle(15, point(true, 1, 2));
    residuals(state, feature);
}

void ellipse_residuals(benchmark::State& state) {
    Ellipse_Description feature;
    feature.geometry = ellipse(15, 9, 0.3, point(true, 1, 2));
    residuals(state, feature);
}

void cylinder_residuals(benchmark::State& state) {
    Cylinder_Description feature;
    feature.geometry = cylinder(15, 40, point(true, 1, 2, 3), point(false, 1, 2, 9));
    residuals(state, feature);
}

int const registered = [] {
    // 1e2: a touched feature; 1e4: an edge tool; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("line_fit", "tvmath", fit_line, sizes);
    register_sizes("plane_fit", "tvmath", fit_plane, sizes);
    register_sizes("residuals_circle", "tvmath", circle_residuals, sizes);
    register_sizes("residuals_ellipse", "tvmath", ellipse_residuals, sizes);
    register_sizes("residuals_cylinder", "tvmath", cylinder_residuals, sizes);
    for (char const* const family : {"line_fit", "plane_fit", "residuals_circle"}) {
        register_sizes(family, "plain_sum", plain_sum, sizes);
    }
    return 0;
}();

}  // namespace
}  // namespace tvmath
