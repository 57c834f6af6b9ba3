#include "platform/folders.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

inline namespace tvmath {

namespace {

namespace fs = std::filesystem;

file_path from_environment(char const* name) {
    char const* const value = ::getenv(name);
    return value ? file_path(value) : file_path();
}

bool rename_to_new_name(file_path const& from, file_path const& to) {
#if defined(SYS_renameat2) && defined(RENAME_NOREPLACE)
    if (::syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
#endif
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

void flush_tree(file_path const& top) {
    std::error_code error;
    if (fs::is_regular_file(top, error)) open_file(top, file_use::append).flush_to_disk();
    if (!fs::is_directory(top, error)) return;
    for (fs::recursive_directory_iterator at(top, error), end; !error && at != end; at.increment(error)) {
        if (at->is_regular_file(error)) open_file(at->path(), file_use::append).flush_to_disk();
    }
}

// The copy gets its name when it is complete, so that no part of a file is ever taken for the file.
bool move_to_other_volume(file_path const& from, file_path const& to) {
    file_path partial = to;
    partial += ".tmp";
    std::error_code error;
    fs::remove_all(partial, error);
    fs::copy(from, partial, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (!error) flush_tree(partial);
    if (error || !rename_to_new_name(partial, to)) {
        fs::remove_all(partial, error);
        return false;
    }
    fs::remove_all(from, error);
    return !error;
}

}  // namespace

file_path executable_folder() {
    file_path const named = from_environment("TVMATH_EXECUTABLE_FOLDER");
    if (!named.empty()) return named;
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

file_path common_data_base() {
    file_path const named = from_environment("TVMATH_COMMON_DATA");
    return named.empty() ? file_path("/var/lib") : named;
}

bool create_folder_for_all(file_path const& folder) {
    std::error_code error;
    file_path const plain = folder.has_filename() ? folder : folder.parent_path();
    fs::create_directories(plain.parent_path(), error);
    if (::mkdir(plain.c_str(), 0777) == 0) {
        ::chmod(plain.c_str(), 0777);  // again, without the mask of the user
        return true;
    }
    return fs::is_directory(plain, error);
}

bool move_file(file_path const& from, file_path const& to) {
    if (rename_to_new_name(from, to)) return true;
    return errno == EXDEV && move_to_other_volume(from, to);
}

}  // namespace tvmath
