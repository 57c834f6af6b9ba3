#include "tvmath/ring_fit.h"

#include <algorithm>
#include <cmath>

#include "planar_points.h"
#include "tvmath/feature_fit.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

struct polar {
    double radius, cosine, sine;
};

// Number of harmonics that the points carry; 0 when they are no closed outline.
unsigned int harmonics_of(std::vector<polar> const& outline) {
    std::vector<double> angles;
    angles.reserve(outline.size());
    for (polar const& p : outline) angles.push_back(std::atan2(p.sine, p.cosine));
    std::sort(angles.begin(), angles.end());
    double gap = angles.front() + 2 * pi - angles.back();
    for (std::size_t i = 1; i < angles.size(); ++i) gap = std::max(gap, angles[i] - angles[i - 1]);
    std::size_t const by_count = std::min<std::size_t>((outline.size() - 1) / 3, 50);
    // Strictly below pi / gap, also where equal steps are rounded.
    double const by_gap = std::ceil(pi / gap * (1 - 1e-9)) - 1;
    return static_cast<unsigned int>(std::min(static_cast<double>(by_count), std::max(by_gap, 0.0)));
}

// Sums over the points of f cos ka and f sin ka, k up to `order`, for f = 1 or the deviation from a series.
struct wave_sums {
    std::vector<double> cosines, sines;

    explicit wave_sums(unsigned int order) : cosines(order + 1), sines(order + 1) {}
    void add(double f, polar const& p) {
        double c = 1, s = 0;
        for (std::size_t k = 0; k < cosines.size(); ++k) {
            cosines[k] += f * c;
            sines[k] += f * s;
            double const turned = c * p.cosine - s * p.sine;
            s = s * p.cosine + c * p.sine;
            c = turned;
        }
    }
};

double radius_at(vector const& coefficients, polar const& p) {
    double const* const a = coefficients.begin();
    unsigned int const n = coefficients.capacity();
    double sum = a[0], c = p.cosine, s = p.sine;
    for (unsigned int i = 1; i < n; i += 2) {
        sum += a[i] * c + a[i + 1] * s;
        double const turned = c * p.cosine - s * p.sine;
        s = s * p.cosine + c * p.sine;
        c = turned;
    }
    return sum;
}

// The normal matrix of 1, cos a, sin a, cos 2a, ...: a product of two waves is half a sum of two others.
matrix normal_matrix(wave_sums const& w, unsigned int order) {
    unsigned int const n = 2 * order + 1;
    matrix normal(n, n);
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = i; j < n; ++j) {
            unsigned int const a = (i + 1) / 2, b = (j + 1) / 2, difference = b - a, sum = a + b;
            bool const first_is_sine = i > 0 && i % 2 == 0, second_is_sine = j > 0 && j % 2 == 0;
            double value = 0;
            if (first_is_sine && second_is_sine) {
                value = (w.cosines[difference] - w.cosines[sum]) / 2;
            } else if (!first_is_sine && !second_is_sine) {
                value = (w.cosines[difference] + w.cosines[sum]) / 2;
            } else if (second_is_sine) {
                value = (w.sines[sum] + w.sines[difference]) / 2;
            } else {
                value = (w.sines[sum] - w.sines[difference]) / 2;
            }
            normal(i)(j) = value;
            normal(j)(i) = value;
        }
    }
    return normal;
}

// Empty when the points are no closed outline about the origin of `points`.
ring fit_outline(planar_points const& points) {
    std::vector<polar> outline;
    outline.reserve(points.at.size());
    for (xy const& p : points.at) {
        double const r = std::hypot(p.x, p.y);
        if (!(r > 0)) return ring();
        outline.push_back({r, p.x / r, p.y / r});
    }
    unsigned int const order = outline.size() < 4 ? 0 : harmonics_of(outline);
    if (order == 0) return ring();
    wave_sums weights(2 * order);
    for (polar const& p : outline) weights.add(1, p);
    matrix const normal = normal_matrix(weights, order);

    // Twice: the second solution corrects what the normal equations of uneven points lose of the first.
    vector coefficients(2 * order + 1);
    for (int round = 0; round < 2; ++round) {
        wave_sums right(order);
        for (polar const& p : outline) right.add(p.radius - radius_at(coefficients, p), p);
        vector correction(2 * order + 1);
        double* const c = correction.lazycopy_begin();
        c[0] = right.cosines[0];
        for (unsigned int k = 1; k <= order; ++k) {
            c[2 * k - 1] = right.cosines[k];
            c[2 * k] = right.sines[k];
        }
        if (!correction.times_inverse_of(normal)) return ring();
        coefficients += correction;
    }
    return ring(coefficients);
}

