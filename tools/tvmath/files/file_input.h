#pragma once

#include <cstddef>
#include <string>

inline namespace tvmath {

/// Reads all of the file of that name, or of standard input when `name` is "-", up to `largest` bytes. False,
/// with the reason and `bytes` as they were, when it cannot be read, is empty or, as `too_large` says,
/// larger: an endless pipe ends there.
bool read_all(std::string const& name, std::size_t largest, char const* too_large, std::string& bytes,
              std::string& reason);

}  // namespace tvmath
