#include "tvmath/transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

// The independent method: homogeneous 4 x 4 matrices of long doubles, multiplied in full.
using real = long double;
using matrix = std::array<std::array<real, 4>, 4>;

matrix linear(real a, real b, real c, real d, real e, real f, real g, real h, real i) {
    return {{{a, b, c, 0}, {d, e, f, 0}, {g, h, i, 0}, {0, 0, 0, 1}}};
}

matrix const one = linear(1, 0, 0, 0, 1, 0, 0, 0, 1);

matrix shift(real x, real y, real z) {
    matrix m = one;
    m[0][3] = x, m[1][3] = y, m[2][3] = z;
    return m;
}

matrix product(matrix const& a, matrix const& b) {
    matrix m{};
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 4; ++c)
            for (unsigned k = 0; k < 4; ++k) m[r][c] += a[r][k] * b[k][c];
    return m;
}

matrix map_of(transform const& t, bool inverse_map) {
    matrix m = one;
    unsigned const n = t.is_3d() ? 3 : t.is_2d() ? 2 : 0, start = inverse_map ? n * (n + 1) : 0;
    for (unsigned r = 0; r < n; ++r) {
        m[r][3] = t[start + r * (n + 1)];
        for (unsigned c = 0; c < n; ++c) m[r][c] = t[start + r * (n + 1) + c + 1];
    }
    return m;
}

real largest(matrix const& m) {
    real largest = 0;
    for (auto const& row : m)
        for (real x : row) largest = std::max(largest, std::fabs(x));
    return largest;
}

real difference(matrix a, matrix const& b) {
    for (unsigned r = 0; r < 4; ++r)
        for (unsigned c = 0; c < 4; ++c) a[r][c] -= b[r][c];
    return largest(a);
}

// What a step does to the map: after * map * before.
struct step {
    char const* name;
    bool planar;
    void (*apply)(transform&, double, double);
    matrix (*after)(real, real);
    matrix (*before)(real, real) = [](real, real) { return one; };
};

matrix nothing(real, real) {
    return one;
}

matrix turn(real a) {
    return linear(std::cos(a), -std::sin(a), 0, std::sin(a), std::cos(a), 0, 0, 0, 1);
}

