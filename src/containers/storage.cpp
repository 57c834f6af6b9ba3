#include "tvmath/storage.h"

#include <new>

inline namespace tvmath {

char const* pointer_exception::what() const noexcept {
    return "pointer";
}

char const* storage_exception::what() const noexcept {
    return "storage";
}

namespace idioms {

storage::~storage() = default;

void storage::on_zero_reference_count() {
    if (reference_count.load() < 0) raise_corrupt_count();
    delete this;
}

void storage::raise_corrupt_count() {
    throw storage_exception();
}

container::~container() = default;

void container::on_zero_reference_count() {
    void* const block = this;
    this->~container();
    ::operator delete(block);
}

}  // namespace idioms
}  // namespace tvmath
