#include "edge_share.h"
#include "noise.h"
#include "part_distance.h"
#include "scenes.h"

namespace plate {
namespace {

constexpr double dark = 0.06, bright = 0.86, blur = 1;

// `distance` in pixels of a true place.
template <class signed_distance>
picture backlit(signed_distance const& distance, double noise, std::uint64_t seed) {
    picture out;
    out.reserve(columns * rows);
    for (unsigned int y = 0; y < rows; ++y) {
        for (unsigned int x = 0; x < columns; ++x) {
            place const truth = true_place({x + 0.5, y + 0.5});
            double const share = edge_share(distance, distance(truth), x, y, blur);
            // The screen is a little darker towards its corners.
            double const r2 = (truth.x * truth.x + truth.y * truth.y) / (lens_scale * lens_scale);
            out.push_back(dark + (bright - dark) * (1 - 0.08 * r2) * share +
                          noise * normal_noise(seed, x, y));
        }
    }
    return out;
}

}  // namespace

picture chart_on_backlight(double noise) {
    return backlit(chart_distance, noise, 1);
}

picture plate_on_backlight(double noise) {
    return backlit([](place pixels) { return opening_distance(to_mm(pixels)) / pixel; }, noise, 2);
}

}  // namespace plate
