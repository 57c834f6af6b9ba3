#include "services/audio_player.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <span>
#include <thread>
#include <utility>

#include "platform/background_thread.h"
#include "platform/wave_playback.h"

inline namespace tvmath {
namespace {

using namespace std::chrono_literals;

// The card stays open between sounds, since opening it delays the sound, but not for long, since it may be a
// card that serves one program at a time.
constexpr auto idle_before_close = 5s;
// A sound server that hangs must not keep the process from ending.
constexpr auto patience_at_end = 2s;
// What is handed over at a time.
constexpr auto chunk_length = 10ms;
constexpr std::size_t chunk_samples = wave_rate / 1000 * chunk_length.count();
// How far ahead of the clock samples are handed over, also to a card that would take any number at once. A
// wave that is cut off goes on for so long.
constexpr auto lead = 60ms;
// A tone comes from the queue's thread, a moment after the wave of the same call. When both start together
// they add up; some milliseconds apart they would cancel each other in part.
constexpr auto gathering = 10ms;
// Writes without room before a card counts as stuck; each has waited for some hundredths of a second.
constexpr int patience_of_writes = 50;

}  // namespace

struct wave_player::state {
    std::mutex guard;  // of all that follows
    std::condition_variable changed;
    wave_mixer mixer;
    bool no_card = false;
    bool quit = false;
    bool has_ended = false;  // the thread has nothing left to do
    std::thread thread;
    sound_card card;  // the thread's alone, used without the lock

    bool has_work() const { return quit || !mixer.is_idle(); }
    void work();
    bool open(std::unique_lock<std::mutex>& lock);
    void play_all(std::unique_lock<std::mutex>& lock);
    bool write(std::span<std::int16_t const> samples, std::unique_lock<std::mutex>& lock);
    void play_out(std::unique_lock<std::mutex>& lock);
};

void wave_player::state::work() {
    std::unique_lock lock(guard);
    while (!quit) {
        if (!has_work() && !card.is_open()) {
            changed.wait(lock, [this] { return has_work(); });
        } else if (!changed.wait_for(lock, idle_before_close, [this] { return has_work(); })) {
            lock.unlock();
            card.close();
            lock.lock();
        } else if (!quit) {
            play_all(lock);
        }
    }
    lock.unlock();
    card.close();
    lock.lock();
    has_ended = true;
    changed.notify_all();
}

bool wave_player::state::open(std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    bool const is_open = card.open(wave_rate);
    lock.lock();
    no_card = !is_open;
    return is_open;
}

void wave_player::state::play_all(std::unique_lock<std::mutex>& lock) {
    std::int16_t chunk[chunk_samples];
    bool works = open(lock);
    auto const has_to_quit = [this] { return quit; };
    if (works) changed.wait_for(lock, gathering, has_to_quit);
    for (auto due = std::chrono::steady_clock::now(); works && !quit; due += chunk_length) {
        changed.wait_until(lock, due - lead, has_to_quit);
        std::size_t const n = mixer.mix(chunk);
        if (n == 0) return play_out(lock);
        works = write({chunk, n}, lock);
    }
    // A sound that found no card must not be heard when one comes.
    mixer.clear();
}

bool wave_player::state::write(std::span<std::int16_t const> samples, std::unique_lock<std::mutex>& lock) {
    for (int patience = patience_of_writes; !samples.empty() && !quit;) {
        lock.unlock();
        std::ptrdiff_t const written = card.write(samples);
        if (written == 0 && --patience == 0) card.close();
        lock.lock();
        if (!card.is_open()) return false;
        if (written > 0) patience = patience_of_writes;
        samples = samples.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

void wave_player::state::play_out(std::unique_lock<std::mutex>& lock) {
    bool silent = false;
    while (!quit && !silent) {
        lock.unlock();
        silent = card.is_played_out();
        lock.lock();
        if (!silent) changed.wait_for(lock, 3ms, [this] { return quit; });
    }
}

wave_player::wave_player() : state_(std::make_shared<state>()) {}

wave_player::~wave_player() {
    end();
}

void wave_player::play(shared_wave sound) {
    std::lock_guard const lock(state_->guard);
    if (!start()) return;
    state_->mixer.cut_to(std::move(sound));
    state_->changed.notify_all();
}

bool wave_player::play_tone(shared_wave sound) {
    std::lock_guard const lock(state_->guard);
    if (!start()) return false;
    state_->mixer.append(std::move(sound));
    state_->changed.notify_all();
    return !state_->no_card;
}

bool wave_player::start() {
    if (state_->quit) return false;
    if (!state_->thread.joinable()) {
        state_->thread = start_background_thread([kept = state_] { kept->work(); });
    }
    return state_->thread.joinable();
}

void wave_player::end() {
    std::unique_lock lock(state_->guard);
    state_->quit = true;
    state_->changed.notify_all();
    if (!state_->thread.joinable()) return;
    std::thread thread = std::move(state_->thread);
    bool const has_ended =
        state_->changed.wait_for(lock, patience_at_end, [this] { return state_->has_ended; });
    lock.unlock();
    if (has_ended) {
        thread.join();
    } else {
        thread.detach();
    }
}

}  // namespace tvmath
