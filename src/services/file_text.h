#pragma once

#include <cstdint>

#include "platform/file_access.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

// Text files are UTF-16 little endian with the mark FF FE in front, on every machine.

/// The name of a file that is given as text.
file_path to_file_path(wide_string_view name);
wide_string to_text(file_path const& name);

/// Reads two bytes; true if they are the mark.
bool read_mark(open_file& file);
bool write_mark(open_file& file);

/// Reads at most `units` and returns how many there were. A last odd byte is a unit whose high half is 0.
std::uint32_t read_units(open_file& file, wide_char* to, std::uint32_t units);
bool write_units(open_file& file, wide_string_view text);

}  // namespace tvmath
