#include "services/audio_wave.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

inline namespace tvmath {
namespace {

// 5 ms: long enough to keep the energy of the edge below some hundred hertz, where it is not heard as a
// click, short enough to leave a tone of 40 ms its pitch.
constexpr std::size_t fade_samples = wave_rate / 200;
constexpr double peak = 16000;

// Raised cosine, from 0 to 1 over the samples of a fade. Half a sample off, so that it is its own mirror
// image.
double fade_in(std::size_t sample) {
    if (sample >= fade_samples) return 1;
    double const part = (static_cast<double>(sample) + 0.5) / fade_samples;
    return 0.5 - 0.5 * std::cos(std::numbers::pi * part);
}

std::int16_t saturated(int sum) {
    using limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<int>(sum, limits::min(), limits::max()));
}

}  // namespace

void append_tone(wave& sound, int hertz, int milliseconds) {
    std::size_t const n = static_cast<std::size_t>(milliseconds) * (wave_rate / 1000);
    double const step = 2 * std::numbers::pi * hertz / wave_rate;
    sound.reserve(sound.size() + n);
    for (std::size_t i = 0; i < n; ++i) {
        double const envelope = peak * fade_in(std::min(i, n - 1 - i));
        sound.push_back(
            static_cast<std::int16_t>(std::lround(envelope * std::sin(step * static_cast<double>(i)))));
    }
}

void wave_mixer::cut_to(shared_wave sound) {
    // A wave that was replaced before its first sample was never heard, and an older one may still be fading.
    if (wave_.at > 0) {
        cut_ = std::move(wave_);
        cut_faded_ = 0;
    }
    wave_ = {std::move(sound), 0};
}

void wave_mixer::append(shared_wave sound) {
    if (sound && !sound->empty()) tones_.push_back({std::move(sound), 0});
}

int wave_mixer::next_cut() {
    if (cut_.has_ended()) return 0;
    double const gain = fade_in(fade_samples - ++cut_faded_);
    int const value = static_cast<int>(std::lround(gain * cut_.next()));
    if (cut_faded_ == fade_samples) cut_ = {};
    return value;
}

int wave_mixer::next_tone() {
    if (tones_.empty()) return 0;
    int const value = tones_.front().next();
    if (tones_.front().has_ended()) tones_.pop_front();
    return value;
}

std::size_t wave_mixer::mix(std::span<std::int16_t> out) {
    std::size_t n = 0;
    for (; n < out.size() && !is_idle(); ++n) out[n] = saturated(next_cut() + wave_.next() + next_tone());
    return n;
}

}  // namespace tvmath
