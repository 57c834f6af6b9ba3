#pragma once

#include <cmath>

inline namespace tvmath {

/// An ellipse in XY for the walk to its feet: half-axes a along (cosine, sine) and b across.
struct walked_ellipse {
    double x, y, a, b, cosine, sine;

    walked_ellipse(double x_, double y_, double a_, double b_, double angle)
        : x(x_), y(y_), a(a_), b(b_), cosine(std::cos(angle)), sine(std::sin(angle)) {}
};

/// The foot of a point on an ellipse as the angle (u, v) of the unit circle, the unit outward normal there,
/// and the distance of the foot from the point along it: positive inside.
struct ellipse_foot {
    double u, v;
    double normal_x, normal_y;
    double depth;
};

/// Two rounds towards the foot, without a test: for points near the ellipse, such as measured ones, the
/// remaining error of the angle enters the depth squared. The centre itself gives NaN.
[[gnu::always_inline]] inline ellipse_foot walk_to_foot(walked_ellipse const& e, double px, double py) {
    double const ux = e.cosine * e.a, uy = e.sine * e.a, vx = -e.sine * e.b, vy = e.cosine * e.b;
    double const a2 = e.a * e.a, b2 = e.b * e.b;
    double const dx = px - e.x, dy = py - e.y;
    double const x = dx * ux + dy * uy, y = dx * vx + dy * vy;
    double u = x / a2, v = y / b2;
    double const w = std::sqrt(u * u + v * v);
    u /= w;
    v /= w;
    // Both ways are taken and one is kept, so that several points can share the instructions.
    double iu = u, iv = v, ou = u, ov = v;
    for (int round = 0; round < 2; ++round) {
        // Outside: the foot's normal passes the point.
        double const su = ou * ou * ou * (b2 - a2) + x, sv = ov * ov * ov * (a2 - b2) + y;
        double const n = std::sqrt(su * su + sv * sv);
        ou = su / n;
        ov = sv / n;
        // Inside, where that would not settle.
        double const off = iu * y - iv * x, p = iu * b2, q = iv * a2, g = p * p + q * q;
        double const h = std::sqrt(g - off * off);
        iu = (p * h - q * off) / g;
        iv = (q * h + p * off) / g;
    }
    u = w > 1.0 ? ou : iu;
    v = w > 1.0 ? ov : iv;
    // Tangent V u - U v, turned by minus a quarter.
    double const tx = vx * u - ux * v, ty = vy * u - uy * v, t = std::sqrt(tx * tx + ty * ty);
    double const nx = ty / t, ny = -tx / t;
    double const fx = e.x + ux * u + vx * v, fy = e.y + uy * u + vy * v;
    return {u, v, nx, ny, (fx - px) * nx + (fy - py) * ny};
}

}  // namespace tvmath
