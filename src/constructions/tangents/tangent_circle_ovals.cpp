#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "circle_answers.h"
#include "offset_oval.h"
#include "tvmath/construction_choice.h"
#include "tvmath/scalar.h"
#include "tvmath/tangent_circle.h"

inline namespace tvmath {
namespace {

// Where the order of the answers starts: as for the points that two ellipses have in common, an angle that
// no drawing uses.
constexpr double seam = 0.6180339887498949;

struct touching_circle {
    xy center, foot_a, foot_b;
    double order;
};
using touching_circles = std::vector<touching_circle>;

// Two circles: the centre is at the distances ra and rb, which may be negative, from theirs.
void add_for_circles(offset_oval const& a, offset_oval const& b, double noise, touching_circles& found) {
    double const ra = a.longer() + a.offset(), rb = b.longer() + b.offset();
    xy const apart = b.center() - a.center();
    double const d = std::hypot(apart.x, apart.y), p = std::fabs(ra), q = std::fabs(rb);
    if (d <= noise) return;
    // Heron's formula; within rounding of 0 the circles touch.
    double h2 = (p + q + d) / (4 * d * d);
    for (double const slack : {p + q - d, d + p - q, d - p + q}) {
        if (slack < -noise) return;
        h2 *= slack <= noise ? 0 : slack;
    }
    double const x = (d + (p - q) * (p + q) / d) / 2, h = std::sqrt(h2);
    xy const along = (1 / d) * apart, left(-along.y, along.x);
    for (double const side : {1.0, -1.0}) {
        xy const center = a.center() + x * along + (side * h) * left;
        auto const foot = [&](offset_oval const& c, double r) {
            // A circle of the radius of another one touches it everywhere.
            xy const n = std::fabs(r) <= noise ? along : (1 / r) * (center - c.center());
            return center - c.offset() * n;
        };
        found.push_back({center, foot(a, ra), foot(b, rb), 0});
        if (h == 0) return;
    }
}

void add_for_ellipses(convex_arcs& a, convex_arcs& b, double reach, touching_circles& found) {
    offset_meeting const meeting(a, b, reach);
    for (offset_meeting::hit const& h : meeting.hits()) {
        found.push_back({0.5 * (h.p.at + h.q.at), a.oval().foot(h.p), b.oval().foot(h.q), 0});
    }
}

// Several searches can end at one place, and a circle can touch an ellipse at two; the first one stays.
void keep_different(touching_circles& found, double least) {
    auto end = found.begin();
    for (touching_circle const& c : found) {
        if (std::none_of(found.begin(), end, [&](touching_circle const& other) {
                return size(c.center - other.center) <= least;
            })) {
            *end++ = c;
        }
    }
    found.erase(end, found.end());
}

double height_at(flat_ellipse const& e, xy const& foot, xyz const& origin) {
    xy const in_frame = e.direction(xyz(foot.x, foot.y, 0) - (e.center - origin));
    return e.center.z + in_frame.x * e.u.z + in_frame.y * e.v.z;
}

// The four pairs of sides, outside first, and within each anticlockwise by the angle on the first ellipse.
touching_circles all_circles(ellipse const& first, ellipse const& second, xyz const& origin, double r) {
    flat_ellipse const frame(first);
    auto const sides = [&](ellipse const& e) {
        return std::array<convex_arcs, 2>{convex_arcs(offset_oval(e, origin, r)),
                                          convex_arcs(offset_oval(e, origin, -r))};
    };
    std::array<convex_arcs, 2> sides_a = sides(first), sides_b = sides(second);
    offset_oval const &p = sides_a[0].oval(), &q = sides_b[0].oval();
    double const reach = p.longer() + q.longer() + size(q.center()) + r, noise = rounding_at(reach);
    if (p.is_same(q, noise)) return {};
    touching_circles found;
    for (convex_arcs& a : sides_a) {
        for (convex_arcs& b : sides_b) {
            std::size_t const begin = found.size();
            if (p.is_circle() && q.is_circle()) {
                add_for_circles(a.oval(), b.oval(), noise, found);
            } else {
                add_for_ellipses(a, b, reach, found);
            }
            for (std::size_t i = begin; i < found.size(); ++i) {
                xy const at = frame.direction(xyz(found[i].foot_a.x, found[i].foot_a.y, 0));
                found[i].order = modulus(std::atan2(at.y, at.x) - seam, 2 * pi);
            }
            std::stable_sort(found.begin() + static_cast<std::ptrdiff_t>(begin), found.end(),
                             [](auto const& x, auto const& y) { return x.order < y.order; });
        }
    }
    keep_different(found, 1e-8 * reach);
    return found;
}

}  // namespace

idioms::ref<multi_solution> circle_arc_tangent_tangent_value(ellipse a, ellipse b, double radius,
                                                             std::vector<Circle_Description>& circles) {
    double const r = std::fabs(radius);
    if (is_empty(a) || is_empty(b) || !(r > 0) || !std::isfinite(r)) {
        return circle_answers(false, xyz()).remembered<circle_tan_tan_val_multi>(circles);
    }
    flat_ellipse const first(a), second(b);
    xyz const origin = first.center;
    circle_answers answers(a.is_3d() || b.is_3d(), origin);
    if (!first.is_flat() && !second.is_flat() && (second.center - origin).is_finite()) {
        for (touching_circle const& c : all_circles(a, b, origin, r)) {
            answers.add(r, c.center,
                        (height_at(first, c.foot_a, origin) + height_at(second, c.foot_b, origin)) / 2);
        }
    }
    return answers.remembered<circle_tan_tan_val_multi>(circles);
}

}  // namespace tvmath
