#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/matrix.h"

inline namespace tvmath {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

matrix random_matrix(seeded_random& random, unsigned int r, unsigned int c) {
    matrix m(r, c);
    for (unsigned int i = 0; i < r; ++i) {
        for (unsigned int j = 0; j < c; ++j) m(i)(j) = random.uniform(-1, 1);
    }
    return m;
}

matrix hilbert(unsigned int n) {
    matrix m(n, n);
    for (unsigned int i = 0; i < n; ++i) {
        for (unsigned int j = 0; j < n; ++j) m(i)(j) = 1.0 / (i + j + 1);
    }
    return m;
}

double largest(matrix const& m) {
    return std::max(max_value(abs(m)), 0.0);
}

// Quotients, because the reciprocal of a denormal scale is infinite.
vector unit(vector v, double scale) {
    for (unsigned int i = 0; i < dim(v); ++i) v(i) /= scale;
    return v;
}

matrix unit(matrix m, double scale) {
    for (unsigned int i = 0; i < rows(m); ++i) m(i) = unit(m[i], scale);
    return m;
}

// The definition: the product gives `a` back, and the factors are orthonormal. The tolerance is some ulp per
// row and column, the backward error of orthogonal transformations.
void expect_decomposed(matrix const& a) {
    matrix u, v;
    vector const w = singular_value_decomposition(a, u, v);
    unsigned int const m = rows(a), n = cols(a);
    double const tolerance = 8 * epsilon * (m + n), scale = largest(a);
    ASSERT_EQ(dim(w), n);
    ASSERT_TRUE(rows(u) == m && cols(u) == n && rows(v) == n && cols(v) == n);
    for (double x : w) EXPECT_GE(x, 0);

    matrix product = u;
    for (unsigned int i = 0; i < m; ++i) product(i) = product[i] * (scale == 0 ? w : unit(w, scale));
    EXPECT_LE(largest(product * transpose(v) - (scale == 0 ? a : unit(a, scale))), tolerance);
    EXPECT_LE(largest(transpose(v) * v - matrix::identity(n)), tolerance);

    // In a wide matrix the columns of u that have no row are zero, and have the value 0.
    matrix expected = matrix::identity(n);
    unsigned int empty = 0;
    for (unsigned int j = 0; j < n; ++j) {
        if (maximum_norm(u.col(j)) > 0.5 / std::sqrt(m)) continue;
        expected(j)(j) = 0;
        ++empty;
        EXPECT_LE(w[j], scale * tolerance);
    }
    EXPECT_EQ(empty, n > m ? n - m : 0);
    EXPECT_LE(largest(transpose(u) * u - expected), tolerance);
}

TEST(SingularValueDecomposition, OfRandomMatricesGivesThemBack) {
    unsigned int const sizes[][2] = {{1, 1},  {2, 2}, {3, 3},  {6, 6},  {17, 17}, {5, 3}, {40, 3},
                                     {30, 1}, {3, 5}, {3, 40}, {1, 30}, {2, 3},   {7, 8}};
    seeded_random random(20250302);
    for (auto const& size : sizes) {
        for (int trial = 0; trial < 50; ++trial) {
            SCOPED_TRACE(testing::Message() << size[0] << " by " << size[1] << ", trial " << trial);
            expect_decomposed(random_matrix(random, size[0], size[1]));
        }
    }
}

TEST(SingularValueDecomposition, OfRankDeficientMatricesKeepsTheFactorsOrthonormal) {
    seeded_random random(20250303);
    for (unsigned int rank = 0; rank < 4; ++rank) {
        for (auto const& size : {std::pair(6u, 4u), std::pair(4u, 4u), std::pair(4u, 7u)}) {
            SCOPED_TRACE(testing::Message()
                         << "rank " << rank << " of " << size.first << " by " << size.second);
            matrix const zero(size.first, size.second), left = random_matrix(random, size.first, rank);
            expect_decomposed(rank == 0 ? zero : left * random_matrix(random, rank, size.second));
        }
    }
    matrix gaps = random_matrix(random, 5, 5);
    gaps.col(0, vector(5));
    gaps.col(3, vector(5));
    gaps.row(2, vector(5));
    expect_decomposed(gaps);
    expect_decomposed(matrix(3, 3));
    expect_decomposed(matrix(2, 5));
    expect_decomposed(matrix(4, 3, 1.0));
}

TEST(SingularValueDecomposition, HoldsAtAnyScale) {
    seeded_random random(20250304);
    // Up to where the values themselves, up to four times the largest entry, leave the range of full
    // precision.
    for (double scale : {1e-290, 1e-200, 1e-8, 1e8, 1e200, 1e307}) {
        SCOPED_TRACE(scale);
        expect_decomposed(random_matrix(random, 4, 3) * scale);
        // One column far below the others keeps its direction.
        matrix mixed = random_matrix(random, 4, 4);
        mixed.col(1, mixed.col(1) * scale);
        expect_decomposed(mixed);
    }
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        matrix m = random_matrix(random, 6, 4);
        for (unsigned int i = 0; i < 6; ++i) m(i) *= random.log_uniform(1e-8, 1e8);
        expect_decomposed(m);
        expect_decomposed(transpose(m));
    }
    for (unsigned int n = 2; n <= 12; ++n) expect_decomposed(hilbert(n));
}

