#pragma once

inline namespace tvmath {

/// Sounds a tone on the internal speaker of the computer and returns when its length is over. Returns false
/// at once when there is no speaker that this process may use.
///
/// The environment variable `TVMATH_TONE_DEVICE` names the speaker's device where the search finds none or
/// the wrong one; empty, it says that there is no speaker.
bool sound_tone(int hertz, int milliseconds);

}  // namespace tvmath
