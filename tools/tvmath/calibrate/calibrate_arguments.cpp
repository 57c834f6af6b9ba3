#include <string>

#include "command_arguments.h"

inline namespace tvmath {

CLI::App* add_calibrate(CLI::App& app, calibrate_request& request) {
    CLI::App* const calibrate =
        app.add_subcommand("calibrate", "Fit the correction of an optical error to measured points");
    auto const option = [calibrate](char const* name, std::string& value, char const* form,
                                    char const* what) {
        return calibrate->add_option(name, value, what)->type_name(form);
    };
    option("KIND", request.kind, "", "screen, flatness or telecentricity, as told below")->required();
    option("MEASURED", request.measured, "", file_help)->required();
    option("NOMINAL", request.nominal, "", "What goes with each point of MEASURED, but for flatness");
    calibrate->add_option("--screen-size", request.screen_size, "The pixels of the camera")
        ->type_name("W H")
        ->expected(2);
    option("--max-order", request.max_order, "N", "The highest order that is tried");
    option("--z-nominal", request.z_nominal, "Z",
           "Of flatness: the height that all points have; their mean else");
    option("--z-reference", request.z_reference, "Z",
           "Of telecentricity: the height of the stage at which nothing is corrected");
    option("--pixel", request.pixel, "SX [SY]", "The size of a pixel in units of the machine");
    option("--transform", request.transform_file, "FILE",
           "The way from the screen to the machine, as fit transform --record-file writes it");
    option("--screen", request.screen, "CORRECTOR", "The correction of the screen that is made before");
    option("-o", request.output, "OUT",
           "Write the corrector into this file; - prints it, without the report");
    option("--plot", request.plot, "PICTURE.svg|png|pdf",
           "Draw the corrections and the errors that they leave");
    calibrate->add_flag("--json", request.json, "Write JSON instead of text");
    add_decimal(*calibrate, request.decimal_comma);
    calibrate->footer(calibrate_help());
    return calibrate;
}

CLI::App* add_correct(CLI::App& app, correct_request& request) {
    CLI::App* const correct = app.add_subcommand("correct", "Correct points as calibrate has found it");
    correct->add_option("CORRECTOR", request.corrector, "A file that calibrate -o has written")
        ->required()
        ->type_name("");
    correct->add_option("POINTS", request.points, file_help)->required()->type_name("");
    correct->add_flag("--remove", request.remove, "Take the correction off instead");
    correct
        ->add_option("--z-reference", request.z_reference,
                     "Of telecentricity: the height from which those of POINTS count; 0 else")
        ->type_name("Z");
    correct
        ->add_option("-o", request.output,
                     "Where the points go, in the form of the suffix; - or none prints CSV")
        ->type_name("OUT.csv|xyz|txt|hex|xml");
    add_decimal(*correct, request.decimal_comma);
    return correct;
}

}  // namespace tvmath
