#include "tvmath/configuration.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "platform/named_lock.h"
#include "services/configuration_file.h"
#include "services/file_text.h"
#include "services/no_exceptions.h"
#include "services/section_lines.h"
#include "tvmath/error_log.h"

inline namespace tvmath {

namespace {

// A null pointer is the empty text.
wide_string_view view(wide_char const* text) {
    static constexpr wide_char none = 0;
    return text ? text : &none;
}

}  // namespace

Configuration::Configuration(wide_string name, bool has_backup)
    : file_name(std::move(name)), recoverable(has_backup) {}

Configuration::~Configuration() {
    without_exceptions(false, [&] {
        if (text && (dirty || (corrupt && recoverable))) store();
        return true;
    });
    text.reset();
    if (lock) lock->release();
}

bool Configuration::hold_lock() {
    if (lock) return true;
    std::string name = to_utf8(file_name);
    std::replace(name.begin(), name.end(), '\\', '/');
    lock = named_lock::open(name);
    if (lock && !lock->acquire()) lock.reset();
    return lock != nullptr;
}

bool Configuration::load(bool create) {
    if (file_name.empty() || corrupt || !hold_lock()) return false;
    open_file file(to_file_path(file_name), create ? file_use::read_or_create : file_use::read);
    settings_text found;
    if (!read_settings(file, found)) {
        if (create) {
            log_reason(file_name, file.failure());
            error_log_entry("Configuration", __LINE__)(u"Failed to open or create file for reading: %s\r\n",
                                                       file_name);
        }
        return false;
    }
    corrupt = found.is_corrupt;
    if (corrupt && !recoverable) {
        error_log_entry("Configuration", __LINE__)(u"%s is corrupt\r\n", file_name);
        return false;
    }
    if (corrupt) {
        error_log_entry("Configuration", __LINE__)(u"%s is corrupt and will be renamed as %s\r\n", file_name,
                                                   file_name + u".corrupt"_w);
        found = read_backup(file_name + u".backup"_w);
    }
    length = found.length;
    text = std::move(found.text);
    return true;
}

bool Configuration::select_section(wide_char const* name, bool create) {
    section = nullptr;
    if (!name || !*name) return false;
    return without_exceptions(false,
                              [&] { return (text || load(create)) && find_or_append_section(name, create); });
}

bool Configuration::find_or_append_section(wide_char const* name, bool create) {
    wide_string const header = u"["_w + name + u"]"_w;
    wide_string_view const whole(text.get(), length);
    for (std::size_t at = whole.find(header); at != wide_npos; at = whole.find(header, at + 1)) {
        // Blanks may stand before a header, anything else makes it a part of some value.
        std::size_t start = at;
        while (start != 0 && (whole[start - 1] == ' ' || whole[start - 1] == '\t')) --start;
        if (start != 0 && !is_line_end(whole[start - 1])) continue;
        section = past_line_end(find_line_end(text.get() + at, text_end()), text_end());
        return true;
    }
    if (!create) return false;
    replace_text(text_end(), text_end(), u"\r\n"_w + header + u"\r\n"_w);
    section = text.get() + length;
    return true;
}

// The first character of the value, or null.
wide_char* Configuration::find_value(wide_char const* key) const {
    if (!section || !key) return nullptr;
    wide_string_view const wanted(key);
    wide_char const* value = nullptr;
    visit_section_lines(section, text_end(), [&](wide_string_view line) {
        if (line.size() <= wanted.size() || line[wanted.size()] != '=' || !line.starts_with(wanted))
            return false;
        value = line.data() + wanted.size() + 1;
        return true;
    });
    return value ? text.get() + (value - text.get()) : nullptr;
}

bool Configuration::get_value(wide_char const* key, wide_string& value) {
    wide_char const* const found = find_value(key);
    if (!found) return false;
    return without_exceptions(false, [&] {
        value.assign(found, find_line_end(found, text_end()));
        return true;
    });
}

bool Configuration::set_value(wide_char const* key, wide_char const* value) {
    if (!section || !key) return false;
    return without_exceptions(false, [&] {
        wide_string_view const fresh = view(value);
        wide_char const* const found = find_value(key);
        if (!found) {
            insert_key(key, fresh);
            return true;
        }
        wide_char const* const end = find_line_end(found, text_end());
        if (wide_string_view(found, static_cast<std::size_t>(end - found)) != fresh) {
            replace_text(found, end, fresh);
        }
        return true;
    });
}

wide_string Configuration::get_or_add_value(wide_char const* key, wide_char const* default_value) {
    return without_exceptions(wide_string(), [&] {
        wide_string value(view(default_value));
        if (section && key && !get_value(key, value)) insert_key(key, value);
        return value;
    });
}

bool Configuration::remove_value(wide_char const* key) {
    wide_char const* const found = find_value(key);
    if (!found) return false;
    return without_exceptions(false, [&] {
        wide_char const* const line = found - 1 - wide_length(key);
        replace_text(line, past_line_end(find_line_end(found, text_end()), text_end()), {});
        return true;
    });
}

void Configuration::insert_key(wide_char const* key, wide_string_view value) {
    wide_string line = wide_string(key) + u"="_w;
    line.append(value).append(u"\r\n"_w);
    // A header that ends the text without a line end gets one.
    bool const joins_header = section != text.get() && !is_line_end(section[-1]);
    if (joins_header) line.insert(0, u"\r\n"_w);
    wide_char* const put = replace_text(section, section, line);
    section = put + (joins_header ? 2 : 0);
}

// Puts `fresh` in the place of the text from `from` to `to`, and returns where it stands. Nothing before the
// selected section ever changes, so that keeps its place.
wide_char* Configuration::replace_text(wide_char const* from, wide_char const* to, wide_string_view fresh) {
    std::size_t const before = static_cast<std::size_t>(from - text.get());
    std::size_t const after = static_cast<std::size_t>(text_end() - to);
    std::size_t const total = before + fresh.size() + after;
    if (total >= std::numeric_limits<std::uint32_t>::max()) throw std::length_error("settings");

    auto changed = std::make_unique<wide_char[]>(total + 1);
    wide_char* const put = std::copy_n(text.get(), before, changed.get());
    std::copy_n(to, after, std::copy(fresh.begin(), fresh.end(), put));
    if (section) section = changed.get() + (section - text.get());
    text = std::move(changed);
    length = static_cast<std::uint32_t>(total);
    dirty = true;
    return put;
}

void Configuration::store() {
    wide_string const temporary = file_name + u".tmp"_w;
    char16_t const* const kept = !recoverable ? nullptr : corrupt ? u".corrupt" : u".backup";
    std::string reason;
    if (write_settings(temporary, wide_string_view(text.get(), length), file_name,
                       kept ? file_name + as_wide(kept) : wide_string(), reason)) {
        return;
    }
    log_reason(temporary, reason);
    error_log_entry("Configuration", __LINE__)(u"Failure to store configuration to %s\r\n", temporary);
}

}  // namespace tvmath