step const steps[] = {
    {"translate 2D", true, [](transform& t, double a, double b) { t.translate(a, b); },
     [](real a, real b) { return shift(a, b, 0); }},
    {"rotate", true, [](transform& t, double a, double) { t.rotate(a); },
     [](real a, real) { return turn(a); }},
    {"rotate_90", true, [](transform& t, double, double) { t.rotate_90(); },
     [](real, real) { return linear(0, -1, 0, 1, 0, 0, 0, 0, 1); }},
    {"rotate_180", true, [](transform& t, double, double) { t.rotate_180(); },
     [](real, real) { return linear(-1, 0, 0, 0, -1, 0, 0, 0, 1); }},
    {"rotate_270", true, [](transform& t, double, double) { t.rotate_270(); },
     [](real, real) { return linear(0, 1, 0, -1, 0, 0, 0, 0, 1); }},
    {"dilate 2D", true, [](transform& t, double a, double b) { t.dilate(1 + a / 2, 1 + b / 2); },
     [](real a, real b) { return linear(1 + a / 2, 0, 0, 0, 1 + b / 2, 0, 0, 0, 1); }},
    {"shear_x 2D", true, [](transform& t, double a, double) { t.shear_x(a); },
     [](real a, real) { return linear(1, a, 0, 0, 1, 0, 0, 0, 1); }},
    {"shear_y 2D", true, [](transform& t, double a, double) { t.shear_y(a); },
     [](real a, real) { return linear(1, 0, 0, a, 1, 0, 0, 0, 1); }},
    {"flip_axis 1", true, [](transform& t, double, double) { t.flip_axis(1); }, nothing,
     [](real, real) { return linear(-1, 0, 0, 0, 1, 0, 0, 0, 1); }},
    {"exchange_axes 1 2", true, [](transform& t, double, double) { t.exchange_axes(1, 2); }, nothing,
     [](real, real) { return linear(0, 1, 0, 1, 0, 0, 0, 0, 1); }},
    {"multiply 2D", true,
     [](transform& t, double a, double b) { t *= transform::rotation(a).translate(b, 1); },
     [](real a, real b) { return product(shift(b, 1, 0), turn(a)); }},
    {"divide 2D", true, [](transform& t, double a, double b) { t /= transform(b, 1).rotate(a); },
     [](real a, real b) { return product(shift(-b, -1, 0), turn(-a)); }},
    {"translate 3D", false, [](transform& t, double a, double b) { t.translate(a, b, a - b); },
     [](real a, real b) { return shift(a, b, a - b); }},
    {"rotate 3D", false, [](transform& t, double a, double b) { t.rotate(a, 0, b); },
     [](real a, real b) {
         matrix const about_x = linear(1, 0, 0, 0, std::cos(b), -std::sin(b), 0, std::sin(b), std::cos(b));
         return product(turn(a), about_x);
     }},
    {"rotate about Y", false, [](transform& t, double a, double) { t.rotate(point(false, 0, 2, 0), a); },
     [](real a, real) { return linear(std::cos(a), 0, std::sin(a), 0, 1, 0, -std::sin(a), 0, std::cos(a)); }},
    {"dilate 3D", false, [](transform& t, double a, double b) { t.dilate(1 + a / 2, 1 + b / 2, 1 - a / 2); },
     [](real a, real b) { return linear(1 + a / 2, 0, 0, 0, 1 + b / 2, 0, 0, 0, 1 - a / 2); }},
    {"shear_x 3D", false, [](transform& t, double a, double b) { t.shear_x(a, b); },
     [](real a, real b) { return linear(1, a, b, 0, 1, 0, 0, 0, 1); }},
    {"shear_y 3D", false, [](transform& t, double a, double b) { t.shear_y(a, b); },
     [](real a, real b) { return linear(1, 0, 0, a, 1, b, 0, 0, 1); }},
    {"shear_z 3D", false, [](transform& t, double a, double b) { t.shear_z(a, b); },
     [](real a, real b) { return linear(1, 0, 0, 0, 1, 0, a, b, 1); }},
    {"flip_axis 3", false, [](transform& t, double, double) { t.flip_axis(3); }, nothing,
     [](real, real) { return linear(1, 0, 0, 0, 1, 0, 0, 0, -1); }},
    {"exchange_axes 3 1", false, [](transform& t, double, double) { t.exchange_axes(3, 1); }, nothing,
     [](real, real) { return linear(0, 0, 1, 0, 1, 0, 1, 0, 0); }},
    // The image of X becomes that of Z: before * (1, 0, 0) = (0, 0, 1).
    {"permute3d 1", false, [](transform& t, double, double) { t.permute3d(1); }, nothing,
     [](real, real) { return linear(0, 1, 0, 0, 0, 1, 1, 0, 0); }},
    {"permute3d -1", false, [](transform& t, double, double) { t.permute3d(-1); }, nothing,
     [](real, real) { return linear(0, 0, 1, 1, 0, 0, 0, 1, 0); }},
};

TEST(Transform, TracksMapAndInverseThroughEachStepFromAnyStart) {
    transform const starts[] = {transform(), transform::rotation(0.3).translate(2, -3).shear_x(0.4),
                                transform::rotation(0.3, -0.4, 0.5).translate(2, -3, 4).shear_z(0.4, 0.1)};
    for (step const& s : steps) {
        for (transform const& start : starts) {
            SCOPED_TRACE(std::string(s.name) + " from size " + std::to_string(start.capacity()));
            if (start.is_trivial() && std::string(s.name).starts_with("rotate_")) continue;  // stays trivial
            transform t = start;
            s.apply(t, 0.6, -0.3);
            EXPECT_EQ(t.is_3d(), start.is_3d() || !s.planar);
            matrix const expected =
                product(product(s.after(0.6, -0.3), map_of(start, false)), s.before(0.6, -0.3));
            // Entries below 10, a few roundings each. A step that wrote to the shared block would spoil
            // `start`.
            EXPECT_LT(difference(map_of(t, false), expected), 1e-14L);
            EXPECT_LT(difference(product(map_of(t, false), map_of(t, true)), one), 1e-13L);
        }
    }
}

