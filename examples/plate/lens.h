#pragma once

#include "plate_drawing.h"

namespace plate {

/// Where what is seen at a place of the image's plane truly lies, in pixels from the middle of the image.
inline place true_place(place seen) {
    double const u = (seen.x - columns / 2.0) / lens_scale, v = (seen.y - rows / 2.0) / lens_scale;
    double const r2 = u * u + v * v, radial = r2 * (k1 + k2 * r2);
    double const du = u * radial + p1 * (r2 + 2 * u * u) + 2 * p2 * u * v;
    double const dv = v * radial + p2 * (r2 + 2 * v * v) + 2 * p1 * u * v;
    return {lens_scale * (u + du), lens_scale * (v + dv)};
}

/// The inverse: a place of the image's plane. The displacement changes by less than 0.05 of a way, so each
/// round leaves less than that share of the error: twelve are enough for all digits.
inline place seen_place(place truth) {
    place seen{truth.x + columns / 2.0, truth.y + rows / 2.0};
    for (int round = 0; round < 12; ++round) {
        place const there = true_place(seen);
        seen = {seen.x + truth.x - there.x, seen.y + truth.y - there.y};
    }
    return seen;
}

/// From pixels from the middle, y downward, to mm from the middle, y upward, and back.
inline place to_mm(place pixels) {
    return {pixel * pixels.x, -pixel * pixels.y};
}
inline place from_mm(place mm) {
    return {mm.x / pixel, -mm.y / pixel};
}

}  // namespace plate
