#pragma once

#include <string>
#include <vector>

inline namespace tvmath {

/// What the user asks of `tvmath construct`, in words as they were typed.
struct construct_request {
    std::string what = {};                   ///< the operation; "sheet" draws samples of all constructions
    std::vector<std::string> features = {};  ///< files, or kinds with their numbers
    std::string from = {};                   ///< form of files whose suffix does not say it
    std::string form = {};                   ///< of pairs with several constructions; empty for the usual one
    std::string radius = {};                 ///< of tangent circles; empty for none
    std::string choose = {};                 ///< number of the chosen answer, from 1; empty for the first
    std::string update = {};                 ///< file of the memory to be followed
    std::string save = {};                   ///< file to be written: the memory of this choice
    std::string record = {};                 ///< form of the chosen answer, text or xml; empty for none
    std::string record_file = {};            ///< file to be written; without one the record is printed
    std::string plot = {};                   ///< picture to be written
    std::vector<std::string> view = {};      ///< empty, or the three angles of a rotation: yaw, pitch, roll
    std::string sheet = {};                  ///< picture of all constructions to be written
    bool json = false;
};

}  // namespace tvmath
