#include "tvmath/telecentricity_corrector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/seeded_random.h"
#include "tvmath/matrix.h"

inline namespace tvmath {
namespace {

double const z_reference = 12.5, nan = std::numeric_limits<double>::quiet_NaN();
using field = double telecentricity_corrector::*;
field const unknowns[] = {&telecentricity_corrector::magnification, &telecentricity_corrector::tilt_x,
                          &telecentricity_corrector::tilt_y};
field const errors[] = {&telecentricity_corrector::magnification_error,
                        &telecentricity_corrector::tilt_x_error, &telecentricity_corrector::tilt_y_error};

telecentricity_corrector lens_of(double k, double tx, double ty) {
    telecentricity_corrector lens;
    lens.residual = 0;
    lens.magnification = k;
    lens.tilt_x = tx;
    lens.tilt_y = ty;
    return lens;
}

// Artefacts seen from several stage positions and heights by a lens with known errors.
struct observations {
    std::vector<point> image, stage;
    std::vector<unsigned int> ids;
    transform to_machine = transform::dilation(0.005, -0.005, 1.0) * transform::rotation(0.2, 0.0, 0.0);

    telecentricity_corrector fit() const {
        return telecentricity_corrector::fit(image, stage, ids, z_reference, {}, to_machine);
    }
    telecentricity_corrector fit_one_artefact() const {
        return telecentricity_corrector::fit(image, stage, z_reference, {}, to_machine);
    }
    void add_noise(seeded_random& random, double in_x, double in_y) {
        for (point& p : image) {
            p += point(false, in_x * random.normal(), in_y * random.normal()) / to_machine;
        }
    }
};

// The image c of an artefact at o, from the stage position `far` + d, has c + d = d.z (k c + t) + o.
observations observe(seeded_random& random, telecentricity_corrector const& lens, unsigned int artefacts,
                     double far) {
    observations o;
    for (unsigned int i = 0; i < 12 * artefacts; ++i) {
        double const step = 0.5 * (i % artefacts), z = random.uniform(-2, 3),
                     scale = 1 - lens.magnification * z;
        double const dx = i == 0 ? 0 : step + random.uniform(-0.1, 0.1);
        double const dy = i == 0 ? 0 : random.uniform(-0.1, 0.1) - step;
        point const c(true, (step + z * lens.tilt_x - dx) / scale, (z * lens.tilt_y - step - dy) / scale);
        o.image.push_back(c / o.to_machine);
        o.stage.emplace_back(true, far + dx, far + dy, z_reference + z);
        o.ids.push_back(i % artefacts);
    }
    return o;
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
    point flat(true, 3, 4, 9);
    flat.project2d();
    for (point const& p : {point(), flat, point(true, 3, 4, 0), point(true, infinity, 4, 0)}) {
        EXPECT_TRUE(p * lens == p && p / lens == p);
    }
    EXPECT_TRUE(std::isnan((point(true, 3, 4, nan) * lens).x()));
    EXPECT_TRUE(none.is_trivial() && std::isnan(none.residual) && std::signbit(none.residual));
}

TEST(TelecentricityCorrector, FindsTheLensOfExactObservations) {
    seeded_random random(2);
    for (unsigned int artefacts : {1u, 2u, 7u}) {
        for (double const far : {0.0, 1e5}) {
            telecentricity_corrector const lens = lens_of(random.uniform(-1e-3, 1e-3), 0.01, -0.02);
            telecentricity_corrector const c = observe(random, lens, artefacts, far).fit();
            // Stage coordinates are rounded by 1e-16 of their size; heights spread over 5, images over 0.2.
            double const rounding = 1e-14 + far * 1e-16;
            for (field f : unknowns) EXPECT_NEAR(c.*f, lens.*f, 100 * rounding);
            EXPECT_LE(c.residual, 10 * rounding);
        }
    }
}

// All unknowns, places included, by the normal equations of both axes.
telecentricity_corrector by_normal_equations(observations const& o, unsigned int artefacts) {
    unsigned int const n = 2 * artefacts + 3;
    matrix a[2] = {matrix(n, n), matrix(n, n)};
    vector b[2] = {vector(n), vector(n)};
    double squares[2] = {0, 0};
    point const origin(true, o.stage[0].x(), o.stage[0].y(), z_reference);
    for (std::size_t i = 0; i < o.image.size(); ++i) {
        point const c = o.image[i] * o.to_machine, d = o.stage[i] - origin;
        for (unsigned int axis = 0; axis < 2; ++axis) {
            vector row(n);
            row(0) = c[axis + 1] * d.z();
            row(1 + axis) = d.z();
            row(3 + 2 * o.ids[i] + axis) = 1;
            double const seen = c[axis + 1] + d[axis + 1];
            squares[axis] += seen * seen;
            b[axis] += row * seen;
            a[axis] += outer_product(row, row);
        }
    }
    matrix inverse = matrix::identity(n);
    EXPECT_TRUE(inverse.times_inverse_of(a[0] + a[1]));
    vector const s = (b[0] + b[1]) * inverse;
    double variance[2], dof = static_cast<double>(o.image.size()) - n / 2.0;
    for (int axis = 0; axis < 2; ++axis) {
        variance[axis] = (squares[axis] - 2 * dot(b[axis], s) + dot(s, a[axis] * s)) / dof;
    }
    telecentricity_corrector c = lens_of(s[0], s[1], s[2]);
    c.residual = std::sqrt(variance[0] + variance[1]);
    for (unsigned int j = 0; j < 3; ++j) {
        c.*errors[j] = std::sqrt(variance[0] * dot(inverse[j], a[0] * inverse[j]) +
                                 variance[1] * dot(inverse[j], a[1] * inverse[j]));
    }
    return c;
}

TEST(TelecentricityCorrector, AgreesWithTheWholeSystemOfUnknowns) {
    seeded_random random(3);
    for (unsigned int artefacts : {1u, 2u, 5u}) {
        observations o = observe(random, lens_of(5e-4, 0.01, -0.02), artefacts, 3);
        o.add_noise(random, 2e-3, 5e-3);
        telecentricity_corrector const c = o.fit(), expected = by_normal_equations(o, artefacts);
        // Normal equations square places of size 1 against residuals of 1e-3.
        EXPECT_NEAR(c.residual, expected.residual, 1e-8 * expected.residual);
        for (field f : unknowns) EXPECT_NEAR(c.*f, expected.*f, 1e-8 * std::fabs(expected.*f));
        for (field f : errors) EXPECT_NEAR(c.*f, expected.*f, 1e-8 * expected.*f);
        if (artefacts > 1) continue;
        EXPECT_EQ(o.fit_one_artefact().tilt_y_error, c.tilt_y_error);
    }
}

// The spread of 1000 fits is known to sqrt(1 / 2000) = 2.2 %; 4 of these are allowed. Noise in x and y
// differs, so that one variance for both would not pass.
TEST(TelecentricityCorrector, PredictsTheSpreadOfItsUnknowns) {
    telecentricity_corrector const lens = lens_of(1e-3, 0.02, -0.01);
    seeded_random random(4);
    observations const exact = observe(random, lens, 3, 10);
    double spread[4] = {}, predicted[4] = {};
    for (int run = 0; run < 1000; ++run) {
        observations o = exact;
        o.add_noise(random, 1e-3, 4e-3);
        telecentricity_corrector const c = o.fit();
        for (int i = 0; i < 3; ++i) {
            spread[i] += sqr(c.*unknowns[i] - lens.*unknowns[i]);
            predicted[i] += sqr(c.*errors[i]);
        }
        spread[3] += sqr(c.residual);
        predicted[3] += 1e-6 + 16e-6;
    }
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(std::sqrt(spread[i] / predicted[i]), 1, 0.09) << i;
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
        {"one height for each artefact",
         [](observations& o) {
             for (std::size_t i = 0; i < o.stage.size(); ++i) o.stage[i].z() = 0.1 * (1 + o.ids[i]);
         }},
        {"one image", [](observations& o) { o.image.assign(o.image.size(), o.image[0]); }},
        {"an id left out", [](observations& o) { o.ids[5] = 3; }},
        {"more unknowns than equations", [](observations& o) { o.ids[5] = 23; }},
        {"an enormous id", [](observations& o) { o.ids[5] = 0xffffffff; }},
        {"an id whose unknowns wrap to 3", [](observations& o) { o.ids[5] = 0x7fffffff; }},
        {"not a number", [](observations& o) { o.stage[3].z() = nan; }},
        {"an infinite place", [](observations& o) { o.stage[0].y() = infinity; }},
    };
    for (auto const& k : cases) {
        observations o = observe(random, lens, 2, 0);
        ASSERT_FALSE(o.fit().is_trivial());
        k.spoil(o);
        telecentricity_corrector const c = o.fit();
        EXPECT_TRUE(c.is_trivial() && c.tilt_x == 0 && c.tilt_x_error == 0) << k.name;
    }
    // Of one artefact three observations are enough, and two are not.
    observations o = observe(random, lens, 1, 0);
    for (std::size_t n : {3u, 2u}) {
        for (auto* list : {&o.image, &o.stage}) list->resize(n);
        EXPECT_EQ(o.fit_one_artefact().is_trivial(), n == 2);
    }
}

}  // namespace
}  // namespace tvmath