TEST(SingularValueDecomposition, GivesValuesKnownInClosedForm) {
    struct {
        char const* name;
        std::vector<std::vector<double>> rows;
        std::vector<double> values;  // ascending
    } const cases[] = {
        {"diagonal", {{-3, 0, 0}, {0, 0, 0}, {0, 0, 2}}, {0, 2, 3}},
        {"shear", {{1, 1}, {0, 1}}, {(std::sqrt(5.0) - 1) / 2, (std::sqrt(5.0) + 1) / 2}},  // golden ratio
        {"ones", {{1, 1, 1}, {1, 1, 1}}, {0, 0, std::sqrt(6.0)}},
        {"column", {{3}, {4}}, {5}},
        {"row", {{3, 4}}, {0, 5}},
        {"jordan block", {{0, 1, 0}, {0, 0, 1}, {0, 0, 0}}, {0, 1, 1}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        matrix m(static_cast<unsigned int>(c.rows.size()), static_cast<unsigned int>(c.rows[0].size())), u, v;
        for (unsigned int i = 0; i < rows(m); ++i) {
            for (unsigned int j = 0; j < cols(m); ++j) m(i)(j) = c.rows[i][j];
        }
        vector const w = singular_value_decomposition(m, u, v);
        std::vector<double> values(w.begin(), w.end());
        std::sort(values.begin(), values.end());
        ASSERT_EQ(values.size(), c.values.size());
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_NEAR(values[i], c.values[i], 4e-15);
        expect_decomposed(m);
    }
}

TEST(SingularValueDecomposition, EndsForEmptyAndForNonFiniteInput) {
    matrix u(1, 1), v(1, 1);
    EXPECT_TRUE(singular_value_decomposition(matrix(), u, v).is_trivial());
    EXPECT_TRUE(u.is_trivial() && v.is_trivial());
    EXPECT_TRUE(singular_value_decomposition(matrix(2, 0), u, v).is_trivial());
    EXPECT_TRUE(rows(u) == 2 && cols(u) == 0 && v.is_trivial());

    seeded_random random(20250305);
    for (double odd : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity}) {
        for (auto const& size : {std::pair(5u, 4u), std::pair(4u, 5u)}) {
            matrix m = random_matrix(random, size.first, size.second);
            m(2)(1) = odd;
            EXPECT_EQ(dim(singular_value_decomposition(m, u, v)), size.second);
            EXPECT_EQ(dim(singular_value_decomposition(matrix(size.first, size.second, odd), u, v)),
                      size.second);
        }
    }
}

TEST(SingularValueDecomposition, MayReturnAFactorInItsInput) {
    seeded_random random(20250306);
    matrix const original = random_matrix(random, 4, 3);
    matrix a = original, v;
    vector const w = singular_value_decomposition(a, a, v);
    for (unsigned int i = 0; i < 4; ++i) a(i) = a[i] * w;
    EXPECT_LE(largest(a * transpose(v) - original), 1e-14);
}

}  // namespace
}  // namespace tvmath
