#pragma once

#include <iosfwd>
#include <string>

#include "calibrate/calibrate_request.h"
#include "exit_status.h"

inline namespace tvmath {

/// Fits a corrector to the points of the files, reports it to `out`, and writes its text and its picture. One
/// line to `err` for what went wrong; no file is written when there is no corrector.
exit_status run_calibrate(calibrate_request const& request, std::ostream& out, std::ostream& err);

/// Applies or removes a corrector. One line to `err` for what went wrong.
exit_status run_correct(correct_request const& request, std::ostream& out, std::ostream& err);

/// The files and units of each kind, for the help.
std::string calibrate_help();

}  // namespace tvmath
