#include "tvmath/polynomial.h"

#include <array>

#include "support/bench_name.h"
#include "support/seeded_random.h"

#ifdef TVMATH_HAS_EIGEN
#include <Eigen/Dense>
#include <unsupported/Eigen/Polynomials>
#endif

inline namespace tvmath {
namespace {

constexpr int set_size = 256;  // polynomials, so that no branch is learnt by heart

using coefficients = std::array<double, 9>;

// Polynomials of the degree with all roots real, from -10 to 10: a line or a circle that does cut a curve.
std::vector<coefficients> seeded_set(std::int64_t degree) {
    seeded_random random(1);
    std::vector<coefficients> result(set_size);
    for (coefficients& c : result) {
        c[0] = random.uniform(0.5, 2);
        for (std::size_t n = 1; n <= static_cast<std::size_t>(degree); ++n) {
            double const root = random.uniform(-10, 10);
            for (std::size_t i = n + 1; i-- > 0;) c[i] = (i > 0 ? c[i - 1] : 0) - (i < n ? root * c[i] : 0);
        }
    }
    return result;
}

template <class solver>
void run(benchmark::State& state, solver const& solve) {
    auto const set = seeded_set(state.range(0));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(solve(set[i]));
        i = (i + 1) % set_size;
    }
}

void closed_form(benchmark::State& state) {
    switch (state.range(0)) {
        case 2:
            return run(state, [](coefficients const& c) { return quadratic(c[0], c[1], c[2]); });
        case 3:
            return run(state, [](coefficients const& c) { return cubic(c[0], c[1], c[2], c[3]); });
        default:
            return run(state, [](coefficients const& c) { return quartic(c[0], c[1], c[2], c[3], c[4]); });
    }
}

void complex_closed_form(benchmark::State& state) {
    using z = complex;
    switch (state.range(0)) {
        case 2:
            return run(state, [](coefficients const& c) { return quadratic(z(c[0]), z(c[1]), z(c[2])); });
        case 3:
            return run(state,
                       [](coefficients const& c) { return cubic(z(c[0]), z(c[1]), z(c[2]), z(c[3])); });
        default:
            return run(state, [](coefficients const& c) {
                return quartic(z(c[0]), z(c[1]), z(c[2]), z(c[3]), z(c[4]));
            });
    }
}

void newton(benchmark::State& state) {
    auto const n = static_cast<unsigned int>(state.range(0)) + 1;
    run(state, [n](coefficients const& c) { return solve_nr(vector(n, c.data())); });
}

#ifdef TVMATH_HAS_EIGEN
template <int degree>
void eigen_solver(benchmark::State& state) {
    Eigen::PolynomialSolver<double, degree> solver;
    std::vector<double> roots;
    run(state, [&](coefficients const& c) {
        solver.compute(Eigen::Map<Eigen::Matrix<double, degree + 1, 1> const>(c.data()));
        roots.clear();
        solver.realRoots(roots);
        return roots.size();
    });
}

void eigen(benchmark::State& state) {
    switch (state.range(0)) {
        case 2:
            return eigen_solver<2>(state);
        case 3:
            return eigen_solver<3>(state);
        case 4:
            return eigen_solver<4>(state);
        default:
            return eigen_solver<8>(state);
    }
}
#endif

int const registered = [] {
    // 2, 3, 4: conics with each other and with lines; 8: the nearest point of two curves.
    register_sizes("real_roots", "tvmath", closed_form, {2, 3, 4});
    register_sizes("complex_roots", "tvmath", complex_closed_form, {2, 3, 4});
    register_sizes("newton_roots", "tvmath", newton, {2, 3, 4, 8});
#ifdef TVMATH_HAS_EIGEN
    register_sizes("real_roots", "eigen", eigen, {2, 3, 4});
    register_sizes("complex_roots", "eigen", eigen, {2, 3, 4});
    register_sizes("newton_roots", "eigen", eigen, {2, 3, 4, 8});
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
