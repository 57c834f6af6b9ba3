#include "tvmath/resample.h"

#include <cmath>
#include <cstring>

#include "support/bench_name.h"
#include "support/image_sizes.h"
#include "support/seeded_random.h"
#include "tvmath/overlay.h"

#ifdef TVMATH_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

inline namespace tvmath {
namespace {

image scene(std::int64_t columns) {
    unsigned int const c = static_cast<unsigned int>(columns), r = rows_of(columns);
    seeded_random random(1);
    image m(r, c);
    for (unsigned int y = 0; y < r; ++y) {
        for (unsigned int x = 0; x < c; ++x) m(y)(x) = random.unit();
    }
    return m;
}

// A window about the middle, 0.7 by 0.6 of the height of the image, which fits into it at any angle.
struct window {
    double x, y, angle, width, height;
    unsigned int cols, rows;

    window(image const& m, double a, double scale) : angle(a) {
        double const size = ::rows(m), c = std::cos(a), s = std::sin(a);
        width = std::floor(0.7 * size);
        height = std::floor(0.6 * size);
        x = ::cols(m) / 2.0 - (width * c - height * s) / 2;
        y = size / 2 - (width * s + height * c) / 2;
        cols = static_cast<unsigned int>(width * scale);
        rows = static_cast<unsigned int>(height * scale);
    }
    // From places of the result to places of the image.
    transform map() const {
        return transform::dilation(width / cols, height / rows).rotate(angle).translate(x, y);
    }
    void set_pixels(benchmark::State& state) const {
        state.SetItemsProcessed(state.iterations() * std::int64_t{rows} * cols);
    }
};

constexpr int degrees_30 = 30, upright = 0, degrees_100 = 100;

template <int degrees, int percent>
void rotate_window(benchmark::State& state) {
    image const m = scene(state.range(0));
    window const w(m, degrees * pi / 180, percent / 100.0);
    for (auto _ : state) {
        image const cut = rotate(m, w.x, w.y, w.angle, w.width, w.cols, w.height, w.rows);
        benchmark::DoNotOptimize(cut.begin());
    }
    w.set_pixels(state);
}

template <int percent>
void rotate_by_transform(benchmark::State& state) {
    image const m = scene(state.range(0));
    window const w(m, pi / 6, percent / 100.0);
    transform const t = w.map();
    for (auto _ : state) {
        image const cut = rotate(m, t, w.rows, w.cols);
        benchmark::DoNotOptimize(cut.begin());
    }
    w.set_pixels(state);
}

void profile_of(benchmark::State& state) {
    unsigned int const n = static_cast<unsigned int>(state.range(0));
    image const m = keep_matrix(scene(1280), 0, n, 0, n);
    vector profile;
    for (auto _ : state) benchmark::DoNotOptimize(project_image_into_profile(m, profile, 0.4));
    state.SetItemsProcessed(state.iterations() * n * n);
}

// The picture of a measured image: 100 crosses and a contour of 1000 corners.
void bitmap_with_overlays(benchmark::State& state) {
    image const m = scene(state.range(0));
    double const size = rows(m);
    std::vector<ctl::ref<IDrawCallback>> overlays;
    std::vector<point> corners;
    for (int i = 0; i < 1000; ++i) {
        double const a = i * pi / 500, r = size * (0.4 + 0.01 * std::sin(20 * a));
        corners.emplace_back(true, size / 2 + r * std::cos(a), size / 2 + r * std::sin(a));
        if (i % 10 == 0) overlays.push_back(create_IDrawCallback(corners.back(), 0xFF, 1, 5, point()));
    }
    overlays.push_back(create_IDrawCallback(corners, 0xFF00, 2, true, point()));
    for (auto _ : state) release_bitmap(create_bitmap(m, overlays));
    state.SetItemsProcessed(state.iterations() * rows(m) * cols(m));
}

#ifdef TVMATH_HAS_OPENCV
cv::Mat in_one_block(image const& m) {
    cv::Mat block(static_cast<int>(rows(m)), static_cast<int>(cols(m)), CV_64F);
    for (unsigned int y = 0; y < rows(m); ++y) {
        std::memcpy(block.ptr<double>(static_cast<int>(y)), m[y].begin(), cols(m) * sizeof(double));
    }
    return block;
}

// Bilinear at places rounded to 1/32 of a pixel, whatever the scale.
template <int degrees, int percent>
void opencv_warp(benchmark::State& state) {
    image const m = scene(state.range(0));
    window const w(m, degrees * pi / 180, percent / 100.0);
    transform const t = w.map();
    double const map[] = {t[1], t[2], t[0], t[4], t[5], t[3]};
    cv::Mat const from = in_one_block(m), matrix(2, 3, CV_64F, const_cast<double*>(map));
    cv::Mat to;
    for (auto _ : state) {
        cv::warpAffine(from, to, matrix, cv::Size(static_cast<int>(w.cols), static_cast<int>(w.rows)),
                       cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
        benchmark::DoNotOptimize(to.data);
    }
    w.set_pixels(state);
}
#endif

int const registered = [] {
    register_sizes("rotate_upright", "tvmath", rotate_window<upright, 100>, image_sizes);
    register_sizes("rotate_30", "tvmath", rotate_window<degrees_30, 100>, image_sizes);
    register_sizes("rotate_100", "tvmath", rotate_window<degrees_100, 100>, image_sizes);
    register_sizes("rotate_30_enlarged", "tvmath", rotate_window<degrees_30, 200>, {640, 1280});
    register_sizes("rotate_30_reduced", "tvmath", rotate_window<degrees_30, 25>, image_sizes);
    register_sizes("transform_gather", "tvmath", rotate_by_transform<90>, image_sizes);
    register_sizes("transform_scatter", "tvmath", rotate_by_transform<110>, image_sizes);
    register_sizes("profile", "tvmath", profile_of, {64, 256, 1024});
    register_sizes("bitmap", "tvmath", bitmap_with_overlays, image_sizes);
#ifdef TVMATH_HAS_OPENCV
    register_sizes("rotate_upright", "opencv", opencv_warp<upright, 100>, image_sizes);
    register_sizes("rotate_30", "opencv", opencv_warp<degrees_30, 100>, image_sizes);
    register_sizes("rotate_100", "opencv", opencv_warp<degrees_100, 100>, image_sizes);
    register_sizes("rotate_30_enlarged", "opencv", opencv_warp<degrees_30, 200>, {640, 1280});
    register_sizes("rotate_30_reduced", "opencv", opencv_warp<degrees_30, 25>, image_sizes);
    register_sizes("transform_gather", "opencv", opencv_warp<degrees_30, 90>, image_sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
