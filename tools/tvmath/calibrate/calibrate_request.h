#pragma once

#include <string>
#include <vector>

inline namespace tvmath {

/// What the user asks of `tvmath calibrate`, in words as they were typed; empty where nothing was said.
struct calibrate_request {
    std::string kind = {}, measured = {};
    std::string nominal = {};                   ///< of telecentricity the places of the stage
    std::vector<std::string> screen_size = {};  ///< width and height
    std::string max_order = {}, z_nominal = {}, z_reference = {};
    std::string screen = {};          ///< file of a screen corrector
    std::string pixel = {};           ///< one or two numbers
    std::string transform_file = {};  ///< takes the place of `pixel`
    std::string output = {};          ///< file to be written; "-" is standard output
    std::string plot = {};            ///< file to be written
    bool json = false, decimal_comma = false;
};

/// The same of `tvmath correct`.
struct correct_request {
    std::string corrector = {}, points = {}, output = {}, z_reference = {};
    bool remove = false, decimal_comma = false;
};

}  // namespace tvmath
