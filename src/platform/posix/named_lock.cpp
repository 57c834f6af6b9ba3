#include "platform/named_lock.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>

#include "platform/thread_id.h"

inline namespace tvmath {

namespace {

constexpr std::uint64_t complete_mark = 0x314B434F4C565400u + sizeof(pthread_mutex_t);

// What the file of a lock holds. The mark is written last, so a file without it is half-made or foreign.
struct lock_file {
    std::atomic<std::uint64_t> mark;
    pthread_mutex_t mutex;
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "it is shared by processes");

class descriptor {
public:
    explicit descriptor(int number) : number_(number) {}
    descriptor(descriptor const&) = delete;
    descriptor& operator=(descriptor const&) = delete;
    ~descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    int get() const { return number_; }

private:
    int number_;
};

// Readable, and different for different names: a hash (FNV-1a) and the end of the name.
std::string lock_file_path(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    std::string tail;
    for (char const c : name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
        bool const plain =
            (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.';
        tail += plain ? c : '_';
    }
    if (tail.size() > 100) tail.erase(0, tail.size() - 100);
    char digits[32];
    ::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));

    std::string folder = "/dev/shm";
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        char const* const temporary = ::getenv("TMPDIR");
        folder = temporary && *temporary ? temporary : "/tmp";
    }
    return folder + "/tvmath-lock-" + digits + "-" + tail;
}

lock_file* map_lock_file(int file) {
    void* const memory = ::mmap(nullptr, sizeof(lock_file), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<lock_file*>(memory);
}

bool fill_lock_file(lock_file& lock) {
    pthread_mutexattr_t kind;
    if (::pthread_mutexattr_init(&kind) != 0) return false;
    bool filled = ::pthread_mutexattr_setpshared(&kind, PTHREAD_PROCESS_SHARED) == 0 &&
                  ::pthread_mutexattr_setrobust(&kind, PTHREAD_MUTEX_ROBUST) == 0 &&
                  ::pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_RECURSIVE) == 0;
    if (filled) {
        lock.mutex = pthread_mutex_t{};
        filled = ::pthread_mutex_init(&lock.mutex, &kind) == 0;
    }
    ::pthread_mutexattr_destroy(&kind);
    if (filled) lock.mark.store(complete_mark, std::memory_order_release);
    return filled;
}

bool size_and_fill(int file) {
    // With its blocks: in a full shared memory, writing into a hole would end the process.
    if (::posix_fallocate(file, 0, sizeof(lock_file)) != 0) return false;
    lock_file* const lock = map_lock_file(file);
    if (!lock) return false;
    bool const filled = lock->mark.load(std::memory_order_acquire) == complete_mark || fill_lock_file(*lock);
    ::munmap(lock, sizeof(lock_file));
    return filled;
}

// Under a lock of its own, since several processes may find the file wanting at once.
bool repair_lock_file(int file) {
    if (::flock(file, LOCK_EX) != 0) return false;
    bool const repaired = size_and_fill(file);
    ::flock(file, LOCK_UN);
    return repaired;
}

// Makes the file complete under a name of its own and only then links it in: nobody meets it without its
// contents or without the access of all users. The file, or -1.
int make_lock_file(std::string const& path) {
    std::string const fresh =
        path + "." + std::to_string(::getpid()) + "." + std::to_string(current_thread_id());
    auto const open_fresh = [&] {
        return ::open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    };
    int file = open_fresh();
    if (file < 0 && errno == EEXIST && ::unlink(fresh.c_str()) == 0)
        file = open_fresh();  // of a dead process
    if (file < 0) return file;
    bool const linked =
        ::fchmod(file, 0666) == 0 && size_and_fill(file) && ::link(fresh.c_str(), path.c_str()) == 0;
    int const reason = errno;
    ::unlink(fresh.c_str());
    if (linked) return file;
    ::close(file);
    errno = reason;
    return -1;
}

int open_lock_file(std::string const& path) {
    // More than once when others make the file, or take it away, in between.
    for (;;) {
        // Without O_CREAT, which folders like /dev/shm refuse for another user's file.
        int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        if (file >= 0 || errno != ENOENT) return file;
        file = make_lock_file(path);
        if (file >= 0 || errno != EEXIST) return file;
    }
}

// Never destroyed: handles may be opened and closed until the process ends.
std::mutex& registry_guard() {
    static auto& guard = *new std::mutex;
    // A process forked while another thread holds the guard would find it held for ever.
    [[maybe_unused]] static int const registered =
        ::pthread_atfork([] { registry_guard().lock(); }, [] { registry_guard().unlock(); },
                         [] { registry_guard().unlock(); });
    return guard;
}

}  // namespace

