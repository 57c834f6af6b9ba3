#include "measure/edges/measure_result.h"

#include <cmath>
#include <memory>

#include "support/bench_name.h"
#include "support/seeded_random.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// A dark disc on white, with the blur of a good lens and some noise.
image disc(double radius) {
    auto const side = static_cast<unsigned int>(2 * radius + 60);
    seeded_random random(1);
    image m(side, side);
    for (unsigned int y = 0; y < side; ++y) {
        for (unsigned int x = 0; x < side; ++x) {
            double const outward = std::hypot(x + 0.5 - side / 2.0, y + 0.5 - side / 2.0) - radius;
            m(y)(x) = 0.2 + 0.6 * 0.5 * std::erfc(-outward) + 0.01 * random.normal();
        }
    }
    return m;
}

// From the image to the circle with its residuals, by the number of places about it.
void measured_circle(benchmark::State& state) {
    double const radius = static_cast<double>(state.range(0)) * 12 / (2 * pi);
    image const scene = disc(radius);
    measure_job job;
    measure_tool tool;
    tool.kind = find_fit_kind("circle");
    auto place = std::make_shared<Circle_Description>();
    place->geometry = circle(radius, point(true, radius + 31.5, radius + 28.5));
    tool.place = place;
    measure_frame const frame(job, matrix::cols(scene), matrix::rows(scene));
    std::size_t found = 0;
    for (auto _ : state) {
        measured_tool const result = measure(scene, frame, tool);
        found = result.edges.size();
        benchmark::DoNotOptimize(result);
    }
    if (found != static_cast<std::size_t>(state.range(0))) state.SkipWithError("edges are missing");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    register_sizes("measured_circle", "tvmath", measured_circle, {13, 52, 105, 210});
    return 0;
}();

}  // namespace
}  // namespace tvmath
