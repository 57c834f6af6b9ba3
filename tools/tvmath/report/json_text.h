#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

inline namespace tvmath {

/// A document in the making, its members in the order they were put in.
using json_value = nlohmann::ordered_json;

/// Writes the document with two blanks for each depth and an end of line: numbers by `number_text`, lists of
/// numbers on one line, numbers that are not finite as null. Bytes that are not UTF-8 become replacement
/// characters, because JSON has no other way to hold them.
void write_json_text(std::ostream& out, json_value const& document);

}  // namespace tvmath
