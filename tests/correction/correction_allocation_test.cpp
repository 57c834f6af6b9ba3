#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "support/seeded_random.h"
#include "tvmath/screen_corrector.h"

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

}  // namespace
}  // namespace tvmath
