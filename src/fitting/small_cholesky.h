#pragma once

#include <array>
#include <cmath>
#include <cstddef>

inline namespace tvmath {

/// Symmetric systems of up to `most` unknowns, of which only some are free: Cholesky's factors of the
/// matrix scaled to a unit diagonal, so that unknowns in radians and in lengths compare. The lower
/// triangle counts.
template <std::size_t most>
class small_cholesky {
public:
    using row = std::array<double, most>;
    using square = std::array<row, most>;

    /// False when a scaled pivot is not above `least_pivot`: then the matrix is not safely positive
    /// definite.
    bool factor(square const& h, std::array<bool, most> const& free, double damping, double least_pivot) {
        size_ = 0;
        for (std::size_t i = 0; i < most; ++i) {
            if (free[i]) index_[size_++] = i;
        }
        for (std::size_t i = 0; i < size_; ++i) {
            double const d = h[index_[i]][index_[i]];
            if (!(d > 0)) return false;
            scale_[i] = 1 / std::sqrt(d);
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = h[index_[i]][index_[j]] * scale_[i] * scale_[j];
                if (i == j) sum = 1 + damping;
                for (std::size_t k = 0; k < j; ++k) sum -= l_[i][k] * l_[j][k];
                if (i == j && !(sum > least_pivot)) return false;
                l_[i][j] = i == j ? std::sqrt(sum) : sum / l_[j][j];
            }
        }
        return true;
    }

    /// The solution of h x = b; what is not free stays 0.
    row solve(row const& b) const {
        row y{}, x{};
        for (std::size_t i = 0; i < size_; ++i) {
            double sum = b[index_[i]] * scale_[i];
            for (std::size_t k = 0; k < i; ++k) sum -= l_[i][k] * y[k];
            y[i] = sum / l_[i][i];
        }
        for (std::size_t i = size_; i-- > 0;) {
            double sum = y[i];
            for (std::size_t k = i + 1; k < size_; ++k) sum -= l_[k][i] * y[k];
            y[i] = sum / l_[i][i];
            x[index_[i]] = y[i] * scale_[i];
        }
        return x;
    }

private:
    std::size_t size_ = 0;
    std::array<std::size_t, most> index_{};
    row scale_{};
    square l_{};
};

}  // namespace tvmath
