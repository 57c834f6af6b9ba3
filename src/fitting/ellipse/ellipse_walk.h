#pragma once

#include <cmath>

inline namespace tvmath {

/// An ellipse in XY for the walk to its feet: half-axes a along (cosine, sine) and b across.
struct walked_ellipse {
    double x, y, a, b, cosine, sine;

    walked_ellipse(double x_, double y_, double a_, double b_, double angle)
        : x(x_), y(y_), a(a_), b(b_), cosine(std::cos(angle)), sine(std::sin(angle)) {}
};

/// A point of the unit circle: the place on an ellipse.
struct ellipse_place {
    double u, v;
};

/// Where the walk of a point begins: the point in the ellipse's frame, its direction from the centre in the
/// unit circle, and its distance there, above 1 outside.
struct ellipse_walk_start {
    double x, y;
    ellipse_place place;
    double distance;
};

/// The unit outward normal at the foot, and the distance of the foot from the point along it: positive
/// inside.
struct ellipse_foot {
    double normal_x, normal_y;
    double depth;
};

// The foot of a point is found in two rounds, without a test: for points near the ellipse, such as measured
// ones, the remaining error of the place enters the depth squared. The centre itself gives NaN. In steps, so
// that the instructions of a step can serve several points.

[[gnu::always_inline]] inline ellipse_walk_start start_walk(walked_ellipse const& e, double px, double py) {
    double const dx = px - e.x, dy = py - e.y;
    double const x = dx * (e.cosine * e.a) + dy * (e.sine * e.a);
    double const y = dx * (-e.sine * e.b) + dy * (e.cosine * e.b);
    double const u = x / (e.a * e.a), v = y / (e.b * e.b), w = std::sqrt(u * u + v * v);
    return {x, y, {u / w, v / w}, w};
}

/// A round for a point outside.
[[gnu::always_inline]] inline ellipse_place walk_outside(walked_ellipse const& e, double x, double y,
                                                         ellipse_place p) {
    double const a2 = e.a * e.a, b2 = e.b * e.b;
    double const u = p.u * p.u * p.u * (b2 - a2) + x, v = p.v * p.v * p.v * (a2 - b2) + y;
    double const n = std::sqrt(u * u + v * v);
    return {u / n, v / n};
}

/// A round for a point inside or on the ellipse.
[[gnu::always_inline]] inline ellipse_place walk_inside(walked_ellipse const& e, double x, double y,
                                                        ellipse_place place) {
    double const off = place.u * y - place.v * x, p = place.u * (e.b * e.b), q = place.v * (e.a * e.a);
    double const g = p * p + q * q, h = std::sqrt(g - off * off);
    return {(p * h - q * off) / g, (q * h + p * off) / g};
}

[[gnu::always_inline]] inline ellipse_foot foot_at(walked_ellipse const& e, ellipse_place p, double px,
                                                   double py) {
    double const ux = e.cosine * e.a, uy = e.sine * e.a, vx = -e.sine * e.b, vy = e.cosine * e.b;
    // The tangent V u - U v, turned back by a quarter.
    double const tx = vx * p.u - ux * p.v, ty = vy * p.u - uy * p.v, t = std::sqrt(tx * tx + ty * ty);
    double const nx = ty / t, ny = -tx / t;
    double const fx = e.x + ux * p.u + vx * p.v, fy = e.y + uy * p.u + vy * p.v;
    return {nx, ny, (fx - px) * nx + (fy - py) * ny};
}

inline ellipse_place walk_to_foot(walked_ellipse const& e, double px, double py) {
    auto const [x, y, start, distance] = start_walk(e, px, py);
    return distance > 1.0 ? walk_outside(e, x, y, walk_outside(e, x, y, start))
                          : walk_inside(e, x, y, walk_inside(e, x, y, start));
}

}  // namespace tvmath
