#pragma once

#include <cstddef>
#include <vector>

inline namespace tvmath {

/// Least squares in the bivariate Chebyshev terms of every order up to one, from a single pass over the
/// points: the terms of a lower order come first, so the triangle of a higher order holds its own.
///
/// The terms themselves are reduced by Householder's reflections, a few rows at a time onto the triangle of
/// those before, and no normal equations are formed: these square the condition, and for points on a tenth of
/// the screen no digit of a coefficient is left at order 6. Sums of squares are sums of what is left over, so
/// they do not cancel and are never negative.
///
/// Source: A. Bjorck, Numerical Methods for Least Squares Problems, SIAM 1996, 2.4; G. Golub, C. Van Loan,
/// Matrix Computations, 5.1.
class term_reduction {
public:
    /// The highest order that is taken: its triangle holds half a gigabyte.
    static constexpr unsigned int most_order = 127;

    /// `sides` is the number of right-hand sides that are fitted at once.
    term_reduction(unsigned int order, unsigned int sides);

    /// One point at (u, v) with its right-hand sides.
    void add(double u, double v, double const* right_sides);
    /// To be called behind the last point.
    void finish();

    /// Whether the points tell the terms of that order apart. Points on a line or on a conic do not, nor do
    /// grids with too few lines, nor numbers that are not finite.
    bool determines(unsigned int order) const;
    /// The least sum of squares of that order.
    double sum_of_squares(unsigned int order, unsigned int side) const;
    /// The root mean square of what is left over that says nothing, being some roundings of right-hand sides
    /// from data of magnitude `largest`: each is rounded, and the reduction adds to them block by block. What
    /// is not above it counts as 0, so that exact data have the residual 0 from their own order on.
    static double rounding(std::size_t points, double largest);
    /// Writes the coefficients of that order, which must be determined.
    void solve(unsigned int order, unsigned int side, double* coefficients) const;

private:
    void fold();
    void fold_column(std::size_t k);

    unsigned int order_;
    std::size_t terms_, width_;  // width: the terms, then the right-hand sides
    std::vector<double> triangle_;
    std::vector<double> rows_;  // points that wait to be folded into the triangle
    std::size_t waiting_ = 0;
    std::vector<double> left_over_;  // sum of squares beyond all terms, for each side
    std::vector<double> reflector_, weights_;
    std::size_t rank_ = 0;  // leading terms that the points tell apart
};

}  // namespace tvmath
