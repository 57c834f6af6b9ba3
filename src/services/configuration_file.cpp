#include "services/configuration_file.h"

#include <limits>

#include "platform/file_replace.h"
#include "services/file_text.h"
#include "tvmath/error_log.h"

inline namespace tvmath {

bool read_settings(open_file& file, settings_text& found) {
    found = {};
    if (!file.is_open()) return false;
    std::uint64_t const bytes = file.size();
    std::uint64_t units = bytes / 2 + bytes % 2;
    if (units >= std::numeric_limits<std::uint32_t>::max()) return false;
    if (units != 0) {
        --units;
        found.is_corrupt = !read_mark(file);
    }
    // Not before the mark is known: a damaged file may claim any size.
    if (!found.is_corrupt) {
        found.text = std::make_unique<wide_char[]>(units + 1);
        found.length = read_units(file, found.text.get(), static_cast<std::uint32_t>(units));
        // A power failure can leave a block of zeros.
        found.is_corrupt = found.length != 0 && found.text[0] == 0;
    }
    if (found.is_corrupt) {
        found.text.reset();
        found.length = 0;
    }
    return file.failure().empty();
}

settings_text read_backup(wide_string const& name) {
    settings_text found;
    open_file file(to_file_path(name), file_use::read);
    if (file.is_open()) {
        error_log_entry("Configuration", __LINE__)(u"Using %s\r\n", name);
        read_settings(file, found);
        file.close();
        if (found.is_corrupt) {
            error_log_entry("Configuration", __LINE__)(u"%s is corrupt and will be deleted\r\n", name);
            std::error_code ignored;
            std::filesystem::remove(to_file_path(name), ignored);
        }
    }
    if (!found.text) found = {std::make_unique<wide_char[]>(1), 0, false};
    return found;
}

bool write_settings(wide_string const& temporary, wide_string_view text, wide_string const& target,
                    wide_string const& kept, std::string& reason) {
    file_path const fresh = to_file_path(temporary);
    open_file file(fresh, file_use::write);
    if (file.is_open()) {
        bool const written = (text.empty() || write_mark(file)) && write_units(file, text) &&
                             file.flush_to_disk() && file.close();
        if (written && replace_file(fresh, to_file_path(target), to_file_path(kept))) return true;
        std::error_code ignored;
        std::filesystem::remove(fresh, ignored);
    }
    reason = file.failure();
    return false;
}

void log_reason(wide_string const& name, std::string const& reason) {
    if (!reason.empty()) error_log_entry("Configuration", __LINE__)(u"%s: %hs\r\n", name, reason);
}

}  // namespace tvmath
