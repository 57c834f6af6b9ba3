#include "tvmath/audio.h"

#include <atomic>
#include <exception>
#include <string_view>

#include "services/audio_output.h"
#include "services/text_case.h"
#include "tvmath/configuration.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace Audio {
namespace {

constexpr std::u16string_view device_names[] = {u"None", u"Int", u"Ext", u"Int+Ext"};  // from no_device on

constexpr tone_request tones_of_type[sound_output::sounds] = {
    {384, 40, 0}, {512, 40, 0}, {256, 80, 0}, {512, 100, 1024}, {384, 100, 256},
};
constexpr tone_request tones_of_other_types = {512, 40, 0};

// 0 until it is known. Set while the settings file is locked, so that it and the file agree whichever thread
// is last.
constinit std::atomic<int> device_in_use = 0;

wide_string name_of(AudioDevice device) {
    return as_wide(device_names[device - no_device]);
}

bool is_known(int device) {
    return device >= no_device && device <= both_devices;
}

// 0 for a name that is none of the four.
int device_of_name(wide_string const& name) {
    for (int device = no_device; device <= both_devices; ++device) {
        if (equal_ignoring_case(name, device_names[device - no_device])) return device;
    }
    return 0;
}

int read_device() {
    TorvexConfig settings(false);
    settings.select_section(u"Audio", true);
    wide_string const fallback = name_of(internal_speaker);
    int device = device_of_name(settings.get_or_add_value(u"Device", fallback.c_str()));
    if (device == 0) {
        device = internal_speaker;
        settings.set_value(u"Device", fallback.c_str());
    }
    int known = 0;
    // `set_audio_device` may have come between; its value stands.
    return device_in_use.compare_exchange_strong(known, device) ? device : known;
}

}  // namespace

enum AudioDevice get_audio_device() {
    int const device = device_in_use.load();
    return static_cast<AudioDevice>(device != 0 ? device : read_device());
}

void set_audio_device(enum AudioDevice device) {
    if (!is_known(device)) device = internal_speaker;
    TorvexConfig settings(false);
    settings.select_section(u"Audio", true);
    device_in_use = device;
    settings.set_value(u"Device", name_of(device).c_str());
}

void FeedbackSound(enum SoundType type) {
    AudioDevice const device = get_audio_device();
    if (device == no_device) return;
    auto const number = static_cast<std::size_t>(type);  // a negative type becomes a large number
    bool const is_known_type = number < sound_output::sounds;
    tone_request const& tones = is_known_type ? tones_of_type[number] : tones_of_other_types;
    try {
        sound_output& output = sound_output::of_process();
        if (device != internal_speaker) {
            if (is_known_type) {
                output.play_wave(number, tones);
            } else {
                output.stop_wave();  // there is no wave for it
            }
        }
        if (device != sound_card) output.queue_tones(tones);
    } catch (std::exception const&) {
        // Out of memory for a sound: it stays silent.
    }
}

}  // namespace Audio
}  // namespace tvmath
