#include <string>
#include <vector>

#include "command_arguments.h"
#include "fit_kinds.h"

inline namespace tvmath {
namespace {

// An option whose words, each a text of numbers, are kept for every time that it is given.
void add_numbers(CLI::App& app, char const* name, std::vector<std::string>& texts, char const* form,
                 char const* what) {
    app.add_option(name, texts, what)->type_name(form)->expected(1)->take_all()->allow_extra_args(false);
}

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

}  // namespace

void add_decimal(CLI::App& command, bool& decimal_comma) {
    command
        .add_option_function<std::string>(
            "--decimal", [&decimal_comma](std::string const&) { decimal_comma = true; },
            "The decimal mark of the numbers in the files, when it is a comma")
        ->type_name(",")
        ->check(CLI::IsMember({","}).description(""));
}

CLI::App* add_fit(CLI::App& app, fit_request& request) {
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
    return fit;
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

}  // namespace tvmath
