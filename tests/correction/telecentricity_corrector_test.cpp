#include "tvmath/telecentricity_corrector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "tvmath/matrix.h"

inline namespace tvmath {
namespace {

double const z_reference = 12.5, pixel = 0.005;
double const nan = std::numeric_limits<double>::quiet_NaN();

// Artefacts seen from several stage positions and heights by a lens with known errors.
struct observations {
    std::vector<point> image, stage;
    std::vector<unsigned int> ids;
    transform to_machine = transform::dilation(pixel, -pixel, 1.0) * transform::rotation(0.2, 0.0, 0.0);
    screen_corrector screen;

    telecentricity_corrector fit() const {
        return telecentricity_corrector::fit(image, stage, ids, z_reference, screen, to_machine);
    }
};

// The stage stands about `far` from the origin. The image c of an artefact at o, from the position d, has
// c + d = d.z (k c + t) + o.
observations observe(seeded_random& random, telecentricity_corrector const& lens, unsigned int artefacts,
                     double far, double noise_x, double noise_y) {
    observations o;
    point const first(true, far, 2 * far);
    std::vector<point> places;
    for (unsigned int g = 0; g < artefacts; ++g) {
        places.emplace_back(true, random.uniform(-5, 5), random.uniform(-5, 5));
    }
    for (unsigned int i = 0; i < 12 * artefacts; ++i) {
        unsigned int const g = i % artefacts;
        double const z = random.uniform(-2, 3), scale = 1 - lens.magnification * z;
        point const shift = i == 0 ? point(false, 0, 0)
                                   : point(false, std::round(random.uniform(-64, 64)) / 1024 + places[g].x(),
                                           std::round(random.uniform(-64, 64)) / 1024 + places[g].y());
        double const x = (places[g].x() + z * lens.tilt_x - shift.x()) / scale + noise_x * random.normal();
        double const y = (places[g].y() + z * lens.tilt_y - shift.y()) / scale + noise_y * random.normal();
        o.image.push_back(point(true, x, y) / o.to_machine);
        o.stage.emplace_back(true, first.x() + shift.x(), first.y() + shift.y(), z_reference + z);
        o.ids.push_back(g);
    }
    return o;
}

telecentricity_corrector lens_of(double k, double tx, double ty) {
    telecentricity_corrector lens;
    lens.residual = 0;
    lens.magnification = k;
    lens.tilt_x = tx;
    lens.tilt_y = ty;
    return lens;
}

// By hand: (0.01 (2, 4) + (0.5, -0.25)) 10 = (5.2, -2.1). Guarded points come back to the bit.
TEST(TelecentricityCorrector, MovesXAndYInProportionToZ) {
    telecentricity_corrector const lens = lens_of(0.01, 0.5, -0.25), none;
    point const moved = point(true, 2, 4, 10) * lens, back = moved / lens;
    EXPECT_LE(distance3d(moved, point(true, 7.2, 1.9, 10)), 1e-15);
    EXPECT_LE(distance3d(back, point(true, 2, 4, 10)), 1e-15);
    seeded_random random(1);
    for (int i = 0; i < 1000; ++i) {
        point const p(true, random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9));
        EXPECT_LE(distance3d(p, lens.remove_correction(lens.apply_correction(p))), 1e-14);
        EXPECT_TRUE(p * none == p && p / none == p);
    }
    for (point const& p : {point(), point(true, 3, 4), point(true, 3, 4, 0), point(false, 3, 4)}) {
        EXPECT_TRUE(p * lens == p && p / lens == p);
    }
    EXPECT_TRUE(std::isnan((point(true, 3, 4, nan) * lens).x()));
    EXPECT_TRUE(none.is_trivial() && std::isnan(none.residual) && std::signbit(none.residual));
}

TEST(TelecentricityCorrector, FindsTheLensOfExactObservations) {
    seeded_random random(2);
    for (unsigned int artefacts : {1u, 2u, 7u}) {
        for (double const far : {0.0, 1e5}) {
            telecentricity_corrector const lens = lens_of(
                random.uniform(-1e-3, 1e-3), random.uniform(-0.01, 0.01), random.uniform(-0.01, 0.01));
            telecentricity_corrector const c = observe(random, lens, artefacts, far, 0, 0).fit();
            // Stage coordinates near 2e5 are rounded by 1e-11; heights spread over 5, images over 0.1.
            double const rounding = 1e-14 + far * 1e-16;
            EXPECT_NEAR(c.magnification, lens.magnification, 200 * rounding);
            EXPECT_NEAR(c.tilt_x, lens.tilt_x, 20 * rounding);
            EXPECT_NEAR(c.tilt_y, lens.tilt_y, 20 * rounding);
            EXPECT_LE(c.residual, 10 * rounding);
        }
    }
}

// All unknowns, places included, by the normal equations of both axes.
telecentricity_corrector by_normal_equations(observations const& o, unsigned int artefacts) {
    unsigned int const unknowns = 2 * artefacts + 3;
    matrix a[2] = {matrix(unknowns, unknowns), matrix(unknowns, unknowns)};
    vector b[2] = {vector(unknowns), vector(unknowns)};
    double squares[2] = {0, 0};
    point const origin(true, o.stage[0].x(), o.stage[0].y(), z_reference);
    for (std::size_t i = 0; i < o.image.size(); ++i) {
        point const c = o.image[i] * o.to_machine, d = o.stage[i] - origin;
        for (unsigned int axis = 0; axis < 2; ++axis) {
            vector row(unknowns);
            row(0) = c[axis + 1] * d.z();
            row(1 + axis) = d.z();
            row(3 + 2 * o.ids[i] + axis) = 1;
            double const seen = c[axis + 1] + d[axis + 1];
            squares[axis] += seen * seen;
            b[axis] += row * seen;
            a[axis] += outer_product(row, row);
        }
    }
    matrix inverse = matrix::identity(unknowns);
    EXPECT_TRUE(inverse.times_inverse_of(a[0] + a[1]));
    vector const s = (b[0] + b[1]) * inverse;
    double variance[2], dof = static_cast<double>(o.image.size()) - unknowns / 2.0;
    for (int axis = 0; axis < 2; ++axis) {
        variance[axis] = (squares[axis] - 2 * dot(b[axis], s) + dot(s, a[axis] * s)) / dof;
    }
    auto const error = [&](unsigned int j) {
        return std::sqrt(variance[0] * dot(inverse[j], a[0] * inverse[j]) +
                         variance[1] * dot(inverse[j], a[1] * inverse[j]));
    };
    telecentricity_corrector c = lens_of(s[0], s[1], s[2]);
    c.residual = std::sqrt(variance[0] + variance[1]);
    c.magnification_error = error(0);
    c.tilt_x_error = error(1);
    c.tilt_y_error = error(2);
    return c;
}

TEST(TelecentricityCorrector, AgreesWithTheWholeSystemOfUnknowns) {
    seeded_random random(3);
    for (unsigned int artefacts : {1u, 2u, 5u}) {
        observations const o = observe(random, lens_of(5e-4, 0.01, -0.02), artefacts, 3, 2e-3, 5e-3);
        telecentricity_corrector const c = o.fit(), expected = by_normal_equations(o, artefacts);
        char const* const reason = "places of size 5 against residuals of 1e-3, squared";
        EXPECT_TRUE(relatively_near(c.residual, expected.residual, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.magnification, expected.magnification, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.tilt_x, expected.tilt_x, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.tilt_y, expected.tilt_y, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.magnification_error, expected.magnification_error, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.tilt_x_error, expected.tilt_x_error, 1e-8, reason));
        EXPECT_TRUE(relatively_near(c.tilt_y_error, expected.tilt_y_error, 1e-8, reason));
        if (artefacts > 1) continue;
        telecentricity_corrector const one =
            telecentricity_corrector::fit(o.image, o.stage, z_reference, o.screen, o.to_machine);
        EXPECT_TRUE(one.tilt_y == c.tilt_y && one.magnification_error == c.magnification_error);
    }
}

// The spread of 1000 fits is known to sqrt(1 / 2000) = 2.2 %; 5 of these are allowed. Noise in x and y
// differs, so that one variance for both would not pass.
TEST(TelecentricityCorrector, PredictsTheSpreadOfItsUnknowns) {
    telecentricity_corrector const lens = lens_of(1e-3, 0.02, -0.01);
    constexpr int runs = 1000;
    double squares[4] = {}, predicted[4] = {0, 0, 0, runs * (1e-6 + 16e-6)};
    seeded_random noise(4);
    for (int run = 0; run < runs; ++run) {
        seeded_random same(7);
        observations o = observe(same, lens, 3, 10, 0, 0);
        for (point& p : o.image) {
            p += point(false, 1e-3 * noise.normal(), 0) / o.to_machine +
                 point(false, 0, 4e-3 * noise.normal()) / o.to_machine;
        }
        telecentricity_corrector const c = o.fit();
        squares[0] += sqr(c.magnification - lens.magnification);
        squares[1] += sqr(c.tilt_x - lens.tilt_x);
        squares[2] += sqr(c.tilt_y - lens.tilt_y);
        squares[3] += sqr(c.residual);
        predicted[0] += sqr(c.magnification_error);
        predicted[1] += sqr(c.tilt_x_error);
        predicted[2] += sqr(c.tilt_y_error);
    }
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(std::sqrt(squares[i] / predicted[i]), 1, 0.11) << i;
}

TEST(TelecentricityCorrector, WithoutAnAnswerIsTheDefault) {
    seeded_random random(5);
    telecentricity_corrector const lens = lens_of(1e-3, 0.02, -0.01);
    struct {
        char const* name;
        void (*spoil)(observations&);
    } const cases[] = {
        {"nothing", [](observations& o) { o = observations(); }},
        {"lists of different length", [](observations& o) { o.stage.pop_back(); }},
        {"an id less", [](observations& o) { o.ids.pop_back(); }},
        {"6 equations for 7 unknowns",
         [](observations& o) {
             for (auto* list : {&o.image, &o.stage}) list->resize(3);
             o.ids.resize(3);
         }},
        {"one height",
         [](observations& o) {
             for (point& p : o.stage) p.z() = 12.7;
         }},
        {"one height for each artefact",
         [](observations& o) {
             for (std::size_t i = 0; i < o.stage.size(); ++i) o.stage[i].z() = 0.1 * (1 + o.ids[i]);
         }},
        {"one image", [](observations& o) { o.image.assign(o.image.size(), o.image[0]); }},
        {"an id left out", [](observations& o) { o.ids[5] = 3; }},
        {"an enormous id", [](observations& o) { o.ids[5] = 0xffffffff; }},
        {"an id whose unknowns wrap to 3", [](observations& o) { o.ids[5] = 0x7fffffff; }},
        {"not a number", [](observations& o) { o.stage[3].z() = nan; }},
        {"an infinite image", [](observations& o) { o.image[3].x() = infinity; }},
        {"an infinite place", [](observations& o) { o.stage[0].y() = infinity; }},
    };
    for (auto const& k : cases) {
        observations o = observe(random, lens, 2, 0, 1e-3, 1e-3);
        ASSERT_FALSE(o.fit().is_trivial());
        k.spoil(o);
        telecentricity_corrector const c = o.fit();
        EXPECT_TRUE(c.is_trivial() && c.tilt_x == 0 && c.tilt_x_error == 0) << k.name;
    }
    // Of one artefact three observations are enough, and two are not.
    observations o = observe(random, lens, 1, 0, 0, 0);
    for (std::size_t n : {3u, 2u}) {
        for (auto* list : {&o.image, &o.stage}) list->resize(n);
        EXPECT_EQ(telecentricity_corrector::fit(o.image, o.stage, z_reference, {}, o.to_machine).is_trivial(),
                  n == 2);
    }
}

}  // namespace
}  // namespace tvmath
