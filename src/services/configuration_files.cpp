#include "services/file_text.h"
#include "services/no_exceptions.h"
#include "tvmath/configuration.h"
#include "tvmath/folders.h"

inline namespace tvmath {

namespace {

// The empty name, which every operation refuses, where the folder cannot be had: a bare name would be a
// file in whatever folder the process happens to stand in.
wide_string file_in(wide_string const& folder, char16_t const* name) {
    return folder.empty() ? wide_string() : folder + as_wide(name);
}

bool exists(wide_string const& name) {
    std::error_code ignored;
    return !name.empty() && std::filesystem::exists(to_file_path(name), ignored);
}

wide_string file_of_folder(wide_string (*folder)(), char16_t const* name) {
    return without_exceptions(wide_string(), [&] { return file_in(folder(), name); });
}

// `folder` is a function, since the move may change its answer.
wide_string settled_file(wide_string (*folder)(), char16_t const* name, bool search) {
    ensure_settings_moved();
    return without_exceptions(wide_string(), [&] {
        wide_string const own = file_in(folder(), name);
        if (!search || exists(own)) return own;
        wide_string const old = file_in(get_executable_folder(), name);
        return exists(old) ? old : own;
    });
}

}  // namespace

FolderConfiguration::FolderConfiguration()
    : Configuration(file_of_folder(get_executable_folder, u"Folders.ini"), false) {}

HardwareConfiguration::HardwareConfiguration()
    : Configuration(file_of_folder(get_config_folder, u"Hardware.ini"), true) {}

TorvexConfig::TorvexConfig(bool search)
    : Configuration(settled_file(get_config_folder, u"Torvex.ini", search), true) {}

MachineConfiguration::MachineConfiguration(bool search)
    : Configuration(settled_file(get_machine_folder, u"Machine.ini", search), true) {}

}  // namespace tvmath
