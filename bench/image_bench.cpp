#include "tvmath/image.h"

#include <cstring>

#include "support/bench_name.h"
#include "support/image_sizes.h"
#include "support/seeded_random.h"
#include "tvmath/edge.h"

#ifdef TVMATH_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

inline namespace tvmath {
namespace {

void set_pixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0) * rows_of(state.range(0)));
}

// A bright square turned a little, with noise.
image scene(std::int64_t columns) {
    unsigned int const c = static_cast<unsigned int>(columns), r = rows_of(columns);
    seeded_random random(1);
    image m(r, c);
    for (unsigned int y = 0; y < r; ++y) {
        for (unsigned int x = 0; x < c; ++x) {
            bool const inside = y + x / 16 > r / 3 && y + x / 16 < r / 2;
            m(y)(x) = (inside ? 0.7 : 0.2) + random.uniform(-0.05, 0.05);
        }
    }
    return m;
}

// The yardstick of every filter: each pixel read once and written once elsewhere.
void copy_pixels(benchmark::State& state) {
    image const from = scene(state.range(0));
    image to = scene(state.range(0));
    for (auto _ : state) {
        vector* const row = to.lazycopy_begin();
        for (unsigned int y = 0; y < rows(from); ++y) {
            std::memcpy(row[y].lazycopy_begin(), from[y].begin(), cols(from) * sizeof(double));
        }
        benchmark::ClobberMemory();
    }
    set_pixels(state);
}

// In place, on an image that shares nothing.
template <class filter>
void run_filter(benchmark::State& state, filter const& apply) {
    image m = scene(state.range(0));
    for (auto _ : state) {
        apply(m);
        benchmark::ClobberMemory();
    }
    set_pixels(state);
}

template <unsigned int width>
void boxcar_rows(benchmark::State& state) {
    run_filter(state, [](image& m) { m.horizontal_boxcar(width, false); });
}
template <unsigned int width>
void boxcar_columns(benchmark::State& state) {
    run_filter(state, [](image& m) { m.vertical_boxcar(width, false); });
}
template <unsigned int width>
void boxcar_square(benchmark::State& state) {
    run_filter(state, [](image& m) { m.boxcar2d(width); });
}
void gradient(benchmark::State& state) {
    image const m = scene(state.range(0));
    for (auto _ : state) {
        image g = m;
        benchmark::DoNotOptimize(g.horizontal_edge_gradient(false).begin());
    }
    set_pixels(state);
}
void cut_dark(benchmark::State& state) {
    run_filter(state, [](image& m) { m.threshold(0.5); });
}
void statistics(benchmark::State& state) {
    image const m = scene(state.range(0));
    double mean, sigma, of_mean;
    for (auto _ : state) benchmark::DoNotOptimize(m.ave_gray(mean, sigma, of_mean));
    set_pixels(state);
}
// A hundred offsets by forty angles.
void line_transform(benchmark::State& state) {
    image const m = scene(state.range(0));
    for (auto _ : state) {
        image lines = m;
        benchmark::DoNotOptimize(lines.hough(100, 40).begin());
    }
}
template <unsigned int radius>
void normal_angle(benchmark::State& state) {
    image const m = scene(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(m.find_normal_angle(radius, radius * 2 / 3));
    set_pixels(state);
}
// A window of an edge tool, as wide as told and 40 rows high; the gradient with the fit, and the fit alone.
image window(std::int64_t columns) {
    return keep_matrix(scene(1280), 380, 40, 0, static_cast<unsigned int>(columns));
}
void find_edge(benchmark::State& state) {
    image const m = window(state.range(0));
    for (auto _ : state) {
        image g = m;
        benchmark::DoNotOptimize(lsf_edge(g.horizontal_edge_gradient(false)).begin());
    }
}
void fit_edge(benchmark::State& state) {
    image g = window(state.range(0));
    g.horizontal_edge_gradient(false);
    for (auto _ : state) benchmark::DoNotOptimize(lsf_edge(g).begin());
}

#ifdef TVMATH_HAS_OPENCV
// The same doubles in one block. The result goes where it is told to, as users of OpenCV have it; it smooths
// with double-precision sums.
template <int across, int down>
void opencv_box(benchmark::State& state) {
    image const m = scene(state.range(0));
    cv::Mat from(static_cast<int>(rows(m)), static_cast<int>(cols(m)), CV_64F), to;
    for (int y = 0; y < from.rows; ++y) {
        std::memcpy(from.ptr<double>(y), m[static_cast<unsigned int>(y)].begin(), cols(m) * sizeof(double));
    }
    for (auto _ : state) {
        cv::boxFilter(from, to, -1, cv::Size(across, down));
        benchmark::DoNotOptimize(to.data);
    }
    set_pixels(state);
}
#endif

template <unsigned int width>
void register_boxcars() {
    std::string const end = "_" + std::to_string(width);
    register_sizes("boxcar_rows" + end, "tvmath", boxcar_rows<width>, image_sizes);
    register_sizes("boxcar_columns" + end, "tvmath", boxcar_columns<width>, image_sizes);
    register_sizes("boxcar_square" + end, "tvmath", boxcar_square<width>, image_sizes);
    register_sizes("boxcar_square" + end, "copy", copy_pixels, image_sizes);
#ifdef TVMATH_HAS_OPENCV
    register_sizes("boxcar_rows" + end, "opencv", opencv_box<width, 1>, image_sizes);
    register_sizes("boxcar_columns" + end, "opencv", opencv_box<1, width>, image_sizes);
    register_sizes("boxcar_square" + end, "opencv", opencv_box<width, width>, image_sizes);
#endif
}

int const registered = [] {
    register_boxcars<3>();
    register_boxcars<15>();
    register_boxcars<101>();
    register_sizes("edge_gradient", "tvmath", gradient, image_sizes);
    register_sizes("threshold", "tvmath", cut_dark, image_sizes);
    register_sizes("ave_gray", "tvmath", statistics, image_sizes);
    register_sizes("hough", "tvmath", line_transform, image_sizes);
    register_sizes("normal_angle_3", "tvmath", normal_angle<3>, image_sizes);
    register_sizes("normal_angle_30", "tvmath", normal_angle<30>, image_sizes);
    register_sizes("find_edge", "tvmath", find_edge, {60, 240, 1000});
    register_sizes("lsf_edge", "tvmath", fit_edge, {60, 240, 1000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
