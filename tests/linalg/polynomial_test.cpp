#include "tvmath/polynomial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <vector>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<complex>;

// Coefficients of the product of x - root, correct to the last bit or nearly: products in long double.
numbers polynomial_of(numbers const& roots) {
    std::vector<std::complex<long double>> c = {1};
    for (complex const& root : roots) {
        c.insert(c.begin(), 0);
        for (std::size_t i = 0; i + 1 < c.size(); ++i)
            c[i] -= std::complex<long double>(root.re, root.im) * c[i + 1];
    }
    numbers result;
    for (auto const& z : c) result.emplace_back(static_cast<double>(z.real()), static_cast<double>(z.imag()));
    return result;
}

// The solvers with one form.

template <class list_type>
numbers listed(list_type const& roots) {
    return {roots.begin(), roots.end()};
}

unsigned int size_of(numbers const& c) {
    return static_cast<unsigned int>(c.size());
}

numbers real_form(numbers const& c) {
    if (c.size() == 3) return listed(quadratic(c[0].re, c[1].re, c[2].re));
    if (c.size() == 4) return listed(cubic(c[0].re, c[1].re, c[2].re, c[3].re));
    return listed(quartic(c[0].re, c[1].re, c[2].re, c[3].re, c[4].re));
}

numbers complex_form(numbers const& c) {
    if (c.size() == 3) return listed(quadratic(c[0], c[1], c[2]));
    return listed(c.size() == 4 ? cubic(c[0], c[1], c[2], c[3]) : quartic(c[0], c[1], c[2], c[3], c[4]));
}

numbers real_newton(numbers const& c) {
    return listed(solve_nr(vector(size_of(c), &c[0].re, 2)));
}

numbers complex_newton(numbers const& c) {
    return listed(solve_nr(idioms::array<complex>(size_of(c), c.data())));
}

// Families of known roots, `n` of them.

struct family {
    double size = 1;
    int multiplicity = 1;  // of the first root
    int pairs = 0;         // the last 2 * pairs roots are conjugate; -1: all are complex, none conjugate
    double cluster = 0;    // distance, relative to the size, of roots that lie close to each other
    double spread = 1;     // sizes from size / spread to size * spread
};

numbers roots_of(family const& f, int n, seeded_random& random) {
    numbers roots;
    double const middle = f.size * random.uniform(-1, 1);
    for (int i = 0; i < n; ++i) {
        double const magnitude = f.spread > 1 ? f.size * random.log_uniform(1 / f.spread, f.spread) : f.size;
        double x = magnitude * (f.spread == 1 ? random.uniform(-1, 1) : random.coin() ? 1 : -1);
        if (f.cluster > 0) x = middle + f.cluster * x;
        double const y = f.pairs < 0 ? f.size * random.uniform(-1, 1) : f.size * random.uniform(0.01, 1);
        if (i > 0 && i < f.multiplicity) {
            roots.push_back(roots[0]);
        } else if (f.pairs > 0 && i >= n - 2 * f.pairs) {
            roots.insert(roots.end(), {complex(x, y), complex(x, -y)});
            ++i;
        } else {
            roots.emplace_back(x, f.pairs < 0 ? y : 0);
        }
    }
    return roots;
}

struct figures {
    double worst = 0;   // error of a root found, relative to the largest root
    double missed = 0;  // share of the roots with no result within `reach`
    double wrong = 0;   // share of the results with no root within `reach`
};

double distance_to(numbers const& list, complex const& z) {
    double nearest = infinity;
    for (complex const& other : list) nearest = std::min(nearest, abs(z - other));
    return nearest;
}

figures measure(numbers (*solve)(numbers const&), family const& f, int n, double reach) {
    constexpr int trials = 10000;
    seeded_random random(20250501);
    figures result;
    int roots_in_all = 0, found_in_all = 0;
    for (int trial = 0; trial < trials; ++trial) {
        numbers expected = roots_of(f, n, random);
        numbers const found = solve(polynomial_of(expected));
        double scale = 0;
        for (complex const& z : expected) scale = std::max(scale, abs(z));
        if (f.pairs >= 0) std::erase_if(expected, [](complex const& z) { return z.im != 0; });
        for (complex const& z : expected) {
            double const error = distance_to(found, z) / scale;
            error < reach ? result.worst = std::max(result.worst, error) : ++result.missed;
        }
        for (complex const& z : found) result.wrong += !(distance_to(expected, z) < reach * scale);
        roots_in_all += static_cast<int>(expected.size());
        found_in_all += static_cast<int>(found.size());
    }
    result.missed /= std::max(roots_in_all, 1);
    result.wrong /= std::max(found_in_all, 1);
    return result;
}

