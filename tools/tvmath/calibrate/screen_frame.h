#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exit_status.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// The way from the screen to the machine of pixels that measure so much along x and y, 3D; one number serves
/// both. False, with the reason, for more or fewer numbers, for 0 and for what is not finite.
bool pixel_transform(std::vector<double> const& sizes, std::optional<transform>& to_machine,
                     std::string& reason);

/// The same from a record of a transform in a text file; 3D. Otherwise says in one line, which begins with
/// the file, what is wrong.
exit_status read_transform(std::string const& name, std::optional<transform>& to_machine,
                           std::string& reason);

}  // namespace tvmath
