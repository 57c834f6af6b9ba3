#pragma once

#include <functional>
#include <string>

#include "services/service_test.h"

inline namespace tvmath {

/// Runs `work`, with its expectations, in a process whose settings for vision tools are `lines`. True when
/// they held. A process keeps the first answer of a switch, so each setting has its own.
inline bool with_vision_settings(std::string const& lines, std::function<void()> const& work) {
    installation place;
    write_bytes(place.common("Torvex.ini"), text_file("[Vision Tools]\r\n" + lines));
    return in_fresh_process(work);
}

inline bool with_new_algorithms(bool is_new, std::function<void()> const& work) {
    return with_vision_settings(is_new ? "" : "New Algorithms=Disabled\r\n", work);
}

}  // namespace tvmath