// Bounds 1.2 to 2 times what was measured, so that a loss of digits or of roots shows; the output is the
// table of the figures. The worst errors are the conditioning of the worst case among 10000: two random roots
// that happen to lie close to each other.
TEST(Polynomial, RootsOfKnownPolynomialsAreFound) {
    struct {
        char const* name;
        numbers (*solve)(numbers const&);
        int degree;
        double reach;
        family roots;
        figures allowed;
    } const cases[] = {
        {"quadratic", real_form, 2, 1e-6, {}, {2e-12}},
        {"cubic", real_form, 3, 1e-6, {}, {5e-11}},
        {"cubic, one real", real_form, 3, 1e-6, {.pairs = 1}, {3e-9}},
        // The exact test of a discriminant that is all rounding misses a pair, or splits it.
        {"cubic, double", real_form, 3, 1e-4, {.multiplicity = 2}, {2e-6, 4e-1}},
        {"cubic, triple", real_form, 3, 1e-4, {.multiplicity = 3}, {2e-5}},
        {"quartic", real_form, 4, 1e-6, {}, {5e-8}},
        {"quartic, size 1e-3", real_form, 4, 1e-6, {.size = 1e-3}, {3e-8}},
        {"quartic, size 1e3", real_form, 4, 1e-6, {.size = 1e3}, {2e-8}},
        {"quartic, size 1e9", real_form, 4, 1e-6, {.size = 1e9}, {3e-8}},
        {"quartic, two real", real_form, 4, 1e-6, {.pairs = 1}, {3e-11}},
        {"quartic, none real", real_form, 4, 1e-6, {.pairs = 2}, {0}},
        {"quartic, double", real_form, 4, 1e-4, {.multiplicity = 2}, {2e-5}},
        {"quartic, double, size 1e3", real_form, 4, 1e-4, {.size = 1e3, .multiplicity = 2}, {2e-5}},
        {"quartic, double and pair", real_form, 4, 1e-4, {.multiplicity = 2, .pairs = 1}, {8e-13}},
        // Roots nearer than the noise, its cube root or fourth root, count as one.
        {"quartic, triple", real_form, 4, 1e-4, {.multiplicity = 3}, {1e-4, 2e-4}},
        {"quartic, quadruple", real_form, 4, 1e-4, {.multiplicity = 4}, {1e-15}},
        {"quartic, cluster", real_form, 4, 1e-4, {.cluster = 1e-2}, {2e-4, 5e-4, 9e-5}},
        {"quartic, sizes 1e-4 to 1e4", real_form, 4, 1e-6, {.spread = 1e4}, {9e-13}},
        {"complex quadratic", complex_form, 2, 1e-6, {.pairs = -1}, {2e-14}},
        {"complex cubic", complex_form, 3, 1e-6, {.pairs = -1}, {6e-14}},
        {"complex cubic, double", complex_form, 3, 1e-4, {.multiplicity = 2, .pairs = -1}, {3e-7}},
        {"complex quartic", complex_form, 4, 1e-6, {.pairs = -1}, {2e-13}},
        {"complex quartic, double", complex_form, 4, 1e-4, {.multiplicity = 2, .pairs = -1}, {3e-7}},
        {"complex quartic, quadruple", complex_form, 4, 1e-2, {.multiplicity = 4, .pairs = -1}, {3e-4}},
        // A real root of a close pair is missed when its imaginary part is not below 1e-10 of it, and a
        // double one when the steps do not fall to 1e-11 of it.
        {"newton", real_newton, 4, 1e-6, {}, {5e-9, 6e-4}},
        {"newton, double", real_newton, 4, 1e-4, {.multiplicity = 2}, {1e-4, 4e-1}},
        {"newton, degree 8", real_newton, 8, 1e-4, {}, {8e-7, 2e-2}},
        {"newton, complex", complex_newton, 4, 1e-6, {.pairs = -1}, {3e-13}},
    };
    for (auto const& c : cases) {
        figures const f = measure(c.solve, c.roots, c.degree, c.reach);
        std::printf("%-28s worst error %7.1e, missed %7.1e, wrong %7.1e\n", c.name, f.worst, f.missed,
                    f.wrong);
        EXPECT_LE(f.worst, c.allowed.worst) << c.name;
        EXPECT_LE(f.missed, c.allowed.missed) << c.name;
        EXPECT_LE(f.wrong, c.allowed.wrong) << c.name;
    }
}

