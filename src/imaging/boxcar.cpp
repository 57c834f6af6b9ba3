#include <algorithm>
#include <cstddef>

#include "containers/parallel_for.h"
#include "geometry/point_lanes.h"
#include "tvmath/image.h"

inline namespace tvmath {
namespace {

// The running mean of a line of samples as differences of running sums.
//
// The sums P stand for the line with its surroundings: `half` samples on each side, which wrap takes from the
// other end. Without wrap these surroundings are nothing, so that the sums stay what they were and a window
// that hangs over an end needs no case of its own. The mean at i is (P[i + size] - P[i]) reciprocals[i].
struct running_mean {
    std::size_t length, half, size;
    bool wrap;
    idioms::array<float> reciprocals;

    running_mean(std::size_t samples, std::size_t width, bool closed)
        : length(samples),
          half(std::min(width, 2 * samples) / 2),
          size(2 * half + 1),
          wrap(closed),
          reciprocals(static_cast<unsigned int>(samples)) {
        float* const r = reciprocals.lazycopy_begin();
        for (std::size_t i = 0; i < length; ++i) {
            std::size_t const from = i > half ? i - half : 0, to = std::min(i + half + 1, length);
            r[i] = 1.0f / static_cast<float>(wrap ? size : to - from);
        }
    }
    std::size_t sums() const { return length + size; }
};

// Working memory as a list of the library, which reports its lack in the library's own way.
idioms::array<float> scratch(std::size_t n) {
    return idioms::array<float>(static_cast<unsigned int>(n));
}

// Along rows. A running sum waits for its last addition, so several rows run side by side.
constexpr std::size_t lanes = 4;

struct row_sums {
    float* to[lanes];  // the sums of each row
    std::size_t count = 1;
    float last[lanes] = {};

    void add(double const* const* rows, std::size_t from, std::size_t end) {
        double const *const a = rows[0], *const b = rows[1], *const c = rows[2], *const d = rows[3];
        float *const ta = to[0] + count, *const tb = to[1] + count, *const tc = to[2] + count,
                     *const td = to[3] + count;
        float sa = last[0], sb = last[1], sc = last[2], sd = last[3];
        for (std::size_t k = from; k < end; ++k) {
            ta[k - from] = sa += static_cast<float>(a[k]);
            tb[k - from] = sb += static_cast<float>(b[k]);
            tc[k - from] = sc += static_cast<float>(c[k]);
            td[k - from] = sd += static_cast<float>(d[k]);
        }
        count += end - from;
        last[0] = sa, last[1] = sb, last[2] = sc, last[3] = sd;
    }
};

TVMATH_WIDE_LOOP void write_means(double* to, float const* below, float const* above,
                                  float const* reciprocals, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) to[i] = static_cast<double>((above[i] - below[i]) * reciprocals[i]);
}

void average_rows(double* const* rows, running_mean const& mean, float* table) {
    row_sums sums;
    for (std::size_t r = 0; r < lanes; ++r) {
        sums.to[r] = table + r * mean.sums();
        std::fill_n(sums.to[r], mean.half + 1, 0.0f);
    }
    if (mean.wrap) {
        sums.add(rows, mean.length - mean.half, mean.length);
        sums.add(rows, 0, mean.length);
        sums.add(rows, 0, mean.half);
    } else {
        sums.count = mean.half + 1;
        sums.add(rows, 0, mean.length);
        for (std::size_t r = 0; r < lanes; ++r) {
            std::fill_n(sums.to[r] + sums.count, mean.half, sums.last[r]);
        }
    }
    for (std::size_t r = 0; r < lanes; ++r) {
        write_means(rows[r], sums.to[r], sums.to[r] + mean.size, mean.reciprocals.begin(), mean.length);
    }
}

// Down the columns, row by row, since neighbours in a column are far apart in memory. Only the sums that a
// window still needs are kept, in a ring.

TVMATH_WIDE_LOOP void write_row_of_sums(float* to, float const* before, double const* row, std::size_t n) {
    for (std::size_t x = 0; x < n; ++x) to[x] = before[x] + static_cast<float>(row[x]);
}

TVMATH_WIDE_LOOP void write_row_of_means(double* to, float const* below, float const* above, float reciprocal,
                                         std::size_t n) {
    for (std::size_t x = 0; x < n; ++x) to[x] = static_cast<double>((above[x] - below[x]) * reciprocal);
}

// Columns whose ring of sums takes a megabyte, so that it stays in the caches: whole rows for all but wide
// windows, since memory is fastest when it is read on and on.
std::size_t columns_at_a_time(running_mean const& mean) {
    return std::max<std::size_t>(262144 / (mean.size + 1), 64);
}

class column_means {
public:
    column_means(double* const* rows, running_mean const& mean, std::size_t first, std::size_t last)
        : rows_(rows),
          mean_(mean),
          first_(first),
          width_(last - first),
          ring_(scratch((mean.size + 1) * width_)),
          head_(scratch(mean.wrap ? mean.half * width_ : 0)),
          nothing_(scratch(width_)),
          sums_(ring_.lazycopy_begin()) {}

    void run() {
        std::size_t const window = mean_.size, slots = window + 1;
        float const* const reciprocals = mean_.reciprocals.begin();
        idioms::array<float const*> places(static_cast<unsigned int>(slots), nothing_.begin());
        float const** const place = places.lazycopy_begin();
        for (std::size_t j = 1; j < mean_.sums(); ++j) {
            place[j % slots] = next_sum(j, place[(j - 1) % slots]);
            if (j < window) continue;
            std::size_t const i = j - window;
            write_row_of_means(rows_[i] + first_, place[i % slots], place[j % slots], reciprocals[i], width_);
        }
    }

private:
    // Where the sum behind sample j - 1 of the line with its surroundings stands.
    float const* next_sum(std::size_t j, float const* before) {
        std::size_t const length = mean_.length, half = mean_.half, k = j - 1;
        bool const inside = k >= half && k < length + half;
        if (!inside && !mean_.wrap) return before;
        float* const to = sums_ + j % (mean_.size + 1) * width_;
        if (k < length + half) {
            double const* const row = rows_[inside ? k - half : k + length - half] + first_;
            write_row_of_sums(to, before, row, width_);
            if (mean_.wrap && inside && k < 2 * half) keep(row, k - half);
        } else {
            float const* const row = head_.begin() + (k - length - half) * width_;
            for (std::size_t x = 0; x < width_; ++x) to[x] = before[x] + row[x];
        }
        return to;
    }

    // The first rows come again behind the last one, when their means have taken their places.
    void keep(double const* row, std::size_t y) {
        float* const to = head_.lazycopy_begin() + y * width_;
        for (std::size_t x = 0; x < width_; ++x) to[x] = static_cast<float>(row[x]);
    }

    double* const* rows_;
    running_mean const& mean_;
    std::size_t first_, width_;
    idioms::array<float> ring_, head_, nothing_;
    float* sums_;
};

}  // namespace

