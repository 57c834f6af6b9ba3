#include "platform/file_access.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

inline namespace tvmath {

namespace {

// A write beyond the process's file size limit raises a signal that ends the process. Here it is a failed
// write like any other, so the signal is taken away before anyone sees it.
class no_size_signal {
public:
    no_size_signal() {
        sigemptyset(&size_);
        sigaddset(&size_, SIGXFSZ);
        ::pthread_sigmask(SIG_BLOCK, &size_, &before_);
    }
    no_size_signal(no_size_signal const&) = delete;
    no_size_signal& operator=(no_size_signal const&) = delete;
    ~no_size_signal() {
        if (sigismember(&before_, SIGXFSZ) == 1) return;
        int const reason = errno;
        if (reason == EFBIG) {
            timespec const at_once{};
            while (::sigtimedwait(&size_, nullptr, &at_once) < 0 && errno == EINTR) {}
        }
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = reason;
    }

private:
    sigset_t size_, before_;
};

int open_flags(file_use use) {
    // Not to block on a pipe that stands under the name.
    int const common = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    // In a folder that all users may write, a link would lead a privileged process to write any file.
    int const writing = common | O_WRONLY | O_NOFOLLOW;
    switch (use) {
        case file_use::write:
            return writing;
        case file_use::append:
            return writing | O_APPEND;
        default:
            return common | O_RDONLY;
    }
}

// The same for a file as for its folder, whatever the mask of the user who happened to be the first.
void open_to_those_of_folder(int descriptor, file_path const& name) {
    file_path const folder = name.has_parent_path() ? name.parent_path() : file_path(".");
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) return;
    bool const for_all = (status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0;
    if (for_all) ::fchmod(descriptor, 0666);
}

int open_or_make(file_path const& name, file_use use) {
    // More than one round only when the file comes or goes meanwhile; a dangling link never ends it.
    for (int round = 0; round < 8; ++round) {
        int descriptor = ::open(name.c_str(), open_flags(use));
        if (descriptor >= 0 || errno != ENOENT || use == file_use::read) return descriptor;
        descriptor = ::open(name.c_str(), open_flags(use) | O_CREAT | O_EXCL, 0666);
        if (descriptor >= 0) open_to_those_of_folder(descriptor, name);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
    return -1;
}

}  // namespace

open_file::open_file(file_path const& name, file_use use) {
    descriptor_ = open_or_make(name, use);
    if (descriptor_ < 0) {
        fail();
        return;
    }
    struct stat status {};
    bool usable = ::fstat(descriptor_, &status) == 0;
    if (usable && !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        usable = false;
    }
    if (usable && use != file_use::append) usable = deny_writers(use);
    if (usable && use == file_use::write) usable = ::ftruncate(descriptor_, 0) == 0;
    if (!usable) {
        fail();
        close();
    } else if (use == file_use::read || use == file_use::read_or_create) {
        ::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
}

open_file::~open_file() {
    close();
}

bool open_file::deny_writers(file_use use) {
    int const kind = use == file_use::write ? LOCK_EX : LOCK_SH;
    // A file system without such locks denies nothing.
    return ::flock(descriptor_, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

std::uint64_t open_file::size() const {
    struct stat status {};
    return ::fstat(descriptor_, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::size_t open_file::read(void* to, std::size_t bytes) {
    std::size_t done = 0;
    while (done < bytes) {
        ssize_t const got = ::read(descriptor_, static_cast<char*>(to) + done, bytes - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fail();
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool open_file::write(void const* from, std::size_t bytes) {
    no_size_signal const quiet;
    std::size_t done = 0;
    while (done < bytes) {
        ssize_t const put = ::write(descriptor_, static_cast<char const*>(from) + done, bytes - done);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return fail();
        done += static_cast<std::size_t>(put);
    }
    return true;
}

bool open_file::cut_to(std::uint64_t size) {
    return ::ftruncate(descriptor_, static_cast<off_t>(size)) == 0 || fail();
}

bool open_file::flush_to_disk() {
    return ::fsync(descriptor_) == 0 || fail();
}

bool open_file::close() {
    if (descriptor_ < 0) return true;
    // Not left to the closing: a process forked meanwhile would keep the denial alive.
    ::flock(descriptor_, LOCK_UN);
    bool const closed = ::close(descriptor_) == 0 || errno == EINTR;
    descriptor_ = -1;
    return closed || fail();
}

bool open_file::fail() {
    failure_ = std::system_category().message(errno);
    return false;
}

}  // namespace tvmath
