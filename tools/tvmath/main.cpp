#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "exit_status.h"
#include "fit_command.h"
#include "render_command.h"
#include "tvmath/version.h"

inline namespace tvmath {
namespace {

// Examples come first in every help: most readers look for a line to copy.
char const* const examples =
    "Examples:\n"
    "  tvmath fit circle bore.csv                  centre, radius and residual of a circle\n"
    "  tvmath fit line left.csv right.csv --json   two lines, for a program to read\n"
    "  cat part*.xyz | tvmath fit sphere -         one sphere through the points of several files\n"
    "  tvmath render ellipse 4 2 30deg 0 0 --offset 0.5 -o ellipse.svg\n"
    "                                              an ellipse, its parallel and their bounding rectangles\n";

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

void add_fit(CLI::App& app, fit_request& request) {
    CLI::App* const fit = app.add_subcommand("fit", "Fit a feature to the points of each file");
    fit->add_option("FEATURE", request.feature, "point, line, circle or sphere")
        ->required()
        ->type_name("")
        ->check(CLI::IsMember({"point", "line", "circle", "sphere"}).description(""));
    fit->add_option("FILE", request.files, "Points as CSV or XYZ text, 2 or 3 columns; - is standard input")
        ->required()
        ->type_name("");
    fit->add_flag("--json", request.json, "Write JSON instead of text");
    fit->add_option_function<std::string>(
           "--decimal", [&request](std::string const&) { request.decimal_comma = true; },
           "The decimal mark of the numbers, when it is a comma")
        ->type_name(",")
        ->check(CLI::IsMember({","}).description(""));
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

// The arguments in the order that the parser wants, the last one first. To it -5 is a number and -.5 an
// unknown option.
std::vector<std::string> words_of(int argc, char** argv) {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    for (std::string& word : words) {
        if (word.starts_with("-.")) word.insert(1, "0");
    }
    std::reverse(words.begin(), words.end());
    return words;
}

exit_status run(int argc, char** argv) {
    CLI::App app("Fits geometric features to measured points, and draws shapes.", "tvmath");
    app.set_version_flag("--version", std::string(version()), "Print the version of the library and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<examples_first>());  // handed down to the commands

    fit_request to_fit;
    render_request to_render;
    add_fit(app, to_fit);
    CLI::App const* const render = add_render(app, to_render);
    try {
        app.parse(words_of(argc, argv));
        if (std::count(to_fit.files.begin(), to_fit.files.end(), "-") > 1) {
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
