#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calibrate/calibrate_request.h"
#include "calibrate/corrector_file.h"
#include "exit_status.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// What a calibration starts from: the files and all that the options say.
struct calibrate_setup {
    corrector_kind kind = corrector_kind::screen;
    std::string measured_file, nominal_file;
    std::vector<point> measured;
    std::vector<point> nominal;          ///< of telecentricity the stage; none of flatness
    unsigned int width = 0, height = 0;  ///< of the screen; 0 where the kind does not ask for them
    unsigned int max_order = 0;
    std::optional<double> z;  ///< the nominal or the reference height
    screen_corrector screen;
    std::optional<transform> to_machine;  ///< 3D
};

constexpr unsigned int highest_order = 20;
/// Unless the user says another one.
constexpr unsigned int default_order(corrector_kind kind) {
    return kind == corrector_kind::screen ? 5 : 4;
}

/// Reads the words and the files of the request. On `done` sets `setup`; otherwise says in one line, which
/// begins with the program or the file, what is wrong.
exit_status read_setup(calibrate_request const& request, calibrate_setup& setup, std::string& reason);

/// Reads a list of points; `unreadable_input` with the reason, which begins with the name.
exit_status read_list(std::string const& name, bool decimal_comma, std::vector<point>& points,
                      std::string& reason);

}  // namespace tvmath
