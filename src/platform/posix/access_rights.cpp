#include "platform/access_rights.h"

#include <errno.h>
#include <sys/stat.h>
#include <sys/xattr.h>

inline namespace tvmath {

namespace {

constexpr char const* access_list_name = "system.posix_acl_access";

}  // namespace

int read_access_rights(file_path const& file, access_rights& rights) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return errno;
    rights.mode = status.st_mode & 07777;
    rights.access_list.clear();
    // A file without a list, and a file system without lists, is a failure here that means "none".
    ssize_t const size = ::getxattr(file.c_str(), access_list_name, nullptr, 0);
    if (size <= 0) return 0;
    rights.access_list.resize(static_cast<std::size_t>(size));
    ssize_t const got =
        ::getxattr(file.c_str(), access_list_name, rights.access_list.data(), rights.access_list.size());
    if (got < 0) return errno;
    rights.access_list.resize(static_cast<std::size_t>(got));
    return 0;
}

int set_access_rights(file_path const& file, access_rights const& rights) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return errno;
    bool const is_folder = S_ISDIR(status.st_mode);
    // The list goes first: while one is there, the group's bits of the mode are the list's mask.
    if (rights.access_list.empty()) ::removexattr(file.c_str(), access_list_name);
    mode_t const search = is_folder ? (rights.mode & 0444) >> 2 : 0;
    if (::chmod(file.c_str(), rights.mode | search) != 0) return errno;
    if (rights.access_list.empty() || is_folder) return 0;
    bool const done = ::setxattr(file.c_str(), access_list_name, rights.access_list.data(),
                                 rights.access_list.size(), 0) == 0;
    return done || errno == EOPNOTSUPP ? 0 : errno;
}

}  // namespace tvmath
