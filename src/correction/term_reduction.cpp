#include "correction/term_reduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "correction/chebyshev.h"

inline namespace tvmath {
namespace {

// Rows that are folded at once: with the 66 terms of order 10 they stay in the innermost cache.
constexpr std::size_t block = 32;

// A term counts as a sum of those before it when no more than this part of its length is its own. Rounding
// leaves some 1e-15 of a term that is one exactly; what is below 1e-13 could not be told from the rounding of
// the coefficients either, as they would be 1e13 times the displacements.
constexpr double least_own_part = 0x1p-44;

}  // namespace

term_reduction::term_reduction(unsigned int order, unsigned int sides)
    : order_(order),
      terms_(chebyshev::term_count(order)),
      width_(terms_ + sides),
      triangle_(terms_ * width_),
      rows_(block * width_),
      left_over_(sides),
      reflector_(block),
      weights_(width_) {}

void term_reduction::add(double u, double v, double const* right_sides) {
    chebyshev::scratch<2> room(order_);
    double *const x = room[0], *const y = room[1];
    chebyshev::values(u, order_, x);
    chebyshev::values(v, order_, y);
    double* to = rows_.data() + waiting_ * width_;
    chebyshev::for_each_term(order_, [&](unsigned int i, unsigned int j) { *to++ = x[i] * y[j]; });
    std::copy_n(right_sides, left_over_.size(), to);
    if (++waiting_ == block) fold();
}

void term_reduction::finish() {
    fold();
    for (rank_ = 0; rank_ < terms_; ++rank_) {
        // No term is shorter than the rounding of the constant one, from which it was computed.
        double length2 = triangle_[0] * triangle_[0];
        for (std::size_t i = 0; i <= rank_; ++i) {
            double const x = triangle_[i * width_ + rank_];
            length2 += x * x;
        }
        double const own = std::fabs(triangle_[rank_ * width_ + rank_]);
        if (!(own > least_own_part * std::sqrt(length2))) break;
    }
}

double term_reduction::rounding(std::size_t points, double largest) {
    return (8 + static_cast<double>(points) / 32) * std::numeric_limits<double>::epsilon() * largest;
}

void term_reduction::fold() {
    for (std::size_t k = 0; k < terms_; ++k) fold_column(k);
    for (std::size_t i = 0; i < waiting_; ++i) {
        double const* const rest = rows_.data() + i * width_ + terms_;
        for (std::size_t side = 0; side < left_over_.size(); ++side)
            left_over_[side] += rest[side] * rest[side];
    }
    waiting_ = 0;
}

// Reflects row k of the triangle and the waiting rows so that their column k goes into the triangle alone.
// With x = (triangle, rows) of that column the reflection is 1 - factor h h^T, h = (1, reflector).
void term_reduction::fold_column(std::size_t k) {
    double* const row = triangle_.data() + k * width_;
    double below = 0;
    for (std::size_t i = 0; i < waiting_; ++i) below += rows_[i * width_ + k] * rows_[i * width_ + k];
    if (below == 0.0) return;  // exact: there is nothing to carry over

    double const top = row[k], length = std::copysign(std::sqrt(top * top + below), -top);
    double const factor = (length - top) / length;
    for (std::size_t i = 0; i < waiting_; ++i) reflector_[i] = rows_[i * width_ + k] / (top - length);

    double* const weight = weights_.data();
    std::copy(row + k + 1, row + width_, weight + k + 1);
    for (std::size_t i = 0; i < waiting_; ++i) {
        double const h = reflector_[i], *const from = rows_.data() + i * width_;
        for (std::size_t j = k + 1; j < width_; ++j) weight[j] += h * from[j];
    }
    row[k] = length;
    for (std::size_t j = k + 1; j < width_; ++j) row[j] -= weight[j] *= factor;
    for (std::size_t i = 0; i < waiting_; ++i) {
        double const h = reflector_[i];
        double* const to = rows_.data() + i * width_;
        for (std::size_t j = k + 1; j < width_; ++j) to[j] -= h * weight[j];
    }
}

bool term_reduction::determines(unsigned int order) const {
    return order <= order_ && chebyshev::term_count(order) <= rank_;
}

double term_reduction::sum_of_squares(unsigned int order, unsigned int side) const {
    double sum = left_over_[side];
    for (std::size_t k = terms_; k-- > chebyshev::term_count(order);) {
        double const x = triangle_[k * width_ + terms_ + side];
        sum += x * x;
    }
    return sum;
}

void term_reduction::solve(unsigned int order, unsigned int side, double* coefficients) const {
    std::size_t const n = chebyshev::term_count(order);
    for (std::size_t k = n; k-- > 0;) {
        double const* const row = triangle_.data() + k * width_;
        double sum = row[terms_ + side];
        for (std::size_t j = k + 1; j < n; ++j) sum -= row[j] * coefficients[j];
        coefficients[k] = sum / row[k];
    }
}

}  // namespace tvmath
