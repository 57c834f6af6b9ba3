#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "tvmath/storage.h"

inline namespace tvmath {
namespace ctl {

template <class T>
class ref;

template <class T, class... arguments>
ref<T> make_ref(arguments&&... values);

/// Two-word counted handle (object, counter) for polymorphic objects that cross the interface.
///
/// The object need not derive from anything of ours. It lives in one block behind its counter, made by
/// `make_ref`. Copying is one locked increment; the empty handle has both words null, and dereferencing it
/// raises `pointer_exception`. A handle on a derived class converts to one on its base, whose destructor must
/// be virtual.
template <class T>
class ref {
public:
    ref() = default;
    ref(ref const& other) noexcept : object_(other.object_), count_(other.count_) { take(); }
    ref(ref&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)), count_(std::exchange(other.count_, nullptr)) {}
    template <std::derived_from<T> D>
    requires(!std::same_as<D, T>) ref(ref<D> const& other)
    noexcept : object_(other.object_), count_(other.count_) {
        static_assert(std::has_virtual_destructor_v<T>, "the object dies through this type");
        take();
    }
    ~ref() { release(); }

    ref& operator=(ref other) noexcept {
        std::swap(object_, other.object_);
        std::swap(count_, other.count_);
        return *this;
    }

    T* operator->() const { return &element(); }
    T& operator*() const { return element(); }
    /// The object; raises `pointer_exception` on the empty handle.
    T& element() const {
        if (!object_) throw pointer_exception();
        return *object_;
    }
    /// The raw pointer, null for the empty handle.
    T* address() const noexcept { return object_; }

    bool operator!() const noexcept { return !object_; }
    bool operator==(ref const& other) const noexcept { return object_ == other.object_; }

    /// Number of handles on the object; 0 for the empty handle.
    std::int32_t reference_count() const noexcept { return count_ ? count_->load() : 0; }

private:
    using counter = std::atomic<std::int32_t>;

    template <class U>
    friend class ref;
    template <class U, class... arguments>
    friend ref<U> make_ref(arguments&&... values);

    ref(T* object, counter* count) noexcept : object_(object), count_(count) { take(); }

    void take() noexcept {
        if (count_) count_->fetch_add(1);
    }
    void release() noexcept {
        if (!count_ || count_->fetch_sub(1) != 1) return;
        object_->~T();
        ::operator delete(static_cast<void*>(count_));  // the counter is the start of the block
    }

    T* object_ = nullptr;
    counter* count_ = nullptr;
};

/// Makes a `T` and its counter in one allocation and returns the first handle on it. Raises what the
/// constructor of `T` raises, and `std::bad_alloc`.
template <class T, class... arguments>
ref<T> make_ref(arguments&&... values) {
    struct block {
        typename ref<T>::counter count{0};
        alignas(T) unsigned char room[sizeof(T)];
    };
    static_assert(alignof(block) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    void* const memory = ::operator new(sizeof(block));
    block* const fresh = ::new (memory) block;
    try {
        T* const object = ::new (static_cast<void*>(fresh->room)) T(std::forward<arguments>(values)...);
        return ref<T>(object, &fresh->count);
    } catch (...) {
        ::operator delete(memory);
        throw;
    }
}

}  // namespace ctl
}  // namespace tvmath
