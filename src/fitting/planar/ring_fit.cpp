#include "tvmath/ring_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "geometry/point_lanes.h"
#include "planar_points.h"
#include "tvmath/feature_fit.h"
#include "tvmath/matrix.h"
#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Points by distance and direction from the centre, eight at a time: the waves of one point follow from each
// other, those of eight fill the registers. Missing points of the last block have weight 0.
constexpr unsigned int lanes = 8;
using lane_row = std::array<double, lanes>;
struct polar_block {
    lane_row weight{}, radius{}, cosine, sine{};
};

// Empty when a point lies on the centre.
std::vector<polar_block> blocks_of(std::vector<xy> const& points) {
    polar_block none;
    none.cosine.fill(1);
    std::vector<polar_block> blocks((points.size() + lanes - 1) / lanes, none);
    for (std::size_t i = 0; i < points.size(); ++i) {
        double const r = std::hypot(points[i].x, points[i].y);
        if (!(r > 0)) return {};
        polar_block& block = blocks[i / lanes];
        block.weight[i % lanes] = 1;
        block.radius[i % lanes] = r;
        block.cosine[i % lanes] = points[i].x / r;
        block.sine[i % lanes] = points[i].y / r;
    }
    return blocks;
}

// Number of harmonics that the points carry; 0 when they are no closed outline.
unsigned int harmonics_of(std::vector<xy> const& points) {
    std::vector<double> angles;
    angles.reserve(points.size());
    for (xy const& p : points) angles.push_back(std::atan2(p.y, p.x));
    std::sort(angles.begin(), angles.end());
    double gap = angles.front() + 2 * pi - angles.back();
    for (std::size_t i = 1; i < angles.size(); ++i) gap = std::max(gap, angles[i] - angles[i - 1]);
    std::size_t const by_count = std::min<std::size_t>((points.size() - 1) / 3, 50);
    // Strictly below pi / gap, also where equal steps are rounded.
    double const by_gap = std::ceil(pi / gap * (1 - 1e-9)) - 1;
    return static_cast<unsigned int>(std::min(static_cast<double>(by_count), std::max(by_gap, 0.0)));
}

// Cosine and sine of the next multiple of the angle.
inline void turn(lane_row& c, lane_row& s, polar_block const& by) {
    for (unsigned int i = 0; i < lanes; ++i) {
        double const turned = c[i] * by.cosine[i] - s[i] * by.sine[i];
        s[i] = s[i] * by.cosine[i] + c[i] * by.sine[i];
        c[i] = turned;
    }
}

// Sums over the points of f cos ka and f sin ka, k up to `order`.
struct wave_sums {
    std::vector<double> cosines, sines;
};

// With f the weight, or, of a series, the deviation of the radius from it.
TVMATH_WIDE_LOOP wave_sums sum_waves(std::vector<polar_block> const& blocks, unsigned int order,
                                     double const* series, unsigned int coefficient_count) {
    std::vector<lane_row> cosines(order + 1, lane_row{}), sines(order + 1, lane_row{});
    for (polar_block const& block : blocks) {
        lane_row f = block.weight, c, s;
        c.fill(1);
        s.fill(0);
        if (series) {
            lane_row value;
            value.fill(series[0]);
            for (unsigned int k = 1; k < coefficient_count; k += 2) {
                turn(c, s, block);
                for (unsigned int i = 0; i < lanes; ++i) value[i] += series[k] * c[i] + series[k + 1] * s[i];
            }
            for (unsigned int i = 0; i < lanes; ++i) f[i] *= block.radius[i] - value[i];
            c.fill(1);
            s.fill(0);
        }
        for (unsigned int k = 0; k <= order; ++k) {
            for (unsigned int i = 0; i < lanes; ++i) {
                cosines[k][i] += f[i] * c[i];
                sines[k][i] += f[i] * s[i];
            }
            turn(c, s, block);
        }
    }
    wave_sums sums;
    for (lane_row const& row : cosines) sums.cosines.push_back(std::accumulate(row.begin(), row.end(), 0.0));
    for (lane_row const& row : sines) sums.sines.push_back(std::accumulate(row.begin(), row.end(), 0.0));
    return sums;
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
    unsigned int const order = points.at.size() < 4 ? 0 : harmonics_of(points.at), n = 2 * order + 1;
    std::vector<polar_block> const blocks = blocks_of(points.at);
    if (order == 0 || blocks.empty()) return ring();
    matrix const normal = normal_matrix(sum_waves(blocks, 2 * order, nullptr, 0), order);

    // Twice: the second solution corrects what the normal equations of uneven points lose of the first.
    vector coefficients(n);
    for (int round = 0; round < 2; ++round) {
        wave_sums const right = sum_waves(blocks, order, coefficients.begin(), n);
        vector correction(n);
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
