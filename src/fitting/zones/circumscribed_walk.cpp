#include "circumscribed_walk.h"

#include <cmath>

#include "tvmath/scalar.h"
#include "zone_circle_points.h"

inline namespace tvmath {

contact_circle circle_on_diameter(xy a, xy b) {
    return {2, 0.5 * (a + b), 0.5 * std::sqrt(dot(a - b, a - b)), {a, b, {}}};
}

contact_circle circle_through(xy a, xy b, xy c) {
    xy const center = circumcenter(a, b, c);
    return {3, center, std::sqrt(dot(a - center, a - center)), {a, b, c}};
}

largest_angle::largest_angle(std::array<xy, 3> const& p) {
    for (int k = 0; k < 3; ++k) {
        auto const at = [&](int i) { return p[static_cast<std::size_t>(i % 3)]; };
        xy const u = at(k + 1) - at(k), v = at(k + 2) - at(k);
        double const c = dot(u, v) / std::sqrt(dot(u, u) * dot(v, v));
        if (c < cosine) {
            cosine = c;
            vertex = k;
        }
    }
}

contact_circle circumscribed_walk(std::vector<xy> const& points) {
    walk_list list(points);
    xy p1, p2, p3;
    double most = 0;
    for (xy q : list.points()) {
        if (dot(q, q) < most) continue;  // a tie takes the later point
        most = dot(q, q);
        p1 = q;
    }
    list.take(p1);
    if (list.is_empty()) return {};

    // Along the ray from p1 through the origin, p1 + t: q is as far as p1 from the centre t p1.
    double t = infinity;
    for (xy q : list.points()) {
        double const s = (dot(q, q) - dot(p1, p1)) / (2 * (dot(q, p1) - dot(p1, p1)));
        if (!(s >= 0.0 && s < t)) continue;
        t = s;
        p2 = q;
    }
    if (t == infinity) return {};
    list.take(p2);
    xy c = t * p1;

    while (!list.is_empty()) {
        xy const m = 0.5 * (p1 + p2), d = c - m;
        double const size = dot(p1, p1);
        if (std::sqrt(dot(d, d)) < 1e-10 * std::sqrt(size)) break;
        double best = -1;
        for (xy q : list.points()) {
            // |q - centre|² - |p1 - centre|² at m + s d is power - s slope. The walk comes from s = 1, where
            // all points are inside, so the first to block has the greatest s, and a slope above 0. A point
            // on the circle at s = 1, as all are on perfect data, may be outside by rounding.
            double const power = dot(q, q) - size - 2 * dot(q - p1, m), slope = 2 * dot(q - p1, d);
            if (!(slope > 0.0) || !(power >= 0.0) || power - slope > 1e-14 * size) continue;
            double const s = std::fmin(1.0, power / slope);
            if (!(s > best)) continue;
            best = s;
            p3 = q;
        }
        if (best < 0) break;
        c = m + best * d;
        list.take(p3);
        std::array<xy, 3> const triangle = {p1, p2, p3};
        largest_angle const widest(triangle);
        if (widest.cosine >= 0.0) return circle_through(p1, p2, p3);
        p1 = triangle[static_cast<std::size_t>((widest.vertex + 1) % 3)];
        p2 = triangle[static_cast<std::size_t>((widest.vertex + 2) % 3)];
    }
    return circle_on_diameter(p1, p2);
}

}  // namespace tvmath
