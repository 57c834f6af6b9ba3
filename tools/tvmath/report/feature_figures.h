#pragma once

#include <string>
#include <vector>

#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

enum class figure_kind {
    length,
    number,
    count,
    angle,       ///< in radians, of a full turn
    axis_angle,  ///< in radians, of a line without sense: half a turn changes nothing
    location,
    direction,  ///< a unit vector
    axis,       ///< a unit vector, whose sense means nothing
    rows        ///< a list of points or of numbers, for programs
};

/// One parameter of a feature.
struct figure {
    std::string label;  ///< in words: "included angle"
    figure_kind kind;
    std::vector<double> values;  ///< coordinates, or the rows after each other
    std::size_t columns = 1;     ///< of rows
};

/// Whether its value is an angle in radians.
inline bool is_angle(figure const& f) {
    return f.kind == figure_kind::angle || f.kind == figure_kind::axis_angle;
}

/// All parameters of the record, in the order of the report. Empty for a kind without any.
std::vector<figure> figures_of(Geometry_Description const& record);

/// For each figure that both have: `fitted` less `nominal`. Angles come out between -half a turn and half a
/// turn (axes: a quarter), directions as the angle between them. Rows and counts are left out.
std::vector<figure> deviations(std::vector<figure> const& fitted, std::vector<figure> const& nominal);

}  // namespace tvmath
