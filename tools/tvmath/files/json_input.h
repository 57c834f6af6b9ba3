#pragma once

#include <nlohmann/json.hpp>
#include <string>

inline namespace tvmath {

/// Reads a JSON document of bounded depth, without comments, whose objects have each key once; the time grows
/// with n log n, the memory stays within some ten times the size of the text. False when it is none:
/// `reason` then begins with the line and the column, as "3:14: ", and is one printable line.
bool read_json(std::string const& text, nlohmann::json& document, std::string& reason);

}  // namespace tvmath
