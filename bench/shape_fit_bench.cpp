#include "tvmath/shape_fit.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/ring_fit.h"

inline namespace tvmath {
namespace {

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// `n` points of an outline about (100, 50) with 1e-3 of form error, in random order.
template <class outline>
std::vector<point> rippled(std::int64_t n, outline at_random) {
    seeded_random random(1);
    std::vector<point> points;
    points.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        points.push_back(point(true, 100, 50) + at_random(random, 1e-3 * random.normal()));
    }
    return points;
}

point on_ellipse(seeded_random& random, double off) {
    double const t = random.uniform(0, 6.283185307179586);
    return point(false, (20 + off) * std::cos(t), (12 + off) * std::sin(t));
}

point on_gap(seeded_random& random, double off) {
    return point(false, random.uniform(-20, 20), random.coin() ? 12 + off : -12 - off);
}

point on_rectangle(seeded_random& random, double off) {
    if (random.coin()) return on_gap(random, off);
    return point(false, random.coin() ? 20 + off : -20 - off, random.uniform(-12, 12));
}

point on_slot(seeded_random& random, double off) {
    if (random.coin()) return on_gap(random, off);
    double const w = random.uniform(-1.5, 1.5), side = random.coin() ? 1 : -1;
    return point(false, side * (20 + (12 + off) * std::cos(w)), (12 + off) * std::sin(w));
}

point on_oring(seeded_random& random, double off) {
    point const outer = on_ellipse(random, off);
    return random.coin() ? outer : outer * 0.5;
}

void quick_ellipse(benchmark::State& state) {
    auto const points = rippled(state.range(0), on_ellipse);
    point center, major, minor;
    for (auto _ : state) benchmark::DoNotOptimize(ellipse_quick_fit(points, center, major, minor));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <auto outline, auto fit>
void fit_shape(benchmark::State& state) {
    auto const points = as_array(rippled(state.range(0), outline));
    for (auto _ : state) benchmark::DoNotOptimize(fit(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

ellipse fit_about(idioms::array<point> const& points) {
    return ellipse_centered_fit(point(true, 100, 50), points);
}

bool fit_quick_about(idioms::array<point> const& points) {
    point center, major, minor;
    return ellipse_quick_centered_fit(point(true, 100, 50), points, center, major, minor);
}

transform fit_oring(idioms::array<point> const& points) {
    ring inner, outer;
    return oring_fit(points, inner, outer);
}

ring fit_ring(idioms::array<point> const& points) {
    transform placement;
    return ring_fit(points, placement);
}

rectangle fit_rectangle(idioms::array<point> const& points) {
    return rectangle_fit(points, rectangle());
}

gap fit_gap(idioms::array<point> const& points) {
    return gap_fit(points);
}

int const registered = [] {
    // 100: a touched feature; 1e4: an edge tool; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("ellipse_quick_fit", "tvmath", quick_ellipse, sizes);
    register_sizes("ellipse_quick_centered_fit", "tvmath", fit_shape<on_ellipse, fit_quick_about>, sizes);
    register_sizes("ellipse_centered_fit", "tvmath", fit_shape<on_ellipse, fit_about>, sizes);
    register_sizes("rectangle_fit", "tvmath", fit_shape<on_rectangle, fit_rectangle>, sizes);
    register_sizes("slot_fit", "tvmath", fit_shape<on_slot, slot_fit>, sizes);
    register_sizes("gap_fit", "tvmath", fit_shape<on_gap, fit_gap>, sizes);
    register_sizes("ring_fit", "tvmath", fit_shape<on_ellipse, fit_ring>, sizes);
    register_sizes("oring_fit", "tvmath", fit_shape<on_oring, fit_oring>, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
