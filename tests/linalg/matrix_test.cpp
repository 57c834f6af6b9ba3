#include "tvmath/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using table = std::vector<std::vector<double>>;

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

vector list(std::vector<double> const& values) {
    return vector(static_cast<unsigned int>(values.size()), values.data());
}

matrix made(table const& values) {
    matrix m(static_cast<unsigned int>(values.size()), vector());
    for (unsigned int i = 0; i < rows(m); ++i) m(i) = list(values[i]);
    return m;
}

matrix random_matrix(seeded_random& random, unsigned int r, unsigned int c) {
    matrix m(r, c);
    for (unsigned int i = 0; i < r; ++i) {
        for (unsigned int j = 0; j < c; ++j) m(i)(j) = random.uniform(-1, 1);
    }
    return m;
}

void expect_near(matrix const& actual, matrix const& expected, double tolerance) {
    ASSERT_EQ(rows(actual), rows(expected));
    for (unsigned int i = 0; i < rows(actual); ++i) {
        ASSERT_EQ(dim(actual[i]), dim(expected[i]));
        for (unsigned int j = 0; j < dim(actual[i]); ++j) {
            EXPECT_NEAR(actual[i][j], expected[i][j], tolerance) << i << ", " << j;
        }
    }
}

void expect_equal(matrix const& actual, matrix const& expected) {
    expect_near(actual, expected, 0);
}

int handles(vector const& v) {
    return v.address()->reference_count;
}

TEST(Matrix, SharesItsRowsUntilOneIsWritten) {
    matrix m(3, 2);
    EXPECT_EQ(handles(m[0]), 3);
    m(1)(0) = 5;
    EXPECT_EQ(handles(m[0]), 2);
    EXPECT_EQ(m[0].address(), m[2].address());
    expect_equal(m, made({{0, 0}, {5, 0}, {0, 0}}));

    m = 7.0;
    EXPECT_EQ(handles(m[0]), 3);
    expect_equal(m, matrix(3, 2, 7.0));

    vector const row = list({1, 2});
    m.row(1, row);
    EXPECT_EQ(m.row(1).address(), row.address());
    m.col(0, list({4, 5, 6}));
    expect_equal(m, made({{4, 7}, {5, 2}, {6, 7}}));
    EXPECT_EQ(row, list({1, 2}));
    EXPECT_EQ(m.col(1), list({7, 2, 7}));
}

TEST(Matrix, StaysSharedWhenAnOperationIsByItsNeutralValue) {
    matrix const original = made({{1, 2}, {3, 4}});
    matrix copy = original;
    ((((copy *= 1.0) /= 1.0) += 0.0) -= 0.0);
    EXPECT_EQ(copy.address(), original.address());
    copy += 1.0;
    EXPECT_NE(copy.address(), original.address());
    expect_equal(original, made({{1, 2}, {3, 4}}));
}

TEST(Matrix, TakesZeroAsASize) {
    EXPECT_EQ(rows(matrix(2, 0)), 2u);
    EXPECT_EQ(cols(matrix(2, 0)), 0u);
    EXPECT_EQ(rows(matrix(0, 5)), 0u);
    EXPECT_EQ(cols(matrix(0, 5)), 0u);
    EXPECT_TRUE(matrix(0, 0).is_trivial());
    EXPECT_EQ(max_value(matrix()), -infinity);
    EXPECT_EQ(min_value(matrix(2, 0)), infinity);
    expect_equal(matrix(2, 3) * matrix(3, 0), matrix(2, 0));
    // Zeros of rows(a) by cols(b) also when nothing lies between.
    EXPECT_EQ(rows(matrix(2, 0) * matrix(0, 0)), 2u);
    EXPECT_TRUE(transpose(matrix()).is_trivial());
}

