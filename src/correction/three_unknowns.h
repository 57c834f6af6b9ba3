#pragma once

#include <array>
#include <cstddef>
#include <limits>

inline namespace tvmath {

/// A linear least-squares problem of three unknowns whose equations T s = e come one by one: each is rotated
/// into an upper triangle, because normal equations would square the condition of T. What overflows or is
/// not finite makes the problem singular.
///
/// Source: W. M. Gentleman, Least squares computations by Givens transformations without square roots, J.
/// Inst. Maths Applics 12 (1973) 329-336.
class three_unknowns {
public:
    static constexpr std::size_t n = 3;
    using numbers = std::array<double, n>;

    /// Takes one equation: its coefficients and, behind them, its right-hand side.
    void add(std::array<double, n + 1> equation) {
        double weight = 1;
        for (std::size_t i = 0; i < n; ++i) {
            auto& r = triangle_[i];
            double const x = equation[i], sum = r[i] + weight * x * x;
            if (x == 0.0 || sum == 0.0) continue;  // a square that underflows in an empty row is as good as 0
            double const keep = r[i] / sum, take = weight * x / sum;
            r[i] = sum;
            for (std::size_t k = i + 1; k <= n; ++k) {
                double const y = equation[k];
                equation[k] = y - x * r[k];
                r[k] = keep * r[k] + take * y;
            }
            weight *= keep;
        }
    }

    /// True when a column of T is, to rounding, a sum of those before it.
    bool is_singular() const {
        double const least_own_part = 0x1p-44;  // rounding leaves some 1e-15 of a length
        for (std::size_t k = 0; k < n; ++k) {
            double const d = triangle_[k][k];
            double length2 = d;
            for (std::size_t i = 0; i < k; ++i) {
                length2 += triangle_[i][i] * triangle_[i][k] * triangle_[i][k];
            }
            if (!(d > least_own_part * least_own_part * length2)) return true;
        }
        return false;
    }

    /// The unknowns.
    numbers solution() const { return back_substituted({triangle_[0][n], triangle_[1][n], triangle_[2][n]}); }

    /// Column `j` of the inverse of T'T.
    numbers inverse_column(std::size_t j) const {
        numbers x{};
        x[j] = 1;
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t k = i + 1; k < n; ++k) x[k] -= triangle_[i][k] * x[i];
        }
        for (std::size_t i = 0; i < n; ++i) x[i] /= triangle_[i][i];
        return back_substituted(x);
    }

private:
    numbers back_substituted(numbers x) const {
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t k = i + 1; k < n; ++k) x[i] -= triangle_[i][k] * x[k];
        }
        return x;
    }

    // D on the diagonal, and above it U with unit diagonal, of T'T = U'DU; the last column holds the
    // right-hand side, rotated likewise.
    std::array<std::array<double, n + 1>, n> triangle_{};
};

}  // namespace tvmath
