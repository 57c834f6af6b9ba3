#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <vector>

#include "containers/parallel_for.h"
#include "geometry/point_lanes.h"
#include "imaging/locate_image.h"

inline namespace tvmath {
namespace {

// The correlation of all places in single precision, with a bound of its error for each. Only places whose
// upper bound reaches the greatest lower bound can be the best, which are few: so the search runs at the
// speed of single precision and decides as double precision would.

constexpr std::size_t width = 32;  // places side by side, a handful of registers

// Every k-th pixel of a part of an image, with the range of its greys brought to -1 to 1 and a margin of
// zeros on the right.
struct float_block {
    std::size_t rows, cols, stride;
    std::vector<float> pixels;
    bool has_contrast = false;

    float_block(image const& m, std::size_t x0, std::size_t y0, std::size_t k, std::size_t r, std::size_t c)
        : rows(r), cols(c), stride(c + width) {
        auto const line = [&](std::size_t y) {
            return m[static_cast<unsigned int>(y0 + y * k)].begin() + x0;
        };
        double low = infinity, high = -infinity;
        for (std::size_t y = 0; y < rows; ++y) {
            double const* const v = line(y);
            for (std::size_t x = 0; x < cols; ++x) {
                if (!std::isfinite(v[x * k])) continue;
                low = std::min(low, v[x * k]);
                high = std::max(high, v[x * k]);
            }
        }
        double const scale = 2 / (high - low), middle = low / 2 + high / 2;
        has_contrast = low < high && std::isfinite(scale) && scale > 0;
        if (!has_contrast) return;
        pixels.resize(rows * stride);
        for (std::size_t y = 0; y < rows; ++y) {
            double const* const v = line(y);
            float* const to = pixels.data() + y * stride;
            for (std::size_t x = 0; x < cols; ++x) to[x] = static_cast<float>((v[x * k] - middle) * scale);
        }
    }
    float const* row(std::size_t y) const { return pixels.data() + y * stride; }
};

// The target less its mean, and how many of its rows are summed up in single precision.
struct float_target : float_block {
    double n, sum = 0, energy = 0;
    std::size_t rows_at_once;

    float_target(image const& m, std::size_t k)
        : float_block(m, 0, 0, k, (matrix::rows(m) + k - 1) / k, (matrix::cols(m) + k - 1) / k),
          n(static_cast<double>(rows) * static_cast<double>(cols)),
          rows_at_once(std::clamp<std::size_t>(128 / cols, 1, rows)) {
        if (!has_contrast) return;
        double const mean = total([](double v) { return v; }) / n;
        for (std::size_t y = 0; y < rows; ++y) {
            float* const v = pixels.data() + y * stride;
            for (std::size_t x = 0; x < cols; ++x) v[x] = static_cast<float>(v[x] - mean);
        }
        sum = total([](double v) { return v; });
        energy = total([](double v) { return v * v; }) - sum * sum / n;
        has_contrast = std::isfinite(energy) && energy > 0;  // not so with a pixel that is not finite
    }

private:
    template <class function>
    double total(function const& of) const {
        double result = 0;
        for (std::size_t y = 0; y < rows; ++y) {
            for (std::size_t x = 0; x < cols; ++x) result += of(row(y)[x]);
        }
        return result;
    }
};

// sums[i] = sum over the target of its value times that of the scene, for the places from `scene` on.
TVMATH_WIDE_LOOP void correlate(float const* scene, std::size_t stride, float const* target,
                                std::size_t target_stride, std::size_t rows, std::size_t cols,
                                std::size_t rows_at_once, double* sums) {
    typedef float lanes __attribute__((vector_size(32)));
    std::fill_n(sums, width, 0.0);
    for (std::size_t first = 0; first < rows; first += rows_at_once) {
        lanes part[width / 8] = {};
        std::size_t const last = first + rows_at_once < rows ? first + rows_at_once : rows;
        for (std::size_t y = first; y < last; ++y) {
            float const *const t = target + y * target_stride, *const s = scene + y * stride;
            for (std::size_t x = 0; x < cols; ++x) {
                for (std::size_t i = 0; i < width / 8; ++i) {
                    lanes values;
                    std::memcpy(&values, s + x + 8 * i, sizeof values);
                    part[i] += t[x] * values;
                }
            }
        }
        float of_part[width];
        std::memcpy(of_part, part, sizeof part);
        for (std::size_t i = 0; i < width; ++i) sums[i] += static_cast<double>(of_part[i]);
    }
}

// Sums of the values and of their squares over the windows of one row of places: columns first, then running
// sums along them. A column with a pixel that is not finite counts as bad, and as 0.
class window_sums {
public:
    window_sums(float_block const& scene, float_target const& target)
        : scene_(scene),
          target_(target),
          column_(scene.cols),
          square_(scene.cols),
          running_(scene.cols + 1) {}

    void read(std::size_t top) {
        std::fill(column_.begin(), column_.end(), 0.0);
        std::fill(square_.begin(), square_.end(), 0.0);
        for (std::size_t y = top; y < top + target_.rows; ++y) {
            add(scene_.row(y), column_.data(), square_.data(), scene_.cols);
        }
        for (std::size_t x = 0; x < scene_.cols; ++x) {
            bool const is_good = std::isfinite(square_[x]);
            running const& r = running_[x];
            running_[x + 1] = is_good ? running{r.sum + column_[x], r.squares + square_[x], r.bad}
                                      : running{r.sum, r.squares, r.bad + 1};
        }
    }
    bool is_good(std::size_t x) const { return running_[x + target_.cols].bad == running_[x].bad; }
    double sum(std::size_t x) const {
        return static_cast<double>(running_[x + target_.cols].sum - running_[x].sum);
    }
    double squares(std::size_t x) const {
        return static_cast<double>(running_[x + target_.cols].squares - running_[x].squares);
    }
    // Bound of the rounding of a window's sum of squares about its mean, the values being at most 1.
    double rounding() const {
        constexpr double of_sum = std::numeric_limits<double>::epsilon(),
                         of_running = static_cast<double>(std::numeric_limits<long double>::epsilon());
        double const height = static_cast<double>(target_.rows), length = static_cast<double>(scene_.cols);
        return 3 * (of_sum * height * target_.n + of_running * length * length * height);
    }

private:
    // Differences of running sums lose digits in wide scenes, so these have some more.
    struct running {
        long double sum = 0, squares = 0;
        std::size_t bad = 0;
    };

    TVMATH_WIDE_LOOP static void add(float const* row, double* sums, double* squares, std::size_t n) {
        for (std::size_t x = 0; x < n; ++x) {
            double const v = static_cast<double>(row[x]);
            sums[x] += v;
            squares[x] += v * v;
        }
    }

    float_block const& scene_;
    float_target const& target_;
    std::vector<double> column_, square_;
    std::vector<running> running_;
};

struct bounded_match {
    std::size_t x, y;
    double upper;
};

// Those places of a row that can be the best of it, and the greatest lower bound.
class row_screen {
public:
    row_screen(float_block const& scene, float_target const& target, std::size_t places)
        : scene_(scene), target_(target), windows_(scene, target), score_(places), error_(places) {}

    double run(std::size_t y, std::vector<bounded_match>& found) {
        windows_.read(y);
        double lower = -infinity, sums[width];
        for (std::size_t x = 0; x < score_.size(); x += width) {
            correlate(scene_.row(y) + x, scene_.stride, target_.row(0), target_.stride, target_.rows,
                      target_.cols, target_.rows_at_once, sums);
            for (std::size_t i = x; i < std::min(x + width, score_.size()); ++i) {
                judge(i, sums[i - x]);
                lower = std::max(lower, score_[i] - error_[i]);
            }
        }
        for (std::size_t x = 0; x < score_.size(); ++x) {
            if (score_[x] + error_[x] >= lower) found.push_back({x, y, score_[x] + error_[x]});
        }
        return lower;
    }

private:
    // A product of vectors a and b by sums of n terms is off by up to n u |a| |b|, u being half the distance
    // of single-precision numbers at 1, and a correlation by that over the lengths of a and b about their
    // means; some u more for the rounding of the values themselves.
    void judge(std::size_t x, double product) {
        score_[x] = -infinity;
        error_[x] = 0;
        if (!windows_.is_good(x)) return;
        double const sum = windows_.sum(x), squares = windows_.squares(x), rounding = windows_.rounding();
        double const energy = squares - sum * sum / target_.n;
        if (energy <= 4 * rounding) return;
        double const terms = static_cast<double>(target_.rows_at_once * target_.cols) + 8;
        score_[x] = (product - target_.sum * sum / target_.n) / std::sqrt(energy * target_.energy);
        error_[x] = terms * 0x1p-24 * 1.1 * std::sqrt(squares / energy) + rounding / energy;
    }

    float_block const& scene_;
    float_target const& target_;
    window_sums windows_;
    std::vector<double> score_, error_;
};

}  // namespace

std::vector<image_match> match_candidates(image const& scene, image const& target, std::size_t k,
                                          match_range const& range) {
    std::size_t const across = (range.x1 - range.x0 + k - 1) / k, down = (range.y1 - range.y0 + k - 1) / k;
    float_target const t(target, k);
    if (!t.has_contrast) return {};
    float_block const s(scene, range.x0, range.y0, k, down - 1 + t.rows, across - 1 + t.cols);
    if (!s.has_contrast) return {};

    std::vector<std::vector<bounded_match>> found(down);
    std::vector<double> lower(down);
    double const work = t.n * static_cast<double>(across);
    parallel_for(down, static_cast<std::size_t>(std::max(1.0, 4e6 / work)),
                 [&](std::size_t first, std::size_t last) {
                     row_screen screen(s, t, across);
                     for (std::size_t y = first; y < last; ++y) lower[y] = screen.run(y, found[y]);
                 });

    double const least = *std::max_element(lower.begin(), lower.end());
    std::vector<image_match> candidates;
    if (least == -infinity) return candidates;
    for (auto const& row : found) {
        for (bounded_match const& match : row) {
            if (match.upper >= least) candidates.push_back({range.x0 + match.x * k, range.y0 + match.y * k});
        }
    }
    std::sort(candidates.begin(), candidates.end(), [](image_match const& a, image_match const& b) {
        return std::tie(a.x, a.y) < std::tie(b.x, b.y);
    });
    return candidates;
}

}  // namespace tvmath
