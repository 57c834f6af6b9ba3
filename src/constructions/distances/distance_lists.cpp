#include <algorithm>

#include "geometry/xyz.h"
#include "tvmath/distance.h"
#include "tvmath/point_finder.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

bool is_solid(std::vector<point> const& list) {
    return !list.empty() && std::all_of(list.begin(), list.end(), [](point const& p) { return p.is_3d(); });
}

// The box around a list; what has a NaN is in no box and is never an answer.
struct list_box {
    xyz low = {infinity, infinity, infinity}, high = {-infinity, -infinity, -infinity};

    explicit list_box(std::vector<point> const& list) {
        for (point const& p : list) {
            low = {std::min(low.x, p.x()), std::min(low.y, p.y()), std::min(low.z, p.z())};
            high = {std::max(high.x, p.x()), std::max(high.y, p.y()), std::max(high.z, p.z())};
        }
    }
    double squared_gap(point const& p) const {
        xyz const d(std::max({0.0, low.x - p.x(), p.x() - high.x}),
                    std::max({0.0, low.y - p.y(), p.y() - high.y}),
                    std::max({0.0, low.z - p.z(), p.z() - high.z}));
        return dot(d, d);
    }
    double squared_reach(point const& p) const {
        xyz const d(std::max(p.x() - low.x, high.x - p.x()), std::max(p.y() - low.y, high.y - p.y()),
                    std::max(p.z() - low.z, high.z - p.z()));
        return dot(d, d);
    }
};

double squared_distance(point const& a, point const& b) {
    xyz const d = xyz(a) - xyz(b);
    return dot(d, d);
}

struct two_points {
    point first, second;  // trivial when there is no pair
};

// The nearest points of two lists, or the farthest. A walked point is asked for only when the box of the
// other list leaves it a chance: rounding is monotone, so the box is never beaten by what is in it.
two_points pair_of_lists(std::vector<point> const& a, std::vector<point> const& b, bool nearest) {
    two_points found;
    if (!is_solid(a) || !is_solid(b)) return found;
    bool const first_is_tree = a.size() <= b.size();
    std::vector<point> const &held = first_is_tree ? a : b, &walked = first_is_tree ? b : a;
    PointFinder3D finder;
    finder.construct(held);
    list_box const box(held);

    double best = nearest ? infinity : -infinity;
    for (point const& p : walked) {
        if (nearest ? !(box.squared_gap(p) < best) : !(box.squared_reach(p) > best)) continue;
        unsigned int index = 0;
        if (!(nearest ? finder.find_closest(p, index) : finder.find_farthest(p, index))) continue;
        double const distance = squared_distance(p, held[index]);
        if (nearest ? !(distance < best) : !(distance > best)) continue;
        best = distance;
        found = {held[index], p};
    }
    if (!first_is_tree) point::swap(found.first, found.second);
    return found;
}

}  // namespace

line distance_near_3d(std::vector<point> const& a, std::vector<point> const& b) {
    auto const [first, second] = pair_of_lists(a, b, true);
    return distance_fit(first, second);
}

line distance_far_3d(std::vector<point> const& a, std::vector<point> const& b) {
    auto const [first, second] = pair_of_lists(a, b, false);
    return distance_fit(first, second);
}

}  // namespace tvmath
