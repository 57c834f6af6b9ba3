#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/composite_fit.h"
#include "tvmath/transform.h"

inline namespace tvmath {
namespace {

void count_points(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

using fit_of_pairs = transform(idioms::array<point>, idioms::array<point>, idioms::array<double>);

// Pairs of a cloud and its turned, moved and slightly scattered image.
template <fit_of_pairs* fit>
void fit_pairs(benchmark::State& state) {
    std::vector<point> list = space_cloud(state.range(0));
    auto const from = as_array(list);
    seeded_random random(6);
    transform const motion = transform::rotation(0.3);
    for (point& p : list) {
        p *= motion;
        p += point(false, 5 + 1e-3 * random.normal(), 1e-3 * random.normal(), 1e-3 * random.normal());
    }
    auto const to = as_array(list);
    for (auto _ : state) {
        transform const found = fit(from, to, idioms::array<double>());
        if (found.is_trivial()) state.SkipWithError("no result");
        benchmark::DoNotOptimize(found);
    }
    count_points(state);
}

// A plate with two holes and an edge, a third of the points each, measured where it lies turned and moved.
struct composite {
    std::vector<ctl::ref<Geometry_Description>> features;
    std::vector<std::vector<point>> points;

    explicit composite(std::int64_t n) {
        seeded_random random(7);
        transform const placement = transform::rotation(0.2) * transform::translation(point(false, 3, -2));
        for (double const x : {0.0, 60.0}) {
            auto const hole = ctl::make_ref<Circle_Description>();
            hole->geometry = circle(20, point(true, x, 0));
            features.emplace_back(hole);
            std::vector<point> measured = rippled_circle(n / 3);
            for (point& p : measured) p = (p + point(false, x - 100, -50)) * placement;
            points.push_back(measured);
        }
        auto const edge = ctl::make_ref<Segment_Description>();
        edge->geometry = line(point(true, -30, -30), point(true, 90, -30));
        features.emplace_back(edge);
        std::vector<point> measured;
        for (std::int64_t i = 0; i < n - n / 3 * 2; ++i) {
            measured.push_back(point(true, random.uniform(-30, 90), -30 + 1e-3 * random.normal()) *
                               placement);
        }
        points.push_back(measured);
    }
};

void fit_plate(benchmark::State& state) {
    composite const plate(state.range(0));
    for (auto _ : state) {
        transform const found = fit_composite(plate.features, plate.points);
        if (found.is_trivial()) state.SkipWithError("no result");
        benchmark::DoNotOptimize(found);
    }
    count_points(state);
}

void profile_error(benchmark::State& state) {
    composite const plate(state.range(0));
    transform const placement = fit_composite(plate.features, plate.points);
    for (auto _ : state) {
        benchmark::DoNotOptimize(calc_composite_profile_error(plate.features, plate.points, placement));
    }
    count_points(state);
}

int const registered = [] {
    // 1e2: a touched plate; 1e4: an edge tool; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("transform_fit2d", "tvmath", fit_pairs<transform::fit2d>, sizes);
    register_sizes("transform_fit3d", "tvmath", fit_pairs<transform::fit3d>, sizes);
    register_sizes("composite_fit", "tvmath", fit_plate, sizes);
    register_sizes("composite_profile_error", "tvmath", profile_error, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
