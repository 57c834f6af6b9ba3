#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "geometry/point_lanes.h"
#include "imaging/locate_image.h"

inline namespace tvmath {
namespace {

constexpr int steps = 100;  // to a pixel

// Squared gradient of the target at each pixel, times 4; at the border from the difference inwards. Flat
// parts have none, so that edges decide and not the mean grey.
std::vector<double> gradient_weights(image const& target) {
    std::size_t const r = rows(target), c = cols(target);
    std::vector<double> weights;
    weights.reserve(r * c);
    auto const row = [&](std::size_t y) { return target[static_cast<unsigned int>(y)].begin(); };
    auto const change = [](double before, double after, bool is_inside) {
        return (after - before) * (is_inside ? 1.0 : 2.0);
    };
    for (std::size_t y = 0; y < r; ++y) {
        std::size_t const up = y > 0 ? y - 1 : y, down = std::min(y + 1, r - 1);
        double const *const t = row(y), *const above = row(up), *const below = row(down);
        for (std::size_t x = 0; x < c; ++x) {
            std::size_t const left = x > 0 ? x - 1 : x, right = std::min(x + 1, c - 1);
            weights.push_back(sqr(change(t[left], t[right], right - left == 2)) +
                              sqr(change(above[x], below[x], down - up == 2)));
        }
    }
    return weights;
}

using lanes = double __attribute__((vector_size(32)));

// Weighted sums over the target, and over the scene under it when it is moved by a fraction (fx, fy) of a
// pixel. There each pixel is a + b fx + c fy + d fx fy, so that the sums are polynomials in fx and fy, whose
// coefficients one pass over the pixels gives. Of a number, or of one in each of several lanes.
template <class number>
struct cell_sums {
    number w = {}, t = {}, tt = {};
    number i[4] = {};   // of 1, fx, fy, fx fy
    number ti[4] = {};  // of the same
    number ii[9] = {};  // of fx^m fy^n at m + 3 n

    // By the four pixels of the scene about the place.
    void add(number const& weight, number const& grey, number const& a, number const& right,
             number const& below, number const& across) {
        number const b = right - a, c = below - a, d = across - below - b;
        number const wt = weight * grey, wa = weight * a, wb = weight * b, wc = weight * c, wd = weight * d;
        w += weight;
        t += wt;
        tt += wt * grey;
        i[0] += wa, i[1] += wb, i[2] += wc, i[3] += wd;
        ti[0] += wt * a, ti[1] += wt * b, ti[2] += wt * c, ti[3] += wt * d;
        ii[0] += wa * a, ii[1] += 2 * wa * b, ii[2] += wb * b;
        ii[3] += 2 * wa * c, ii[4] += 2 * (wa * d + wb * c), ii[5] += 2 * wb * d;
        ii[6] += wc * c, ii[7] += 2 * wc * d, ii[8] += wd * d;
    }
    // Calls work(place, sum) for each sum, by its place in the order above.
    template <class function>
    void for_each(function const& work) {
        number* const groups[] = {&w, &t, &tt, i, ti, ii};
        int const sizes[] = {1, 1, 1, 4, 4, 9};
        for (int g = 0, place = 0; g < 6; ++g) {
            for (int k = 0; k < sizes[g]; ++k, ++place) work(place, groups[g][k]);
        }
    }
};

// Adds `n` pixels of a row, four side by side and then what is left. Greys count from the zeros.
TVMATH_WIDE_LOOP void add_row(cell_sums<lanes>& sums, cell_sums<double>& rest, double const* weight,
                              double const* grey, double const* upper, double const* lower, std::size_t n,
                              double grey_zero, double scene_zero) {
    cell_sums<lanes> wide = sums;
    std::size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        lanes v[6];
        double const* const from[] = {weight, grey, upper, upper + 1, lower, lower + 1};
        for (int k = 0; k < 6; ++k) std::memcpy(&v[k], from[k] + x, sizeof v[k]);
        v[1] -= grey_zero;
        for (int k = 2; k < 6; ++k) v[k] -= scene_zero;
        wide.add(v[0], v[1], v[2], v[3], v[4], v[5]);
    }
    sums = wide;
    for (; x < n; ++x) {
        rest.add(weight[x], grey[x] - grey_zero, upper[x] - scene_zero, upper[x + 1] - scene_zero,
                 lower[x] - scene_zero, lower[x + 1] - scene_zero);
    }
}

// The means by which the correlation is known all over one cell. Greys count from the target's first pixel,
// as in the search for whole pixels.
cell_sums<double> cell_means(image const& scene, image const& target, std::vector<double> const& weights,
                             std::size_t ox, std::size_t oy) {
    cell_sums<lanes> wide;
    cell_sums<double> means;
    std::size_t const n = cols(target);
    double const zero = scene[static_cast<unsigned int>(oy)][static_cast<unsigned int>(ox)];
    for (unsigned int y = 0; y < rows(target); ++y) {
        unsigned int const under = y + static_cast<unsigned int>(oy);
        add_row(wide, means, weights.data() + y * n, target[y].begin(), scene[under].begin() + ox,
                scene[under + 1].begin() + ox, n, target[0][0], zero);
    }
    double of_lanes[20];
    wide.for_each(
        [&](int place, lanes const& sum) { of_lanes[place] = (sum[0] + sum[1]) + (sum[2] + sum[3]); });
    means.for_each([&](int place, double& sum) { sum += of_lanes[place]; });
    double const total = means.w;
    means.for_each([&](int, double& sum) { sum /= total; });
    return means;
}

// scores[s] = the correlation at fx = fractions[s] and one fy, from the means as polynomials of fx. A side
// without contrast gives no finite number.
TVMATH_WIDE_LOOP void correlations_along(cell_sums<double> const& m, double fy, double const* fractions,
                                         double* scores) {
    double const t = m.t, variance = m.tt - t * t;
    double const i0 = m.i[0] + m.i[2] * fy, i1 = m.i[1] + m.i[3] * fy;
    double const ti0 = m.ti[0] + m.ti[2] * fy, ti1 = m.ti[1] + m.ti[3] * fy;
    double const ii0 = m.ii[0] + fy * (m.ii[3] + fy * m.ii[6]), ii1 = m.ii[1] + fy * (m.ii[4] + fy * m.ii[7]),
                 ii2 = m.ii[2] + fy * (m.ii[5] + fy * m.ii[8]);
    for (int s = 0; s < steps; ++s) {
        double const fx = fractions[s], i = i0 + i1 * fx;
        scores[s] = (ti0 + ti1 * fx - t * i) / std::sqrt(variance * (ii0 + fx * (ii1 + fx * ii2) - i * i));
    }
}

}  // namespace

void refine_match(image const& scene, image const& target, match_range const& range, image_match const& at,
                  double& x, double& y) {
    std::vector<double> const weights = gradient_weights(target);
    x = static_cast<double>(at.x);
    y = static_cast<double>(at.y);
    double best = -1.0, scores[steps], fractions[steps];
    for (int s = 0; s < steps; ++s) fractions[s] = s / static_cast<double>(steps);
    // The place itself and its neighbours bound the cells, so the last place of the range begins none.
    for (std::size_t ox = at.x > 0 ? at.x - 1 : 0; ox < std::min(at.x + 1, range.x1 - 1); ++ox) {
        for (std::size_t oy = at.y > 0 ? at.y - 1 : 0; oy < std::min(at.y + 1, range.y1 - 1); ++oy) {
            cell_sums<double> const means = cell_means(scene, target, weights, ox, oy);
            for (double const fy : fractions) {
                correlations_along(means, fy, fractions, scores);
                for (int s = 0; s < steps; ++s) {
                    if (!(scores[s] > best) || std::isinf(scores[s])) continue;
                    best = scores[s];
                    x = static_cast<double>(ox) + fractions[s];
                    y = static_cast<double>(oy) + fy;
                }
            }
        }
    }
}

}  // namespace tvmath
