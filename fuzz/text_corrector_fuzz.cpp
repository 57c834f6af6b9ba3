#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tvmath/corrector_text.h"

// The text, in UTF-8, of the three correctors: what comes of it corrects a point and a part of the screen
// without harm, and has a text that is one.

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    wide_string const text = to_wide({reinterpret_cast<char const*>(data), size});
    point const p(true, 12.5, -30, 4);

    screen_corrector const screen = Persistence::to_screen_corrector(text.c_str(), screen_corrector());
    volatile double sink = (p * screen / screen.sub_grab(point(true, 3, 5))).x();
    flatness_corrector const focus = Persistence::to_flatness_corrector(text.c_str(), flatness_corrector());
    sink = focus.get_focus_correction(p) + focus.get_focus_correction_derivative(p).y();
    sink = focus.get_focus_correction_at_y(p.y()).get_focus_correction_at_x(p.x());
    telecentricity_corrector const lens =
        Persistence::to_telecentricity_corrector(text.c_str(), telecentricity_corrector());
    sink = (p * lens / lens).x();
    static_cast<void>(sink);

    Persistence::to_ascii(screen, 9);
    Persistence::to_ascii(focus, 9);
    Persistence::to_ascii(lens, 9);
    return 0;
}
