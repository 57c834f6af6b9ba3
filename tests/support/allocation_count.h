#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

// Replaces the global operator new by one that counts: for a single source of an executable.

inline std::atomic<long> allocations = 0;

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
