#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tvmath/flatness_corrector.h"
#include "tvmath/telecentricity_corrector.h"

namespace {
std::atomic<long> allocations = 0;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const p = std::malloc(size)) return p;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    ++allocations;
    return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* p) noexcept {
    std::free(p);
}
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

inline namespace tvmath {
namespace {

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
