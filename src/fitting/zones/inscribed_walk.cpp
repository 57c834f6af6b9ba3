#include "inscribed_walk.h"

#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Where along m + s d a point of the list is as far as p1: the least s above 0, and the s below 0 of the
// least size.
struct blockers {
    double ahead = infinity, behind = -infinity;
    xy ahead_point, behind_point;

    blockers(walk_list const& list, xy p1, xy m, xy d) {
        for (xy q : list.points()) {
            double const s = (dot(q, q) - dot(p1, p1) - 2 * dot(q - p1, m)) / (2 * dot(q - p1, d));
            if (s > 0.0 && s < ahead) {
                ahead = s;
                ahead_point = q;
            }
            if (s < 0.0 && s > behind) {
                behind = s;
                behind_point = q;
            }
        }
    }
};

}  // namespace

contact_circle inscribed_walk(std::vector<xy> const& points) {
    if (points.size() < 3) return {};
    walk_list list(points);
    xy p1, p2;
    double least = infinity;
    for (xy q : list.points()) {
        if (!(dot(q, q) < least)) continue;
        least = dot(q, q);
        p1 = q;
    }
    if (least == infinity) return {};
    list.take(p1);
    if (list.points().size() < 2) return {};

    double t = infinity;
    for (xy q : list.points()) {
        double const s = (dot(p1, p1) - dot(q, q)) / (2 * (dot(q, p1) - dot(p1, p1)));
        if (!(s >= 0.0 && s < t)) continue;
        t = s;
        p2 = q;
    }
    if (t == infinity) return {};
    xy c = -t * p1;
    list.take(p2);
    if (list.is_empty()) return {};

    for (;;) {
        xy const m = 0.5 * (p1 + p2);
        xy d = c - m;
        // The centre sits on the chord: there is no way on yet, both sides are tried.
        bool const both = 1e-10 * std::sqrt(dot(p1, p1)) > std::sqrt(dot(d, d));
        if (both) d = quarter_turned(p2 - p1);
        blockers const found(list, p1, m, d);
        bool const ahead = found.ahead < infinity, behind = both && found.behind > -infinity;
        if (!ahead && !behind) return circle_on_diameter(p1, p2);

        bool const back = behind && (!ahead || -found.behind < found.ahead);
        c = m + (back ? found.behind : found.ahead) * d;
        std::array<xy, 3> const triangle = {p1, p2, back ? found.behind_point : found.ahead_point};
        list.take(triangle[2]);
        largest_angle const widest(triangle);
        if (widest.cosine >= 0.0) return circle_through(triangle[0], triangle[1], triangle[2]);
        p1 = triangle[static_cast<std::size_t>((widest.vertex + 1) % 3)];
        p2 = triangle[static_cast<std::size_t>((widest.vertex + 2) % 3)];
    }
}

}  // namespace tvmath
