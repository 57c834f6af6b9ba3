#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <vector>

inline namespace tvmath {

/// Sound of one channel, 16-bit samples, `wave_rate` of them per second.
using wave = std::vector<std::int16_t>;
using shared_wave = std::shared_ptr<wave const>;
inline constexpr int wave_rate = 48000;

/// Adds a sine tone to the end of `sound`, faded in and out so that it begins and ends without a click. Its
/// peak is less than half of the range: two of them can be added.
void append_tone(wave& sound, int hertz, int milliseconds);

/// Adds up two voices: that of the waves, where a new one cuts off the one before, and that of the tones,
/// which follow one another.
class wave_mixer {
public:
    /// Cuts off the wave before, fading it out; null or empty, it only does that.
    void cut_to(shared_wave sound);

    /// Puts `sound` behind the tones before.
    void append(shared_wave sound);

    /// Fills `out` from the front and returns how many samples there were; fewer than asked for means that
    /// nothing is left to play.
    std::size_t mix(std::span<std::int16_t> out);

    bool is_idle() const { return cut_.has_ended() && wave_.has_ended() && tones_.empty(); }
    void clear() { *this = {}; }

private:
    struct voice {
        shared_wave sound;
        std::size_t at = 0;
        bool has_ended() const { return !sound || at >= sound->size(); }
        int next() { return has_ended() ? 0 : (*sound)[at++]; }
    };
    int next_cut();
    int next_tone();

    voice wave_;
    voice cut_;                  // the wave before, while it fades out
    std::size_t cut_faded_ = 0;  // samples of its fade that have been played
    std::deque<voice> tones_;
};

}  // namespace tvmath
