#include "part_distance.h"

#include <algorithm>

namespace plate {
namespace {

// All of these are negative inside.

double circle_distance(place p, double x, double y, double radius) {
    return std::hypot(p.x - x, p.y - y) - radius;
}

double box_distance(place p, double half_x, double half_y) {
    double const x = std::fabs(p.x) - half_x, y = std::fabs(p.y) - half_y;
    return std::hypot(std::max(x, 0.0), std::max(y, 0.0)) + std::min(std::max(x, y), 0.0);
}

place turned_back(place p, double angle, double x, double y) {
    double const c = std::cos(angle), s = std::sin(angle);
    return {c * (p.x - x) + s * (p.y - y), c * (p.y - y) - s * (p.x - x)};
}

// From a segment on the X axis, less the radius.
double capsule_distance(place p, double half_segment, double radius) {
    return std::hypot(std::max(std::fabs(p.x) - half_segment, 0.0), p.y) - radius;
}

double hole_distance(place p, feature const& f) {
    std::array<double, 5> const& m = f.made;
    switch (f.kind) {
        case outline::circle:
            return circle_distance(p, m[1], m[2], m[0]) -
                   (f.lobe != 0 ? f.lobe * std::cos(3 * std::atan2(p.y - m[2], p.x - m[1])) : 0.0);
        case outline::arc:
            return circle_distance(p, m[3], m[4], m[0]);
        case outline::rectangle:
            return box_distance(turned_back(p, m[2], m[3], m[4]), m[0] / 2, m[1] / 2);
        case outline::slot:
            return capsule_distance(turned_back(p, m[2], m[3], m[4]), m[0] - m[1], m[1]);
        default:
            return HUGE_VAL;
    }
}

}  // namespace

double opening_distance(place mm) {
    double const blank =
        box_distance(mm, half_width - corner_radius, half_height - corner_radius) - corner_radius;
    double const beyond_chamfer = (mm.y - mm.x - half_width - half_height + chamfer) / std::sqrt(2.0);
    double opening = std::max(blank, beyond_chamfer);
    for (feature const& f : features) opening = std::max(opening, -hole_distance(mm, f));
    return opening;
}

double chart_distance(place pixels) {
    auto const nearest = [](double x, int count) {
        double const half = (count - 1) / 2.0;  // an odd count has a dot in the middle
        return dot_pitch * std::clamp(std::round(x / dot_pitch), -half, half);
    };
    return circle_distance(pixels, nearest(pixels.x, dot_columns), nearest(pixels.y, dot_rows), dot_radius);
}

place opening_direction(place mm) {
    double const step = 1e-4;
    double const x = opening_distance({mm.x + step, mm.y}) - opening_distance({mm.x - step, mm.y});
    double const y = opening_distance({mm.x, mm.y + step}) - opening_distance({mm.x, mm.y - step});
    double const length = std::hypot(x, y);
    return length > 0 ? place{x / length, y / length} : place{0, 0};
}

}  // namespace plate
