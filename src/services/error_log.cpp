#include "tvmath/error_log.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>

#include "platform/file_access.h"
#include "platform/local_time.h"
#include "platform/named_lock.h"
#include "platform/thread_id.h"
#include "services/file_text.h"
#include "services/log_message.h"
#include "services/no_exceptions.h"
#include "tvmath/folders.h"
#include "tvmath/version.h"

inline namespace tvmath {

namespace {

constexpr std::uint64_t rollover_size = 512001;

// Of the process. Everything but `has_name` belongs to the holder of the lock.
struct log_state {
    std::atomic<bool> has_name = false;
    file_path name;
    std::unique_ptr<named_lock> lock;  // of the entry that is being written
    std::optional<open_file> file;
    std::uint64_t entry_start = 0;
};

// Never destroyed: entries may be made until the process ends.
log_state& state() {
    static log_state& only = *new log_state;
    return only;
}

thread_local bool inside_entry = false;

template <class... arguments>
wide_string formatted(char16_t const* format, arguments const&... values) {
    log_argument const list[] = {log_argument(values)...};
    return format_log_message(as_wide(format), list, sizeof...(values));
}

wide_string time_text() {
    local_time now;
    if (!get_local_time(now)) return {};
    wide_string const text = formatted(u"%.2d-%.2d-%.2dT%.2d:%.2d:%.2d", now.year, now.month, now.day,
                                       now.hour, now.minute, now.second);
    if (now.utc_offset == 0) return text + u"Z"_w;
    int const size = std::abs(now.utc_offset);
    return text + formatted(u"%c%.2d:%.2d", now.utc_offset < 0 ? '-' : '+', size / 60, size % 60);
}

wide_string position_text(int const* numbers, unsigned int count) {
    constexpr std::size_t longest = 249;
    wide_string text;
    for (unsigned int i = 0; numbers && i < count && text.size() < longest; ++i) {
        text += formatted(i == 0 ? u"%d" : u",%d", numbers[i]);
    }
    text.resize(std::min(text.size(), longest));
    return text;
}

file_path log_folder() {
    wide_string const folder = get_config_folder();
    return to_file_path(folder.empty() ? get_executable_folder() : folder);
}

// Once per process, so a log is cut when a process starts and never under the hands of one that runs.
void name_log(file_path const& folder) {
    if (state().has_name || folder.empty()) return;
    state().name = folder / "error.trl";
    std::error_code error;
    if (std::filesystem::file_size(state().name, error) >= rollover_size && !error) {
        std::filesystem::rename(state().name, folder / "error.bak", error);
    }
    state().has_name = true;
}

bool open_log() {
    if (!state().has_name) return false;
    std::optional<open_file>& file = state().file;
    file.emplace(state().name, file_use::append);
    if (!file->is_open()) return false;
    state().entry_start = file->size();
    return state().entry_start != 0 || write_mark(*file);
}

// Half an entry says nothing and would run into the next one.
bool write_or_take_back(wide_string const& text) {
    if (write_units(*state().file, text)) return true;
    state().file->cut_to(state().entry_start);
    return false;
}

void end_entry() {
    state().file.reset();
    std::unique_ptr<named_lock> const lock = std::move(state().lock);
    lock->release();
}

bool begin_entry(char const* source_file, int const* numbers, unsigned int count) {
    constexpr char const* lock_name = "_Torvex_ErrorLog_Mutex_";
    // The mapping stays for the life of the process; handles on it cost little.
    static named_lock const* const keeper = named_lock::open(lock_name).release();
    (void)keeper;

    // Before the lock is taken: it reads a settings file, whose holder may be waiting to log.
    file_path const folder = state().has_name ? file_path() : log_folder();
    std::unique_ptr<named_lock> lock = named_lock::open(lock_name);
    if (!lock || !lock->acquire()) return false;
    state().lock = std::move(lock);

    bool const begun = without_exceptions(false, [&] {
        name_log(folder);
        return open_log() &&
               write_or_take_back(formatted(u"%s, v%s, (0x%X), %hs(%s): ", time_text(), to_wide(version()),
                                            current_thread_id(), source_file, position_text(numbers, count)));
    });
    if (!begun) end_entry();
    return begun;
}

}  // namespace

log_function error_log_entry(char const* source_file, int const* numbers, unsigned int count) {
    if (inside_entry) return log_function(false);
    inside_entry = true;
    bool const begun = without_exceptions(false, [&] { return begin_entry(source_file, numbers, count); });
    if (!begun) inside_entry = false;
    return log_function(begun);
}

void log_function::write(wide_string_view wide, std::u16string_view literal, log_argument const* values,
                         std::size_t count) noexcept {
    without_exceptions(false, [&] {
        return write_or_take_back(
            format_log_message(literal.empty() ? wide : as_wide(literal), values, count));
    });
    close();
}

void log_function::close() noexcept {
    open_ = false;
    end_entry();
    inside_entry = false;
}

log_function::~log_function() {
    if (open_) close();
}

}  // namespace tvmath
