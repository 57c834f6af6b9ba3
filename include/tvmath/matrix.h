#pragma once

#include <concepts>
#include <utility>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// Dense matrix as a copy-on-write list of row vectors: `m[i][j]` reads, `m(i)(j)` writes.
///
/// Both the list and each row are copy-on-write, and rows may share one block until one is written. All rows
/// have the length of row 0; that is a contract and not checked, as are indices and the lengths of operands.
/// The methods are meant for small systems (tens of unknowns): plain, with a fixed order of accumulation.
/// `operator==` compares identity of the handles, not contents. Nothing raises.
class TVMATH_API matrix : public idioms::array<vector> {
public:
    matrix() = default;
    explicit matrix(idioms::array<vector> const& rows) : array(rows) {}
    /// `r` rows of `c` zeros, all sharing one block.
    matrix(unsigned int r, unsigned int c) : array(r, vector(c)) {}
    /// `r` rows of `c` times `value`, all sharing one block.
    matrix(unsigned int r, unsigned int c, double const& value) : array(r, vector(c, value)) {}
    /// `r` rows sharing the block of `row`.
    matrix(unsigned int r, vector const& row) : array(r, row) {}
    /// `r` rows sharing the blocks of `rows[0]` and on. A template, so that the 0 of `matrix(2, 0)` is no
    /// pointer.
    template <std::same_as<vector> S>
    matrix(unsigned int r, S const* rows) : array(r, rows) {}

    static matrix identity(unsigned int n);

    static unsigned int rows(matrix const& m) { return m.capacity(); }
    /// Length of row 0; 0 when there are no rows.
    static unsigned int cols(matrix const& m) { return m.is_trivial() ? 0 : m[0].capacity(); }

    /// Sets every element; the rows then share one block.
    matrix& operator=(double const& value);
    matrix& operator*=(double const& factor);
    /// Multiplies by 1 / value.
    matrix& operator/=(double const& value);
    matrix& operator+=(double const& value);
    matrix& operator-=(double const& value);
    matrix& operator+=(matrix const& other);
    matrix& operator-=(matrix const& other);
    /// The matrix product.
    matrix& operator*=(matrix const& other);

    /// The handle of row i, which shares its block.
    vector row(unsigned int i) const { return (*this)[i]; }
    /// Lets row i share the block of `v`.
    void row(unsigned int i, vector v) { (*this)(i) = std::move(v); }
    /// A copy of column i.
    vector col(unsigned int i) const;
    /// Writes v[r] into row r at column i.
    void col(unsigned int i, vector const& v);

    using array::redim;
    /// Changes the size; what is new is 0. The present size changes nothing, and a mere change of the number
    /// of rows keeps the rows shared.
    void redim(unsigned int r, unsigned int c) { redim(r, c, 0.0); }
    /// The same, what is new being `value`.
    void redim(unsigned int r, unsigned int c, double const& value);

    /// Replaces this matrix X by the solution Y of Y b = X, without forming an inverse: elimination by
    /// columns with pivots chosen along each row. True on success; false, with nothing changed, unless `b` is
    /// square and of cols(X), and false, with undefined contents, for an exactly singular `b`. A size of 0
    /// gives true.
    bool times_inverse_of(matrix b);

    /// Replaces this matrix A of r rows and c columns, r at most c, by its minimum-norm right inverse of c
    /// rows and r columns: A A⁺ = I, and A⁺ y is the shortest x with A x = y. False, with undefined contents,
    /// for linearly dependent rows (an exactly zero pivot); false, with nothing changed, for an empty matrix
    /// and for r above c.
    bool under_constrained_inverse();
};

inline unsigned int rows(matrix const& m) {
    return matrix::rows(m);
}
inline unsigned int cols(matrix const& m) {
    return matrix::cols(m);
}

/// rows(a) by cols(b), over an inner length of rows(b), of which a size of 0 gives zeros. Each row sums
/// a[i][k] row k of b in the order of k.
TVMATH_API matrix operator*(matrix const& a, matrix const& b);
/// Row vector times matrix: sums v[k] row k in the order of k; cols(m) elements.
TVMATH_API vector operator*(vector const& v, matrix const& m);
/// Matrix times column vector: one `dot` per row; rows(m) elements.
TVMATH_API vector operator*(matrix const& m, vector const& v);

inline matrix operator+(matrix a, matrix const& b) {
    return a += b;
}
inline matrix operator-(matrix a, matrix const& b) {
    return a -= b;
}
inline matrix operator-(matrix m) {
    return m *= -1.0;
}
inline matrix operator+(matrix m, double value) {
    return m += value;
}
inline matrix operator+(double value, matrix m) {
    return m += value;
}
inline matrix operator-(matrix m, double value) {
    return m -= value;
}
/// The negated matrix plus the value.
inline matrix operator-(double value, matrix m) {
    m *= -1.0;
    return m += value;
}
inline matrix operator*(matrix m, double factor) {
    return m *= factor;
}
inline matrix operator*(double factor, matrix m) {
    return m *= factor;
}
/// Times 1 / value.
inline matrix operator/(matrix m, double value) {
    return m /= value;
}

/// a as a column times b as a row: dim(a) by dim(b).
TVMATH_API matrix outer_product(vector const& a, vector const& b);
/// Magnitudes of the elements.
TVMATH_API matrix abs(matrix m);
TVMATH_API matrix transpose(matrix const& m);

/// `count` rows, or columns, from `first` on; a count beyond the end is cut. Kept rows share their blocks.
TVMATH_API matrix keep_rows(matrix const& m, unsigned int first, unsigned int count);
TVMATH_API matrix keep_cols(matrix const& m, unsigned int first, unsigned int count);
TVMATH_API matrix keep_matrix(matrix const& m, unsigned int first_row, unsigned int row_count,
                              unsigned int first_col, unsigned int col_count);

/// Extremes over all elements. With no elements the largest is minus infinity and the smallest plus infinity.
TVMATH_API double max_value(matrix const& m);
TVMATH_API double min_value(matrix const& m);
TVMATH_API void minmax_value(matrix const& m, double& min, double& max);

/// Determinant by elimination with pivots chosen along each row. 0 for an empty or non-square matrix.
TVMATH_API double determinant(matrix m);

/// Inverse by Gauss-Jordan elimination with full pivoting. A singular matrix is not reported: its pivot of 0
/// divides, and the result has non-finite entries. A matrix that is empty or not square gives the empty
/// matrix.
TVMATH_API matrix inverse_gj(matrix m);

/// Pseudo-inverse, cols(m) by rows(m), by singular values, of which an exact 0 is dropped. There is no other
/// threshold, so a singular value of rounding size gives huge entries. An empty matrix gives the empty
/// matrix.
TVMATH_API matrix inverse_svd(matrix m);

/// a = u W transpose(v), W being the diagonal matrix of the returned singular values: cols(a) values, none
/// negative, in no particular order. u is rows(a) by cols(a), v is square. The columns of v are orthonormal,
/// and so are those of u when rows(a) is at least cols(a); otherwise u has cols(a) - rows(a) columns of
/// zeros, with singular value 0. Any finite magnitudes will do.
///
/// An empty matrix gives empty results. At most 30 steps are spent on a value; one that has not converged by
/// then, as with non-finite input, is not reported.
///
/// Source: G. H. Golub and C. Reinsch, Singular value decomposition and least squares solutions, Numer. Math.
/// 14 (1970) 403-420.
TVMATH_API vector singular_value_decomposition(matrix const& a, matrix& u, matrix& v);

}  // namespace tvmath
