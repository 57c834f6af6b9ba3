#include "tvmath/telecentricity_corrector.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"

inline namespace tvmath {
namespace {

telecentricity_corrector lens() {
    telecentricity_corrector c;
    c.residual = 1e-4;
    c.magnification = 1e-4;
    c.tilt_x = 2e-3;
    c.tilt_y = -1e-3;
    return c;
}

void apply_and_remove(benchmark::State& state) {
    telecentricity_corrector const c = lens();
    std::vector<point> const points = space_cloud(state.range(0));
    for (auto _ : state) {
        for (point const& p : points) benchmark::DoNotOptimize(p * c / c);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Observations of `artefacts` artefacts, in turn.
template <unsigned int artefacts>
void fit(benchmark::State& state) {
    std::vector<point> const stage = space_cloud(state.range(0));
    seeded_random random(5);
    std::vector<point> image;
    std::vector<unsigned int> ids;
    for (point const& d : stage) {
        ids.push_back(static_cast<unsigned int>(ids.size()) % artefacts);
        point const c(true, 3.0 * ids.back() - d.x(), -d.y());
        image.push_back(c / lens() + point(false, 1e-4 * random.normal(), 1e-4 * random.normal()));
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            telecentricity_corrector::fit(image, stage, ids, 1, screen_corrector(), transform()).residual);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    register_sizes("telecentricity_points", "tvmath", apply_and_remove, {1, 1000000});
    // 50: a calibration; 100000 of 1000 artefacts: time grows with the observations alone.
    register_sizes("telecentricity_fit_1", "tvmath", fit<1>, {50});
    register_sizes("telecentricity_fit_5", "tvmath", fit<5>, {50});
    register_sizes("telecentricity_fit_1000", "tvmath", fit<1000>, {100000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
