#include "tvmath/matrix.h"

#include "support/bench_name.h"
#include "support/seeded_random.h"

#ifdef TVMATH_HAS_EIGEN
#include <Eigen/Dense>
#endif

inline namespace tvmath {
namespace {

matrix seeded_matrix(std::int64_t n, std::uint64_t seed) {
    seeded_random random(seed);
    auto const size = static_cast<unsigned int>(n);
    matrix m(size, size);
    for (unsigned int i = 0; i < size; ++i) {
        for (unsigned int j = 0; j < size; ++j) m(i)(j) = random.uniform(-1, 1);
    }
    return m;
}

void product(benchmark::State& state) {
    matrix const a = seeded_matrix(state.range(0), 1), b = seeded_matrix(state.range(0), 2);
    for (auto _ : state) {
        matrix const c = a * b;
        benchmark::DoNotOptimize(c.begin());
    }
}

void inverse_by_elimination(benchmark::State& state) {
    matrix const a = seeded_matrix(state.range(0), 1);
    for (auto _ : state) {
        matrix const c = inverse_gj(a);
        benchmark::DoNotOptimize(c.begin());
    }
}

void svd(benchmark::State& state) {
    matrix const a = seeded_matrix(state.range(0), 1);
    matrix u, v;
    for (auto _ : state) {
        vector const w = singular_value_decomposition(a, u, v);
        benchmark::DoNotOptimize(w.begin());
    }
}

#ifdef TVMATH_HAS_EIGEN
using eigen_matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

eigen_matrix seeded_eigen_matrix(std::int64_t n, std::uint64_t seed) {
    matrix const m = seeded_matrix(n, seed);
    eigen_matrix result(n, n);
    for (unsigned int i = 0; i < rows(m); ++i) {
        for (unsigned int j = 0; j < cols(m); ++j) result(i, j) = m[i][j];
    }
    return result;
}

void eigen_product(benchmark::State& state) {
    eigen_matrix const a = seeded_eigen_matrix(state.range(0), 1), b = seeded_eigen_matrix(state.range(0), 2);
    for (auto _ : state) {
        eigen_matrix const c = a * b;
        benchmark::DoNotOptimize(c.data());
    }
}

void eigen_inverse(benchmark::State& state) {
    eigen_matrix const a = seeded_eigen_matrix(state.range(0), 1);
    for (auto _ : state) {
        eigen_matrix const c = a.inverse();
        benchmark::DoNotOptimize(c.data());
    }
}

void eigen_svd(benchmark::State& state) {
    eigen_matrix const a = seeded_eigen_matrix(state.range(0), 1);
    for (auto _ : state) {
        Eigen::JacobiSVD<eigen_matrix> const decomposition(a, Eigen::ComputeFullU | Eigen::ComputeFullV);
        benchmark::DoNotOptimize(decomposition.singularValues().data());
    }
}
#endif

int const registered = [] {
    // 3: a plane or sphere; 6: a cone; 10: a small corrector; 30: a screen correction.
    std::vector<std::int64_t> const sizes = {3, 6, 10, 30};
    register_sizes("matrix_product", "tvmath", product, sizes);
    register_sizes("inverse_gj", "tvmath", inverse_by_elimination, sizes);
    register_sizes("svd", "tvmath", svd, sizes);
#ifdef TVMATH_HAS_EIGEN
    register_sizes("matrix_product", "eigen", eigen_product, sizes);
    register_sizes("inverse_gj", "eigen_lu", eigen_inverse, sizes);
    register_sizes("svd", "eigen_jacobi", eigen_svd, sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
