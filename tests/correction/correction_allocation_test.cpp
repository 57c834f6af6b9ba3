#include <gtest/gtest.h>

#include "support/allocation_count.h"
#include "support/seeded_random.h"
#include "tvmath/flatness_corrector.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/telecentricity_corrector.h"

inline namespace tvmath {
namespace {

TEST(ScreenCorrector, AllocatesNothingForPoints) {
    seeded_random random(88);
    for (unsigned int const order : {1u, 5u, 10u, 31u}) {
        screen_corrector c;
        c.order = order;
        c.coefficients = matrix(2, (order + 1) * (order + 2) / 2, 0.5);
        point p(true, 3, 4);
        curve path(1000, p);
        long const before = allocations;
        for (int i = 0; i < 100; ++i) p = point(true, random.uniform(-300, 300), 5) * c / c;
        path = std::move(path) * c;  // in its own block, which no other handle shares
        EXPECT_EQ(allocations, before) << order;
        path = path * c;
        EXPECT_GT(allocations, before) << "the counter must see the copy of a path that is shared";
    }
}

template <class action>
long allocations_of(action const& act) {
    long const before = allocations;
    for (int i = 0; i < 100; ++i) act(point(true, i, -i, 1));
    return allocations - before;
}

TEST(FlatnessCorrector, AllocatesNothingForAPoint) {
    flatness_corrector c;
    c.x_scale = c.y_scale = 1e-3;
    c.order = 31;
    c.coefficients = vector(32 * 33 / 2, 1.0);
    telecentricity_corrector lens;
    lens.residual = 0;
    flatness_row_corrector const row = c.get_focus_correction_at_y(1);
    volatile double sum = 0;
    EXPECT_EQ(allocations_of([&](point p) { sum = c.get_focus_correction(p); }), 0);
    EXPECT_EQ(allocations_of([&](point p) { sum = c.get_focus_correction_derivative(p).x(); }), 0);
    EXPECT_EQ(allocations_of([&](point p) { sum = row.get_focus_correction_at_x(p.x()); }), 0);
    EXPECT_EQ(allocations_of([&](point p) { sum = (p * c / c * lens / lens).z(); }), 0);
    // The empty list that a row starts with and the one that it gets.
    EXPECT_EQ(allocations_of([&](point p) { sum = c.get_focus_correction_at_y(p.y()).x_scale; }), 200);
}

}  // namespace
}  // namespace tvmath
