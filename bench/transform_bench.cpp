#include "tvmath/transform.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"

#ifdef TVMATH_HAS_EIGEN
#include <Eigen/Geometry>
#endif

inline namespace tvmath {
namespace {

transform seeded_transform() {
    return transform::rotation(0.1, 0.2, 0.3).translate(1, 2, 3).dilate(1.1, 0.9, 1.2);
}

void compose(benchmark::State& state) {
    transform const a = seeded_transform(), b = transform::rotation(0.3, 0.1, 0.2);
    for (auto _ : state) {
        transform const c = a * b;
        benchmark::DoNotOptimize(c.begin());
    }
}

// There and back, so that the coordinates stay as they are over millions of rounds.
void points_through(benchmark::State& state) {
    auto points = space_cloud(state.range(0));
    transform const t = seeded_transform();
    for (auto _ : state) {
        for (point& p : points) p *= t;
        benchmark::ClobberMemory();
        for (point& p : points) p /= t;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(2 * state.iterations() * state.range(0));
}

void list_through(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    idioms::array<point> list(static_cast<unsigned int>(points.size()), points.data());
    transform const t = seeded_transform();
    for (auto _ : state) {
        list *= t;
        benchmark::ClobberMemory();
        list /= t;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(2 * state.iterations() * state.range(0));
}

#ifdef TVMATH_HAS_EIGEN
Eigen::Affine3d eigen_transform() {
    transform const t = seeded_transform();
    Eigen::Affine3d result = Eigen::Affine3d::Identity();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) result.linear()(i, j) = t[static_cast<unsigned int>(4 * i + j + 1)];
        result.translation()(i) = t[static_cast<unsigned int>(4 * i)];
    }
    return result;
}

// Both maps together, which a transform of ours always holds.
void eigen_compose_with_inverse(benchmark::State& state) {
    Eigen::Affine3d const a = eigen_transform(),
                          b = Eigen::Affine3d(Eigen::AngleAxisd(0.3, Eigen::Vector3d::UnitZ()));
    for (auto _ : state) {
        Eigen::Affine3d const c = b * a, inverse = c.inverse();
        benchmark::DoNotOptimize(c.data());
        benchmark::DoNotOptimize(inverse.data());
    }
}

void eigen_points_through(benchmark::State& state) {
    std::vector<Eigen::Vector3d> points;
    for (point const& p : space_cloud(state.range(0))) points.emplace_back(p.x(), p.y(), p.z());
    Eigen::Affine3d const t = eigen_transform(), back = t.inverse();
    for (auto _ : state) {
        for (Eigen::Vector3d& p : points) p = t * p;
        benchmark::ClobberMemory();
        for (Eigen::Vector3d& p : points) p = back * p;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(2 * state.iterations() * state.range(0));
}
#endif

int const registered = [] {
    register_sizes("transform_compose", "tvmath", compose, {3});
    // 1: a single point; 1e3: in the first cache; 1e6: beyond every cache, where 40 bytes meet 24.
    std::vector<std::int64_t> const sizes = {1, 1000, 1000000};
    register_sizes("point_through", "tvmath", points_through, sizes);
    register_sizes("list_through", "tvmath", list_through, sizes);
#ifdef TVMATH_HAS_EIGEN
    register_sizes("transform_compose", "eigen_inverse", eigen_compose_with_inverse, {3});
    register_sizes("point_through", "eigen", eigen_points_through, sizes);
    register_sizes("list_through", "eigen", eigen_points_through, sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
