#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>

#include "tvmath/export.h"
#include "tvmath/log_format.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// The second half of a log entry: takes the message, and closes the entry.
///
/// It holds the log against every other thread and process, so it is called at once, in the expression that
/// made it. The first message is the entry; a function that is never called closes the entry without one.
class TVMATH_API log_function {
public:
    log_function(log_function const&) = delete;
    log_function& operator=(log_function const&) = delete;
    ~log_function();

    /// Writes the message, which brings its own line end.
    template <class... arguments>
    void operator()(log_format<std::type_identity_t<arguments>...> format, arguments const&... values) {
        log_argument const list[] = {log_argument(values)..., log_argument()};
        if (open_) write(format.wide(), format.literal(), list, sizeof...(values));
    }

private:
    friend TVMATH_API log_function error_log_entry(char const* source_file, int const* numbers,
                                                   unsigned int count);
    explicit log_function(bool is_open) : open_(is_open) {}
    void write(wide_string_view wide, std::u16string_view literal, log_argument const* values,
               std::size_t count) noexcept;
    void close() noexcept;

    bool open_;  // The entry has its prefix and waits for its message.
};

/// Begins an entry in the error log, which all processes share: "error.trl" in the configuration folder, or
/// beside the executable where there is none. Writes time, version, thread, source file and source position;
/// the function that comes back takes the message:
///
///     error_log_entry("scanner.cpp", 120)(u"%d of %d lines lost on %s\r\n", lost, all, name);
///
/// The log never causes a failure: whatever goes wrong loses the entry, and the function then ignores its
/// arguments. So does that of an entry that is begun while another one waits for its message on the same
/// thread. A log of more than 512000 bytes becomes "error.bak" when a process makes its first entry.
TVMATH_API log_function error_log_entry(char const* source_file, int const* numbers, unsigned int count);

/// The same with the position as single numbers, usually one line number.
template <std::convertible_to<int>... more>
log_function error_log_entry(char const* source_file, int line, more... further) {
    int const numbers[] = {line, static_cast<int>(further)...};
    return error_log_entry(source_file, numbers, 1 + sizeof...(further));
}

}  // namespace tvmath