template <class list>
point circle_center(list const& points) {
    circle const c = circle_fit(points);
    return c.is_trivial() ? point() : c.basis(0);
}

ring fit_about(point const& center, std::span<point const> points) {
    planar_points const relative = relative_to(center, points);
    return relative.is_empty() ? ring() : fit_outline(relative);
}

template <class list>
transform fit_apart(list const& inner_points, list const& outer_points, ring& inner, ring& outer) {
    point const a = circle_center(inner_points), b = circle_center(outer_points);
    if (a.is_trivial() || b.is_trivial()) return transform();
    point const center = a + (b - a) / 2;
    ring const first = fit_about(center, span_of(inner_points));
    ring const second = fit_about(center, span_of(outer_points));
    if (first.is_trivial() || second.is_trivial()) return transform();
    inner = first;
    outer = second;
    return transform(center);
}

struct parted {
    std::vector<point> inner, outer;
    bool is_clear;  // the gap is wider than the distances on either side of it scatter
};

// At the widest gap between the distances from `center`.
parted part(std::span<point const> points, point const& center) {
    std::vector<double> distances;
    for (point const& p : points) distances.push_back(distance2d(p, center));
    std::vector<double> sorted = distances;
    std::sort(sorted.begin(), sorted.end());
    std::size_t widest = 1;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i] - sorted[i - 1] > sorted[widest] - sorted[widest - 1]) widest = i;
    }
    double const gap = sorted[widest] - sorted[widest - 1];
    parted halves{
        {}, {}, gap > std::max(sorted[widest - 1] - sorted.front(), sorted.back() - sorted[widest])};
    for (std::size_t i = 0; i < points.size(); ++i) {
        (distances[i] < sorted[widest] ? halves.inner : halves.outer).push_back(points[i]);
    }
    return halves;
}

// Uneven numbers of points around draw the first centre off, so the points are parted anew about the centre
// that each parting gives, until they stay apart.
template <class list>
transform fit_mixed(list const& points, ring& inner, ring& outer) {
    point center;
    double radius = 0;
    if (span_of(points).size() < 8 || !circle_quick_fit(points, center, radius)) return transform();
    std::size_t last = 0;
    for (int round = 0; round < 20; ++round) {
        if (!std::isfinite(sqr(center))) return transform();
        parted const halves = part(span_of(points), center);
        if (round > 0 && halves.inner.size() == last) {
            return halves.is_clear ? fit_apart(halves.inner, halves.outer, inner, outer) : transform();
        }
        last = halves.inner.size();
        point const a = circle_center(halves.inner), b = circle_center(halves.outer);
        if (a.is_trivial() || b.is_trivial()) return transform();
        center = a + (b - a) / 2;
    }
    return transform();
}

}  // namespace

ring ring_fit(idioms::array<point> points, transform& placement) {
    point const center = circle_center(points);
    if (center.is_trivial()) return ring();
    ring const outline = fit_about(center, span_of(points));
    if (!outline.is_trivial()) placement = transform(center);
    return outline;
}

transform oring_fit(std::vector<point> const& inner_points, std::vector<point> const& outer_points,
                    ring& inner, ring& outer) {
    return fit_apart(inner_points, outer_points, inner, outer);
}

transform oring_fit(idioms::array<point> inner_points, idioms::array<point> outer_points, ring& inner,
                    ring& outer) {
    return fit_apart(inner_points, outer_points, inner, outer);
}

transform oring_fit(std::vector<point> const& points, ring& inner, ring& outer) {
    return fit_mixed(points, inner, outer);
}

transform oring_fit(idioms::array<point> points, ring& inner, ring& outer) {
    return fit_mixed(points, inner, outer);
}

}  // namespace tvmath
