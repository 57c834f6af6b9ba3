#include <cmath>

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/geometry_fitter.h"
#include "tvmath/iterative_lsf.h"

inline namespace tvmath {
namespace {

std::vector<point> in_space(std::vector<point> points) {
    for (point& p : points) p.promote3d();
    return points;
}

std::vector<point> rippled_sphere(std::int64_t n) {
    seeded_random random(3);
    std::vector<point> points = space_cloud(n);
    for (point& p : points) p *= (20 + 1e-3 * random.normal()) / p.length3d();
    return points;
}

std::vector<point> rippled_ellipse(std::int64_t n) {
    std::vector<point> points = in_space(rippled_circle(n));
    for (point& p : points) p.dilate(1.5, 1);
    return points;
}

template <class fitter, class description>
void run(benchmark::State& state, std::vector<point> const& points) {
    fitter f;
    f.add(geometry_fitter::fit(points));
    description found;
    for (auto _ : state) {
        if (!f.result(found)) state.SkipWithError("no result");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void circle_of(benchmark::State& state) {
    run<geometry_fitter::circle_fitter, Circle_Description>(state, in_space(rippled_circle(state.range(0))));
}
void sphere_of(benchmark::State& state) {
    run<geometry_fitter::sphere_fitter, Sphere_Description>(state, rippled_sphere(state.range(0)));
}
void ellipse_of(benchmark::State& state) {
    run<geometry_fitter::ellipse_fitter, Ellipse_Description>(state, rippled_ellipse(state.range(0)));
}

// A circle as a user would derive it: what the library's own loops save.
class plain_circle : public geometry_fitter::IterativeLSF {
public:
    double residual(point p, vector& gradient) override {
        gradient.redim(3);
        ++calls;
        double const dx = p.x() - parameters[0], dy = p.y() - parameters[1], d = std::sqrt(dx * dx + dy * dy);
        double* const g = gradient.lazycopy_begin();
        g[0] = -dx / d;
        g[1] = -dy / d;
        g[2] = -1;
        return d - parameters[2];
    }
    std::int64_t calls = 0;
};

void circle_by_calls(benchmark::State& state) {
    auto const points = in_space(rippled_circle(state.range(0)));
    plain_circle model;
    for (auto _ : state) {
        model.calls = 0;
        double const start[] = {100 + 1e-5, 50 - 1e-5, 20 + 1e-5};  // as near as the closed form is
        model.parameters = vector(3, start);
        if (!model.solve(points)) state.SkipWithError("no result");
    }
    state.counters["rounds"] = static_cast<double>(model.calls) / static_cast<double>(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The yardstick: what an iteration of two rounds cannot do without, a loop over the points each that forms
// every residual, its gradient and the ten sums, written plainly.
void two_plain_rounds(benchmark::State& state) {
    auto const points = in_space(rippled_circle(state.range(0)));
    for (auto _ : state) {
        for (int round = 0; round < 2; ++round) {
            double xx = 0, xy = 0, x = 0, yy = 0, y = 0, xr = 0, yr = 0, r = 0, rr = 0;
            for (point const& p : points) {
                double const dx = p.x() - 100, dy = p.y() - 50, d = std::sqrt(dx * dx + dy * dy);
                double const gx = -dx / d, gy = -dy / d, e = d - 20;
                xx += gx * gx;
                xy += gx * gy;
                x -= gx;
                yy += gy * gy;
                y -= gy;
                xr += gx * e;
                yr += gy * e;
                r -= e;
                rr += e * e;
            }
            for (double sum : {xx, xy, x, yy, y, xr, yr, r, rr}) benchmark::DoNotOptimize(sum);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// One pass that does nothing but read: the sum of x and y.
void plain_sum(benchmark::State& state) {
    auto const points = in_space(rippled_circle(state.range(0)));
    for (auto _ : state) {
        double x = 0, y = 0;
        for (point const& p : points) {
            x += p.x();
            y += p.y();
        }
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 1e2: a touched hole; 1e4: an edge tool; 1e6: a scan, beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("circle_fit", "tvmath", circle_of, sizes);
    register_sizes("circle_fit", "two_plain_rounds", two_plain_rounds, sizes);
    register_sizes("circle_fit", "calls_per_point", circle_by_calls, sizes);
    register_sizes("circle_fit", "plain_sum", plain_sum, sizes);
    register_sizes("sphere_fit", "tvmath", sphere_of, sizes);
    register_sizes("ellipse_fit", "tvmath", ellipse_of, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
