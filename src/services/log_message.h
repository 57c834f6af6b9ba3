#pragma once

#include <cstddef>

#include "tvmath/log_format.h"

inline namespace tvmath {

/// The text of a printf-style format and its arguments. An argument that does not fit its conversion is
/// written in the form of its own type; a conversion that is none, or has no argument, stands as it is.
wide_string format_log_message(wide_string_view format, log_argument const* values, std::size_t count);

}  // namespace tvmath
