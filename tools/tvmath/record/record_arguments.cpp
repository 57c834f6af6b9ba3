#include "command_arguments.h"

inline namespace tvmath {

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

}  // namespace tvmath
