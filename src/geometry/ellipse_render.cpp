#include <algorithm>
#include <cmath>
#include <vector>

#include "geometry/ellipse_frame.h"
#include "geometry/point_lanes.h"
#include "tvmath/ellipse.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Cosines and sines of equally spaced angles, by cos(t + d) = 2 cos d cos t - cos(t - d) and the same of the
// sine.
struct angle_steps {
    unsigned int count;
    double c, next_c, s, next_s, k;

    angle_steps(unsigned int points, double start, double d)
        : count(points),
          c(std::cos(start)),
          next_c(std::cos(start + d)),
          s(std::sin(start)),
          next_s(std::sin(start + d)),
          k(2 * std::cos(d)) {}

    void advance() {
        double const after_c = k * next_c - c, after_s = k * next_s - s;
        c = next_c;
        s = next_s;
        next_c = after_c;
        next_s = after_s;
    }
};

angle_steps whole_turn(int n) {
    n = std::max(n, 3);
    return angle_steps(static_cast<unsigned int>(n), 0, 2 * pi / n);
}

angle_steps arc_steps(int n, double a1, double a2) {
    n = std::max(n, 2);
    return angle_steps(static_cast<unsigned int>(n) + 1, a1, (a2 - a1) / n);
}

// The coordinates of a point are the lanes. The weight is set afresh because infinite axes times a 0 of the
// weight would make it NaN.
TVMATH_WIDE_LOOP void write_points(point* to, angle_steps steps, ellipse_frame const& frame) {
    point_lanes center, u, v;
    TVMATH_LOAD_LANES(center, frame.center);
    TVMATH_LOAD_LANES(u, frame.u);
    TVMATH_LOAD_LANES(v, frame.v);
    for (unsigned int i = 0; i < steps.count; ++i, steps.advance()) {
        point_lanes p = center + steps.c * u + steps.s * v;
        p[0] = 1.0;
        TVMATH_STORE_LANES(to[i], p);
    }
}

// Point i of every parallel, before the next i: the normal is the same for all.
TVMATH_WIDE_LOOP void write_parallels(point* const* to, vector const& offsets, angle_steps steps,
                                      ellipse_frame const& frame) {
    point_lanes center, u, v, normal_u, normal_v;
    TVMATH_LOAD_LANES(center, frame.center);
    TVMATH_LOAD_LANES(u, frame.u);
    TVMATH_LOAD_LANES(v, frame.v);
    TVMATH_LOAD_LANES(normal_u, frame.normal_u);
    TVMATH_LOAD_LANES(normal_v, frame.normal_v);
    double const* const offset = offsets.begin();
    unsigned int const parallels = offsets.capacity();
    for (unsigned int i = 0; i < steps.count; ++i, steps.advance()) {
        point_lanes const p = center + steps.c * u + steps.s * v;
        point_lanes normal = steps.c * normal_v + steps.s * normal_u;
        double const length =
            std::sqrt(normal[1] * normal[1] + normal[2] * normal[2] + normal[3] * normal[3]);
        if (length != 0.0) normal /= length;  // where there is no tangent the parallel touches the ellipse
        for (unsigned int k = 0; k < parallels; ++k) {
            point_lanes q = p + normal * offset[k];
            q[0] = 1.0;
            TVMATH_STORE_LANES(to[k][i], q);
        }
    }
}

curve render_points(ellipse const& e, angle_steps const& steps) {
    ellipse_frame const frame(e);
    curve result(steps.count, frame.u.is_3d() ? point(true, 0, 0, 0) : point(true, 0, 0));
    write_points(result.lazycopy_begin(), steps, frame);
    return result;
}

idioms::array<curve> render_parallels(ellipse const& e, angle_steps const& steps, vector const& offsets) {
    idioms::array<curve> result(offsets.capacity());
    std::vector<point*> blocks;
    for (unsigned int k = 0; k < offsets.capacity(); ++k) {
        result(k) = curve(steps.count, point(true, 0, 0, 0));
        blocks.push_back(result(k).lazycopy_begin());
    }
    write_parallels(blocks.data(), offsets, steps, ellipse_frame(e));
    return result;
}

curve const& unit_circle_path() {
    static curve const path = [] {
        // The handle of a quarter turn, for which the middle of the arc lies on the circle.
        double const k = (std::sqrt(2.0) - 1) * 4 / 3;
        double const xy[13][2] = {{-1, 0}, {-1, k}, {-k, 1}, {0, 1},   {k, 1},   {1, k}, {1, 0},
                                  {1, -k}, {k, -1}, {0, -1}, {-k, -1}, {-1, -k}, {-1, 0}};
        curve c(13);
        point* to = c.lazycopy_begin();
        for (auto const& p : xy) *to++ = point(true, p[0], p[1]);
        return c;
    }();
    return path;
}

// The arc of the unit circle from a1 on, in n arcs of angle h each.
curve unit_arc_path(double a1, double h, unsigned int n) {
    // (1 - cos(h / 2)) / sin(h / 2) is the tangent of h / 4, which keeps the digits of a short arc.
    double const handle = 4.0 / 3 * std::tan(h / 4);
    transform const turn = transform::rotation(h);
    curve path(3 * n + 1);
    point* const p = path.lazycopy_begin();
    p[0] = point(true, 1, 0);
    for (unsigned int i = 1; i <= 3 * n; ++i) {
        switch (i) {
            case 1:
                p[i] = point(true, 1, handle);
                break;
            case 2:
                p[i] = point(true, 1, -handle) * turn;
                break;
            default:
                p[i] = p[i - 3] * turn;
        }
    }
    return path *= transform::rotation(a1);
}

}  // namespace

curve ellipse::render_ellipse(int n) const {
    return render_points(*this, whole_turn(n));
}

curve ellipse::render_ellipse(int n, double a1, double a2) const {
    return render_points(*this, arc_steps(n, a1, a2));
}

curve ellipse::render_ellipse(int n, double offset) const {
    if (offset == 0.0) return render_ellipse(n);
    return render_ellipse(n, vector(1, offset))[0];
}

curve ellipse::render_ellipse(int n, double a1, double a2, double offset) const {
    if (offset == 0.0) return render_ellipse(n, a1, a2);
    return render_ellipse(n, vector(1, offset), a1, a2)[0];
}

idioms::array<curve> ellipse::render_ellipse(int n, vector offsets) const {
    return render_parallels(*this, whole_turn(n), offsets);
}

idioms::array<curve> ellipse::render_ellipse(int n, vector offsets, double a1, double a2) const {
    return render_parallels(*this, arc_steps(n, a1, a2), offsets);
}

curve ellipse::render_bezier() const {
    return unit_circle_path() * *this;
}

curve ellipse::render_bezier(double a1, double a2) const {
    double const sweep = std::fabs(a2 - a1);
    if (std::isnan(sweep)) return curve();
    if (sweep >= 2 * pi) return render_bezier();
    unsigned int const n = static_cast<unsigned int>(std::ceil(sweep / (pi / 2)));
    return unit_arc_path(a1, n == 0 ? 0.0 : (a2 - a1) / n, n) *= *this;
}

}  // namespace tvmath
