#include "calibrate/calibrate_command.h"

#include <filesystem>
#include <ostream>

#include "calibrate/calibrate_plot.h"
#include "calibrate/calibrate_report.h"
#include "calibrate/calibrate_result.h"
#include "files/file_output.h"
#include "files/point_file.h"
#include "plot/canvas.h"

inline namespace tvmath {
namespace {

std::string suffix_of(std::string const& name) {
    return std::filesystem::path(name).extension().string();
}

bool check_output(calibrate_request const& request, std::string& reason) {
    if (!request.plot.empty() && !is_picture_suffix(suffix_of(request.plot))) {
        reason = is_picture_suffix(".svg")
                     ? shown_name(request.plot) + ": the suffix must be .svg, .png or .pdf"
                     : "this build makes no pictures";
    } else if (request.output == "-" && request.json) {
        reason = "-o - and --json both need standard output";
    }
    return reason.empty();
}

exit_status write_plot(std::string const& name, calibrate_result const& result, std::ostream& err) {
    std::string const bytes = calibrate_plot(result, suffix_of(name));
    if (!bytes.empty()) return write_file(name, bytes, err);
    err << shown_name(name) << ": the picture cannot be made\n";
    return exit_status::internal;
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
    return write_plot(request.plot, result, err);
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
