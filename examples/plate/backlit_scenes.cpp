#include "edge_share.h"
#include "noise.h"
#include "part_distance.h"
#include "picture_of.h"
#include "scenes.h"

namespace plate {
namespace {

constexpr double dark = 0.06, bright = 0.86, blur = 1;

// `distance` in pixels of a true place.
template <class signed_distance>
image backlit(signed_distance const& distance, double noise, std::uint64_t seed) {
    return picture_of([&](unsigned int x, unsigned int y) {
        place const truth = true_place({x + 0.5, y + 0.5});
        double const share = edge_share(distance, distance(truth), x, y, blur);
        // The screen is a little darker towards its corners.
        double const r2 = (truth.x * truth.x + truth.y * truth.y) / (lens_scale * lens_scale);
        return dark + (bright - dark) * (1 - 0.08 * r2) * share + noise * normal_noise(seed, x, y);
    });
}

}  // namespace

image chart_on_backlight(double noise) {
    return backlit(chart_distance, noise, 1);
}

image plate_on_backlight(double noise) {
    return backlit([](place pixels) { return opening_distance(to_mm(pixels)) / pixel; }, noise, 2);
}

}  // namespace plate
