#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// A fitted feature of one file. What a feature does not have is trivial or 0 and is not reported: only a
/// line has a direction, only circle and sphere have a radius. All numbers are finite.
struct fit_result {
    std::string file;
    std::string feature;         ///< "point", "line", "circle" or "sphere"
    unsigned int dimension = 0;  ///< of the points, 2 or 3
    std::size_t points = 0;
    point center;
    point direction;
    double radius = 0;
    double rms_residual = 0;

    bool has_radius() const { return feature == "circle" || feature == "sphere"; }
    /// Lines and circles are features of the XY plane, whatever the points are.
    bool forgets_z() const { return dimension == 3 && (feature == "line" || feature == "circle"); }
};

/// A table for people: labels on the left, decimal points below each other.
void write_text(std::ostream& out, fit_result const& result);

/// A document of schema tvmath.fit/1 for programs.
void write_json(std::ostream& out, std::vector<fit_result> const& results);

}  // namespace tvmath
