#include "calibrate/calibrate_command.h"

#include <ostream>

#include "calibrate/calibrate_plot.h"
#include "calibrate/calibrate_report.h"
#include "calibrate/calibrate_result.h"
#include "files/file_output.h"
#include "files/point_file.h"
#include "plot/picture_file.h"

inline namespace tvmath {
namespace {

bool check_output(calibrate_request const& request, std::string& reason) {
    if (!check_picture_name(request.plot, reason)) return false;
    if (request.output != "-" || !request.json) return true;
    reason = "-o - and --json both need standard output";
    return false;
}

}  // namespace

exit_status run_calibrate(calibrate_request const& request, std::ostream& out, std::ostream& err) {
    std::string reason;
    if (!check_output(request, reason)) {
        err << "tvmath: " << reason << '\n';
        return exit_status::wrong_usage;
    }
    calibrate_setup setup;
    calibrate_result result;
    exit_status status = read_setup(request, setup, reason);
    if (status == exit_status::done) status = calibrate(setup, result, reason);
    if (status != exit_status::done) {
        err << reason << '\n';
        return status;
    }
    std::string const text = corrector_text(result.corrector);
    if (request.output == "-") {
        out << text;
    } else {
        request.json ? write_json(out, result) : write_text(out, result);
        if (!request.output.empty()) status = write_file(request.output, text, err);
    }
    if (status != exit_status::done || request.plot.empty()) return status;
    return write_picture(request.plot, calibrate_plot(result, suffix_of(request.plot)), err);
}

std::string calibrate_help() {
    return "Correctors, their files and what they need:\n"
           "  screen          MEASURED: x, y as seen, NOMINAL: x, y as they truly are; --screen-size\n"
           "  flatness        MEASURED: x, y as seen and the height of focus there; --screen-size, --pixel\n"
           "  telecentricity  MEASURED: x, y as seen and, in a third column, the number of the artefact from "
           "0\n"
           "                  on, NOMINAL: x, y, z of the stage; --z-reference, --pixel\n"
           "Places on the screen are in pixels from its middle. With --pixel, NOMINAL of a screen corrector "
           "is\n"
           "in the units of the machine. The orders tried end at 5 for the screen, at 4 for flatness.\n";
}

}  // namespace tvmath
