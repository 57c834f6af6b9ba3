#pragma once

#include <iosfwd>
#include <string>

#include "construct/construct_request.h"
#include "exit_status.h"

inline namespace tvmath {

/// Constructs a feature from others and reports all answers to `out`. One line to `err` for what went wrong;
/// no file is written then.
exit_status run_construct(construct_request const& request, std::ostream& out, std::ostream& err);

/// The operations with the features that they take, for the help.
std::string construct_help();

}  // namespace tvmath