TEST(Transform, KeepsAnExactInverseThroughLongRandomChains) {
    for (unsigned dimension : {2u, 3u}) {
        unsigned const kinds = dimension == 2 ? 12 : static_cast<unsigned>(std::size(steps));
        for (unsigned trial = 0; trial < 40; ++trial) {
            SCOPED_TRACE(std::to_string(dimension) + "D, trial " + std::to_string(trial));
            seeded_random random(dimension * 1000 + trial);
            transform t = dimension == 2 ? transform(1, 2) : transform(1, 2, 3);
            matrix expected = map_of(t, false);
            real condition = 1;
            for (int i = 0; i < 400; ++i) {
                step const& s = steps[random.below(kinds)];
                // Small, so that the map stays well conditioned and the bound means something.
                double const a = random.uniform(-0.1, 0.1), b = random.uniform(-0.1, 0.1);
                s.apply(t, a, b);
                expected = product(product(s.after(a, b), expected), s.before(a, b));
                condition = std::max(condition, largest(map_of(t, false)) * largest(map_of(t, true)));
            }
            // A step rounds the entries of both maps by a few ulps of the largest one, and the steps after it
            // magnify that by their own condition, at most the square of the largest one on the way.
            real const bound = 400 * 8 * std::numeric_limits<double>::epsilon() * condition * condition;
            EXPECT_LT(bound, 1e-3L);  // or the test says little
            EXPECT_LT(difference(product(map_of(t, false), map_of(t, true)), one), bound);
            EXPECT_LT(difference(map_of(t, false), expected), bound * largest(expected));
        }
    }
}

TEST(Transform, ComposesMixedDimensionsLikeOneMapAfterTheOther) {
    transform const flat = transform::rotation(0.7).dilate(2, 3).translate(5, -1);
    transform const solid = transform::rotation(0.2, 0.5, -0.9).shear_y(0.3, 0.4).translate(1, 2, 3);
    transform const other = transform::extrusion(point(false, 1, 2, 2)).translate(-4, 0, 2);
    struct {
        char const* name;
        transform a, b;
        unsigned size;
    } const cases[] = {{"2D, 2D", flat, transform(1, 2).shear_y(2), 12},
                       {"2D, 3D", flat, solid, 24},
                       {"3D, 2D", solid, flat, 24},
                       {"3D, 3D", solid, other, 24}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        matrix const forward = product(map_of(c.b, false), map_of(c.a, false));
        matrix const quotient = product(map_of(c.b, true), map_of(c.a, false));
        for (auto const& [result, expected] :
             {std::pair(c.a * c.b, forward), std::pair(c.a / c.b, quotient)}) {
            EXPECT_EQ(result.capacity(), c.size);
            EXPECT_LT(difference(map_of(result, false), expected), 1e-13L);  // entries below 30
            EXPECT_LT(difference(product(map_of(result, false), map_of(result, true)), one), 1e-13L);
        }
        point const p(true, 1, -2, 3);  // the same through the points' own arithmetic
        EXPECT_LT(distance3d(p * (c.a * c.b), (p * c.a) * c.b), 1e-13);
        EXPECT_LT(distance3d(p * (c.a / c.b), (p * c.a) / c.b), 1e-13);
    }
}

