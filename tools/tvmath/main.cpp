#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "calibrate/calibrate_command.h"
#include "convert_command.h"
#include "exit_status.h"
#include "fit_command.h"
#include "fit_kinds.h"
#include "mesh_command.h"
#include "record_parameters.h"
#include "render_command.h"
#include "show_command.h"
#include "tvmath/version.h"

inline namespace tvmath {
namespace {

// Examples come first in every help: most readers look for a line to copy.
char const* const examples =
    "Examples:\n"
    "  tvmath fit circle bore.csv --plot bore.svg  centre, radius, roundness, and a picture of them\n"
    "  tvmath fit line left.csv right.csv --json   two lines, for a program to read\n"
    "  tvmath fit arc edge.csv --tangent 0 0 9 0 --tolerance 0.02\n"
    "                                              an arc that touches a line, with an exit status of 1\n"
    "                                              when its points are out of round\n"
    "  cat part*.xyz | tvmath fit cylinder -       one cylinder through the points of several files\n"
    "  tvmath zone circle bore.csv --plot bore.svg roundness by the minimum zone, with its contacts\n"
    "  tvmath mesh points.csv -o mesh.svg          the points joined to triangles\n"
    "  tvmath fit circle bore.csv --record-file bore.xml\n"
    "                                              the circle for another program\n"
    "  tvmath show bore.xml -o circle.svg          and back: its parameters, and a picture of it\n"
    "  tvmath convert profile.csv profile.hex --method 3\n"
    "                                              measured points in a quarter of the bytes\n"
    "  tvmath render ellipse 4 2 30deg 0 0 --offset 0.5 -o ellipse.svg\n"
    "                                              an ellipse, its parallel and their bounding rectangles\n"
    "  tvmath calibrate screen seen.csv nominal.csv --screen-size 640 480 -o lens.txt --plot lens.svg\n"
    "                                              the distortion of a lens, as a file and a picture\n"
    "  tvmath correct lens.txt points.csv -o true.csv\n"
    "                                              points of the screen to where they truly lie\n";

// Sets the examples before the description of each help, but not into the list of commands.
class examples_first : public CLI::Formatter {
public:
    std::string make_description(CLI::App const* app) const override {
        return examples + ("\n" + CLI::Formatter::make_description(app));
    }
};

// One line, whatever the message was made of.
void complain(std::string message) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::cerr << "tvmath: " << message << '\n';
}

// An option whose words, each a text of numbers, are kept for every time that it is given.
void add_numbers(CLI::App& app, char const* name, std::vector<std::string>& texts, char const* form,
                 char const* what) {
    app.add_option(name, texts, what)->type_name(form)->expected(1)->take_all()->allow_extra_args(false);
}

void add_decimal(CLI::App& command, bool& decimal_comma) {
    command
        .add_option_function<std::string>(
            "--decimal", [&decimal_comma](std::string const&) { decimal_comma = true; },
            "The decimal mark of the numbers in the files, when it is a comma")
        ->type_name(",")
        ->check(CLI::IsMember({","}).description(""));
}

char const* const file_help = "Points as CSV or XYZ text, 2 or 3 columns; - is standard input";

void add_input(CLI::App& command, fit_request& request) {
    command.add_option("KIND", request.kind, "What to fit, as listed below")->required()->type_name("");
    command.add_option("FILE", request.files, file_help)->required()->type_name("");
}

void add_output(CLI::App& command, fit_request& request) {
    command
        .add_option("--residuals", request.residuals,
                    "Write a row for each point: index, coordinates, residual")
        ->type_name("OUT.csv");
    command.add_option("--plot", request.plot, "Draw the points, the feature and the residuals")
        ->type_name("PICTURE.svg|png|pdf");
    command.add_option("--tolerance", request.tolerance, "Exit with 1 when the form error is above")
        ->type_name("T");
    command.add_flag("--json", request.json, "Write JSON instead of text");
    add_decimal(command, request.decimal_comma);
}

void add_fit(CLI::App& app, fit_request& request) {
    CLI::App* const fit = app.add_subcommand("fit", "Fit a feature to the points of each file");
    add_input(*fit, request);
    add_numbers(*fit, "--center", request.center, "X Y [Z]", "The centre is known; a line passes it");
    add_numbers(*fit, "--through", request.through, "X Y [Z]", "Passes this point; may be repeated");
    add_numbers(*fit, "--tangent", request.tangent, "X1 Y1 X2 Y2",
                "Touches this line, or a sphere the plane X Y Z NX NY NZ; may be repeated");
    add_numbers(*fit, "--parallel", request.parallel, "DX DY [DZ]",
                "The direction, axis or normal is known; of a line also that of X1 Y1 X2 Y2");
    add_numbers(*fit, "--perpendicular", request.perpendicular, "DX DY",
                "At a right angle to this direction, or to the line X1 Y1 X2 Y2");
    add_numbers(*fit, "--nominal", request.nominal, "'KIND PARAMETERS'",
                "The nominal feature, in the words of tvmath render; a composite takes one for each FILE");
    fit->add_flag("--quick", request.quick, "The closed form: algebraic where the kind has such a fit");
    fit->add_flag("--zone", request.zone, "The minimum zone instead of least squares, with its contacts");
    fit->add_flag("--diameter", request.diameter, "The circle on two points as its diameter");
    fit->add_option("--method", request.method,
                    "Of a path: interpolating (the first choice), least-squares or minimum-curvature")
        ->type_name("NAME");
    fit->add_flag("--sort", request.sort, "The points of the path come in any order");
    fit->add_option("--onto", request.onto,
                    "The points, in pairs with those of FILE, that a transform leads to")
        ->type_name("FILE");
    add_output(*fit, request);
    fit->add_option("--record", request.record, "Print the fitted record in this form instead of the report")
        ->type_name("text|xml");
    fit->add_option("--record-file", request.record_file, "Write the fitted record into this file")
        ->type_name("OUT.txt|xml");
    fit->footer(fit_kinds_help());
}

CLI::App* add_zone(CLI::App& app, fit_request& request) {
    CLI::App* const zone = app.add_subcommand("zone", "Find the narrowest zone that holds all points");
    add_input(*zone, request);
    add_numbers(*zone, "--parallel", request.parallel, "DX DY DZ", "The normal of a plane is known");
    zone->add_flag("--flip", request.flip, "The seating plane lies on the points, not they on it");
    add_numbers(*zone, "--nominal", request.nominal, "'KIND PARAMETERS'",
                "The nominal feature, in the words of tvmath render");
    add_output(*zone, request);
    zone->footer(zone_kinds_help());
    return zone;
}

CLI::App* add_mesh(CLI::App& app, mesh_request& request) {
    CLI::App* const mesh = app.add_subcommand("mesh", "Join points in XY to triangles");
    mesh->add_option("FILE", request.file, file_help)->required()->type_name("");
    mesh->add_option("-o", request.output,
                     "A picture (.svg, .png, .pdf) or a table of triangles (.csv, or -)")
        ->type_name("FILE");
    mesh->add_flag("--json", request.json, "Write the counts and the area as JSON instead of text");
    add_decimal(*mesh, request.decimal_comma);
    return mesh;
}

CLI::App* add_render(CLI::App& app, render_request& request) {
    CLI::App* const render = app.add_subcommand("render", "Draw a shape from its parameters");
    render->add_option("KIND", request.kind, "What to draw; all draws a sample of every kind")
        ->required()
        ->type_name("");
    render->add_option("PARAMETERS", request.parameters, "Numbers, as listed below")->type_name("");
    render
        ->add_option("--offset", request.offsets, "Also draw the parallel at this distance; may be repeated")
        ->type_name("D")
        ->expected(1)
        ->take_all();
    render->add_option("--view", request.view, "Turn the shape before it is drawn, as seen along -Z")
        ->type_name("YAW PITCH ROLL")
        ->expected(3);
    render->add_option("-o", request.output, "A picture (.svg, .png, .pdf) or a table of points (.csv, or -)")
        ->required()
        ->type_name("FILE");
    render->footer(render_kinds_help());
    return render;
}

CLI::App* add_convert(CLI::App& app, convert_request& request) {
    CLI::App* const convert =
        app.add_subcommand("convert", "Write points or a record in another form: csv, text, hex or xml");
    convert->add_option("IN", request.input, "What is read; - is standard input")->required()->type_name("");
    convert->add_option("OUT", request.output, "What is written; - is standard output")
        ->required()
        ->type_name("");
    convert->add_option("--from", request.from, "The form of IN, where its suffix does not say it")
        ->type_name("csv|text|hex|xml");
    convert->add_option("--to", request.to, "The form of OUT, where its suffix does not say it")
        ->type_name("csv|text|hex|xml");
    convert->add_option("--kind", request.kind, "What a text holds that does not begin with its kind")
        ->type_name("KIND");
    convert
        ->add_option("--method", request.method,
                     "Of hex: 0 keeps every bit (the first choice), 1, 2 and 3 take 2, 3 and 6 bytes a point")
        ->type_name("0..3");
    convert->add_option("--precision", request.precision, "Digits of points in text and xml; 15 else")
        ->type_name("N");
    convert->add_flag("--bare", request.bare, "A text without the word for its kind");
    return convert;
}

CLI::App* add_show(CLI::App& app, show_request& request) {
    CLI::App* const show = app.add_subcommand("show", "Report and draw the points or the record in a file");
    show->add_option("FILE", request.file, "As convert writes them; - is standard input")
        ->required()
        ->type_name("");
    show->add_option("--from", request.from, "The form of FILE, where its suffix does not say it")
        ->type_name("csv|text|hex|xml");
    show->add_option(
            "--kind", request.kind,
            "What a text holds that does not begin with its kind; open-data or closed-data joins points")
        ->type_name("KIND");
    show->add_option("-o", request.output, "A picture (.svg, .png, .pdf) or a table of points (.csv, or -)")
        ->type_name("PICTURE");
    return show;
}

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

bool is_number(std::string const& word) {
    double ignored = 0;
    std::string reason;
    return parse_parameter(word, ignored, reason);
}

// How many numbers follow an option at most; 0 for an option of another kind. A file whose name is a number
// is written with its folder.
std::size_t most_numbers(std::string const& word) {
    if (word == "--center" || word == "--through") return 3;
    if (word == "--parallel" || word == "--perpendicular") return 4;
    if (word == "--pixel") return 2;
    return word == "--tangent" ? 6 : 0;
}

// The arguments in the order that the parser wants, the last one first. The numbers behind an option become
// one word with it, since the parser cannot tell them from the files that follow. To it -5 is a number and
// -.5 an unknown option.
std::vector<std::string> words_of(int argc, char** argv) {
    std::vector<std::string> const given(argv + std::min(argc, 1), argv + argc);
    std::vector<std::string> words;
    for (std::size_t i = 0; i < given.size(); ++i) {
        std::string word = given[i];
        std::size_t const most = most_numbers(word);
        if (word.starts_with("-.")) word.insert(1, "0");
        // A text of several numbers in quotes is not one, but may begin with a minus sign as well.
        bool const in_quotes = most > 0 && i + 1 < given.size() && !given[i + 1].starts_with("--");
        for (std::size_t n = 0; n < most && i + 1 < given.size(); ++n) {
            if (!is_number(given[i + 1]) && !(n == 0 && in_quotes)) break;
            word += (n == 0 ? "=" : " ") + given[++i];
            if (n == 0 && !is_number(given[i])) break;
        }
        words.push_back(word);
    }
    std::reverse(words.begin(), words.end());
    return words;
}

exit_status run(int argc, char** argv) {
    CLI::App app(
        "Fits geometric features, zones and corrections to measured points, draws shapes, and converts all.",
        "tvmath");
    app.set_version_flag("--version", std::string(version()), "Print the version of the library and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<examples_first>());  // handed down to the commands

    fit_request to_fit;
    render_request to_render;
    fit_request to_zone;
    mesh_request to_mesh;
    convert_request to_convert;
    show_request to_show;
    calibrate_request to_calibrate;
    correct_request to_correct;
    add_fit(app, to_fit);
    CLI::App const* const zone = add_zone(app, to_zone);
    CLI::App const* const mesh = add_mesh(app, to_mesh);
    CLI::App const* const render = add_render(app, to_render);
    CLI::App const* const convert = add_convert(app, to_convert);
    CLI::App const* const show = add_show(app, to_show);
    CLI::App const* const calibrate = add_calibrate(app, to_calibrate);
    CLI::App const* const correct = add_correct(app, to_correct);
    try {
        app.parse(words_of(argc, argv));
        if (std::count(to_fit.files.begin(), to_fit.files.end(), "-") + (to_fit.onto == "-") > 1 ||
            std::count(to_zone.files.begin(), to_zone.files.end(), "-") > 1) {
            throw CLI::ValidationError("FILE", "standard input (-) can be read only once");
        }
    } catch (CLI::ParseError const& error) {
        // Success is how the parser reports --help and --version.
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            app.exit(error, std::cout, std::cerr);
            return exit_status::done;
        }
        complain(std::string(error.what()) + " (tvmath --help shows examples)");
        return exit_status::wrong_usage;
    }
    if (render->parsed()) return run_render(to_render, std::cout, std::cerr);
    if (zone->parsed()) return run_zone(to_zone, std::cout, std::cerr);
    if (mesh->parsed()) return run_mesh(to_mesh, std::cout, std::cerr);
    if (convert->parsed()) return run_convert(to_convert, std::cout, std::cerr);
    if (show->parsed()) return run_show(to_show, std::cout, std::cerr);
    if (calibrate->parsed()) return run_calibrate(to_calibrate, std::cout, std::cerr);
    if (correct->parsed()) return run_correct(to_correct, std::cout, std::cerr);
    return run_fit(to_fit, std::cout, std::cerr);
}

}  // namespace
}  // namespace tvmath

int main(int argc, char** argv) {
    try {
        std::ios::sync_with_stdio(false);  // a pipe of a million points is read in large pieces
        exit_status status = run(argc, argv);
        // A full disk shows only here; a result that nobody got is no success.
        if (!std::cout.flush()) {
            complain("the results cannot be written to standard output");
            status = exit_status::internal;
        }
        return static_cast<int>(status);
    } catch (std::bad_alloc const&) {
        complain("not enough memory");
    } catch (std::exception const& error) {
        complain(std::string("internal error: ") + error.what());
    } catch (...) {
        complain("internal error");
    }
    return static_cast<int>(exit_status::internal);
}
