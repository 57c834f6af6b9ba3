#include "tvmath/pattern.h"

#include <algorithm>
#include <cmath>

#include "support/bench_name.h"
#include "support/image_sizes.h"
#include "support/seeded_random.h"

#ifdef TVMATH_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

inline namespace tvmath {
namespace {

// Texture of some pixels, with noise.
image scene(std::int64_t columns) {
    seeded_random random(1);
    image m(rows_of(columns), static_cast<unsigned int>(columns));
    vector* const row = m.lazycopy_begin();
    for (unsigned int y = 0; y < rows(m); ++y) {
        double* const v = row[y].lazycopy_begin();
        for (unsigned int x = 0; x < cols(m); ++x) v[x] = random.unit();
    }
    return m.boxcar2d(9).enhance();
}

image target_in(image const& m, unsigned int size) {
    return keep_matrix(m, rows(m) * 2 / 3, size, cols(m) * 3 / 5, size);
}

// Found by every 4th pixel, as a part that is there is.
template <unsigned int size>
void locate(benchmark::State& state) {
    image const m = scene(state.range(0)), target = target_in(m, size);
    for (auto _ : state) benchmark::DoNotOptimize(locate_image(m, target, true));
}
// Not there: all levels are searched in full.
template <unsigned int size>
void miss(benchmark::State& state) {
    image const m = scene(state.range(0)), target = target_in(m, size).mirror_x();
    for (auto _ : state) benchmark::DoNotOptimize(locate_image(m, target, true));
}

// An edge as wide as 21 pixels along the rows.
void filter(benchmark::State& state) {
    image const m = scene(state.range(0));
    VisionPattern pattern(21, 21.5 / static_cast<double>(cols(m)));
    for (unsigned int i = 0; i < 21; ++i) pattern.profile(i) = std::exp(-0.1 * (i - 10.0) * (i - 10.0));
    for (auto _ : state) benchmark::DoNotOptimize(pattern_filter(m, pattern, false).begin());
    state.SetItemsProcessed(state.iterations() * rows(m) * cols(m));
}

#ifdef TVMATH_HAS_OPENCV
cv::Mat floats(image const& m) {
    cv::Mat result(static_cast<int>(rows(m)), static_cast<int>(cols(m)), CV_32F);
    for (int y = 0; y < result.rows; ++y) {
        double const* const v = m[static_cast<unsigned int>(y)].begin();
        std::transform(v, v + cols(m), result.ptr<float>(y), [](double x) { return static_cast<float>(x); });
    }
    return result;
}

// All places, by way of the frequencies; it knows no doubles, and whole pixels alone.
template <int size>
void opencv_locate(benchmark::State& state) {
    image const m = scene(state.range(0));
    cv::Mat const whole = floats(m), target = floats(target_in(m, size));
    cv::Mat scores;
    for (auto _ : state) {
        cv::matchTemplate(whole, target, scores, cv::TM_CCOEFF_NORMED);
        double best = -2;
        for (int y = 0; y < scores.rows; ++y) {
            best = std::max<double>(
                best, *std::max_element(scores.ptr<float>(y), scores.ptr<float>(y) + scores.cols));
        }
        benchmark::DoNotOptimize(best);
    }
}
#endif

template <unsigned int size>
void register_targets() {
    std::string const name = "locate_image_" + std::to_string(size);
    register_sizes(name, "tvmath", locate<size>, image_sizes, size > 64 ? 3 : 0);
#ifdef TVMATH_HAS_OPENCV
    register_sizes(name, "opencv", opencv_locate<static_cast<int>(size)>, image_sizes, 3);
#endif
}

int const registered = [] {
    register_targets<32>();
    register_targets<64>();
    register_targets<128>();
    register_sizes("locate_image_missed_64", "tvmath", miss<64>, {640, 1280}, 3);
    register_sizes("pattern_filter_21", "tvmath", filter, image_sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
