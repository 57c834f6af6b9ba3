#pragma once

#include <string>
#include <vector>

inline namespace tvmath {

/// What the user asks of `tvmath measure`, in words as they were typed; empty where nothing was said.
struct measure_request {
    std::string image = {};    ///< "-" is standard input
    std::string feature = {};  ///< "circle 80 320 240", the short form; takes the place of `config`
    std::string config = {};   ///< file of the job
    // What a job says of one tool and of the frame, for the short form.
    std::string search = {}, spacing = {}, edge = {}, outliers = {}, contrast = {};
    std::string nominal = {}, tolerance = {};
    std::string pixel = {};  ///< one or two numbers
    std::string transform_file = {}, screen = {}, flatness = {}, z = {}, unit = {};
    // What is to be written.
    std::string overlay = {};  ///< picture of the size of the image
    std::string plot = {};     ///< the sheet
    std::string points = {};   ///< table of edge points
    std::string records = {};  ///< texts of the features
    std::string centers = {};  ///< table of their places
    bool json = false, summary = false;
};

}  // namespace tvmath
