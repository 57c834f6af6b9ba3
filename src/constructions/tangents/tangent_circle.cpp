#include "tvmath/tangent_circle.h"

#include <algorithm>
#include <cmath>

#include "circle_answers.h"
#include "tvmath/construction_choice.h"

inline namespace tvmath {

circle circle_centered_tangent(point const& center, line l) {
    if (center.is_trivial() || is_empty(l)) return circle();
    xyz const at(center);
    flat_line const flat(l, at);  // relative to the centre: far from the origin no digit is lost
    double const radius = std::fabs(flat.distance(xy()));
    return flat.has_direction() && at.is_finite() && std::isfinite(radius) ? circle(radius, center)
                                                                           : circle();
}

namespace {

double mean_height(flat_line const& a, flat_line const& b, xy const& center) {
    return (a.height_at(center) + b.height_at(center)) / 2;
}

void circles_of_radius(flat_line const& a, flat_line const& b, double r, double noise,
                       circle_answers& answers) {
    double const sine = cross(a.u, b.u);
    xy const apart = b.at - a.at;
    if (std::fabs(sine) < parallel_sine) {
        double const half = std::fabs(a.distance(b.at)) / 2;
        xy const middle = a.at + 0.5 * apart;
        if (half > noise && std::fabs(half - r) <= 1e-9 * r + noise) {
            answers.add(r, middle, mean_height(a, b, middle));
        }
        return;
    }
    for (double const s : {r, -r}) {
        for (double const t : {r, -r}) {
            xy const center = place_beside(a, s, b, t, a.at);
            answers.add(r, center, mean_height(a, b, center));
        }
    }
}

// The circles of one sector, that of the sides s and t, through a point at the distances da and db from the
// lines. With q d = u - s t v, of which d is the unit vector along the bisector, in the sense of u, and q' =
// |u + s t v|, |centre - p| = r is a quadratic in r whose discriminant is a product:
//     r = 2 (da + db -+ q' g) / q²,  g² = da db,
// and from p the centre is at x along d and at y to its left, where k is the sign of the sine of (u, v),
//     x = (-k t q' (da + db) +- 4 g) / q²,  y = s (db - da) / q.
// The nearer root, where these differences cancel, comes from the product of both.
// Nothing there divides by the sine, so that the sector between parallel lines, where q' is 0, is no special
// case. The sector outside parallel lines, where q is 0, has no circle.
struct sector {
    flat_line const &a, &b;
    double s, t;

    void add_circles(double da, double db, double height, circle_answers& answers) const {
        xy const along = a.u - s * t * b.u, across = a.u + s * t * b.u;
        double const q = std::hypot(along.x, along.y), q2 = std::hypot(across.x, across.y);
        if (q < parallel_sine) return;
        // Across the other bisector when that one is the longer vector and so has the better direction.
        xy const turned = (cross(across, along) < 0 ? -1 : 1) / q2 * xy(-across.y, across.x);
        xy const d = q < q2 ? turned : (1 / q) * along, left = xy(-d.y, d.x);
        double const g = std::sqrt(da) * std::sqrt(db), sum = da + db;
        double const outward = cross(a.u, b.u) < 0 ? t : -t;  // whether d points away from the vertex
        for (double const sense : {-1.0, 1.0}) {
            double const gap = (da - db) / q, larger = sum + q2 * g;
            double r = 2 * larger / (q * q), x = (q2 * sum + 4 * g) / (q * q);
            if (sense != outward) {
                r = 2 * (gap * gap + da * db) / larger;
                x = (q2 * gap * q2 * gap - 4 * da * db) / (q2 * sum + 4 * g);
            }
            xy const center = (outward * x) * d - (s * gap) * left;
            answers.add(r, center, (a.height_at(center) + b.height_at(center) + height) / 3);
            if (g == 0) return;  // on one of the lines both are the same
        }
    }
};

// The point is the origin of the lines.
void circles_through(flat_line const& a, flat_line const& b, xyz const& p, circle_answers& answers) {
    double const da = a.distance(xy()), db = b.distance(xy()), far = size(xy(p));
    bool const on_a = std::fabs(da) <= rounding_at(size(a.at) + far),
               on_b = std::fabs(db) <= rounding_at(size(b.at) + far);
    if ((on_a && on_b) || !std::isfinite(da) || !std::isfinite(db)) return;
    for (double const s : {1.0, -1.0}) {
        for (double const t : {1.0, -1.0}) {
            if ((!on_a && s * da < 0) || (!on_b && t * db < 0)) continue;
            sector{a, b, s, t}.add_circles(on_a ? 0 : std::fabs(da), on_b ? 0 : std::fabs(db), p.z, answers);
        }
    }
}

}  // namespace

idioms::ref<multi_solution> circle_tangent_tangent_value(line a, line b, double radius,
                                                         std::vector<Circle_Description>& circles) {
    if (is_empty(a) || is_empty(b))
        return circle_answers(false, xyz()).remembered<circle_tan_tan_val_multi>(circles);
    xyz const origin(a.basis(0));
    circle_answers answers(a.is_3d() || b.is_3d(), origin);
    flat_line const first(a, origin), second(b, origin);
    if (first.has_direction() && second.has_direction()) {
        double const noise = rounding_at(size(second.at) + size(xy(origin)));
        circles_of_radius(first, second, std::fabs(radius), noise, answers);
    }
    return answers.remembered<circle_tan_tan_val_multi>(circles);
}

idioms::ref<multi_solution> circle_tangent_tangent_fit(line a, line b, point const& p,
                                                       std::vector<Circle_Description>& circles) {
    if (is_empty(a) || is_empty(b) || p.is_trivial()) {
        return circle_answers(false, xyz()).remembered<circle_tan_tan_fit_multi>(circles);
    }
    xyz const origin(p);
    circle_answers answers(a.is_3d() || b.is_3d() || p.is_3d(), origin);
    flat_line const first(a, origin), second(b, origin);
    if (first.has_direction() && second.has_direction()) {
        circles_through(first, second, origin, answers);
    }
    return answers.remembered<circle_tan_tan_fit_multi>(circles);
}

}  // namespace tvmath
