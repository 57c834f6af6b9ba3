#include <algorithm>
#include <atomic>
#include <mutex>

#include "platform/access_rights.h"
#include "platform/folders.h"
#include "services/file_text.h"
#include "services/folders_catalogue.h"
#include "services/no_exceptions.h"
#include "services/section_lines.h"
#include "services/text_case.h"
#include "tvmath/configuration.h"
#include "tvmath/error_log.h"
#include "tvmath/folders.h"

inline namespace tvmath {

namespace {

namespace fs = std::filesystem;

// The file of that name, however its letters are cased: old installations come from systems without case.
file_path find_file(file_path const& folder, std::string const& name) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(folder / name, error))) return folder / name;
    file_path found;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        if (!equal_ignoring_case(at->path().filename().string(), name)) continue;
        if (found.empty() || at->path() < found) found = at->path();
    }
    return found;
}

// The log goes on with its history, so that arrives under the names that the log itself uses.
std::string name_on_arrival(std::string const& name) {
    if (name == "Error.trl") return "error.trl";
    if (name == "Error.bak") return "error.bak";
    return name;
}

// The rights that a new file gets in the folder. Found by making one: no other way takes in everything.
bool collect_rights(file_path const& folder, access_rights& rights) {
    file_path const name = folder / "_tmp.ini";
    open_file scratch(name, file_use::write);
    if (!scratch.is_open()) return false;
    write_units(scratch, u"Temp"_w);
    scratch.close();
    bool const collected = read_access_rights(name, rights) == 0;
    std::error_code ignored;
    fs::remove(name, ignored);
    return collected;
}

bool move_with_rights(file_path const& from, file_path const& to, access_rights const* rights) {
    if (!move_file(from, to)) {
        // Another process that starts at the same time may have been faster.
        std::error_code error;
        return !fs::exists(from, error) && fs::exists(to, error);
    }
    int const reason = rights ? set_access_rights(to, *rights) : 0;
    if (reason == 0) return true;
    error_log_entry("Folders", __LINE__)(u"First SetNamedSecurityInfo call failed: %u\n", reason);
    return false;
}

bool move_listed(std::vector<std::string> const& names, file_path const& from, file_path const& to,
                 access_rights const* rights) {
    for (std::string const& name : names) {
        file_path const source = find_file(from, name);
        if (source.empty() || !find_file(to, name).empty()) continue;
        if (move_with_rights(source, to / name_on_arrival(name), rights)) continue;
        error_log_entry("Folders", __LINE__)(u"\t%s failed to move properly\r\n", to_text(source));
        return false;
    }
    return true;
}

// The first name of a list is what tells that its move has been done. It is also the first to arrive, so a
// move that was cut short leaves a mark, by which the next start knows that there is a rest.
bool move_once(std::vector<std::string> const& names, wide_string const& from, wide_string const& to) {
    file_path const target = to_file_path(to), unfinished = target / (names.front() + ".moving");
    std::error_code error;
    if (!find_file(target, names.front()).empty() && !fs::exists(unfinished, error)) return true;

    access_rights rights;
    bool const has_rights = collect_rights(target, rights);
    if (!has_rights) {
        error_log_entry("Folders", __LINE__)(
            u"Could not collect default security from %s, continue with empty security\r\n", to);
    }
    open_file(unfinished, file_use::write).close();
    bool const moved = move_listed(names, to_file_path(from), target, has_rights ? &rights : nullptr);
    if (moved) fs::remove(unfinished, error);
    return moved;
}

// The table of controller kinds, which the installation supplies in the section "Controller Kinds" of
// "Folders.ini": a line for each, fragment=subfolder.
class controller_kinds : public FolderConfiguration {
public:
    // The subfolder of the first fragment that occurs in the model; empty if none does.
    wide_string subfolder(wide_string const& model) {
        wide_string found;
        if (model.empty() || !select_section(u"Controller Kinds", false)) return found;
        visit_section_lines(section, text.get() + length, [&](wide_string_view line) {
            std::size_t const equals = line.find('=');
            if (equals == 0 || equals == wide_npos || model.find(line.substr(0, equals)) == wide_npos)
                return false;
            found = line.substr(equals + 1);
            return true;
        });
        return found;
    }
};

// Takes over a value that the new file lacks; the value if it was.
wide_string hand_over(Configuration& from, Configuration& to, char16_t const* key) {
    wide_string value;
    if (to.get_value(key, value) && !value.empty()) return {};
    if (!from.get_value(key, value) || value.empty()) return {};
    to.set_value(key, value.c_str());
    from.remove_value(key);
    return value;
}

// What old installations had in one file is divided between hardware and machine.
bool divide_machine_settings() {
    HardwareConfiguration hardware;
    MachineConfiguration machine(true);
    if (!hardware.select_section(u"Setup", true) || !machine.select_section(u"Setup", true)) return false;
    // A model that stands in the new file already is that of an installation at work without a subfolder.
    wide_string const model = hand_over(machine, hardware, u"Machine");
    hand_over(machine, hardware, u"Frame Grabber");
    hand_over(machine, hardware, u"Camera");

    if (!hardware.select_section(u"Machine", true)) return false;
    wide_string subfolder;
    hardware.get_value(u"SubDirectory", subfolder);
    if (subfolder.empty()) subfolder = controller_kinds().subfolder(model);
    if (!subfolder.empty()) hardware.set_value(u"SubDirectory", subfolder.c_str());
    return true;
}

bool move_to_common_folder() {
    wide_string const target = get_common_data_folder(true);
    return !target.empty() && move_once(common_files_of_old_installation(), get_executable_folder(), target);
}

bool move_to_machine_folder() {
    if (get_machine_subdirectory().empty() && !divide_machine_settings()) return false;
    wide_string const target = get_machine_folder();
    if (target.empty()) return false;
    if (target != get_common_data_folder(false)) create_folder_for_all(to_file_path(target));
    return move_once(machine_files_of_old_installation(), get_executable_folder(), target);
}

bool move_all() {
    if (get_config_folder() != get_common_data_folder(true)) return true;
    return move_to_common_folder() && move_to_machine_folder();
}

}  // namespace

bool ensure_settings_moved() {
    static std::atomic<bool> done = false;
    if (done) return true;
    static auto& guard = *new std::recursive_mutex;
    static bool running = false;
    std::scoped_lock const hold(guard);
    // The move itself opens settings files that ask for it.
    if (done || running) return done;
    running = true;
    done = without_exceptions(false, move_all);
    running = false;
    return done;
}

}  // namespace tvmath
