#pragma once

#include <memory>
#include <string>
#include <string_view>

inline namespace tvmath {

/// A lock that is known to all processes by its name, owned by a thread, and free again when its owner
/// dies, however it dies. Handles on one name in one process share one lock; the last handle takes the lock's
/// file away with it.
class named_lock {
public:
    /// A handle on the lock of that name, which is made if need be, open to all users. Null when the system
    /// gives none. Any number of threads and processes may call this at once.
    static std::unique_ptr<named_lock> open(std::string_view name);

    named_lock(named_lock const&) = delete;
    named_lock& operator=(named_lock const&) = delete;
    /// Does not release what was acquired.
    ~named_lock();

    /// Waits without limit. The owner may acquire again, and releases as many times. False if the lock is
    /// not to be had.
    bool acquire();
    /// By the owner; another thread's call does nothing.
    void release();

private:
    class shared_mutex;
    named_lock(std::string file, std::shared_ptr<shared_mutex> mutex);
    static void renew(std::string const& path, std::shared_ptr<shared_mutex>& mutex);

    std::string file_;
    std::shared_ptr<shared_mutex> mutex_;
};

}  // namespace tvmath
