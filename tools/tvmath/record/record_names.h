#pragma once

#include <memory>
#include <string>

#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// The word for a kind of record, as `tvmath render` and the files name it: "circle", "open-spline". Empty
/// for a type value of no single kind.
std::string record_name(unsigned long long type);

/// The kind of that word, also in the words of `tvmath fit` ("line", "o-ring", "closed-nurb"); 0 when there
/// is none.
unsigned long long record_type(std::string const& name);

/// A new record of that kind; null for a type value of no single kind.
std::shared_ptr<Geometry_Description> new_record(unsigned long long type);

/// "a circle", "an ellipse".
std::string with_article(std::string const& name);

/// The points of a record that is nothing but points; null for another kind.
std::vector<point>* points_in(Geometry_Description& record);
std::vector<point> const* points_in(Geometry_Description const& record);

}  // namespace tvmath