// N. Flocke, Algorithm 954, ACM Trans. Math. Softw. 41 (2015), test polynomials; the roots were computed to
// 120 digits from the coefficients as doubles. `tolerance`, relative, is the conditioning of the root.
TEST(Polynomial, QuarticSolvesPublishedHardCases) {
    struct {
        std::vector<double> highest_first, roots;
        double tolerance;
    } const cases[] = {
        {{1, -1001001001, 1001002001001000, -1.001001001e18, 1e18}, {1, 1e3, 1e6, 1e9}, 1e-12},
        {{1, -4.006, 6.018011, -4.018022006, 1.006011006},
         {1.0000000740249189, 1.0009997777843689, 1.0020002224111837, 1.0029999257795288},
         1e-6},
        {{1, -9.98899e79, -1.1008989e157, -1.010999e233, -1e307}, {-1e77, -1e76, -1e74, 1e80}, 1e-12},
        {{1, -100000000000002, 199999999999999, 100000000000002, -200000000000000}, {-1, 1, 2, 1e14}, 1e-12},
        {{1, -20000002, 101000040000005, -202000100000000, 505000000000000}, {}, 0},
        {{-1.2732176736702573e-09, -5.31908439792814e-08, 1.042486483190605e-05, 0, -0.011613651393481346},
         {-109.56956121711639, -32.79238302114379},
         1e-13},
        // Two double roots, parted by the rounding of the coefficients alone.
        {{2.25, 36, 113.6981992111665, -242.41440631066808, 102.02212567179457},
         {-8.767990510543164, 0.76799051},
         1e-8},
    };
    for (auto const& c : cases) {
        auto const& h = c.highest_first;
        vector const found = quartic(h[4], h[3], h[2], h[1], h[0]);
        SCOPED_TRACE(h[4]);
        ASSERT_EQ(dim(found), c.roots.size());
        for (unsigned int i = 0; i < dim(found); ++i)
            EXPECT_NEAR(found[i], c.roots[i], c.tolerance * std::fabs(c.roots[i]));
    }
}

TEST(Polynomial, QuarticIsAscendingWithoutDuplicates) {
    struct {
        char const* name;
        double c[5];
        std::vector<double> roots;
    } const cases[] = {
        {"two doubles", {4, -12, 13, -6, 1}, {1, 2}},       // (x - 1)² (x - 2)²
        {"biquadratic", {4, 0, -5, 0, 1}, {-2, -1, 1, 2}},  // (x² - 1) (x² - 4)
        {"double at 0", {0, 0, -1, 0, 1}, {-1, 0, 1}},
        {"x^4", {0, 0, 0, 0, 3}, {0}},
        {"triple", {-2, 7, -9, 5, -1}, {1, 2}},  // -(x - 1)³ (x - 2)
        {"quadruple", {81, 108, 54, 12, 1}, {-3}},
        {"double to the tolerance", {4 + 1e-11, -12, 13, -6, 1}, {1, 2}},
        {"none", {1, 0, 2, 0, 1}, {}},  // (x² + 1)²
        {"a cubic", {-6, 11, -6, 1, 0}, {1, 2, 3}},
        {"a cubic with a double root", {0, 0, -1, 1, 0}, {0, 1}},
        {"large", {24e12, -50e9, 35e6, -10e3, 1}, {1e3, 2e3, 3e3, 4e3}},
        {"no quartic", {std::nan(""), 1, 1, 1, 1}, {}},
        {"infinite", {1, infinity, 1, 1, 1}, {}},
    };
    for (auto const& c : cases) {
        vector const found = quartic(c.c[0], c.c[1], c.c[2], c.c[3], c.c[4]);
        SCOPED_TRACE(c.name);
        ASSERT_EQ(dim(found), c.roots.size());
        for (unsigned int i = 0; i < dim(found); ++i)
            EXPECT_NEAR(found[i], c.roots[i], 2e-11 * (1 + std::fabs(found[i])));
    }
}

vector list(std::vector<double> const& x) {
    return vector(static_cast<unsigned int>(x.size()), x.data());
}

