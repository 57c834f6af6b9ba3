#include "services/audio_output.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>
#include <utility>

#include "platform/background_thread.h"
#include "platform/tone.h"

inline namespace tvmath {
namespace {

struct owned_output {
    explicit owned_output(owned_output* parents) : inherited(parents) {}

    sound_output output;
    long const owner = current_process();
    owned_output* const
        inherited;  // the parent's: its locks and threads are frozen, so it is never touched again
};

// An atomic pointer and not a static object with a lock: a fork may come at any moment, and a lock that
// another thread holds then stays locked in the child.
constinit std::atomic<owned_output*> latest = nullptr;

void end_at_exit() {
    owned_output* const found = latest.load();
    if (found && found->owner == current_process()) found->output.end();
}

shared_wave wave_of(tone_request const& tones) {
    auto sound = std::make_shared<wave>();
    append_tone(*sound, tones.hertz, tones.milliseconds);
    if (tones.second_hertz != 0) append_tone(*sound, tones.second_hertz, tones.milliseconds);
    return sound;
}

}  // namespace

sound_output& sound_output::of_process() {
    owned_output* found = latest.load();
    if (found && found->owner == current_process()) return found->output;
    auto fresh = std::make_unique<owned_output>(found);
    // Another thread may have been first; ours has started nothing yet.
    if (!latest.compare_exchange_strong(found, fresh.get())) return found->output;
    std::atexit(end_at_exit);
    return fresh.release()->output;
}

sound_output::sound_output() : queue_([this](tone_request const& tones) { sound_on_speaker(tones); }) {}

void sound_output::play_wave(std::size_t sound, tone_request const& tones) {
    shared_wave playing;
    {
        std::lock_guard const lock(waves_guard_);
        if (!waves_[sound]) waves_[sound] = wave_of(tones);
        playing = waves_[sound];
    }
    card_.play(std::move(playing));
}

void sound_output::sound_on_speaker(tone_request const& tones) {
    if (sound_tone(tones.hertz, tones.milliseconds)) {
        if (tones.second_hertz != 0) sound_tone(tones.second_hertz, tones.milliseconds);
        return;
    }
    // Both tones at once, so that no gap parts them. The card need not take its samples in real time; the
    // tones keep their own.
    auto const length = std::chrono::milliseconds(tones.milliseconds) * (tones.second_hertz != 0 ? 2 : 1);
    auto const end = std::chrono::steady_clock::now() + length;
    if (card_.play_tone(wave_of(tones))) std::this_thread::sleep_until(end);
}

void sound_output::end() {
    queue_.end();  // first: its last tone may sound on the card
    card_.end();
}

}  // namespace tvmath
