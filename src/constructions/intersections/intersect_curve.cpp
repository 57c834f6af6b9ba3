#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "constructions/flat_ellipse.h"
#include "intersect_roots.h"
#include "path_spans.h"
#include "tvmath/intersection.h"

inline namespace tvmath {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

idioms::array<point> list_of(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

void add(std::vector<point>& found, xyz const& at) {
    if (at.is_finite()) found.push_back(at.location(true));
}

// Height of a span above the line, by the heights of its control points.
struct height {
    std::array<double, 4> c;

    value_and_slope operator()(double t) const {
        double const a = c[0] + t * (c[1] - c[0]), b = c[1] + t * (c[2] - c[1]), d = c[2] + t * (c[3] - c[2]);
        double const ab = a + t * (b - a), bd = b + t * (d - b);
        return {ab + t * (bd - ab), 3 * (bd - ab)};
    }
};

// A span in the frame where the ellipse is the unit circle.
struct unit_frame_span {
    std::array<xy, 4> w;

    // |W|² - 1, 0 on the ellipse.
    value_and_slope operator()(double t) const {
        height const x = {{w[0].x, w[1].x, w[2].x, w[3].x}}, y = {{w[0].y, w[1].y, w[2].y, w[3].y}};
        value_and_slope const at_x = x(t), at_y = y(t);
        return {at_x.value * at_x.value + at_y.value * at_y.value - 1,
                2 * (at_x.value * at_x.slope + at_y.value * at_y.slope)};
    }
    // Of degree 6: products of two cubics, by their binomial factors.
    std::array<double, 7> coefficients() const {
        return {dot(w[0], w[0]) - 1,
                dot(w[0], w[1]) - 1,
                (2 * dot(w[0], w[2]) + 3 * dot(w[1], w[1])) / 5 - 1,
                (dot(w[0], w[3]) + 9 * dot(w[1], w[2])) / 10 - 1,
                (2 * dot(w[1], w[3]) + 3 * dot(w[2], w[2])) / 5 - 1,
                dot(w[2], w[3]) - 1,
                dot(w[3], w[3]) - 1};
    }
    // Whether the box around the control points reaches the unit circle.
    bool may_meet() const {
        xy low = w[0], high = w[0];
        for (xy const& p : w) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
        xy const near = {std::max({low.x, -high.x, 0.0}), std::max({low.y, -high.y, 0.0})};
        xy const far = {std::max(-low.x, high.x), std::max(-low.y, high.y)};
        return dot(near, near) <= 1 + 8 * epsilon && dot(far, far) >= 1 - 8 * epsilon;
    }
};

}  // namespace

idioms::array<point> point_intersect(line l, curve c) {
    if (is_empty(l) || !has_spans(c)) return {};
    xyz const from(l.basis(0)), d = unit({l.basis(1).x(), l.basis(1).y(), 0});
    std::vector<point> found;
    point const* const first = c.begin();
    auto const height_of = [&](point const& p) { return cross(xy(d), xy(p.x() - from.x, p.y() - from.y)); };
    height span;
    span.c[3] = height_of(first[0]);
    double last_reach = size(xy(first[0].x() - from.x, first[0].y() - from.y));
    for (unsigned int i = 0; i + 3 < c.capacity(); i += 3) {
        span.c[0] = span.c[3];  // the same number on both sides of a joint, so that no crossing slips through
        double reach = last_reach;
        for (unsigned int k = 1; k < 4; ++k) {
            point const& p = first[i + k];
            span.c[k] = height_of(p);
            last_reach = size(xy(p.x() - from.x, p.y() - from.y));
            reach = std::max(reach, last_reach);
        }
        auto const [low, high] = std::minmax({span.c[0], span.c[1], span.c[2], span.c[3]});
        double const noise = 2 * epsilon * reach;
        if (low > noise || high < -noise) continue;
        for (double const t : bernstein_zeros<4, height>(span.c, noise, true, span)) {
            add(found, span_point(first + i, t));
        }
    }
    return list_of(found);
}

idioms::array<point> point_intersect(ellipse e, curve c) {
    if (is_empty(e) || !has_spans(c)) return {};
    flat_ellipse const frame(e);
    if (frame.is_flat()) return {};
    std::vector<point> found;
    point const* const first = c.begin();
    unit_frame_span span;
    span.w[3] = frame.location(xyz(first[0]));
    for (unsigned int i = 0; i + 3 < c.capacity(); i += 3) {
        span.w[0] = span.w[3];
        for (unsigned int k = 1; k < 4; ++k) span.w[k] = frame.location(xyz(first[i + k]));
        if (!span.may_meet()) continue;
        double most = 1;
        for (xy const& w : span.w) most = std::max(most, size(w));
        double const noise = 4 * epsilon * most * most;
        for (double const t : bernstein_zeros<7, unit_frame_span>(span.coefficients(), noise, true, span)) {
            add(found, span_point(first + i, t));
        }
    }
    return list_of(found);
}

}  // namespace tvmath
