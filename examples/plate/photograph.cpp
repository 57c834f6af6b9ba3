#include "edge_share.h"
#include "noise.h"
#include "part_distance.h"
#include "picture_of.h"
#include "scenes.h"
#include "surface.h"

namespace plate {
namespace {

constexpr double blur = 1.5, noise = 0.02;
constexpr double bevel = 0.07;  // mm

// A lamp on the upper left, and a lens that loses light towards the corners.
double light(place truth) {
    double const u = truth.x / lens_scale, v = truth.y / lens_scale, r2 = u * u + v * v;
    double const du = u + 0.45, dv = v + 0.4;
    return (0.7 + 0.5 * std::exp(-(du * du + dv * dv) / 0.6)) * (1 - 0.2 * r2);
}

// What a bevel adds to the grey of the face. It leans towards the opening: the side that looks to the light
// shines.
double bevel_gleam(place mm) {
    place const away = opening_direction(mm);
    double const facing = (away.y - away.x) / std::sqrt(2.0);
    double const uneven = 1 + 0.35 * smooth_noise(70, mm.x / 0.12, mm.y / 0.12);
    return (facing > 0 ? 0.18 * facing * facing + 0.06 : 0.06 * (1 + facing)) * uneven;
}

double distance_in_pixels(place pixels) {
    return opening_distance(to_mm(pixels)) / pixel;
}

double grey_at(unsigned int column, unsigned int row) {
    place const truth = true_place({column + 0.5, row + 0.5}), mm = to_mm(truth);
    double const middle = distance_in_pixels(truth);
    double const open = edge_share(distance_in_pixels, middle, column, row, blur);
    double grey = 0;
    if (open > 0) grey += open * ground(mm);
    if (open < 1) {
        grey += (1 - open) * brushed_metal(mm);
        double const rim = edge_share(distance_in_pixels, middle, column, row, blur, bevel / pixel) - open;
        if (rim > 0) grey += rim * bevel_gleam(mm);
    }
    cover const specks = dust(mm, blur * pixel);
    grey += specks.share * (specks.grey - grey);
    return light(truth) * grey;
}

}  // namespace

image plate_in_a_photograph() {
    return picture_of(
        [](unsigned int x, unsigned int y) { return grey_at(x, y) + noise * normal_noise(3, x, y); });
}

}  // namespace plate
