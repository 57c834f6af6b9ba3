#pragma once

#include <functional>
#include <utility>

#include "tvmath/export.h"
#include "tvmath/storage.h"

inline namespace tvmath {
namespace idioms {

/// Strong handle, one pointer wide, on a `T` that derives from `storage`; may be null.
///
/// While the pointer is not null the handle holds one count of the pointee. Copying is one locked increment;
/// moving takes no count and leaves the source null. Dereferencing a null handle raises `pointer_exception`.
/// Comparisons are of identity, by address.
template <class T>
class ref {
public:
    ref() = default;
    explicit ref(T* fresh) : pointee_(fresh) {
        if (pointee_) pointee_->take_count();
    }
    ref(ref const& other) : ref(other.pointee_) {}
    ref(ref&& other) noexcept : pointee_(std::exchange(other.pointee_, nullptr)) {}
    ~ref() {
        if (pointee_) pointee_->release_count();
    }

    // The source's count is taken before the old pointee is released, so self-assignment is safe.
    ref& operator=(ref const& other) {
        ref copy(other);
        swap(*this, copy);
        return *this;
    }
    ref& operator=(ref&& other) noexcept {
        ref taken(std::move(other));
        swap(*this, taken);
        return *this;
    }

    T* operator->() const { return &element(); }
    T& operator*() const { return element(); }
    /// The pointee; raises `pointer_exception` on a null handle.
    T& element() const {
        if (!pointee_) raise_null();
        return *pointee_;
    }
    /// The raw pointer, null allowed; never raises.
    T* address() const noexcept { return pointee_; }

    bool operator!() const noexcept { return !pointee_; }
    bool operator==(ref const& other) const noexcept { return pointee_ == other.pointee_; }
    bool operator!=(ref const& other) const noexcept { return pointee_ != other.pointee_; }
    // std::less, because plain < of unrelated pointers is unspecified.
    bool operator<(ref const& other) const noexcept { return std::less<T*>()(pointee_, other.pointee_); }
    bool operator<=(ref const& other) const noexcept { return !(other < *this); }
    bool operator>(ref const& other) const noexcept { return other < *this; }
    bool operator>=(ref const& other) const noexcept { return !(*this < other); }

    /// Exchanges the pointers; no count changes.
    static void swap(ref& a, ref& b) noexcept { std::swap(a.pointee_, b.pointee_); }

    static constexpr bool optimize_ctor() { return true; }       ///< All-zero bits are the null handle.
    static constexpr bool optimize_copyctor() { return false; }  ///< A copy takes a count.
    static constexpr bool optimize_dtor() { return false; }      ///< Destruction gives a count back.

private:
    [[noreturn]] static void raise_null() { throw pointer_exception(); }

    T* pointee_ = nullptr;
};

}  // namespace idioms
}  // namespace tvmath
