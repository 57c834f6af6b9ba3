#pragma once

#include <memory>

#include "services/audio_wave.h"

inline namespace tvmath {

/// Plays waves and tones on the sound card from a thread of its own; no call waits for the card. The thread
/// starts with the first sound.
class wave_player {
public:
    wave_player();
    wave_player(wave_player const&) = delete;
    wave_player& operator=(wave_player const&) = delete;
    ~wave_player();

    /// Plays a wave, cutting off the one before; null only cuts off.
    void play(shared_wave sound);

    /// Plays a tone behind the tones before, together with a wave if there is one. Returns false when the
    /// latest attempt to find a card was in vain; each sound makes a new attempt.
    bool play_tone(shared_wave sound);

    /// Cuts off all sound, releases the card and ends the thread. A thread that hangs in a sound server is
    /// left behind after two seconds.
    void end();

private:
    struct state;
    bool start();  // with the lock held; false when there is no thread and none can be had

    // Shared with the thread, since a thread that is left behind outlives the player.
    std::shared_ptr<state> const state_;
};

}  // namespace tvmath
