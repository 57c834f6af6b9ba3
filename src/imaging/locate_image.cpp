#include "imaging/locate_image.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tvmath/pattern.h"

inline namespace tvmath {
namespace {

constexpr double certain_match = 0.5625, weakest_match = 0.3239;

// Means over every k-th pixel of the target and of the scene under it. Greys count from the first pixel of
// either, since a mean of squares less a squared mean would cancel where the contrast is small.
class full_correlation {
public:
    full_correlation(image const& scene, image const& target, std::size_t k)
        : scene_(scene), target_(target), step_(k), zero_(target[0][0]) {
        for (std::size_t y = 0; y < rows(target); y += k) {
            double const* const row = target[static_cast<unsigned int>(y)].begin();
            for (std::size_t x = 0; x < cols(target); x += k) {
                double const t = row[x] - zero_;
                n_ += 1;
                t_ += t;
                tt_ += t * t;
            }
        }
    }

    double at(std::size_t ox, std::size_t oy) const {
        double const zero = scene_[static_cast<unsigned int>(oy)][static_cast<unsigned int>(ox)];
        double i = 0, ii = 0, ti = 0;
        for (std::size_t y = 0; y < rows(target_); y += step_) {
            double const* const row = target_[static_cast<unsigned int>(y)].begin();
            double const* const under = scene_[static_cast<unsigned int>(y + oy)].begin() + ox;
            for (std::size_t x = 0; x < cols(target_); x += step_) {
                double const v = under[x] - zero;
                i += v;
                ii += v * v;
                ti += (row[x] - zero_) * v;
            }
        }
        return correlation_of_means(t_ / n_, tt_ / n_, i / n_, ii / n_, ti / n_);
    }

private:
    image const &scene_, &target_;
    std::size_t step_;
    double zero_, n_ = 0, t_ = 0, tt_ = 0;
};

// What a finer search has to look at when the best place of a search in steps of k is known.
match_range about(image_match const& best, std::size_t k, match_range const& all) {
    std::size_t const back = k + 2, ahead = k + 3;
    return {best.x > back ? best.x - back : 0, std::min(best.x + ahead, all.x1),
            best.y > back ? best.y - back : 0, std::min(best.y + ahead, all.y1)};
}

// From coarse to fine, until a level gives a certain match. Each level looks at the whole range anew, since
// what the coarser one took for the best place may be none.
image_match search_levels(image const& scene, image const& target, match_range const& all) {
    image_match best;
    for (std::size_t k : {4u, 2u, 1u}) {
        best = best_match(scene, target, k, all);
        if (!(best.score > -1.0)) break;
        if (k > 1) best = best_match(scene, target, 1, about(best, k, all));
        if (best.score > certain_match) break;
    }
    return best;
}

}  // namespace

double correlation_of_means(double t, double tt, double i, double ii, double ti) {
    double const product = (tt - t * t) * (ii - i * i);
    return product <= 0 ? -1.0 : (ti - t * i) / std::sqrt(product);
}

image_match best_match(image const& scene, image const& target, std::size_t k, match_range const& range) {
    full_correlation const correlation(scene, target, k);
    image_match best;
    for (image_match const& candidate : match_candidates(scene, target, k, range)) {
        double const score = correlation.at(candidate.x, candidate.y);
        if (score > best.score) best = {candidate.x, candidate.y, score};
    }
    return best;
}

point locate_image(image scene, image target, bool strict) {
    constexpr std::size_t least_room = 10;
    std::size_t const r = rows(target), c = cols(target);
    if (r == 0 || c == 0 || rows(scene) < r + least_room || cols(scene) < c + least_room) return point();

    match_range const all = {0, cols(scene) - c, 0, rows(scene) - r};
    image_match const best = search_levels(scene, target, all);
    if (!(best.score >= weakest_match) || (strict && !(best.score > certain_match))) return point();

    double x, y;
    refine_match(scene, target, all, best, x, y);
    return point(false, x, y) + point(false, cols(target), rows(target)) / 2.0;
}

}  // namespace tvmath
