#include "axial_points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tvmath/scalar.h"

inline namespace tvmath {

local_points make_local(std::span<point const> points) {
    local_points local;
    xyz sum;
    for (point const& p : points) {
        if (!p.is_3d()) return local;
        sum = sum + xyz(p);
    }
    // No more is asked of the centre than to be near: what is subtracted is the same from every point.
    xyz const center = (1 / static_cast<double>(points.size())) * sum;
    double most = 0, far = 0;
    for (point const& p : points) {
        xyz const q = xyz(p) - center;
        if (!q.is_finite()) return local;
        most = std::max({most, std::fabs(q.x), std::fabs(q.y), std::fabs(q.z)});
        far = std::max({far, std::fabs(p.x()), std::fabs(p.y()), std::fabs(p.z())});
    }
    if (!(most > 1e-290 && most < 1e290)) return local;
    local.center = center;
    local.scale = std::ldexp(1.0, std::ilogb(most));
    local.grain = std::numeric_limits<double>::epsilon() * std::max(far / local.scale, 1.0);
    local.points.reserve(points.size());
    for (point const& p : points) local.points.push_back(local.to_local(xyz(p)));
    return local;
}

std::vector<xyz> sample_of(std::vector<xyz> const& points, std::size_t count) {
    if (points.size() <= count) return points;
    std::vector<xyz> sample;
    sample.reserve(count);
    std::uint64_t state = 1;
    for (std::size_t i = 0; i < count; ++i) {
        // Weyl's sequence by the golden ratio: no period that a scan could share.
        state += 0x9E3779B97F4A7C15u;
        std::size_t const first = points.size() / count * i, run = points.size() / count;
        sample.push_back(points[first + static_cast<std::size_t>((state >> 32) % run)]);
    }
    return sample;
}

}  // namespace tvmath
