#pragma once

#include <cmath>

#include "support/seeded_random.h"
#include "tvmath/image.h"

inline namespace tvmath {

/// The image of a function of the numbers of row and column, called row by row.
template <class function>
image image_of(unsigned int rows, unsigned int cols, function const& value) {
    image m(rows, cols);
    vector* const row = m.lazycopy_begin();
    for (unsigned int y = 0; y < rows; ++y) {
        double* const v = row[y].lazycopy_begin();
        for (unsigned int x = 0; x < cols; ++x) v[x] = value(static_cast<double>(y), static_cast<double>(x));
    }
    return m;
}

/// Greys from black to white.
inline image random_image(seeded_random& random, unsigned int rows, unsigned int cols) {
    return image_of(rows, cols, [&](double, double) { return random.unit(); });
}

/// How a scene becomes an image. Grey values are fractions of white, lengths pixels.
struct camera {
    double blur = 1;         // standard deviation of the edge's profile, before the pixels take their area
    double dark = 0.2;       // grey on the side of negative distances
    double contrast = 0.6;   // what the other side is brighter
    double noise = 0;        // standard deviation, of every pixel
    double roughness = 0;    // standard deviation added on the other side alone
    std::uint64_t seed = 1;  // of the noise
};

// Edges as signed distances of a place of the image's plane, in which pixel (x, y) covers x to x + 1 and y to
// y + 1. The profile across an edge is symmetric in the distance, so where the distance is 0 lies the truth.

/// Through (x, y) with normal direction `angle`.
struct straight_edge {
    double x, y, angle;
    double operator()(double px, double py) const {
        return (px - x) * std::cos(angle) + (py - y) * std::sin(angle);
    }
};

/// The circle, positive inside.
struct round_edge {
    double x, y, radius;
    double operator()(double px, double py) const { return radius - std::hypot(px - x, py - y); }
};

/// The mean of the blurred edge over the area of a pixel, by Gauss-Legendre quadrature with 5 by 5 points:
/// for a blur of half a pixel or more the error is below 1e-6 of the contrast.
template <class signed_distance>
double area_sample(signed_distance const& distance, double blur, double left, double top) {
    static constexpr double places[] = {0.046910077030668, 0.230765344947158, 0.5, 0.769234655052842,
                                        0.953089922969332};
    static constexpr double weights[] = {0.118463442528095, 0.239314335249683, 0.284444444444444,
                                         0.239314335249683, 0.118463442528095};
    double const middle = distance(left + 0.5, top + 0.5);
    if (std::fabs(middle) > 7 * blur + 1) return middle < 0 ? 0.0 : 1.0;
    double sum = 0;
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            double const d = distance(left + places[i], top + places[j]);
            sum += weights[i] * weights[j] * 0.5 * std::erfc(-d / (blur * std::sqrt(2.0)));
        }
    }
    return sum;
}

/// The image of an edge.
template <class signed_distance>
image rendered_scene(unsigned int rows, unsigned int cols, signed_distance const& distance, camera const& c) {
    seeded_random random(c.seed);
    return image_of(rows, cols, [&](double y, double x) {
        double const share = area_sample(distance, c.blur, x, y);
        double v = c.dark + c.contrast * share;
        if (c.noise > 0) v += c.noise * random.normal();
        if (c.roughness > 0) v += c.roughness * share * random.normal();
        return v;
    });
}

}  // namespace tvmath
