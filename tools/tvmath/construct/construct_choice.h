#pragma once

#include <string>

#include "construct/construct_result.h"

inline namespace tvmath {

/// What was chosen the last time, as a file holds it: the text of a `multi_solution`, or of an angle.
struct old_choice {
    std::string file;  ///< as it is shown
    std::string text;
    Angle_Description angle;  ///< of an operation `angle`
};

/// Reads the file of `--update` for that operation. Otherwise says in one line what is wrong.
exit_status read_old_choice(std::string const& file, operation what, old_choice& old, std::string& reason);

/// Chooses among the answers of `result`: the one of that number, counted from 1, the counterpart of the old
/// choice, or the first; null and empty words stand for nothing of the kind. `memory` may be empty, for
/// constructions that have none. Sets the choice and its text.
exit_status choose(std::string const& number, old_choice const* old,
                   idioms::ref<multi_solution> const& memory, construct_result& result, std::string& reason);

}  // namespace tvmath
