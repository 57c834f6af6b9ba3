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

// Weighted means over the target, and over the scene under it when it is moved by a fraction (fx, fy) of a
// pixel. There each pixel is a + b fx + c fy + d fx fy, so that the means are polynomials in fx and fy, whose
// coefficients one pass over the pixels gives.
struct cell_means {
    double t = 0, tt = 0;
    double i[4] = {};   // of 1, fx, fy, fx fy
    double ti[4] = {};  // of the same
    double ii[9] = {};  // of fx^m fy^n at m + 3 n

    // Greys count from the target's first pixel, as in the search for whole pixels.
    cell_means(image const& scene, image const& target, std::vector<double> const& weights, std::size_t ox,
               std::size_t oy) {
        double const zero = target[0][0];
        double total = 0;
        double const* w = weights.data();
        for (std::size_t y = 0; y < rows(target); ++y) {
            double const* const row = target[static_cast<unsigned int>(y)].begin();
            double const* const upper = scene[static_cast<unsigned int>(y + oy)].begin() + ox;
            double const* const lower = scene[static_cast<unsigned int>(y + oy + 1)].begin() + ox;
            for (std::size_t x = 0; x < cols(target); ++x, ++w) {
                total += *w;
                double const corners[] = {upper[x] - zero, upper[x + 1] - zero, lower[x] - zero,
                                          lower[x + 1] - zero};
                add(*w, row[x] - zero, corners);
            }
        }
        t /= total;
        tt /= total;
        for (double& mean : i) mean /= total;
        for (double& mean : ti) mean /= total;
        for (double& mean : ii) mean /= total;
    }

private:
    void add(double w, double grey, double const (&corners)[4]) {
        double const a = corners[0], b = corners[1] - a, c = corners[2] - a, d = corners[3] - corners[2] - b;
        double const wt = w * grey, wa = w * a, wb = w * b, wc = w * c, wd = w * d;
        t += wt;
        tt += wt * grey;
        i[0] += wa, i[1] += wb, i[2] += wc, i[3] += wd;
        ti[0] += wt * a, ti[1] += wt * b, ti[2] += wt * c, ti[3] += wt * d;
        ii[0] += wa * a, ii[1] += 2 * wa * b, ii[2] += wb * b;
        ii[3] += 2 * wa * c, ii[4] += 2 * (wa * d + wb * c), ii[5] += 2 * wb * d;
        ii[6] += wc * c, ii[7] += 2 * wc * d, ii[8] += wd * d;
    }
};

// The correlations for one fy and all fx of the cell.
TVMATH_WIDE_LOOP void correlations_along(cell_means const& m, double fy, double* scores) {
    double const i0 = m.i[0] + m.i[2] * fy, i1 = m.i[1] + m.i[3] * fy;
    double const ti0 = m.ti[0] + m.ti[2] * fy, ti1 = m.ti[1] + m.ti[3] * fy;
    double ii[3];
    for (int k = 0; k < 3; ++k) ii[k] = m.ii[k] + fy * (m.ii[k + 3] + fy * m.ii[k + 6]);
    for (int s = 0; s < steps; ++s) {
        double const fx = s / static_cast<double>(steps), i = i0 + i1 * fx;
        double const product = (m.tt - m.t * m.t) * (ii[0] + fx * (ii[1] + fx * ii[2]) - i * i);
        double const score = (ti0 + ti1 * fx - m.t * i) / std::sqrt(product);
        scores[s] = product <= 0 ? -1.0 : score;
    }
}

}  // namespace

void refine_match(image const& scene, image const& target, match_range const& range, image_match const& at,
                  double& x, double& y) {
    std::vector<double> const weights = gradient_weights(target);
    x = static_cast<double>(at.x);
    y = static_cast<double>(at.y);
    double best = -1.0, scores[steps];
    // The place itself and its neighbours bound the cells, so the last place of the range begins none.
    for (std::size_t ox = at.x > 0 ? at.x - 1 : 0; ox < std::min(at.x + 1, range.x1 - 1); ++ox) {
        for (std::size_t oy = at.y > 0 ? at.y - 1 : 0; oy < std::min(at.y + 1, range.y1 - 1); ++oy) {
            cell_means const means(scene, target, weights, ox, oy);
            for (int step = 0; step < steps; ++step) {
                double const fy = step / static_cast<double>(steps);
                correlations_along(means, fy, scores);
                for (int s = 0; s < steps; ++s) {
                    if (!(scores[s] > best)) continue;
                    best = scores[s];
                    x = static_cast<double>(ox) + s / static_cast<double>(steps);
                    y = static_cast<double>(oy) + fy;
                }
            }
        }
    }
}

}  // namespace tvmath
