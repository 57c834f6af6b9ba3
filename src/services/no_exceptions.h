#pragma once

#include <utility>

inline namespace tvmath {

/// What `work` returns, or `failed` when it raises: no exception leaves the services, not even for want of
/// memory.
template <class result, class function>
result without_exceptions(result failed, function&& work) noexcept {
    try {
        return std::forward<function>(work)();
    } catch (...) {
        return failed;
    }
}

}  // namespace tvmath
