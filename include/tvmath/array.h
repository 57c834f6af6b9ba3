#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "tvmath/ref.h"
#include "tvmath/storage.h"

inline namespace tvmath {
namespace idioms {

// Element traits. A class states its own as static member functions; numbers, enumerations and pointers are
// plain bits; any other type is treated element by element.
template <class T>
constexpr bool is_plain_bits = std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_pointer_v<T>;

/// True when a new element is the all-zero bit pattern.
template <class T>
constexpr bool optimize_ctor_of() {
    if constexpr (requires { T::optimize_ctor(); }) return T::optimize_ctor();
    return is_plain_bits<T>;
}

/// True when elements are copied as bytes.
template <class T>
constexpr bool optimize_copyctor_of() {
    if constexpr (requires { T::optimize_copyctor(); }) return T::optimize_copyctor();
    return is_plain_bits<T>;
}

/// True when elements need no destruction.
template <class T>
constexpr bool optimize_dtor_of() {
    if constexpr (requires { T::optimize_dtor(); }) return T::optimize_dtor();
    return is_plain_bits<T>;
}

/// Counted block of `size` elements, which lie directly behind the fixed fields in the same allocation.
template <class T>
class array_storage : public container {
public:
    T* begin() noexcept { return reinterpret_cast<T*>(reinterpret_cast<std::byte*>(this) + fixed_part()); }
    T* end() noexcept { return begin() + size; }

    /// Allocates room for `n` elements, none of them constructed, and lets `fill(destination, built)`
    /// construct them, counting in `built`. When a construction throws, those already built are destroyed and
    /// the block is freed. Null when there is no memory.
    template <class filler>
    static array_storage* make(std::uint32_t n, filler fill) {
        static_assert(alignof(T) <= alignof(std::max_align_t), "elements lie behind the fixed fields");
        void* const block = ::operator new (fixed_part() + std::size_t{n} * sizeof(T), std::nothrow);
        if (!block) return nullptr;
        array_storage* const fresh = ::new (block) array_storage(n);
        std::uint32_t built = 0;
        try {
            fill(fresh->begin(), built);
        } catch (...) {
            std::destroy_n(fresh->begin(), built);
            fresh->container::~container();
            ::operator delete(block);
            throw;
        }
        return fresh;
    }

    ~array_storage() override {
        if constexpr (!optimize_dtor_of<T>()) std::destroy_n(begin(), size);
    }

private:
    explicit array_storage(std::uint32_t n) : container(n) {}

    static constexpr std::size_t fixed_part() {
        return (sizeof(container) + alignof(T) - 1) / alignof(T) * alignof(T);
    }
};

// Steps that construct elements at `to + built` and count them.
template <class T>
void construct_new(T* to, std::uint32_t& built, std::uint32_t n) {
    if constexpr (optimize_ctor_of<T>()) {
        if (n > 0) std::memset(static_cast<void*>(to + built), 0, std::size_t{n} * sizeof(T));
        built += n;
    } else {
        for (std::uint32_t i = 0; i < n; ++i, ++built) ::new (static_cast<void*>(to + built)) T();
    }
}

template <class T>
void construct_equal(T* to, std::uint32_t& built, std::uint32_t n, T const& value) {
    for (std::uint32_t i = 0; i < n; ++i, ++built) ::new (static_cast<void*>(to + built)) T(value);
}

template <class T>
void construct_copies(T* to, std::uint32_t& built, std::uint32_t n, T const* source,
                      std::ptrdiff_t stride = 1) {
    if constexpr (optimize_copyctor_of<T>()) {
        if (stride == 1) {
            if (n > 0) {
                std::memcpy(static_cast<void*>(to + built), static_cast<void const*>(source),
                            std::size_t{n} * sizeof(T));
            }
            built += n;
            return;
        }
    }
    for (std::uint32_t i = 0; i < n; ++i, ++built) {
        ::new (static_cast<void*>(to + built)) T(source[static_cast<std::ptrdiff_t>(i) * stride]);
    }
}

/// Copy-on-write list: a handle, one pointer wide, on a counted block of elements.
///
/// Copying the list is one locked increment; the elements are duplicated when a writer (`operator()`,
/// `lazycopy_begin`, `lazycopy_end`) reaches a shared block. Separate handles on one block may be used from
/// separate threads, also for writing. The empty list is a real block of size 0, never a null handle; only
/// a list that was moved from is null, and any use but assignment raises `pointer_exception`, as does a list
/// for which there was no memory.
///
/// No operation tests an index. `operator==` is `ref`'s: a test of identity, not of contents.
template <class T>
class array : public ref<array_storage<T>> {
    using base = ref<array_storage<T>>;

public:
    array() : array(0u) {}
    /// `n` new elements: zeros, or default-constructed one by one, by the element's traits.
    explicit array(unsigned int n) : base(made(n, [n](T* to, auto& built) { construct_new(to, built, n); })) {
        base::element();
    }
    /// `n` copies of `value`.
    array(unsigned int n, T const& value)
        : base(made(n, [&](T* to, auto& built) { construct_equal(to, built, n, value); })) {
        base::element();
    }
    /// `n` elements copied from `source`. A template, so that `array(3, 0)` is three zeros and no null
    /// pointer.
    template <std::same_as<T> S>
    array(unsigned int n, S const* source)
        : base(made(n, [&](T* to, auto& built) { construct_copies(to, built, n, source); })) {
        base::element();
    }
    /// `n` elements, element i copied from `source[i * stride]`; `stride` may be negative.
    template <std::same_as<T> S>
    array(unsigned int n, S const* source, int stride)
        : base(made(n, [&](T* to, auto& built) { construct_copies(to, built, n, source, stride); })) {
        base::element();
    }

    T const& operator[](unsigned int i) const { return begin()[i]; }
    /// A writable element of this handle's own block; a loop takes `lazycopy_begin` once instead.
    T& operator()(unsigned int i) { return lazycopy_begin()[i]; }

    T const* begin() const { return base::element().begin(); }
    T const* end() const { return base::element().end(); }
    T* lazycopy_begin() {
        lazycopy();
        return base::element().begin();
    }
    T* lazycopy_end() {
        lazycopy();
        return base::element().end();
    }

    /// Number of elements; there is never spare room.
    unsigned int capacity() const { return base::element().size; }
    /// True for the empty list.
    bool is_trivial() const { return capacity() == 0; }

    /// Changes the size; new elements are as those of `array(n)`. The present size leaves the block alone,
    /// even when it is shared; any other size makes a new block.
    void redim(unsigned int n) {
        if (n != capacity()) *this = array(n, std::min(n, capacity()), begin());
    }
    /// The same, new elements being copies of `value`.
    void redim(unsigned int n, T const& value) {
        if (n != capacity()) *this = array(n, std::min(n, capacity()), begin(), value);
    }
    /// Appends the elements of `other`, at the cost of a full copy. An empty `other` changes nothing.
    void append(array const& other) {
        if (!other.is_trivial()) *this = array(capacity(), begin(), other.capacity(), other.begin());
    }
    /// The list from its last element to its first; shares this block when there are fewer than 2 elements.
    array reverse_copy() const {
        unsigned int const n = capacity();
        return n < 2 ? *this : array(n, begin() + (n - 1), -1);
    }
    void reverse_self() { *this = reverse_copy(); }

    static void swap(array& a, array& b) noexcept { base::swap(a, b); }
    static constexpr bool optimize_ctor() {
        return false;
    }  ///< Every new list needs an empty block of its own.

protected:
    /// The copy-on-write step: afterwards the block belongs to this handle alone.
    void lazycopy() {
        // Acquire, so that reads through a handle that another thread has just released stand before our
        // writes.
        if (base::element().reference_count.load(std::memory_order_acquire) <= 1) return;
        *this = array(capacity(), begin());
    }

private:
    template <class filler>
    static array_storage<T>* made(unsigned int n, filler fill) {
        return array_storage<T>::make(n, fill);
    }
    // The first m elements from source, the rest new.
    array(unsigned int n, unsigned int m, T const* source)
        : base(made(n, [&](T* to, auto& built) {
              construct_copies(to, built, m, source);
              construct_new(to, built, n - m);
          })) {
        base::element();
    }
    // The first m elements from source, the rest equal to value.
    array(unsigned int n, unsigned int m, T const* source, T const& value)
        : base(made(n, [&](T* to, auto& built) {
              construct_copies(to, built, m, source);
              construct_equal(to, built, n - m, value);
          })) {
        base::element();
    }
    // Concatenation.
    array(unsigned int n, T const* a, unsigned int m, T const* b)
        : base(made(n + m, [&](T* to, auto& built) {
              construct_copies(to, built, n, a);
              construct_copies(to, built, m, b);
          })) {
        base::element();
    }
};

}  // namespace idioms
}  // namespace tvmath