// The mapping of one lock file. One per process and lock: the list of held mutexes that the system walks
// when a thread dies refers to addresses, which must stay valid as long as any handle holds the lock.
class named_lock::shared_mutex {
public:
    explicit shared_mutex(std::string const& path) : path_(path), maker_(::getpid()) {
        descriptor const file(open_lock_file(path));
        struct stat status {};
        if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
        device_ = status.st_dev;
        number_ = status.st_ino;
        bool const is_whole = status.st_size >= static_cast<off_t>(sizeof(lock_file));
        if (!is_whole && !repair_lock_file(file.get())) return;
        lock_ = map_lock_file(file.get());
        if (lock_ && lock_->mark.load(std::memory_order_acquire) != complete_mark &&
            !repair_lock_file(file.get())) {
            ::munmap(lock_, sizeof(lock_file));
            lock_ = nullptr;
        }
    }
    shared_mutex(shared_mutex const&) = delete;
    shared_mutex& operator=(shared_mutex const&) = delete;
    ~shared_mutex() {
        // Still held by a thread that never released it: the mapping has to outlive that thread.
        if (!lock_ || times_held_ != 0) return;
        if (!is_inherited()) remove_if_unused();
        ::munmap(lock_, sizeof(lock_file));
    }

    bool is_usable() const { return lock_ != nullptr; }

    bool acquire() {
        int result = ::pthread_mutex_lock(&lock_->mutex);
        // The holder died. What the lock guards is either whole or found damaged by those who read it.
        if (result == EOWNERDEAD) result = ::pthread_mutex_consistent(&lock_->mutex);
        if (result != 0) return false;
        if (owner_ != std::this_thread::get_id()) times_held_ = 0;  // whatever a dead holder left
        ++times_held_;
        owner_ = std::this_thread::get_id();
        return true;
    }

    void release() {
        if (is_inherited() || owner_ != std::this_thread::get_id()) return;
        if (--times_held_ == 0) owner_ = std::thread::id();
        ::pthread_mutex_unlock(&lock_->mutex);
    }

    // By a forked process, which then has neither the lock nor a say in what becomes of the file.
    bool is_inherited() const { return maker_ != ::getpid(); }

    // False when the file of the name is another by now, since its last user took it away.
    bool is_current() const {
        struct stat status {};
        return ::stat(path_.c_str(), &status) == 0 && status.st_dev == device_ && status.st_ino == number_;
    }

private:
    // Only the holder removes the file, and who gets the lock afterwards sees that it is gone.
    void remove_if_unused() {
        int result = ::pthread_mutex_trylock(&lock_->mutex);
        if (result == EOWNERDEAD) result = ::pthread_mutex_consistent(&lock_->mutex);
        if (result != 0) return;
        if (is_current()) ::unlink(path_.c_str());
        ::pthread_mutex_unlock(&lock_->mutex);
    }

    std::string path_;
    pid_t maker_;
    dev_t device_ = 0;
    ino_t number_ = 0;
    lock_file* lock_ = nullptr;
    // By this process. Written by the holder alone.
    std::atomic<int> times_held_ = 0;
    std::atomic<std::thread::id> owner_ = std::thread::id();
};

// Puts the mapping that all handles on the lock share in the place of `mutex`, which is stale or null. Null
// if there is none.
void named_lock::renew(std::string const& path, std::shared_ptr<shared_mutex>& mutex) {
    std::scoped_lock const hold(registry_guard());
    static auto& open_ones = *new std::map<std::string, std::weak_ptr<shared_mutex>>;
    std::erase_if(open_ones, [](auto const& entry) { return entry.second.expired(); });
    std::weak_ptr<shared_mutex>& known = open_ones[path];
    std::shared_ptr<shared_mutex> fresh = known.lock();
    if (!fresh || fresh == mutex) {
        fresh = std::make_shared<shared_mutex>(path);
        known = fresh;
    }
    mutex = fresh->is_usable() ? fresh : nullptr;
}

named_lock::named_lock(std::string file, std::shared_ptr<shared_mutex> mutex)
    : file_(std::move(file)), mutex_(std::move(mutex)) {}

named_lock::~named_lock() {
    // Guarded, so that nobody opens the lock between the end of its last handle and that of its mapping.
    std::scoped_lock const hold(registry_guard());
    mutex_.reset();
}

std::unique_ptr<named_lock> named_lock::open(std::string_view name) {
    std::string path = lock_file_path(name);
    std::shared_ptr<shared_mutex> mutex;
    renew(path, mutex);
    if (!mutex) return nullptr;
    return std::unique_ptr<named_lock>(new named_lock(std::move(path), std::move(mutex)));
}

bool named_lock::acquire() {
    if (mutex_ && mutex_->is_inherited()) renew(file_, mutex_);
    while (mutex_ && mutex_->acquire()) {
        if (mutex_->is_current()) return true;
        mutex_->release();
        renew(file_, mutex_);
    }
    return false;
}

void named_lock::release() {
    if (mutex_) mutex_->release();
}

}  // namespace tvmath
