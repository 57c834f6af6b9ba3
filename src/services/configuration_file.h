#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/file_access.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// The contents of a settings file. A damaged one has no text.
struct settings_text {
    std::unique_ptr<wide_char[]> text;  ///< With a terminator.
    std::uint32_t length = 0;           ///< Without it.
    bool is_corrupt = false;
};

/// Reads a file as it is. False when it is not open or cannot be read.
bool read_settings(open_file& file, settings_text& found);

/// What there is of a backup: the text of a good one, no text, of length 0, without one. A damaged one is
/// deleted.
settings_text read_backup(wide_string const& name);

/// Writes `text` to the file `temporary`, and then puts that in the place of `target`, whose old contents
/// stay as `kept`, or go if that is empty. False, with `target` as it was and `reason` in the system's words,
/// if that fails.
bool write_settings(wide_string const& temporary, wide_string_view text, wide_string const& target,
                    wide_string const& kept, std::string& reason);

/// Logs why a file could not be opened or written.
void log_reason(wide_string const& name, std::string const& reason);

}  // namespace tvmath
