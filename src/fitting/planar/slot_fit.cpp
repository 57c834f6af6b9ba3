#include <algorithm>

#include "planar_starts.h"
#include "slot_model.h"
#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"
#include "tvmath/shape_fit.h"

inline namespace tvmath {
namespace {

planar_slot slot_in(planar_box const& box) {
    planar_box const lying = box.right - box.left < box.top - box.bottom ? box.turned() : box;
    double const radius = (lying.top - lying.bottom) / 2;
    return {lying.center(), lying.axis, (lying.right - lying.left) / 2 - radius, radius};
}

// The starts in the order of their sums of squares, the best of them only unless the points are few.
std::vector<fitted_slot> starts_of(std::vector<xy> const& sample) {
    std::vector<fitted_slot> starts;
    for (planar_box const& box : start_boxes(sample)) {
        planar_slot const s = slot_in(box);
        if (s.radius > 0) starts.push_back({s, {}});
    }
    if (sample.size() <= 8) return starts;
    for (fitted_slot& start : starts) start.equations.squares = squares_of(sample, start.slot);
    std::stable_sort(starts.begin(), starts.end(),
                     [](auto const& a, auto const& b) { return a.squares() < b.squares(); });
    starts.resize(std::min<std::size_t>(starts.size(), 6));
    return starts;
}

slot placed(planar_points const& points, planar_slot const& s) {
    xy const axis = is_rightward(s.axis) ? s.axis : -1 * s.axis;
    return slot(points.place(s.center, s.half * axis, s.radius * quarter_turned(axis)));
}

// Null when no start leads to a slot that the points tell.
slot fit(planar_points const& points) {
    std::vector<xy> const sample = sample_of(points.at);
    planar_scatter const scatter = scatter_of(sample);
    double const rounding = points.resolution + 1e-15 * scatter.along;
    if (!(scatter.across > 4 * rounding)) return slot();
    double const floor = 16 * sqr(rounding) * static_cast<double>(sample.size());
    fitted_slot best;
    bool found = false, settled = false;
    double least = 0;
    for (fitted_slot& start : starts_of(sample)) {
        bool const is_settled = settle(sample, start);
        double const squares = std::max(start.squares(), floor);
        bool better = !found || squares < least * (1 - 1e-9);
        if (!better && squares <= least * (1 + 1e-9)) {
            better = is_settled && (!settled || start.slot.radius < best.slot.radius * (1 - 1e-9));
        }
        if (!better) continue;
        best = start;
        least = squares;
        settled = is_settled;
        found = true;
    }
    // The best one may be free to move, as of points without an end: then no other one is the answer.
    if (!settled || !settle(points.at, best) || !is_told(points.at, best, rounding)) return slot();
    return placed(points, best.slot);
}

}  // namespace

slot slot_fit(idioms::array<point> points) {
    planar_points const relative = relative_to(point_fit(points), span_of(points));
    return relative.at.size() < slot_unknowns ? slot() : fit(relative);
}

}  // namespace tvmath
