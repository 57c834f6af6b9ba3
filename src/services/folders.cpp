#include "tvmath/folders.h"

#include <algorithm>
#include <mutex>
#include <optional>

#include "platform/folders.h"
#include "services/file_text.h"
#include "services/no_exceptions.h"
#include "tvmath/configuration.h"

inline namespace tvmath {

namespace {

bool is_separator(wide_char unit) {
    return unit == '/' || unit == '\\';
}

// Either slash is read, the platform's is written.
wide_string with_own_separators(wide_string name) {
    std::replace_if(name.begin(), name.end(), is_separator, static_cast<wide_char>(folder_separator));
    return name;
}

wide_string with_separator_at_end(wide_string folder) {
    if (!folder.empty() && !is_separator(folder.back())) folder += static_cast<wide_char>(folder_separator);
    return folder;
}

wide_string read_setting(Configuration& settings, char16_t const* section, char16_t const* key) {
    wide_string value;
    if (settings.select_section(section, false)) settings.get_value(key, value);
    return value;
}

wide_string read_config_override() {
    FolderConfiguration settings;
    wide_string const folder = with_own_separators(read_setting(settings, u"Setup", u"ConfigFolder"));
    std::error_code error;
    if (folder.empty() || !std::filesystem::is_directory(to_file_path(folder), error)) return {};
    return with_separator_at_end(folder);
}

// Read without the guard: a damaged file is logged, and the log asks for this folder in turn.
wide_string config_override() {
    static auto& guard = *new std::mutex;
    static auto& kept = *new std::optional<wide_string>;
    {
        std::scoped_lock const hold(guard);
        if (kept) return *kept;
    }
    wide_string const folder = read_config_override();
    std::scoped_lock const hold(guard);
    if (!kept) kept = folder;
    return *kept;
}

}  // namespace

wide_string get_executable_folder() {
    return without_exceptions(wide_string(),
                              [] { return with_separator_at_end(to_text(executable_folder())); });
}

wide_string get_common_data_folder(bool create) {
    return without_exceptions(wide_string(), [&] {
        file_path const folder = common_data_base() / "Kelvane Corporation" / "Torvex for Windows";
        if (create && !create_folder_for_all(folder)) return wide_string();
        return with_separator_at_end(to_text(folder));
    });
}

wide_string get_config_folder() {
    return without_exceptions(wide_string(), [] {
        wide_string const folder = config_override();
        return folder.empty() ? get_common_data_folder(true) : folder;
    });
}

wide_string get_machine_subdirectory() {
    return without_exceptions(wide_string(), [] {
        HardwareConfiguration settings;
        wide_string name = with_own_separators(read_setting(settings, u"Machine", u"SubDirectory"));
        while (!name.empty() && is_separator(name.back())) name.pop_back();
        return name;
    });
}

wide_string get_machine_folder() {
    return without_exceptions(wide_string(), [] {
        wide_string const folder = get_config_folder();
        return folder.empty() ? folder : with_separator_at_end(folder + get_machine_subdirectory());
    });
}

}  // namespace tvmath
