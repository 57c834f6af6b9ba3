#include "tvmath/flatness_corrector.h"

#include "support/bench_name.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

constexpr unsigned int width = 640, height = 480;
constexpr double pixel = 0.005;

point screen_point(seeded_random& random) {
    return point(true, random.uniform(-320, 320), random.uniform(-240, 240));
}

// Heights of focus on a sphere of radius 80 with 1e-5 of noise, at random places.
std::vector<point> focus_points(std::int64_t n) {
    seeded_random random(1);
    std::vector<point> points;
    points.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        point p = screen_point(random);
        p.promote3d();
        p.z() = -pixel * pixel * (p.x() * p.x() + p.y() * p.y()) / 160 + 1e-5 * random.normal();
        points.push_back(p);
    }
    return points;
}

flatness_corrector fitted(std::vector<point> const& points, std::int64_t max_order) {
    return flatness_corrector::fit(width, height, points, 0, transform::dilation(pixel, pixel, 1.0),
                                   screen_corrector(), static_cast<unsigned int>(max_order));
}

flatness_corrector of_order(std::int64_t order) {
    seeded_random random(2);
    flatness_corrector c;
    c.order = static_cast<unsigned int>(order);
    c.x_scale = 2.0 / width;
    c.y_scale = 2.0 / height;
    c.coefficients = vector((c.order + 1) * (c.order + 2) / 2);
    for (unsigned int i = 0; i < dim(c.coefficients); ++i) c.coefficients(i) = random.normal();
    return c;
}

// One of 1024 different points at a time, so that no result can be kept.
template <class evaluation>
void evaluate(benchmark::State& state, evaluation const& at) {
    seeded_random random(3);
    std::vector<point> points;
    for (int i = 0; i < 1024; ++i) points.push_back(screen_point(random));
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(at(points[i++ & 1023]));
    state.SetItemsProcessed(state.iterations());
}

void value(benchmark::State& state) {
    flatness_corrector const c = of_order(state.range(0));
    evaluate(state, [&](point const& p) { return c.get_focus_correction(p); });
}

void slope(benchmark::State& state) {
    flatness_corrector const c = of_order(state.range(0));
    evaluate(state, [&](point const& p) { return c.get_focus_correction_derivative(p); });
}

void cut(benchmark::State& state) {
    flatness_corrector const c = of_order(state.range(0));
    evaluate(state, [&](point const& p) { return c.get_focus_correction_at_y(p.y()); });
}

void along_row(benchmark::State& state) {
    flatness_row_corrector const row = of_order(state.range(0)).get_focus_correction_at_y(17);
    evaluate(state, [&](point const& p) { return row.get_focus_correction_at_x(p.x()); });
}

void correct_points(benchmark::State& state) {
    flatness_corrector const c = of_order(4);
    std::vector<point> const points = focus_points(state.range(0));
    for (auto _ : state) {
        for (point const& p : points) benchmark::DoNotOptimize(p * c);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <int max_order>
void fit(benchmark::State& state) {
    std::vector<point> const points = focus_points(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(fitted(points, max_order).curvature);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 4: what a lens asks for; 10: the highest that is tried as a rule.
    std::vector<std::int64_t> const orders = {2, 4, 10};
    register_sizes("flatness_value", "tvmath", value, orders);
    register_sizes("flatness_slope", "tvmath", slope, orders);
    register_sizes("flatness_cut", "tvmath", cut, orders);
    register_sizes("flatness_row", "tvmath", along_row, orders);
    register_sizes("flatness_points", "tvmath", correct_points, {1000000});
    // 25: a calibration by hand; 400: one by the machine.
    register_sizes("flatness_fit_to_4", "tvmath", fit<4>, {25, 400});
    register_sizes("flatness_fit_to_10", "tvmath", fit<10>, {400});
    return 0;
}();

}  // namespace
}  // namespace tvmath
