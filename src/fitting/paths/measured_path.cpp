#include "measured_path.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

inline namespace tvmath {
namespace {

struct extent_of_points {
    xyz low, high;
    bool is_solid = false;
    bool is_valid = false;

    explicit extent_of_points(std::span<point const> points) {
        if (points.empty()) return;
        low = high = xyz(points[0]);
        for (point const& p : points) {
            xyz const q(p);
            if (p.is_trivial() || !q.is_finite()) return;
            low = {std::min(low.x, q.x), std::min(low.y, q.y), std::min(low.z, q.z)};
            high = {std::max(high.x, q.x), std::max(high.y, q.y), std::max(high.z, q.z)};
            is_solid = is_solid || p.is_3d();
        }
        is_valid = size().is_finite();
    }
    xyz size() const { return high - low; }
    xyz middle() const { return low + 0.5 * size(); }
    double largest_coordinate() const {
        auto const most = [](double a, double b) { return std::max(std::fabs(a), std::fabs(b)); };
        return std::max({most(low.x, high.x), most(low.y, high.y), most(low.z, high.z)});
    }
};

bool is_within(xyz const& a, xyz const& b, double tolerance) {
    return std::fabs(a.x - b.x) <= tolerance && std::fabs(a.y - b.y) <= tolerance &&
           std::fabs(a.z - b.z) <= tolerance;
}

// Whether three points of the list lie in three places: the first, the first one elsewhere, and another.
bool has_three_places(std::vector<xyz> const& points, double tolerance) {
    return points.size() > 2 && std::any_of(points.begin() + 2, points.end(), [&](xyz const& p) {
               return !is_within(p, points[0], tolerance) && !is_within(p, points[1], tolerance);
           });
}

}  // namespace

measured_path prepare_path(std::span<point const> points, bool closed) {
    measured_path path;
    extent_of_points const extent(points);
    if (!extent.is_valid || points.size() > std::numeric_limits<std::uint32_t>::max() / 3 - 2) return path;

    // Two points a rounding apart have a chord of random direction, through which a spline would swing out.
    double const tolerance = 0x1p-50 * extent.largest_coordinate();
    std::vector<xyz>& kept = path.given;
    kept.reserve(points.size());
    for (point const& p : points) {
        if (kept.empty() || !is_within(xyz(p), kept.back(), tolerance)) kept.emplace_back(p);
    }
    if (closed) {
        while (kept.size() > 1 && is_within(kept.back(), kept.front(), tolerance)) kept.pop_back();
    }
    if (kept.size() < 2 || (closed && !has_three_places(kept, tolerance))) {
        kept.clear();
        return path;
    }
    xyz const size = extent.size();
    path.is_solid = extent.is_solid;
    path.origin = extent.middle();
    path.unit = std::ldexp(1, std::max(std::ilogb(std::max({size.x, size.y, size.z})), -1021));
    path.local.reserve(kept.size());
    for (xyz const& p : kept) {
        xyz const d = p - path.origin;
        path.local.emplace_back(d.x / path.unit, d.y / path.unit, d.z / path.unit);
    }
    return path;
}

std::vector<double> chord_lengths(std::vector<xyz> const& points, bool closed) {
    std::size_t const n = points.size();
    std::vector<double> chords(closed ? n : n - 1);
    for (std::size_t i = 0; i < chords.size(); ++i)
        chords[i] = length(points[i + 1 == n ? 0 : i + 1] - points[i]);
    return chords;
}

}  // namespace tvmath
