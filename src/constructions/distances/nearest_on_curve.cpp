#include <cmath>

#include "nearest_answer.h"
#include "nearest_spans.h"
#include "tvmath/nearest_point.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The parameters inside a span at which it runs along the line, from its control points' distances v from the
// line: the zeros of the derivative a (1 - t)² + 2 b t (1 - t) + c t², a third of it. With q, the one of the
// sums a - b +- sqrt(b² - a c) that does not cancel, they are a / q and q / (a - 2 b + c); where there is no
// such zero the quotients are infinities, NaN or outside.
template <class visitor>
void for_each_place_along(double const* v, visitor const& consider) {
    double const a = v[1] - v[0], b = v[2] - v[1], c = v[3] - v[2], discriminant = b * b - a * c;
    if (!(discriminant >= 0)) return;
    double const q = (a - b) + std::copysign(std::sqrt(discriminant), a - b);
    for (double const t : {a / q, q / ((a - b) - (b - c))}) {
        if (t > 0 && t < 1) consider(t);
    }
}

// The place of the path with the least or the greatest distance, after `better`, from the line in XY.
template <class comparison>
point place_from_line(line const& l, curve const& c, comparison const& better) {
    span_list const path(c);
    if (l.is_trivial() || path.is_empty()) return point();
    xyz const o(l.basis(0)), d(l.basis(1)), along = unit({d.x, d.y, 0}), normal(-along.y, along.x, 0);
    if (dot(along, along) == 0 || !o.is_finite()) return point();

    bool found = false;
    double best = 0;
    xyz place;
    for (cubic_span const& s : path.spans()) {
        double v[4];
        for (unsigned int k = 0; k < 4; ++k) v[k] = dot(s.control[k] - o, normal);
        auto const consider = [&](double t) {
            xyz const q = s.at(t);
            double const distance = std::fabs(dot(q - o, normal));
            if (found && !better(distance, best)) return;
            found = true;
            best = distance;
            place = q;
        };
        consider(0);
        for_each_place_along(v, consider);
        consider(1);
    }
    return answer(place, path.is_3d());
}

}  // namespace

point point_nearest_on(point const& p, curve c) {
    span_list const path(c);
    if (!p.is_3d() || !xyz(p).is_finite()) return point();
    auto const place = path.nearest(xyz(p), infinity);
    return place.found ? answer(place.position, path.is_3d()) : point();
}

point point_farthest_on(point const& p, curve c) {
    span_list const path(c);
    if (!p.is_3d() || !xyz(p).is_finite()) return point();
    auto const place = path.farthest(xyz(p), -infinity);
    return place.found ? answer(place.position, path.is_3d()) : point();
}

point point_nearest_on(line l, curve c) {
    return place_from_line(l, c, [](double a, double b) { return a < b; });
}

point point_farthest_on(line l, curve c) {
    return place_from_line(l, c, [](double a, double b) { return a > b; });
}

point point_nearest_on_2d(curve c, std::vector<point> const& list) {
    span_list const path(c);
    point best;
    double least = infinity;
    for (point const& q : list) {
        if (!q.is_3d() || !xyz(q).is_finite()) continue;
        auto const place = path.nearest(xyz(q), least);
        if (!place.found) continue;
        least = place.squared_distance;
        best = q;
    }
    return best;
}

point point_farthest_on_2d(curve c, std::vector<point> const& list) {
    span_list const path(c);
    point best;
    double greatest = -infinity;
    for (point const& q : list) {
        if (!q.is_3d() || !xyz(q).is_finite()) continue;
        auto const place = path.farthest(xyz(q), greatest);
        if (!place.found) continue;
        greatest = place.squared_distance;
        best = q;
    }
    return best;
}

}  // namespace tvmath
