#pragma once

#include "tvmath/export.h"

inline namespace tvmath {

/// Short sounds that confirm an event to an operator who looks at the part and not at the screen.
///
/// Any thread may call these functions, in a forked child too. A machine without any sound device stays
/// silent and nothing is reported. At process end the tone at hand is played out, and all that still waits is
/// dropped.
namespace Audio {

/// Where sounds come from. In section "Audio" of "Torvex.ini" the value of "Device" is "None", "Int", "Ext"
/// or "Int+Ext".
enum AudioDevice : int {
    no_device = 1,
    internal_speaker = 2,
    sound_card = 3,
    both_devices = 4,
};

/// The sounds, told apart by pitch, length and direction.
enum SoundType : int {
    middle_tone = 0,    ///< 384 Hz for 40 ms
    high_tone = 1,      ///< 512 Hz for 40 ms
    low_tone = 2,       ///< 256 Hz for 80 ms
    rising_tones = 3,   ///< 512 Hz, then 1024 Hz, for 100 ms each
    falling_tones = 4,  ///< 384 Hz, then 256 Hz, for 100 ms each
};

/// The device in use. The first call reads the settings file and adds "Int" where the file says nothing; a
/// value that is none of the four, compared without regard to case, counts as "Int" and is replaced by it in
/// the file. Later calls return what the first one found or what `set_audio_device` has set since.
TVMATH_API enum AudioDevice get_audio_device();

/// Uses `device` from now on and stores it in the settings file. A value that is none of the four counts as
/// `internal_speaker`.
TVMATH_API void set_audio_device(enum AudioDevice device);

/// Plays a sound on the device in use and returns without waiting for it.
///
/// On the internal speaker the tones of one call follow those of the call before; a call that finds five
/// others waiting is dropped. On the sound card a new sound cuts off the one before. A value of `type`
/// outside the enumeration sounds as `high_tone` on the speaker and only cuts off the sound before on the
/// card.
TVMATH_API void FeedbackSound(enum SoundType type);

}  // namespace Audio

}  // namespace tvmath
