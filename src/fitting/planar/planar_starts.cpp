#include "planar_starts.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t direction_count = 16;

// The points that lie farthest out in equal steps of the direction, seen in coordinates in which the scatter
// is round: of a long thin figure both long sides are found.
std::array<xy, direction_count> extremes_of(std::vector<xy> const& points) {
    planar_scatter const s = scatter_of(points);
    std::array<xy, direction_count> extremes{};
    for (std::size_t k = 0; k < direction_count; ++k) {
        double const angle = 2 * pi * static_cast<double>(k) / direction_count;
        double const u = std::cos(angle) / s.along, v = std::sin(angle) / s.across;
        xy const towards = (u - s.lean * v) * s.axis + v * quarter_turned(s.axis);
        extremes[k] = *std::max_element(points.begin(), points.end(),
                                        [&](xy a, xy b) { return dot(a, towards) < dot(b, towards); });
    }
    return extremes;
}

void add_pair(std::vector<planar_box>& boxes, std::vector<xy> const& points, xy a, xy b) {
    xy const d = b - a;
    double const n = std::hypot(d.x, d.y);
    if (n > 0) boxes.push_back(box_around(points, 1 / n * d));
}

}  // namespace

planar_box box_around(std::vector<xy> const& points, xy axis) {
    planar_box box{axis, 0, 0, 0, 0};
    if (points.empty()) return box;
    box.left = box.right = box.along(points[0]);
    box.bottom = box.top = box.across(points[0]);
    for (xy const& p : points) {
        double const t = box.along(p), n = box.across(p);
        box.left = std::min(box.left, t);
        box.right = std::max(box.right, t);
        box.bottom = std::min(box.bottom, n);
        box.top = std::max(box.top, n);
    }
    return box;
}

std::vector<xy> sample_of(std::vector<xy> const& points) {
    constexpr std::size_t most = 1000;
    if (points.size() <= most) return points;
    std::vector<xy> sample;
    for (std::size_t i = 0; i < most; ++i) sample.push_back(points[i * points.size() / most]);
    for (xy const& p : extremes_of(points)) sample.push_back(p);
    return sample;
}

std::vector<planar_box> start_boxes(std::vector<xy> const& points) {
    std::vector<planar_box> boxes;
    auto const other = std::find_if(points.begin(), points.end(),
                                    [&](xy p) { return p.x != points[0].x || p.y != points[0].y; });
    if (other == points.end()) return boxes;
    add_pair(boxes, points, points[0], *other);
    boxes.push_back(box_around(points, scatter_of(points).axis));
    constexpr int steps = 18;
    for (int i = 0; i < steps; ++i) {
        double const angle = pi / 2 * i / steps;
        boxes.push_back(box_around(points, {std::cos(angle), std::sin(angle)}));
    }
    if (points.size() <= 8) {
        for (xy const& a : points) {
            for (xy const& b : points) {
                if (&a < &b) add_pair(boxes, points, a, b);
            }
        }
    } else {
        auto const extremes = extremes_of(points);
        for (std::size_t k = 0; k < direction_count; ++k) {
            add_pair(boxes, points, extremes[k], extremes[(k + 1) % direction_count]);
        }
    }
    return boxes;
}

}  // namespace tvmath
