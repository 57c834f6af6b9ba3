#include "platform/background_thread.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <system_error>
#include <utility>

inline namespace tvmath {

std::thread start_background_thread(std::function<void()> work) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);  // a new thread starts with its maker's mask
    std::thread started;
    try {
        started = std::thread(std::move(work));
    } catch (std::system_error const&) {
        // Left without a thread.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

long current_process() {
    return ::getpid();
}

}  // namespace tvmath
