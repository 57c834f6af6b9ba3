#pragma once

#include <concepts>
#include <cstdint>
#include <memory>

#include "tvmath/export.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

class named_lock;

/// One settings file: sections of key=value lines that survive a power cut at any moment.
///
/// The file is loaded whole by the first `select_section`, changed in memory, and stored by the destructor if
/// it changed: a new file is written and synced, then swapped in, and the old one stays as ".backup". A file
/// that is found damaged (without the mark FF FE, or a block of zeros) is set aside as ".corrupt" and
/// replaced by the backup when it is `recoverable`; otherwise the object stays unusable. Lines that are no
/// key of a section stay as they are. Names and keys match exactly, case included.
///
/// From the first `select_section` to the destructor the object holds a lock that excludes every other
/// thread and process from the file, so it should live for a few lines of code: made, asked and destroyed on
/// one thread. The lock goes by the spelling of the path. Two objects for one file on one thread do not
/// exclude each other, and the last one destroyed wins.
///
/// Nothing here raises: every failure is the operation's `false`, and trouble with files goes to the error
/// log.
class TVMATH_API Configuration {
public:
    Configuration(wide_string name, bool has_backup);
    Configuration(Configuration const&) = delete;
    Configuration& operator=(Configuration const&) = delete;

    /// Stores a changed or repaired text and releases the lock.
    virtual ~Configuration();

    /// Makes `name` the section that the other operations work on, and loads the file first if need be. With
    /// `create`, a missing file is made and a missing section appended. False for a null or empty name, for a
    /// file that cannot be had and for a section that is missing; then no section is selected.
    virtual bool select_section(wide_char const* name, bool create);

    /// Sets `value` to what stands between the equals sign and the line end. False, with `value` untouched,
    /// when the key is missing or no section is selected.
    virtual bool get_value(wide_char const* key, wide_string& value);

    /// Replaces a value, or inserts the key above the others of its section. The value that is there already
    /// changes nothing, and the file keeps its time stamp. False when no section is selected.
    virtual bool set_value(wide_char const* key, wide_char const* value);

    /// The value of `key`; when it is missing, `default_value`, which is inserted. Without a section,
    /// `default_value` alone.
    virtual wide_string get_or_add_value(wide_char const* key, wide_char const* default_value);

    /// Takes the line of `key` out. False when the key is missing or no section is selected.
    virtual bool remove_value(wide_char const* key);

    // The same for literals. Templates, so that a null pointer is no choice between two kinds of text.
    template <std::same_as<char16_t> unit>
    bool select_section(unit const* name, bool create) {
        return select_section(literal(name).c_str(), create);
    }
    template <std::same_as<char16_t> unit>
    bool get_value(unit const* key, wide_string& value) {
        return get_value(literal(key).c_str(), value);
    }
    template <std::same_as<char16_t> unit>
    bool set_value(unit const* key, unit const* value) {
        return set_value(literal(key).c_str(), literal(value).c_str());
    }
    template <std::same_as<char16_t> unit>
    bool set_value(unit const* key, wide_char const* value) {
        return set_value(literal(key).c_str(), value);
    }
    template <std::same_as<char16_t> unit>
    bool set_value(wide_char const* key, unit const* value) {
        return set_value(key, literal(value).c_str());
    }
    template <std::same_as<char16_t> unit>
    wide_string get_or_add_value(unit const* key, unit const* default_value) {
        return get_or_add_value(literal(key).c_str(), literal(default_value).c_str());
    }
    template <std::same_as<char16_t> unit>
    wide_string get_or_add_value(unit const* key, wide_char const* default_value) {
        return get_or_add_value(literal(key).c_str(), default_value);
    }
    template <std::same_as<char16_t> unit>
    wide_string get_or_add_value(wide_char const* key, unit const* default_value) {
        return get_or_add_value(key, literal(default_value).c_str());
    }
    template <std::same_as<char16_t> unit>
    bool remove_value(unit const* key) {
        return remove_value(literal(key).c_str());
    }

protected:
    wide_string file_name;
    std::unique_ptr<named_lock> lock;  ///< Null until first use, then held.
    std::uint32_t length = 0;          ///< Units of text, without the terminator.
    std::unique_ptr<wide_char[]> text;
    wide_char* section = nullptr;  ///< In `text`, behind the header line of the selected section.
    bool dirty = false;            ///< The text has changed.
    bool corrupt = false;          ///< The file was found damaged.
    bool recoverable = false;      ///< The file has a backup, and damage is repaired.

private:
    static wide_string literal(char16_t const* text) { return as_wide(text ? text : u""); }
    bool hold_lock();
    bool load(bool create);
    void store();
    bool find_or_append_section(wide_char const* name, bool create);
    wide_char const* text_end() const { return text.get() + length; }
    wide_char* find_value(wide_char const* key) const;
    void insert_key(wide_char const* key, wide_string_view value);
    wide_char* replace_text(wide_char const* from, wide_char const* to, wide_string_view fresh);
};

/// "Folders.ini" beside the executable: where the other folders are. It has no backup.
class TVMATH_API FolderConfiguration : public Configuration {
public:
    FolderConfiguration();
};

/// "Hardware.ini" in the configuration folder.
class TVMATH_API HardwareConfiguration : public Configuration {
public:
    HardwareConfiguration();
};

/// "Torvex.ini" in the configuration folder. With `search`, the one beside the executable serves as long as
/// the folder has none. Makes sure that the settings of an old installation have been moved.
class TVMATH_API TorvexConfig : public Configuration {
public:
    explicit TorvexConfig(bool search);
};

/// "Machine.ini" in the machine folder. With `search`, the one beside the executable serves as long as the
/// folder has none. Makes sure that the settings of an old installation have been moved.
class TVMATH_API MachineConfiguration : public Configuration {
public:
    explicit MachineConfiguration(bool search);
};

}  // namespace tvmath
