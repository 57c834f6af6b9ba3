#pragma once

#include <string>

inline namespace tvmath {

/// A picture of a sample of every construction with all its answers, as the bytes of that suffix; empty when
/// it cannot be made.
std::string construct_sheet(std::string const& suffix);

}  // namespace tvmath
