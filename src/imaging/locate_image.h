#pragma once

#include <cstddef>
#include <vector>

#include "tvmath/image.h"

inline namespace tvmath {

/// A place of a target in a scene, by the pixel under its first pixel, and the correlation there.
struct image_match {
    std::size_t x = 0, y = 0;
    double score = -1.0;  // of no match, which every match beats
};

/// The places x0 to x1 - 1 by y0 to y1 - 1.
struct match_range {
    std::size_t x0, x1, y0, y1;
};

/// The correlation coefficient from means over n pixels or weights; -1 for a side without contrast.
double correlation_of_means(double t, double tt, double i, double ii, double ti);

/// The best place for every k-th pixel of the target, over every k-th place of the range: the first one, by x
/// and then by y, of those with the greatest correlation. Score -1 when there is none.
image_match best_match(image const& scene, image const& target, std::size_t k, match_range const& range);

/// The places whose correlation `best_match` computes in full: those of which a faster computation, with its
/// rounding, leaves open whether they are the best. In the order of x and then y.
std::vector<image_match> match_candidates(image const& scene, image const& target, std::size_t k,
                                          match_range const& range);

/// The best place to 0.01 pixel within the cells about a place, `range` being all places.
void refine_match(image const& scene, image const& target, match_range const& range, image_match const& at,
                  double& x, double& y);

}  // namespace tvmath