TEST(Matrix, ComputesByHand) {
    matrix const a = made({{1, 2}, {3, 4}, {5, 6}}), b = made({{1, 0, -1}, {2, 1, 0}});
    expect_equal(a * b, made({{5, 2, -1}, {11, 4, -3}, {17, 6, -5}}));
    EXPECT_EQ(list({1, 0, 2}) * a, list({11, 14}));
    EXPECT_EQ(b * list({1, 2, 3}), list({-2, 4}));
    expect_equal(outer_product(list({1, 2, 3}), list({4, 5})), made({{4, 5}, {8, 10}, {12, 15}}));
    expect_equal(transpose(b), made({{1, 2}, {0, 1}, {-1, 0}}));
    expect_equal(1.0 - b, made({{0, 1, 2}, {-1, 0, 1}}));
    expect_equal(abs(-b) + b / 2.0, made({{1.5, 0, 0.5}, {3, 1.5, 0}}));
    expect_equal(a - made({{1, 1}, {1, 1}, {1, 1}}), made({{0, 1}, {2, 3}, {4, 5}}));
    EXPECT_EQ(max_value(b), 2);
    EXPECT_EQ(min_value(b), -1);

    matrix square = made({{1, 1}, {0, 2}});
    square *= square;
    expect_equal(square, made({{1, 3}, {0, 4}}));
    square += square;
    expect_equal(square, made({{2, 6}, {0, 8}}));
    square *= square[0][0];
    expect_equal(square, made({{4, 12}, {0, 16}}));
}

