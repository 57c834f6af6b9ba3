#pragma once

#include "tvmath/export.h"

inline namespace tvmath {

// Which behaviour is in force. A switch reads "Torvex.ini" on its first call and keeps the answer for the
// life of the process, so that it costs nothing in inner loops and cannot change in the middle of a run.
// Nothing is written. Any thread may call them.

// Section "Vision Tools"; values compare without case.

/// False if "New Algorithms" is "Disabled", true otherwise.
TVMATH_API bool new_vision_algorithms_enabled();
/// False if "Old Pattern Match" is "Enabled", true otherwise: the key names the old method.
TVMATH_API bool new_pattern_match_enabled();
/// True if "Learn Pattern If Imported" is "Enabled".
TVMATH_API bool learn_pattern_if_imported();

// Section "Beta Test": early features, on if the key is "Enabled" or "Enable" without regard to case, or
// starts with an integer other than 0.

TVMATH_API bool is_calibrate_scanner_enabled();                    ///< "Calibrate Scanner"
TVMATH_API bool is_low_noise_focus_gradient_enabled();             ///< "Low Noise Focus Gradient"
TVMATH_API bool is_new_adjustlights_autogain_algorithm_enabled();  ///< "New Auto-Gain Adjust Lights"
TVMATH_API bool is_pendant_programmable_buttons_enabled();         ///< "Pendant Programmable Buttons"
TVMATH_API bool is_play_at_enabled();                              ///< "Play At"
TVMATH_API bool is_point_cloud_pick_theta_enabled();               ///< "Point Cloud Pick Theta"
TVMATH_API bool is_rich_text_prompts_enabled();                    ///< "Rich Text Prompts"

}  // namespace tvmath