TEST(Polynomial, LowerDegreesKeepTheirOrderAndRepeatMultipleRoots) {
    EXPECT_EQ(quadratic(6, -5, 1), list({2, 3}));
    EXPECT_EQ(quadratic(-6, 5, -1), list({3, 2}));  // -sqrt of the discriminant first, divided by -2
    EXPECT_EQ(quadratic(1, -2, 1), list({1, 1}));
    EXPECT_EQ(quadratic(1, 0, 1), list({}));
    EXPECT_EQ(quadratic(1, 0, 0), list({-infinity}));
    EXPECT_EQ(cubic(-3, 2, 0, 0), list({1.5}));
    EXPECT_EQ(cubic(8, 12, 6, 1), list({-2, -2, -2}));  // (x + 2)³
    // By the angles 0, 2 pi/3, 4 pi/3; and (x - 1)² (x + 2), whose discriminant is exactly 0.
    EXPECT_LT(maximum_norm(cubic(-6, 11, -6, 1) - list({3, 1, 2})), 1e-14);
    EXPECT_LT(maximum_norm(cubic(2, -3, 0, 1) - list({-2, 1, 1})), 1e-14);
}

TEST(Polynomial, ComplexFormsFallToLowerDegrees) {
    complex const i(0, 1), tiny(1e-61, -1e-61);
    EXPECT_EQ(linear(complex(2), complex(0, 2))[0], i);
    EXPECT_TRUE(linear(complex(1), complex(0)).is_trivial());
    EXPECT_EQ(quadratic(complex(2), complex(0, 2), tiny).capacity(), 1u);
    EXPECT_EQ(cubic(complex(2), complex(0, 2), tiny, tiny)[0], i);
    EXPECT_EQ(quartic(complex(1), complex(0), complex(1), tiny, tiny).capacity(), 2u);
    idioms::array<complex> const pair = quadratic(complex(1), complex(0), complex(1));  // minus first
    EXPECT_TRUE(pair[0] == -i && pair[1] == i);
    for (complex const& z : cubic(-i, complex(-3), 3 * i, complex(1)))
        EXPECT_LT(abs(z + i), 1e-15);  // (x + i)³
    for (complex const& z : quartic(complex(16), complex(-32), complex(24), complex(-8), complex(1))) {
        EXPECT_EQ(z, complex(2));  // (x - 2)⁴
    }
    // A p that is small beside q: one of the cube roots of the formula is a difference.
    for (complex const& z : cubic(complex(2), complex(1e-4), complex(0), complex(1))) {
        EXPECT_LT(abs(z * z * z + 1e-4 * z + 2), 1e-14);
    }
}

TEST(Polynomial, NewtonGivesWhatItFinds) {
    EXPECT_EQ(dim(solve_nr(list({-6, 11, -6, 1, 0, 0}))), 3u);
    // x³ + 3x: its derivative is 0 at the start.
    for (auto const& c :
         {list({1, 0, 1}), list({0, 3, 0, 1}), list({5}), list({}), vector(3, std::nan("")), vector(3)})
        EXPECT_TRUE(solve_nr(c).is_trivial());
}

// c(x) = (x - r) quotient(x) + remainder, and the remainder is c(r).
TEST(Polynomial, FactorAndDerivativeFollowTheirDefinitions) {
    vector c = list({7, -3, 0, 2}), none;
    EXPECT_EQ(poly(3, c), 52);
    EXPECT_EQ(factor(c, 3), 52);
    EXPECT_EQ(c, list({15, 6, 2}));
    EXPECT_TRUE(factor(none, 2) == 0 && poly(2, none) == 0);

    complex const i(0, 1), z[] = {1, i, 2};  // 1 + i x + 2 x²
    idioms::array<complex> d(3, z);
    EXPECT_EQ(poly(i, d), complex(-2));
    EXPECT_TRUE(derivative(d)[0] == i && derivative(d)[1] == complex(4) && derivative(d).capacity() == 2);
    idioms::array<complex> const shared = d;
    EXPECT_EQ(factor(d, i), complex(-2));
    EXPECT_TRUE(d[0] == complex(0, 3) && d[1] == complex(2) && shared[0] == complex(1));
    EXPECT_TRUE(derivative(idioms::array<complex>(1)).is_trivial());
}

}  // namespace
}  // namespace tvmath
