#include <algorithm>
#include <cmath>

#include "tvmath/resample.h"

inline namespace tvmath {
namespace {

// Sums and weights of the bins of a profile.
struct weighted_profile {
    vector sums, weights;

    explicit weighted_profile(unsigned int n) : sums(n), weights(n) {}

    // Turns sums into means; false when no bin has one. The bins in between are filled in as told.
    bool settle() {
        unsigned int const n = dim(sums);
        double* const mean = sums.lazycopy_begin();
        double const* const weight = weights.begin();
        double const least = max_value(weights) / 5.0;
        unsigned int filled = n;  // the last bin that has a mean, n before the first
        for (unsigned int i = 0; i < n; ++i) {
            if (!(weight[i] >= least && weight[i] > 0)) continue;
            mean[i] /= weight[i];
            if (filled == n) {
                std::fill_n(mean, i, mean[i]);
            } else {
                double const step = (mean[i] - mean[filled]) / (i - filled);
                for (unsigned int k = filled + 1; k < i; ++k) mean[k] = mean[filled] + (k - filled) * step;
            }
            filled = i;
        }
        if (filled == n) return false;
        std::fill(mean + filled, mean + n, mean[filled]);
        return true;
    }
};

}  // namespace

bool project_image_into_profile(image source, vector& profile, double angle) {
    unsigned int const n = rows(source), width = std::min(n, cols(source));
    if (!std::isfinite(angle)) return false;
    double const dx = std::cos(angle), dy = std::sin(angle), r = n / 2.0;

    weighted_profile bins(n);
    double* const sum = bins.sums.lazycopy_begin();
    double* const weight = bins.weights.lazycopy_begin();
    for (unsigned int y = 0; y < n; ++y) {
        double const* const grey = source[y].begin();
        double const v = y + 0.5 - r;
        for (unsigned int x = 0; x < width; ++x) {
            double const u = x + 0.5 - r;
            if (!(u * u + v * v < r * r)) continue;
            // One more than the place in bins, which is above 0 inside the circle, so that cutting rounds
            // down. At either end only one of the two bins exists.
            double const above = dx * u + dy * v + r + 0.5;
            auto const i = static_cast<unsigned int>(above);
            double const f = above - i;
            if (i > 0) {
                sum[i - 1] += (1 - f) * grey[x];
                weight[i - 1] += 1 - f;
            }
            if (i < n) {
                sum[i] += f * grey[x];
                weight[i] += f;
            }
        }
    }
    if (!bins.settle()) return false;
    profile = bins.sums;
    return true;
}

}  // namespace tvmath
