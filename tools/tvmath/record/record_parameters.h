#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// A kind of record that can be made from numbers, and what these are, for the help.
struct record_form {
    char const* kind;
    char const* parameters;
};

/// All kinds, in the order of the help.
std::vector<record_form> record_forms();

/// The words of a text, which blanks or commas part.
std::vector<std::string> split_words(std::string text);

/// Makes a record from its kind ("line" is a segment) and its parameters in the order of `record_forms`. A
/// number is decimal; "deg"
/// behind it makes radians of degrees. Returns true and sets `record`; returns false and says in one line
/// why.
bool make_record(std::string const& kind, std::vector<std::string> const& parameters,
                 std::unique_ptr<Geometry_Description>& record, std::string& reason);

/// Reads one finite number, as above.
bool parse_parameter(std::string const& text, double& value, std::string& reason);
/// The same for the words of a text.
bool parse_parameters(std::string const& text, std::vector<double>& values, std::string& reason);

}  // namespace tvmath
