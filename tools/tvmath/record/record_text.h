#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tvmath/geometry_description.h"

inline namespace tvmath {

/// Reads a record, or a list of points as a point cloud, from its text form. Line ends and tabs count as
/// blanks, and the outer brackets may be missing. `type` is what the text is where it does not begin with the
/// word for its kind; 0 when that is not known, which makes it a list of points.
///
/// Returns true and sets `record`. Returns false and says in one line why for a text that does not hold such
/// a record to its last number: what the library's readers would pass over, or take for 0, is refused.
bool read_record_text(std::string text, unsigned long long type,
                      std::shared_ptr<Geometry_Description>& record, std::string& reason);

/// The text form of a record, on one line. `precision` is the number of digits of a list of points; records
/// have 8. Flat shapes are raised into space, since the readers take no others. `bare` leaves out the word
/// for the kind, which lists of points never have. False, with the reason, for a kind that has no text form,
/// for a null feature and for one with numbers that are not finite, which could not be read again.
bool record_text(Geometry_Description const& record, int precision, bool bare, std::string& text,
                 std::string& reason);

/// True when all of `word` is a finite number, as files write it.
bool is_file_number(std::string_view word, double& value);

}  // namespace tvmath
