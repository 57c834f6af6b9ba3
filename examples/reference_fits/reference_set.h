#pragma once

#include <tvmath/point.h>

#include <array>
#include <map>
#include <string>
#include <vector>

/// Numbers of a feature by their names: "center" has two or three of them, "radius" one.
using figures = std::map<std::string, std::vector<double>>;

/// Points with the answer that their least squares feature must have.
struct reference_set {
    std::string name;
    std::string kind;       ///< circle, sphere, line, plane, ellipse, cylinder or cone.
    std::string origin;     ///< Where the points are from.
    std::string known_by;   ///< How the answer is known.
    std::string published;  ///< What the source itself prints; empty when it prints no answer.
    std::vector<point> points;
    figures answer;            ///< Of least squares of the orthogonal distances.
    figures algebraic_answer;  ///< Of the closed forms of circle and sphere; empty when it is not known.
    double bound = 1e-12;      ///< Relative to the size: as many digits as the points determine.
};

/// The sets of a folder: each a NAME.json with the answers, beside the NAME.csv that it names.
/// Throws std::runtime_error for what it cannot read.
std::vector<reference_set> published_sets(std::string const& folder);

/// Sets in hard places whose points, exact in binary, have a least squares feature that is known exactly.
std::vector<reference_set> constructed_sets();
