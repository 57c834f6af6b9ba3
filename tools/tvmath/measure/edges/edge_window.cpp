#include "measure/edges/edge_window.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "measure/edges/unroll.h"
#include "tvmath/edge.h"
#include "tvmath/polynomial.h"
#include "tvmath/resample.h"

inline namespace tvmath {
namespace {

constexpr int rows_of_contrast = 4;  // on either side of an edge
constexpr int half_an_edge = 2;      // rows that are left out about it
constexpr double beyond = 4;         // rows past those where it may lie
constexpr int least_rows = 5;
constexpr double shrinking = 0.8;  // of a window that leaves the image, until it fits

// A blur of variance s² draws a curved edge by s² / 2 times its curvature to the inside. That of the lens
// belongs to the image, but the mean over a pixel's area, 1/12, and between pixels, 1/6, are known.
constexpr double blur_of_sampling = 1.0 / 12 + 1.0 / 6;

// Mean of each row.
std::vector<double> row_means(image const& m) {
    std::vector<double> means;
    means.reserve(m.capacity());
    for (vector const& row : m) {
        double sum = 0;
        for (double const grey : row) sum += grey;
        means.push_back(sum / row.capacity());
    }
    return means;
}

// Mean of the rows from `first` on, as far as there are any.
double mean_of(std::vector<double> const& means, int first, int count) {
    int const rows = static_cast<int>(means.size());
    int const begin = std::clamp(first, 0, rows - 1), end = std::clamp(first + count, begin + 1, rows);
    double sum = 0;
    for (int y = begin; y < end; ++y) sum += means[static_cast<std::size_t>(y)];
    return sum / (end - begin);
}

// Change of the grey across row `y`.
double contrast_at(std::vector<double> const& greys, double y) {
    int const row = static_cast<int>(std::floor(y));
    return mean_of(greys, row + half_an_edge, rows_of_contrast) -
           mean_of(greys, row - half_an_edge - rows_of_contrast + 1, rows_of_contrast);
}

bool has_sense(double change, edge_sense sense) {
    return sense == edge_sense::any || (sense == edge_sense::rising ? change > 0 : change < 0);
}

// The row from `first` to `last` where the strength has its largest maximum; 0, which has no neighbour above,
// for none. Greater strength beyond those rows belongs to another edge.
std::size_t strongest_row(std::vector<double> const& greys, std::vector<double> const& strengths,
                          edge_sense sense, double first, double last) {
    std::size_t best = 0;
    for (std::size_t y = 1; y + 1 < strengths.size(); ++y) {
        auto const middle = static_cast<double>(y) + 0.5;
        if (middle < first || middle > last || !has_sense(greys[y + 1] - greys[y - 1], sense)) continue;
        bool const is_peak = strengths[y] >= strengths[y - 1] && strengths[y] >= strengths[y + 1];
        if (is_peak && strengths[y] > (best == 0 ? 0 : strengths[best])) best = y;
    }
    return best;
}

// What a window shows, upright, and the direction of its middle column.
struct cut_piece {
    image grey;
    point across;
};

// Rows from `low` to `high` along the normal, as seen from the place.
struct row_range {
    double low, high;
    int count() const { return static_cast<int>(std::ceil(high - low)); }
    double middle() const { return (low + high) / 2; }
};

// All rows that tell of the edge, as many beyond on either side. A bent window ends before the centre of its
// circle.
row_range rows_about(edge_window const& w) {
    double margin = beyond;
    if (w.bend != 0) {
        double const depth = 1 / std::fabs(w.bend) - w.climb / 2 - 0.5;
        margin = std::min(margin, depth - (w.bend > 0 ? w.inward : w.outward));
    }
    return {-w.inward - margin, w.outward + margin};
}

cut_piece cut(image const& scene, edge_window const& w, row_range const& range) {
    auto const rows = static_cast<unsigned int>(range.count());
    auto const cols = static_cast<unsigned int>(std::ceil(w.width));
    double const slope = w.climb / cols;
    if (w.bend != 0) {
        double const radius = 1 / w.bend;
        return {unroll(scene,
                       {w.place - w.normal * radius, w.normal, radius + range.middle(), cols, rows, slope}),
                w.normal};
    }
    double const angle = std::atan2(-w.normal.x(), w.normal.y()) + std::atan(slope);
    point const along(false, std::cos(angle), std::sin(angle)), across(false, -along.y(), along.x());
    point const corner = w.place + w.normal * range.middle() - along * (cols / 2.0) - across * (rows / 2.0);
    return {rotate(scene, corner.x(), corner.y(), angle, cols, cols, rows, rows), across};
}

// As many of the rows as lie in the image; none when these are too few.
std::optional<cut_piece> cut_inside(image const& scene, edge_window const& w, row_range& range) {
    for (; range.count() >= least_rows; range = {range.low * shrinking, range.high * shrinking}) {
        cut_piece piece = cut(scene, w, range);
        if (!piece.grey.is_trivial()) return piece;
    }
    return std::nullopt;
}

}  // namespace

bool find_edge(image const& scene, edge_window const& window, edge_settings const& settings,
               found_edge& found) {
    row_range range = rows_about(window);
    std::optional<cut_piece> const piece = cut_inside(scene, window, range);
    if (!piece) return false;
    int const rows = range.count();
    auto const cols = static_cast<unsigned int>(matrix::cols(piece->grey));

    image strength = piece->grey;
    strength.horizontal_edge_gradient(false);
    std::vector<double> const greys = row_means(piece->grey);
    double const origin = rows / 2.0 - range.middle();  // row of the place
    std::size_t const row = strongest_row(greys, row_means(strength), settings.sense,
                                          origin - window.inward - 0.5, origin + window.outward + 0.5);
    if (row == 0) return false;

    // In the window the edge falls by what the window was turned.
    double const slope = window.climb / cols;
    double const offset = (static_cast<double>(row) + 0.5 - rows / 2.0) / std::hypot(1.0, slope);
    vector const curve = lsf_edge2(strength, pi / 2 - std::atan(slope), offset);
    if (curve.is_trivial()) return false;
    double const y = poly(cols / 2.0, curve);
    bool const is_near = std::fabs(y - static_cast<double>(row) - 0.5) <= 3;  // false for NaN too
    if (!is_near || y < 1 || y > rows - 1) return false;
    double const contrast = contrast_at(greys, y);
    if (!has_sense(contrast, settings.sense) || std::fabs(contrast) < settings.contrast) return false;
    // Along the normal to the middle of the window, from there along its columns.
    double const outward = y - rows / 2.0 + blur_of_sampling / 2 * window.bend;
    found = {window.place + window.normal * range.middle() + piece->across * outward, contrast,
             window.bend - 2 * curve[2]};
    return true;
}

}  // namespace tvmath
