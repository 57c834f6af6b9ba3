#include "services/audio_queue.h"

#include <exception>
#include <utility>

#include "platform/background_thread.h"

inline namespace tvmath {

bool tone_queue::put(tone_request const& request) {
    std::lock_guard const lock(guard_);
    if (quit_ || count_ == ring_.size()) return false;
    if (!worker_.joinable()) worker_ = start_background_thread([this] { work(); });
    if (!worker_.joinable()) return false;
    ring_[(first_ + count_) % ring_.size()] = request;
    if (++count_ == 1) changed_.notify_one();
    return true;
}

bool tone_queue::take(tone_request& request) {
    std::unique_lock lock(guard_);
    changed_.wait(lock, [this] { return quit_ || count_ > 0; });
    if (quit_) return false;
    request = ring_[first_];
    first_ = (first_ + 1) % ring_.size();
    --count_;
    return true;
}

void tone_queue::work() {
    for (tone_request request; take(request);) {
        try {
            sound_(request);
        } catch (std::exception const&) {
            // Out of memory for a sound: this one stays silent.
        }
    }
}

void tone_queue::end() {
    std::thread worker;
    {
        std::lock_guard const lock(guard_);
        quit_ = true;
        worker.swap(worker_);
    }
    changed_.notify_one();
    if (worker.joinable()) worker.join();
}

}  // namespace tvmath
