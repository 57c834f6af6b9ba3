#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include "seeded_random.h"
#include "tvmath/array.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Measured points whose feature of least squares is known: at each place of an outline one point outside and
/// one equally far inside along the normal. Both have the same foot, so what they ask of any parameter
/// cancels, and the outline itself is stationary, whatever the distances.
class mirrored_points {
public:
    /// A frame with +X turned to `angle`; distances are up to `noise`.
    mirrored_points(seeded_random& random, point origin, double angle, double noise)
        : random_(random), origin_(origin), u_(false, std::cos(angle), std::sin(angle)), noise_(noise) {}

    /// A place of the outline and the direction of its normal, which need not be a unit vector, in the frame.
    void add(double x, double y, double nx, double ny) {
        double const off = noise_ * random_.unit() / std::hypot(nx, ny);
        points_.push_back(out(x + off * nx, y + off * ny));
        points_.push_back(out(x - off * nx, y - off * ny));
    }
    /// In random order.
    std::vector<point> shuffled() {
        for (std::size_t i = points_.size(); i > 1; --i) {
            std::swap(points_[i - 1], points_[random_.below(static_cast<unsigned int>(i))]);
        }
        return points_;
    }
    point out(double x, double y) const {
        point v = u_;
        v.rotate_90();
        return origin_ + (x * u_ + y * v);
    }

private:
    seeded_random& random_;
    point origin_, u_;
    double noise_;
    std::vector<point> points_;
};

inline idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

/// Each point three times.
inline std::vector<point> repeated(std::vector<point> const& points) {
    std::vector<point> all = points;
    for (int i = 0; i < 2; ++i) all.insert(all.end(), points.begin(), points.end());
    return all;
}

}  // namespace tvmath
