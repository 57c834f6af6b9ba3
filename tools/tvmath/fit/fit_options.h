#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

struct fit_kind;

/// What the user asks of `tvmath fit`, in words as they were typed. Numbers are separated by blanks or
/// commas.
struct fit_request {
    std::string kind;
    std::vector<std::string> files;  ///< "-" is standard input
    std::vector<std::string> center, through, tangent, parallel, perpendicular, nominal;
    std::string method;       ///< of the paths; empty for the first one
    std::string onto;         ///< file of the points that a transform leads to
    std::string residuals;    ///< file to be written
    std::string plot;         ///< file to be written
    std::string record;       ///< form of the fitted record, text or xml; empty for none
    std::string record_file;  ///< file to be written; without one the record is printed
    std::string tolerance;
    bool quick = false, diameter = false, sort = false, zone = false, flip = false;
    bool json = false, decimal_comma = false;
};

/// The options that not every kind takes, as bits.
enum fit_option : unsigned {
    option_center = 0x1,
    option_through = 0x2,
    option_tangent = 0x4,
    option_parallel = 0x8,
    option_perpendicular = 0x10,
    option_nominal = 0x20,
    option_method = 0x40,
    option_onto = 0x80,
    option_quick = 0x100,
    option_diameter = 0x200,
    option_sort = 0x400,
    option_zone = 0x800,
    option_flip = 0x1000,
};

enum class path_method { interpolating, least_squares, minimum_curvature };

/// What is known of the feature beside its points.
struct fit_conditions {
    unsigned given = 0;  ///< bits of the options that were given
    std::optional<point> center;
    std::vector<point> through;
    std::vector<std::vector<double>> tangent;  ///< 4 numbers, a line; or 6, a point and a normal
    std::vector<double> parallel;  ///< a direction of 2 or 3 numbers, or a line of 4; so the next one
    std::vector<double> perpendicular;
    std::vector<std::shared_ptr<Geometry_Description const>> nominal;
    path_method method = path_method::interpolating;
    std::vector<point> onto;  ///< read by the command
    std::optional<double> tolerance;
    std::vector<std::string> words;  ///< the conditions as the report repeats them: "center 1 2"

    bool has(unsigned option) const { return (given & option) != 0; }
};

/// Reads the words of a request for that kind. Returns true and sets `known`, all but `onto`; returns false
/// and says in one line what is wrong.
bool read_conditions(fit_request const& request, fit_kind const& kind, fit_conditions& known,
                     std::string& reason);

/// Makes the nominal feature of a kind from its words, "circle 4 0 0". False, with the reason, for another
/// kind.
bool make_nominal(std::string const& words, fit_kind const& kind,
                  std::shared_ptr<Geometry_Description const>& nominal, std::string& reason);

/// The options of a kind, as they are typed: "--center, --quick".
std::string option_names(unsigned options);

}  // namespace tvmath
