#pragma once

#include <atomic>
#include <cstdint>
#include <exception>

#include "tvmath/export.h"

inline namespace tvmath {

/// Raised when a null handle is dereferenced; `what()` is "pointer".
class TVMATH_API pointer_exception : public std::exception {
public:
    char const* what() const noexcept override;
};

/// Raised when a reference count is found corrupt; `what()` is "storage".
class TVMATH_API storage_exception : public std::exception {
public:
    char const* what() const noexcept override;
};

namespace idioms {

template <class T>
class ref;

/// Root of every counted block.
///
/// A new block has the count 0; the first handle takes the count 1, and the block dies by
/// `on_zero_reference_count` on the decrement that leaves 0 or less. Only the count is thread-safe.
class TVMATH_API storage {
public:
    storage() = default;
    /// A copy is another block: it starts its own count.
    storage(storage const&) noexcept {}
    storage& operator=(storage const&) noexcept { return *this; }
    virtual ~storage();

    /// Takes a count. Raises `storage_exception` when the new count is below 1: the counter ran over, or the
    /// block was already released.
    void take_count() {
        if (reference_count.fetch_add(1) < 0) raise_corrupt_count();
    }

    /// Gives a count back; the last one ends the block.
    void release_count() {
        if (reference_count.fetch_sub(1) <= 1) on_zero_reference_count();
    }

    /// Number of handles on this block. Locked steps alone change it.
    std::atomic<std::int32_t> reference_count{0};

protected:
    /// Deletes the block; raises `storage_exception` when the count is negative.
    virtual void on_zero_reference_count();

private:
    [[noreturn]] static void raise_corrupt_count();
};

/// A block whose elements lie behind its fixed fields in the same allocation.
class TVMATH_API container : public storage {
public:
    explicit container(std::uint32_t n) : size(n) {}
    ~container() override;

    std::uint32_t const size;  ///< Number of elements behind the fixed fields.

protected:
    /// Destroys the elements, then frees the block with plain `operator delete`, because it was not made by a
    /// `new` expression of its own type.
    void on_zero_reference_count() override;
};

}  // namespace idioms
}  // namespace tvmath