image& image::horizontal_boxcar(unsigned int width, bool wrap) {
    std::size_t const n = rows(*this), length = cols(*this);
    if (width < 2 || n == 0 || length == 0) return *this;
    running_mean const mean(length, width, wrap);
    vector* const row = lazycopy_begin();
    // A thread's piece: rows enough to outweigh its start.
    std::size_t const grain = std::max<std::size_t>(262144 / length / lanes, 1) * lanes;
    parallel_for(n, grain, [&](std::size_t first, std::size_t last) {
        idioms::array<float> table = scratch(lanes * mean.sums());
        for (std::size_t y = first; y < last; y += lanes) {
            double* group[lanes];  // the last row fills the last group, and is written again as it was
            for (std::size_t r = 0; r < lanes; ++r)
                group[r] = row[std::min(y + r, last - 1)].lazycopy_begin();
            average_rows(group, mean, table.lazycopy_begin());
        }
    });
    return *this;
}

image& image::vertical_boxcar(unsigned int width, bool wrap) {
    std::size_t const length = rows(*this), n = cols(*this);
    if (width < 2 || n == 0 || length == 0) return *this;
    running_mean const mean(length, width, wrap);
    vector* const row = lazycopy_begin();
    idioms::array<double*> pointers(static_cast<unsigned int>(length));
    double** const place = pointers.lazycopy_begin();
    for (std::size_t y = 0; y < length; ++y) place[y] = row[y].lazycopy_begin();
    parallel_for(n, columns_at_a_time(mean),
                 [&](std::size_t first, std::size_t last) { column_means(place, mean, first, last).run(); });
    return *this;
}

image& image::boxcar2d(unsigned int width) {
    return horizontal_boxcar(width, false).vertical_boxcar(width, false);
}

}  // namespace tvmath
