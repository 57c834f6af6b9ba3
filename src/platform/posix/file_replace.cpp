#include "platform/file_replace.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/access_rights.h"

inline namespace tvmath {

namespace {

bool rename_file(file_path const& from, file_path const& to) {
    return ::rename(from.c_str(), to.c_str()) == 0;
}

void flush_name(file_path const& name, int kind) {
    int const descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | kind);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

// A second name for the contents of `target`, or a copy where a file has but one name. It is made under a
// name of its own and then renamed, so that the `kept` of before is there until then.
//
// An exchange of `fresh` and `target` and the renaming of the old one would be the other way. A process that
// dies between the two leaves the old one under the temporary name, and the next store would overwrite it.
void keep_as(file_path const& target, file_path const& kept) {
    file_path beside = kept;
    beside += ".tmp";
    std::error_code ignored;
    std::filesystem::remove(beside, ignored);
    if (::link(target.c_str(), beside.c_str()) != 0) {
        if (!std::filesystem::copy_file(target, beside, ignored)) return;
        flush_name(beside, 0);
    }
    rename_file(beside, kept);
}

void take_over_rights(file_path const& from, file_path const& to) {
    struct stat status {};
    access_rights rights;
    if (::stat(from.c_str(), &status) != 0 || read_access_rights(from, rights) != 0) return;
    // Only the superuser can give files away, and others keep what they made. Before the mode, which this
    // clears.
    [[maybe_unused]] int const given = ::chown(to.c_str(), status.st_uid, status.st_gid);
    set_access_rights(to, rights);
}

}  // namespace

bool replace_file(file_path const& fresh, file_path const& target, file_path const& kept) {
    if (::access(fresh.c_str(), F_OK) != 0) return false;
    bool const keep = !kept.empty() && ::access(target.c_str(), F_OK) == 0;
    take_over_rights(target, fresh);
    if (keep) keep_as(target, kept);
    if (!rename_file(fresh, target)) return false;
    // Until then the new names may be in memory alone.
    flush_name(target.has_parent_path() ? target.parent_path() : file_path("."), O_DIRECTORY);
    return true;
}

}  // namespace tvmath
