#pragma once

#include <array>
#include <cstddef>
#include <mutex>

#include "services/audio_player.h"
#include "services/audio_queue.h"

inline namespace tvmath {

/// The speaker's queue and the player of the sound card, and with them all threads that sound needs. Nothing
/// starts before the first sound.
class sound_output {
public:
    /// The one of this process. A forked child makes its own, because the threads of its parent are not
    /// there. At process end it is ended but not freed, so that a thread which still plays finds it silent
    /// and not gone.
    static sound_output& of_process();

    sound_output();

    /// Plays the request as a wave on the sound card and cuts off the wave before. `sound` is a number of the
    /// table of sounds, below `sounds`; the same number is always asked with the same tones.
    void play_wave(std::size_t sound, tone_request const& tones);
    void stop_wave() { card_.play(nullptr); }

    /// Puts the request in the speaker's queue.
    void queue_tones(tone_request const& tones) { queue_.put(tones); }

    void end();

    static constexpr std::size_t sounds = 5;

private:
    void sound_on_speaker(tone_request const& tones);

    std::mutex waves_guard_;
    std::array<shared_wave, sounds> waves_;  // each made when it is first played
    wave_player card_;
    tone_queue queue_;  // below the card, which stands in for a missing speaker
};

}  // namespace tvmath
