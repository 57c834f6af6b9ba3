#include <string>
#include <vector>

#include "command_arguments.h"

inline namespace tvmath {
namespace {

char const* const notes =
    "Features, their places and sizes in pixels from the upper left corner of the image, y downward, angles\n"
    "from +x to +y, in radians or as 30deg:\n"
    "  line X1 Y1 X2 Y2\n"
    "  circle RADIUS X Y\n"
    "  arc RADIUS START INCLUDED X Y\n"
    "  rectangle WIDTH HEIGHT ANGLE X Y\n"
    "  slot HALF-LENGTH HALF-WIDTH ANGLE X Y\n"
    "  point X Y [ANGLE]                        the angle of the normal, along which the edge is looked for\n"
    "With --pixel, --transform or a job that has them results count from the middle of the image, in their\n"
    "units; NOMINAL is in those too. Several features stand in a JOB.json, whose keys are the options "
    "below.\n"
    "The exit status is 1 when a feature is out of tolerance, 4 when one is not found.\n";

// Where a feature is given in several words, they are one.
void add_feature(CLI::App& command, std::string& feature) {
    command
        .add_option_function<std::vector<std::string>>(
            "FEATURE",
            [&feature](std::vector<std::string> const& words) {
                for (std::string const& word : words) feature += (feature.empty() ? "" : " ") + word;
            },
            "What to measure, as listed below; or --config for many")
        ->type_name("");
}

}  // namespace

CLI::App* add_measure(CLI::App& app, measure_request& request) {
    CLI::App* const measure = app.add_subcommand("measure", "Measure features in an image");
    auto const option = [measure](char const* name, std::string& value, char const* form, char const* what) {
        return measure->add_option(name, value, what)->type_name(form);
    };
    option("IMAGE", request.image, "", "A PNG or PGM file; - is standard input")->required();
    add_feature(*measure, request.feature);
    option("--config", request.config, "JOB.json", "What to measure and in which frame, from this file");
    option("--search", request.search, "PIXELS",
           "How far the edge may lie off to either side, 2 to 500; 10 else");
    option("--spacing", request.spacing, "PIXELS", "Of the places along the outline, 3 to 1000; 12 else");
    option("--edge", request.edge, "any|rising|falling",
           "How the grey changes along the outward normal, of a line to the right of its direction");
    option("--contrast", request.contrast, "C", "The least change of grey, 0 to 1 for white; 0.03 else");
    option("--outliers", request.outliers, "K",
           "Points beyond so many robust standard deviations are left out, 2 to 100; 3.5 else, 0 keeps all");
    option("--nominal", request.nominal, "'KIND PARAMETERS'", "What the feature should be");
    option("--tolerance", request.tolerance, "T|NAME=T,...",
           "The greatest form error, or of what is named, as radius=0.01,center=0.02 or width=-0.01:0.02");
    option("--pixel", request.pixel, "SX [SY]", "The length of a pixel; a negative SY turns y upward");
    option("--transform", request.transform_file, "FILE",
           "Instead, the whole way from the screen, as fit transform --record-file writes it");
    option("--screen", request.screen, "CORRECTOR", "The correction of the screen, as calibrate writes it");
    option("--flatness", request.flatness, "CORRECTOR", "The correction of heights; goes with --z");
    option("--z", request.z, "Z", "The height of the image, which makes its points 3D");
    option("--unit", request.unit, "WORD", "The unit of the results in the reports");
    option("--overlay", request.overlay, "PICTURE.png", "Draw the features and edge points into the image");
    option("--plot", request.plot, "PICTURE.svg|png|pdf", "Draw the image, the features and their figures");
    option("--points", request.points, "OUT.csv", "Write a row for each edge point");
    option("--centers", request.centers, "OUT.csv", "Write the place of each feature, a row x,y");
    option("--records", request.records, "OUT.txt", "Write the features, each as a name and a text");
    measure->add_flag("--json", request.json, "Write JSON instead of text");
    measure->add_flag("--summary", request.summary, "Write one table of what has limits instead")
        ->excludes("--json");
    measure->footer(notes);
    return measure;
}

}  // namespace tvmath
