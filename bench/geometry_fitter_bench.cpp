#include "tvmath/geometry_fitter.h"

#include <cmath>

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/iterative_lsf.h"

inline namespace tvmath {
namespace {

std::vector<point> in_space(std::vector<point> points) {
    for (point& p : points) p.promote3d();
    return points;
}

template <class fitter, class description>
void run(benchmark::State& state, std::vector<point> const& points,
         std::vector<geometry_fitter::constraint*> const& conditions = {}) {
    fitter f;
    f.add(geometry_fitter::fit(points));
    for (geometry_fitter::constraint* const c : conditions) f.add(c);
    description found;
    for (auto _ : state) {
        if (!f.result(found)) state.SkipWithError("no result");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void line_of(benchmark::State& state) {
    run<geometry_fitter::line_fitter, Segment_Description>(state, space_cloud(state.range(0)));
}
void circle_of(benchmark::State& state) {
    run<geometry_fitter::circle_fitter, Circle_Description>(state, in_space(rippled_circle(state.range(0))));
}
void circle_through(benchmark::State& state) {
    run<geometry_fitter::circle_fitter, Circle_Description>(
        state, in_space(rippled_circle(state.range(0))),
        {geometry_fitter::through(point(true, 120.001, 50, 0))});
}
void circle_tangent(benchmark::State& state) {
    line const side(point(true, 120.001, 0, 0), point(true, 120.001, 100, 0));
    run<geometry_fitter::circle_fitter, Circle_Description>(state, in_space(rippled_circle(state.range(0))),
                                                            {geometry_fitter::tangent(side)});
}
void arc_of(benchmark::State& state) {
    run<geometry_fitter::arc_fitter, Arc_Description>(state, in_space(rippled_circle(state.range(0))));
}
void sphere_of(benchmark::State& state) {
    run<geometry_fitter::sphere_fitter, Sphere_Description>(state, rippled_sphere(state.range(0)));
}
void sphere_through(benchmark::State& state) {
    run<geometry_fitter::sphere_fitter, Sphere_Description>(
        state, rippled_sphere(state.range(0)), {geometry_fitter::through(point(true, 21.001, 2, 3))});
}
void ellipse_of(benchmark::State& state) {
    run<geometry_fitter::ellipse_fitter, Ellipse_Description>(state,
                                                              in_space(rippled_ellipse(state.range(0))));
}

// A circle as a user would derive it: it shows what the library's own loops save.
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

int const registered = [] {
    // 1e2: a touched hole; 1e4: an edge tool; 1e6: a scan, beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("line_fitter", "tvmath", line_of, sizes);
    register_sizes("circle_fitter", "tvmath", circle_of, sizes);
    register_sizes("circle_fitter", "calls_per_point", circle_by_calls, sizes);
    register_sizes("circle_fitter_through", "tvmath", circle_through, sizes);
    register_sizes("circle_fitter_tangent", "tvmath", circle_tangent, sizes);
    register_sizes("arc_fitter", "tvmath", arc_of, sizes);
    register_sizes("sphere_fitter", "tvmath", sphere_of, sizes);
    register_sizes("sphere_fitter_through", "tvmath", sphere_through, sizes);
    register_sizes("ellipse_fitter", "tvmath", ellipse_of, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
