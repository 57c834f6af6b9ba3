#include "render_command.h"

#include <memory>
#include <ostream>
#include <sstream>

#include "plot/drawing_output.h"
#include "record_parameters.h"

inline namespace tvmath {
namespace {

// The contact sheet: each cell is what `tvmath render` draws of these words.
char const* const sheet_samples[] = {
    "point 3 4",
    "segment 1 1 5 3 --offset 0.5 --offset -0.25",
    "circle 2 1 1 --offset 0.4 --offset -0.4",
    "arc 2 20deg 100deg 1 1 --offset 0.3 --offset -0.3",
    "arc 2 200deg -250deg 1 1",
    "ellipse 4 1.5 30deg 0 0 --offset 0.5 --offset -0.25",
    "rectangle 4 2 25deg 1 1 --offset 0.4 --offset -0.4",
    "slot 3 0.8 -20deg 1 1",
    "gap 3 1.5 15deg 1 1",
    "oring 2 2.5 1 1",
    "ring 2 0.2 0.1 0 0.1 0.15 0",
    "angle 2 10deg 70deg 0 0 -0.2 1.3 0.4 1.2",
    "angle 2 10deg -130deg",
    "open-spline 0 0 1 2 3 2 4 0 5 -2 6 -1 7 1",
    "closed-spline 0 0 2 3 4 3 6 0 5 -3 1 -3 0 0",
    "nurb 3 9 0 0 0 1 1 2 2 3 3 4 4 4 1 0 1 1 1 0.7071067811865476 0 1 1 -1 1 0.7071067811865476 -1 0 1 "
    "-1 -1 0.7071067811865476 0 -1 1 1 -1 0.7071067811865476 1 0 1",
    "nurb 4 7 0 0 0 0 1 2 4 5 5 5 5 0 0 1 1 3 1 3 3 2 4 0 1 5 -2 1 7 0 1 8 3 1",
    "open-data 0 0 1 0.8 2 0.9 3 0.2 4 -0.5 5 -0.7",
    "closed-data 0 0 2 -0.5 4 0.3 3.5 2 1 2.2",
    "point-cloud 0 0 1 2 2 1 3 3 2.5 0.5 0.5 1.5",
    "plane 0 0 0 0.3 0.4 1 --view 0 0 30deg",
    "sphere 2 1 1 0 --view 30deg 20deg 60deg",
    "cylinder 1 4 0 0 0 1 0.4 0.8",
    "cone 0 0 0 2 1 3 2 0.7",
    "cone 0 0 0 0.2 0.1 3 2 0.7",
    "transform 2 1 30deg 2 1",
    "composite 2 1 -15deg",
    "text 2 1 10deg 3 0.5",
};
constexpr int sheet_columns = 4;

bool parse_all(std::vector<std::string> const& texts, std::vector<double>& values, std::string& reason) {
    values.assign(texts.size(), 0.0);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (!parse_parameter(texts[i], values[i], reason)) return false;
    }
    return true;
}

// The words of a request, as they are typed, for the title of its drawing.
std::string words_of(render_request const& request) {
    std::string words = request.kind;
    for (std::string const& p : request.parameters) words += ' ' + p;
    for (std::string const& d : request.offsets) words += " --offset " + d;
    if (!request.view.empty()) words += " --view";
    for (std::string const& a : request.view) words += ' ' + a;
    constexpr std::size_t longest = 48;  // as much as a cell is wide
    if (words.size() > longest) words.replace(longest, std::string::npos, " ...");
    return words;
}

exit_status draw(render_request const& request, drawing& d, std::string& reason) {
    std::unique_ptr<Geometry_Description> record;
    std::vector<double> offsets, view;
    if (!make_record(request.kind, request.parameters, record, reason) ||
        !parse_all(request.offsets, offsets, reason) || !parse_all(request.view, view, reason)) {
        return exit_status::wrong_usage;
    }
    if (!view.empty()) record->apply_transform(transform::rotation(view[0], view[1], view[2]));
    d.title = words_of(request);
    if (!draw_record(*record, offsets, d)) {
        reason = request.kind + " has nothing to draw";
        return exit_status::no_answer;
    }
    return exit_status::done;
}

render_request request_of(std::string const& words) {
    render_request request;
    std::istringstream in(words);
    in >> request.kind;
    for (std::string word; in >> word;) {
        if (word == "--offset") {
            in >> request.offsets.emplace_back();
        } else if (word == "--view") {
            request.view.resize(3);
            in >> request.view[0] >> request.view[1] >> request.view[2];
        } else {
            request.parameters.push_back(word);
        }
    }
    return request;
}

exit_status draw_requested(render_request const& request, std::vector<drawing>& drawings,
                           std::string& reason) {
    if (request.kind != "all") return draw(request, drawings.emplace_back(), reason);
    if (!request.parameters.empty() || !request.offsets.empty() || !request.view.empty()) {
        reason = "all takes no parameters";
        return exit_status::wrong_usage;
    }
    for (char const* const sample : sheet_samples) {
        exit_status const status = draw(request_of(sample), drawings.emplace_back(), reason);
        if (status != exit_status::done) return status;
    }
    return exit_status::done;
}

}  // namespace

exit_status run_render(render_request const& request, std::ostream& out, std::ostream& err) {
    if (!is_drawing_name(request.output, err)) return exit_status::wrong_usage;
    std::vector<drawing> drawings;
    std::string reason;
    exit_status const status = draw_requested(request, drawings, reason);
    if (status != exit_status::done) {
        err << "tvmath: " << reason << '\n';
        return status;
    }
    bool const is_table = request.output == "-" || request.output.ends_with(".csv");
    if (drawings.size() > 1 && is_table) {
        err << "tvmath: the sheet of all kinds is a picture; one kind at a time has a table\n";
        return exit_status::wrong_usage;
    }
    return write_drawings(drawings, sheet_columns, request.output, out, err);
}

std::string render_kinds_help() {
    std::string text = "Kinds and their parameters (lengths in one unit, angles in radians or as 30deg):\n";
    for (record_form const& form : record_forms()) {
        std::string const kind = form.kind;
        text += "  " + kind + std::string(16 - kind.size(), ' ') + form.parameters + '\n';
    }
    return text + "  all             a sheet of samples of every kind, as a picture\n";
}

}  // namespace tvmath
