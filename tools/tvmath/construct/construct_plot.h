#pragma once

#include <optional>
#include <string>

#include "construct/construct_result.h"

inline namespace tvmath {

/// A page with the features, all answers and the chosen one in its colour, and the figures of that; as the
/// bytes of a picture of that suffix, empty when it cannot be made. The view is that of `scene_of`.
std::string construct_plot(construct_result const& result, std::optional<transform> const& view,
                           std::string const& suffix);

}  // namespace tvmath