TEST(Matrix, KeepsAndResizesBlocks) {
    matrix const m = made({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    expect_equal(keep_matrix(m, 1, 9, 0, 2), made({{4, 5}, {7, 8}}));
    EXPECT_EQ(keep_rows(m, 2, std::numeric_limits<unsigned int>::max())[0].address(), m[2].address());
    EXPECT_TRUE(keep_rows(m, 5, 1).is_trivial());
    EXPECT_EQ(cols(keep_cols(m, 3, 1)), 0u);

    struct {
        unsigned int r, c;
        table expected;
    } const cases[] = {
        {3, 3, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
        {1, 3, {{1, 2, 3}}},
        {4, 3, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {-1, -1, -1}}},
        {2, 4, {{1, 2, 3, -1}, {4, 5, 6, -1}}},
        {4, 1, {{1}, {4}, {7}, {-1}}},
        {0, 2, {}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::Message() << c.r << " by " << c.c);
        matrix resized = m;
        resized.redim(c.r, c.c, -1.0);
        expect_equal(resized, made(c.expected));
        EXPECT_EQ(resized.address() == m.address(), c.r == 3 && c.c == 3);
    }
    matrix fresh;
    fresh.redim(2, 2);
    expect_equal(fresh, matrix(2, 2));
}

TEST(Determinant, GivesValuesWorkedByHand) {
    struct {
        char const* name;
        table entries;
        double expected;
    } const cases[] = {
        {"empty", {}, 0},
        {"not square", {{1, 2}}, 0},
        {"single", {{-3}}, -3},
        {"exchange", {{0, 1}, {1, 0}}, -1},
        {"cyclic", {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}, 1},
        {"zero row", {{1, 2}, {0, 0}}, 0},
        {"two exchanges", {{1, 2, 4}, {2, 0, 4}, {0, 8, 1}}, 28},  // 1(0 - 32) - 2(2 - 0) + 4(16 - 0)
    };
    for (auto const& c : cases) EXPECT_NEAR(determinant(made(c.entries)), c.expected, 2e-14) << c.name;
    EXPECT_TRUE(std::isnan(determinant(matrix(3, 3, nan_value))));
}

TEST(Inverse, TimesTheMatrixIsTheIdentity) {
    seeded_random random(20250307);
    for (unsigned int n = 1; n <= 8; ++n) {
        for (int trial = 0; trial < 20; ++trial) {
            SCOPED_TRACE(testing::Message() << n << ", trial " << trial);
            // Dominant entries in a random permutation: well conditioned, with pivots off the diagonal.
            matrix m = random_matrix(random, n, n);
            for (unsigned int i = 0; i < n; ++i) m(i)((3 * i + 1) % n) += n % 3 == 0 ? 0.0 : 2.0 * n;
            if (n % 3 == 0) m += 2.0 * n * matrix::identity(n);
            matrix const original = m;
            expect_near(inverse_gj(m) * m, matrix::identity(n), 1e-13);
            expect_near(m * inverse_svd(m), matrix::identity(n), 1e-13);

            matrix const x = random_matrix(random, 3, n);
            matrix y = x;
            ASSERT_TRUE(y.times_inverse_of(m));
            expect_near(y * m, x, 1e-13);
            vector row = x[1];
            ASSERT_TRUE(row.times_inverse_of(m));
            EXPECT_EQ(row, y[1]);
            expect_equal(m, original);
        }
    }
    matrix self = made({{0, 2}, {4, 0}});
    EXPECT_TRUE(self.times_inverse_of(self));
    expect_equal(self, matrix::identity(2));
}

TEST(Inverse, ReportsSingularAndMismatchedInputAsPromised) {
    matrix const zero_inverse = inverse_gj(matrix(2, 2));
    EXPECT_FALSE(std::isfinite(zero_inverse[0][0]) || std::isfinite(zero_inverse[1][1]));
    EXPECT_TRUE(inverse_gj(matrix(2, 3)).is_trivial() && inverse_gj(matrix()).is_trivial());
    EXPECT_EQ(rows(inverse_gj(matrix(3, 3, nan_value))), 3u);
    EXPECT_TRUE(inverse_svd(matrix()).is_trivial());

    matrix const original = made({{1, 2}, {3, 4}});
    for (auto const& size : {std::pair(2u, 3u), std::pair(3u, 2u), std::pair(3u, 3u), std::pair(0u, 0u)}) {
        matrix x = original;
        vector v = original[0];
        EXPECT_FALSE(x.times_inverse_of(matrix(size.first, size.second, 1.0)));
        EXPECT_FALSE(v.times_inverse_of(matrix(size.first, size.second, 1.0)));
        EXPECT_TRUE(x.address() == original.address() && v.address() == original[0].address());
    }
    for (table const& singular : {table{{0, 0}, {1, 1}}, table{{1, 1}, {2, 2}}}) {
        matrix x = original;
        EXPECT_FALSE(x.times_inverse_of(made(singular)));
    }
    matrix none;
    vector empty;
    EXPECT_TRUE(none.times_inverse_of(matrix()) && empty.times_inverse_of(matrix()));
}

TEST(InverseSvd, OfARankDeficientMatrixIsThePseudoInverse) {
    // Exact zeros: the others are inverted and the zero stays.
    expect_near(inverse_svd(made({{4, 0, 0}, {0, 0, 0}})), made({{0.25, 0}, {0, 0}, {0, 0}}), 1e-16);
    seeded_random random(20250308);
    for (auto const& size : {std::pair(6u, 3u), std::pair(3u, 6u)}) {
        matrix const a = random_matrix(random, size.first, size.second), p = inverse_svd(a);
        // The four conditions of Penrose, at a condition of some tens.
        expect_near(a * p * a, a, 1e-13);
        expect_near(p * a * p, p, 1e-13);
        expect_near(a * p, transpose(a * p), 1e-13);
        expect_near(p * a, transpose(p * a), 1e-13);
    }
}

TEST(UnderConstrainedInverse, IsTheRightInverseOfLeastNorm) {
    seeded_random random(20250309);
    for (unsigned int r = 1; r <= 5; ++r) {
        for (unsigned int c = r; c <= r + 5; ++c) {
            SCOPED_TRACE(testing::Message() << r << " by " << c);
            matrix a = random_matrix(random, r, c);
            for (unsigned int i = 0; i < r; ++i) a(i)(c - 1 - i) += 3;  // regular, with columns to exchange
            matrix inverse = a;
            ASSERT_TRUE(inverse.under_constrained_inverse());
            expect_near(a * inverse, matrix::identity(r), 1e-13);
            expect_near(inverse, transpose(a) * inverse_gj(a * transpose(a)), 1e-13);
        }
    }
    matrix hand = made({{3, 4}});  // the shortest x with 3x + 4y = 1 is (3, 4) / 25
    ASSERT_TRUE(hand.under_constrained_inverse());
    expect_near(hand, made({{0.12}, {0.16}}), 1e-16);
}

TEST(UnderConstrainedInverse, FailsForDependentRowsAndWrongShapes) {
    for (table const& bad :
         {table{}, table{{}}, table{{1}, {2}}, table{{1, 2}, {0, 0}}, table{{1, 2, 3}, {2, 4, 6}}}) {
        matrix m = made(bad);
        EXPECT_FALSE(m.under_constrained_inverse()) << bad.size();
    }
}

}  // namespace
}  // namespace tvmath
