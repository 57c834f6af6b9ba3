#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "command_arguments.h"
#include "exit_status.h"
#include "record/record_parameters.h"
#include "tvmath/version.h"

inline namespace tvmath {
namespace {

// Examples come first in every help: most readers look for a line to copy.
char const* const examples =
    "Examples:\n"
    "  tvmath measure plate.png --config plate.json --overlay seen.png\n"
    "                                              the features of a part in an image, against their\n"
    "                                              tolerances, and the image with them drawn in\n"
    "  tvmath measure plate.png 'circle 80 320 240' --pixel 0.005 --tolerance 0.01\n"
    "                                              a bore of about 80 pixels about (320, 240)\n"
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
    "  tvmath construct tangent 'circle 2 0 0' 'circle 1 5 0' --choose 2 --plot tangents.svg\n"
    "                                              the second of the common tangents, and a picture of all\n"
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
        "Measures features in images, fits features, zones and corrections to measured points, constructs "
        "features from others, draws shapes, and converts all of them.",
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
    construct_request to_construct;
    calibrate_request to_calibrate;
    correct_request to_correct;
    measure_request to_measure;
    add_fit(app, to_fit);
    CLI::App const* const zone = add_zone(app, to_zone);
    CLI::App const* const mesh = add_mesh(app, to_mesh);
    CLI::App const* const render = add_render(app, to_render);
    CLI::App const* const convert = add_convert(app, to_convert);
    CLI::App const* const show = add_show(app, to_show);
    CLI::App const* const construct = add_construct(app, to_construct);
    CLI::App const* const calibrate = add_calibrate(app, to_calibrate);
    CLI::App const* const correct = add_correct(app, to_correct);
    CLI::App const* const measure = add_measure(app, to_measure);
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
    if (construct->parsed()) return run_construct(to_construct, std::cout, std::cerr);
    if (show->parsed()) return run_show(to_show, std::cout, std::cerr);
    if (calibrate->parsed()) return run_calibrate(to_calibrate, std::cout, std::cerr);
    if (correct->parsed()) return run_correct(to_correct, std::cout, std::cerr);
    if (measure->parsed()) return run_measure(to_measure, std::cout, std::cerr);
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
