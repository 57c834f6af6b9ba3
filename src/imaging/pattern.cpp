#include "tvmath/pattern.h"

#include <algorithm>
#include <cmath>
#include <limits>

inline namespace tvmath {
namespace {

constexpr double lost = std::numeric_limits<double>::quiet_NaN();  // the position of a row without edge

// Linear between pixels, the end pixels beyond the ends. The comparisons come before the conversion, since a
// place far outside has no index.
double grey_at(double const* row, unsigned int cols, double s) {
    if (s < 0.0) return row[0];
    if (!(s < cols - 1.0)) return row[cols - 1];
    unsigned int const j = static_cast<unsigned int>(s);
    return row[j] + (s - j) * (row[j + 1] - row[j]);
}

// The mean profile about a position in each row, with the greatest value brought to 1.
VisionPattern mean_profile(image const& sample, vector const& positions, double width) {
    unsigned int const columns = cols(sample), n = static_cast<unsigned int>(width);
    VisionPattern pattern(n, width / columns);
    double* const sums = pattern.profile.lazycopy_begin();
    double const step = width / n;
    for (unsigned int y = 0; y < rows(sample); ++y) {
        if (std::isnan(positions[y])) continue;
        double const* const row = sample[y].begin();
        double s = positions[y] - width / 2.0;
        for (unsigned int i = 0; i < n; ++i, s += step) sums[i] += grey_at(row, columns, s);
    }
    double const greatest = max_value(pattern.profile);
    bool const is_finite = std::all_of(sums, sums + n, [](double sum) { return std::isfinite(sum); });
    if (greatest == 0.0 || !is_finite) return VisionPattern();
    for (unsigned int i = 0; i < n; ++i) sums[i] /= greatest;
    return pattern;
}

// The first of the greatest values of a row and what stands beside it, squared. A border repeats itself.
struct row_peak {
    unsigned int x = 0;
    double left2, value2, right2;

    row_peak(double const* row, unsigned int cols) {
        for (unsigned int i = 1; i < cols; ++i) {
            if (row[i] > row[x]) x = i;
        }
        value2 = sqr(row[x]);
        left2 = x > 0 ? sqr(row[x - 1]) : value2;
        right2 = x + 1 < cols ? sqr(row[x + 1]) : value2;
    }
    // Both in the plane of the image, where the pixel's centre has the half.
    double center_of_mass() const { return x + (right2 - left2) / (left2 + value2 + right2) + 0.5; }
    double parabola() const {
        if (value2 == left2 && value2 == right2) return x + 0.5;
        return x + (right2 - left2) * 0.5 / ((value2 - left2) + (value2 - right2)) + 0.5;
    }
};

// A sample on its way to a pattern: the width that fits into it, and where the edge lies in each row.
struct taught_edge {
    image sample;
    double position, width;
    vector positions;

    taught_edge(image const& m, double x, double wanted)
        : sample(m), position(x), width(fitting_width(cols(m), x, wanted)), positions(rows(m), x) {}

    VisionPattern profile() const {
        return width >= 0 ? mean_profile(sample, positions, width) : VisionPattern();
    }

    // Moves the edge in each row to where the profile matches, as `place` tells it of the peak.
    bool align(bool wrap, double reach, double (row_peak::*place)() const) {
        VisionPattern const first = profile();
        if (first.size() == 0) return false;
        image const match = pattern_filter(sample, first, wrap);
        double* const x = positions.lazycopy_begin();
        for (unsigned int y = 0; y < rows(sample); ++y) {
            double const found = (row_peak(match[y].begin(), cols(match)).*place)();
            x[y] = std::fabs(found - position) < reach ? found : lost;
        }
        return true;
    }

private:
    // Less than twice the distance to the right border, so that the last sample stays below it. Negative
    // outside the image and where a number is NaN.
    static double fitting_width(unsigned int cols, double position, double wanted) {
        constexpr double nearly_2 = 2.0 - 3.0 * std::numeric_limits<double>::epsilon();
        double const width = std::min(std::min(wanted, 2.0 * position), (cols - position) * nearly_2);
        return width >= 0 && !std::isnan(wanted) && !std::isnan(position) ? width : -1.0;
    }
};

// The squared gradient, summed over the rows in a frame that moves with the edge: the edge lies in the
// middle, between elements cols - 1 and cols of 2 cols.
vector strength_about_edge(image const& gradient, vector const& positions, unsigned int columns) {
    vector strength(2 * columns);
    double* const h = strength.lazycopy_begin();
    double const length = 2.0 * columns;
    unsigned int const used_rows = std::min(rows(gradient), dim(positions));
    unsigned int const used_cols = std::min(cols(gradient), columns);
    for (unsigned int y = 0; y < used_rows; ++y) {
        if (std::isnan(positions[y])) continue;
        double const offset = columns - positions[y];
        double const* const row = gradient[y].begin();
        for (unsigned int x = 0; x < used_cols; ++x) {
            double const g = sqr(row[x]), d = x + offset, i = std::floor(d);
            if (i >= 0 && i < length) h[static_cast<unsigned int>(i)] += (i + 1 - d) * g;
            if (i >= -1 && i + 1 < length) h[static_cast<unsigned int>(i + 1)] += (d - i) * g;
        }
    }
    return strength;
}

// Walks from `from` to the nearest peak that reaches `least`: past what is weaker, past the slope of a peak
// that the middle stands on, and up. `ahead(i)` is the element `i` steps away, for i up to `last`.
template <class element>
unsigned int walk_to_peak(element const& ahead, unsigned int last, double least) {
    unsigned int i = 0;
    while (i < last && ahead(i + 1) < least) ++i;
    while (i < last && ahead(i + 1) <= ahead(i)) ++i;
    while (i < last && ahead(i) <= ahead(i + 1)) ++i;
    return i;
}

// Where peak i of the strength lies from the edge, refined by the parabola through it and its neighbours.
double peak_place(double const* h, unsigned int n, unsigned int i) {
    double const place = static_cast<double>(i) - n / 2 + 0.5;
    if (i == 0 || i + 1 == n || !(h[i] > h[i - 1] || h[i] > h[i + 1])) return place;
    return place + (h[i + 1] - h[i - 1]) * 0.5 / (2 * h[i] - h[i + 1] - h[i - 1]);
}

// How far the nearest strong peak of the strength lies from the edge. False when there is none.
bool nearest_peak(vector const& strength, double& shift) {
    double const* const h = strength.begin();
    unsigned int const n = dim(strength), middle = n / 2;
    double const least = max_value(strength) * 0.125;
    unsigned int const c =
        middle - walk_to_peak([=](unsigned int i) { return h[middle - i]; }, middle, least);
    unsigned int const e =
        middle - 1 + walk_to_peak([=](unsigned int i) { return h[middle - 1 + i]; }, middle, least);
    bool const is_left = h[c] > 0, is_right = h[e] > 0;
    if (!is_left && !is_right) {
        // Each walk starts on the far side of the middle and has gone down from there, past everything of
        // that strength, so both sides are equally high: if they are strong, the edge itself stands on the
        // only peak, whose parabola has its top in the middle.
        shift = 0;
        return h[middle] > 0 && h[middle] >= least && h[middle] == h[middle - 1];
    }
    double const left = peak_place(h, n, c), right = peak_place(h, n, e);
    bool const takes_right = is_right && (!is_left || std::fabs(right) < std::fabs(left));
    shift = takes_right ? right : left;
    return true;
}

}  // namespace

VisionPattern generate_pattern(image sample, double position, double width, bool wrap) {
    taught_edge edge(sample, position, width);
    return edge.align(wrap, 3.0, &row_peak::center_of_mass) ? edge.profile() : VisionPattern();
}

VisionPattern generate_pattern(image sample, image gradient, double position, double width, bool wrap) {
    taught_edge edge(sample, position, width);
    double shift;
    if (!edge.align(wrap, 5.0, &row_peak::parabola)) return VisionPattern();
    if (!nearest_peak(strength_about_edge(gradient, edge.positions, cols(sample)), shift))
        return VisionPattern();
    edge.positions += shift;
    return edge.profile();
}

}  // namespace tvmath
