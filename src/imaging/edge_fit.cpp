#include "tvmath/edge.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "imaging/row_pointers.h"
#include "tvmath/feature_switches.h"
#include "tvmath/polynomial.h"

inline namespace tvmath {
namespace {

// Normal equations of y = c[0] + c[1] u + c[2] u², weighted. A column has one u, so its rows are summed up
// first.
class normal_equations {
public:
    void add_column(double u, double weights, double weighted_y) {
        double const basis[] = {1, u, u * u};
        for (unsigned int i = 0; i < 3; ++i) {
            b_[i] += basis[i] * weighted_y;
            for (unsigned int j = 0; j <= i; ++j) a_[i][j] += basis[i] * basis[j] * weights;
        }
    }
    /// A singular system gives what elimination leaves of it: zeros when there was no weight at all.
    vector solve() const {
        matrix a(3, vector(3));
        vector* const row = a.lazycopy_begin();
        for (unsigned int i = 0; i < 3; ++i) {
            double* const to = row[i].lazycopy_begin();
            for (unsigned int j = 0; j < 3; ++j) to[j] = a_[std::max(i, j)][std::min(i, j)];
        }
        vector c = right_side();
        c.times_inverse_of(a);
        return c;
    }
    vector right_side() const { return vector(3, b_); }

private:
    double a_[3][3] = {}, b_[3] = {};
};

class edge_fit {
public:
    /// Over the columns `first` to `last` - 1 of `gradient`, which must outlive the fit.
    edge_fit(image const& gradient, int first, int last, vector start)
        : row_(gradient),
          bottom_(static_cast<int>(rows(gradient)) - 1),
          first_(first),
          last_(last),
          sigma_((std::max(1, (last - first - 1) / 30) + 0.5) * 0.5),
          c_(std::move(start)) {}

    vector run() {
        for (int round = 0; round < 16; ++round) {
            double const old = sigma_;
            fit_band();
            if (std::fabs(sigma_ - old) / sigma_ <= 0.001) break;
        }
        if (new_vision_algorithms_enabled()) {
            for (int pass = 0; pass < 2; ++pass) fit_peaks();
        }
        return c_;
    }

private:
    // Compared before it is converted, because NaN and what is far outside have no int.
    int row_of(double y) const {
        if (!(y > 0)) return 0;
        return y < bottom_ ? static_cast<int>(y) : bottom_;
    }
    double at(int r, int x) const { return row_[r][x]; }

    // All the rows within 2 sigma of the curve, each weighted by its value.
    void fit_band() {
        normal_equations equations;
        double squares = 0, weights = 0;
        for (int x = first_; x < last_; ++x) {
            double const u = x + 0.5, p = poly(u, c_);
            int const lo = row_of(p - 2 * sigma_), hi = row_of(p + 2 * sigma_);
            double column_squares = 0, column_weights = 0, weighted_y = 0;
            for (int r = lo; r <= hi; ++r) {
                double const v = r + 0.5, g = at(r, x);
                column_squares += v * v * g;
                column_weights += g;
                weighted_y += g * v;
            }
            squares += column_squares;
            weights += column_weights;
            equations.add_column(u, column_weights, weighted_y);
        }
        c_ = equations.solve();
        double const variance = (squares - dot(c_, equations.right_side())) / weights;
        sigma_ = variance >= 0.25 ? std::sqrt(variance) : 0.5;
    }

    // The peak on which the curve lies, each row weighted by the square of its value.
    void fit_peaks() {
        normal_equations equations;
        for (int x = first_; x < last_; ++x) {
            double const u = x + 0.5, p = poly(u, c_);
            int const lo = row_of(p - 2 * sigma_), hi = row_of(p + 2 * sigma_);
            int begin, end;
            if (!find_peak_at(row_of(p), x, lo, hi, begin, end)) continue;
            double weights = 0, weighted_y = 0;
            for (int r = begin; r < end; ++r) {
                double const g = at(r, x) * at(r, x);
                weights += g;
                weighted_y += g * (r + 0.5);
            }
            equations.add_column(u, weights, weighted_y);
        }
        c_ = equations.solve();
    }

    // The rows from `begin` up to `end` of the peak at `center`: up to the nearest maximum on either side,
    // and from there down both flanks. False when both maxima lie away from `center`, which then is in a
    // valley.
    bool find_peak_at(int center, int x, int lo, int hi, int& begin, int& end) const {
        int a = center, b = center;
        do --a;
        while (a >= lo && !(at(a, x) < at(a + 1, x)));
        ++a;
        do ++b;
        while (b <= hi && !(at(b, x) < at(b - 1, x)));
        --b;
        if (a != center && b != center) return false;
        do --a;
        while (a >= lo && !(at(a, x) > at(a + 1, x)));
        do ++b;
        while (b <= hi && !(at(b, x) > at(b - 1, x)));
        begin = a + 1;
        end = b;
        return true;
    }

    row_pointers row_;
    int bottom_, first_, last_;
    double sigma_;  // spread of the edge strength about the curve, at least half a pixel
    vector c_;
};

}  // namespace

vector lsf_edge(image gradient) {
    unsigned int const r = rows(gradient);
    vector start(3);
    start(0) = r / 2.0;
    if (r == 0) return start;
    return edge_fit(gradient, 0, static_cast<int>(cols(gradient)), start).run();
}

vector lsf_edge2(image gradient, double angle, double offset) {
    double const s = std::sin(angle), k = std::cos(angle);
    double const x = cols(gradient) / 2.0 + offset * k, y = rows(gradient) / 2.0 + offset * s;
    pixel first, second;
    if (!gradient.edge_points(x, y, -s, k, first, second)) return vector();
    if (second.x < first.x) pixel::swap(first, second);
    vector start(3);
    start(1) = static_cast<double>(second.y - first.y) / (second.x - first.x);
    // As if the first end lay in column 0. Where it does not the band of the first round is wide enough.
    start(0) = first.y - start[1] / 2.0 + 0.5;
    return edge_fit(gradient, first.x, second.x + 1, start).run();
}

}  // namespace tvmath