TEST(Transform, SharesTheBlockWhenTheArgumentIsNeutral) {
    transform const starts[] = {transform(), transform(1, 2), transform(1, 2, 3)};
    void (*const neutral[])(transform&) = {
        [](transform& t) { t.translate(0, 0); },
        [](transform& t) { t.translate(0, 0, 0); },
        [](transform& t) { t.translate(point()); },
        [](transform& t) { t.rotate(0); },
        [](transform& t) { t.dilate(1); },
        [](transform& t) { t.dilate(1, 1); },
        [](transform& t) { t.dilate(1, 1, 1); },
        [](transform& t) { t.shear_x(0); },
        [](transform& t) { t.shear_y(0); },
        [](transform& t) { t.shear_x(0, 0); },
        [](transform& t) { t.shear_y(0, 0); },
        [](transform& t) { t.shear_z(0, 0); },
        [](transform& t) { t.flip_axis(4); },
        [](transform& t) { t.flip_axis(-1); },
        [](transform& t) { t.exchange_axes(2, 2); },
        [](transform& t) { t.exchange_axes(0, 3); },
        [](transform& t) { t.exchange_axes(1, 4); },
        [](transform& t) { t.permute3d(-6); },
        [](transform& t) { t.make_right_handed(1); },
        [](transform& t) { t *= transform(); },
        [](transform& t) { t /= transform(); },
    };
    for (unsigned i = 0; i < std::size(neutral); ++i) {
        for (transform const& start : starts) {
            transform t = start;
            neutral[i](t);
            EXPECT_EQ(t.address(), start.address()) << "operation " << i << ", size " << start.capacity();
        }
    }
    for (transform const& t : starts) {
        if (t.is_trivial()) continue;  // either operand will do
        EXPECT_EQ((t * transform()).address(), t.address());
        EXPECT_EQ((t / transform()).address(), t.address());
        EXPECT_EQ((transform() * t).address(), t.address());
    }
}

TEST(Transform, ComparesBytesOfBothMaps) {
    transform const flat = transform::rotation(0.0);
    EXPECT_TRUE(flat.is_identity() && flat.is_2d() && flat != transform());
    EXPECT_TRUE(transform::rotation(0, 0, 0).is_identity() && transform::rotation(0, 0, 0) != flat);
    EXPECT_TRUE(transform().is_identity() && transform() == transform());
    EXPECT_FALSE(transform(0, 1e-300).is_identity());
    transform other = flat;
    other(6) = 1;  // the inverse map counts, for equality but not for the identity
    EXPECT_TRUE(other != flat && other.is_identity());
    transform const chain = transform::rotation(0.3).shear_x(2).translate(4, 5);
    EXPECT_TRUE(inverse(inverse(chain)) == chain && inverse(chain) != chain);
}

TEST(Transform, AppliesToEachElementOfAList) {
    idioms::array<transform> const list(2, transform(1, 2));
    transform const quarter = transform::rotation_90();
    for (unsigned i = 0; i < 2; ++i) {
        EXPECT_EQ((list * quarter)[i].center(), point(true, -2, 1));
        EXPECT_EQ((list / quarter)[i].center(), point(true, 2, -1));
        EXPECT_EQ(inverse(list)[i].center(), point(true, -1, -2));
        EXPECT_EQ(list[i].center(), point(true, 1, 2));
    }
    EXPECT_TRUE((idioms::array<transform>() * quarter).is_trivial());
}

TEST(Transform, TreatsABlockOfAnUnknownSizeAsTrivial) {
    transform const odd{idioms::array<double>(7)}, t(1, 2);
    EXPECT_TRUE(odd * t == t && t * odd == t && t / odd == t && odd / t == inverse(t));
    EXPECT_EQ(odd.basis(1), point(false, 1, 0));
    EXPECT_TRUE(odd.inverse_basis(0).is_trivial() && odd.size(1) == 0 && !_isnan(odd, true) &&
                odd.is_identity());
    EXPECT_EQ(point(true, 3, 4) * odd, point(true, 3, 4));
    for (step const& s : steps) {
        transform a = odd, b;
        s.apply(a, 0.5, 0.25);
        s.apply(b, 0.5, 0.25);
        EXPECT_TRUE(b.is_trivial() || a == b) << s.name;
    }
    transform u = odd;
    EXPECT_TRUE(u.fill_in_inverse() && u.inverse().orthogonalize().orthonormalize().capacity() == 7);
    EXPECT_TRUE(u.promote3d() == transform(0, 0, 0));
}

}  // namespace
}  // namespace tvmath
