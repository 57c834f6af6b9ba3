#pragma once

#include "fit_result.h"
#include "report/json_text.h"

inline namespace tvmath {

/// Adds the members of a fit to an object: what was found and its errors, all of `result` but file and kind.
void put_fit(json_value& object, fit_result const& result);

}  // namespace tvmath
