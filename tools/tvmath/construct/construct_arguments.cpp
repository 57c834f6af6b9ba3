#include <string>

#include "command_arguments.h"

inline namespace tvmath {

CLI::App* add_construct(CLI::App& app, construct_request& request) {
    CLI::App* const construct = app.add_subcommand("construct", "Construct a feature from others");
    auto const option = [construct](char const* name, std::string& value, char const* form,
                                    char const* what) {
        return construct->add_option(name, value, what)->type_name(form);
    };
    option("WHAT", request.what, "", "The construction, as listed below")->required();
    construct
        ->add_option("FEATURE", request.features, "A file of a record or of points, or 'KIND PARAMETERS'")
        ->type_name("");
    option("--radius", request.radius, "R", "The radius of tangent circles");
    option("--as", request.form, "xy|space|circle|ellipse", "Which form, where a pair has several");
    option("--choose", request.choose, "N", "The number of the answer, from 1; the first one else");
    option("--update", request.update, "OLD",
           "Choose as that file says, which --save wrote for the last part");
    option("--save", request.save, "FILE", "Write which answer is chosen, for --update on the next part");
    construct->add_flag("--json", request.json, "Write JSON instead of text");
    option("--record", request.record, "text|xml",
           "Print the chosen answer in this form instead of the report");
    option("--record-file", request.record_file, "OUT.txt|xml", "Write the chosen answer into this file");
    option("--plot", request.plot, "PICTURE.svg|png|pdf", "Draw the features and all answers");
    construct->add_option("--view", request.view, "Turn all before it is drawn, as seen along -Z")
        ->type_name("YAW PITCH ROLL")
        ->expected(3);
    option("--from", request.from, "csv|text|hex|xml", "The form of files whose suffix does not say it");
    option("-o", request.sheet, "PICTURE", "Of construct sheet: samples of all constructions");
    construct->footer(construct_help());
    return construct;
}

}  // namespace tvmath
