#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

inline namespace tvmath {

/// A symmetric positive definite matrix of which each row is kept from its first entry to the diagonal.
/// Cholesky's factor fills no more than that. For a band with a few full rows at the end, as of a periodic
/// spline, everything is linear in the size.
///
/// Source: A. Jennings, A compact storage scheme for the solution of symmetric linear simultaneous equations,
/// Computer J. 9 (1966) 281-285.
class envelope_matrix {
public:
    /// `first[i]`, at most i, is the column of the first entry of row i.
    explicit envelope_matrix(std::vector<std::size_t> first) : first_(std::move(first)), row_(first_.size()) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < first_.size(); ++i) {
            row_[i] = size;  // of the entry in column first_[i]
            size += i + 1 - first_[i];
        }
        values_.resize(size);
    }

    void clear() { std::fill(values_.begin(), values_.end(), 0.0); }
    /// The entry of row i and a column j from first[i] to i.
    double& at(std::size_t i, std::size_t j) { return values_[row_[i] + j - first_[i]]; }

    /// Replaces the matrix by its factor. An unknown whose pivot is no more than rounding gets no change from
    /// `solve`: it depends on the ones before.
    void factorize() {
        for (std::size_t i = 0; i < first_.size(); ++i) {
            double const diagonal = at(i, i);
            for (std::size_t j = first_[i]; j < i; ++j) {
                at(i, j) = (at(i, j) - inner_product(i, j)) / at(j, j);
            }
            double const pivot = diagonal - inner_product(i, i);
            at(i, i) = pivot > 0x1p-48 * diagonal ? std::sqrt(pivot) : infinite_pivot;
        }
    }

    /// Replaces the right side by the solution, after `factorize`.
    void solve(std::vector<double>& right) {
        std::size_t const n = first_.size();
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = first_[i]; j < i; ++j) right[i] -= at(i, j) * right[j];
            right[i] /= at(i, i);
        }
        for (std::size_t i = n; i-- > 0;) {
            right[i] /= at(i, i);
            for (std::size_t j = first_[i]; j < i; ++j) right[j] -= at(i, j) * right[i];
        }
    }

private:
    static constexpr double infinite_pivot = 1e150;

    // Of the parts of rows i and j of the factor before column j.
    double inner_product(std::size_t i, std::size_t j) const {
        std::size_t const from = std::max(first_[i], first_[j]);
        double const* const a = values_.data() + row_[i] - first_[i];
        double const* const b = values_.data() + row_[j] - first_[j];
        double sum = 0;
        for (std::size_t k = from; k < j; ++k) sum += a[k] * b[k];
        return sum;
    }

    std::vector<std::size_t> first_, row_;
    std::vector<double> values_;
};

}  // namespace tvmath
