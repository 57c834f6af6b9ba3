#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

inline namespace tvmath {

using file_path = std::filesystem::path;

enum class file_use {
    read,            ///< An existing file; others may not write it.
    read_or_create,  ///< The same, but a missing file is made, empty.
    write,           ///< A file to be written anew from its start; others may not write it.
    append,          ///< A file that others may append to as well; a missing one is made.
};

/// A regular file, open as long as the object lives; a link is followed for reading alone. The denial binds
/// programs that open files this way, as far as the system has it. A file made in a folder that is open to
/// all users is open to all users too.
class open_file {
public:
    open_file(file_path const& name, file_use use);
    open_file(open_file const&) = delete;
    open_file& operator=(open_file const&) = delete;
    ~open_file();

    bool is_open() const { return descriptor_ >= 0; }
    std::uint64_t size() const;
    /// Number of bytes read, fewer than asked for only at the end of the file or after a failure.
    std::size_t read(void* to, std::size_t bytes);
    /// False when not all bytes could be written.
    bool write(void const* from, std::size_t bytes);
    bool cut_to(std::uint64_t size);
    /// Waits until the contents are on the disk.
    bool flush_to_disk();
    /// Closes early. False when something of what was written is lost.
    bool close();

    /// The system's words for the last failure; empty before one.
    std::string const& failure() const { return failure_; }

private:
    bool fail();
    bool deny_writers(file_use use);

    int descriptor_ = -1;
    std::string failure_;
};

}  // namespace tvmath
