#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

inline namespace tvmath {

/// What one call asks of the speaker.
struct tone_request {
    int hertz = 0;
    int milliseconds = 0;
    int second_hertz = 0;  ///< 0: no second tone
};

/// A short queue of tones and the thread that sounds them, because the speaker's call blocks until the tone
/// is over.
class tone_queue {
public:
    /// Sounds the tones of one request and returns when they are over; called on the queue's thread only.
    using sounder = std::function<void(tone_request const&)>;

    /// Starts no thread yet; the first `put` does.
    explicit tone_queue(sounder sound) : sound_(std::move(sound)) {}
    ~tone_queue() { end(); }

    /// Puts a request behind the others and returns at once. Returns false, with the request dropped, when
    /// five are waiting already or after `end`.
    bool put(tone_request const& request);

    /// Lets the request at hand sound to its end, drops those that wait, and ends the thread.
    void end();

private:
    void work();
    bool take(tone_request& request);

    sounder const sound_;
    std::mutex guard_;  // of all that follows; not held while a tone sounds
    std::condition_variable changed_;
    std::array<tone_request, 5> ring_;
    std::size_t first_ = 0, count_ = 0;
    bool quit_ = false;
    std::thread worker_;
};

}  // namespace tvmath
