#pragma once

#include <iosfwd>

#include "construct/construct_result.h"

inline namespace tvmath {

/// A table for people: each answer with its figures, the chosen one marked.
void write_text(std::ostream& out, construct_result const& result);

/// A document of schema tvmath.construct/1 for programs.
void write_json(std::ostream& out, construct_result const& result);

}  // namespace tvmath
