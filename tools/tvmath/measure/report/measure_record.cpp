#include "measure/report/measure_record.h"

#include "files/point_file.h"
#include "measure/report/measure_report.h"
#include "record/record_text.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

// A name in a table, in quotes where it would not be one field.
std::string field_of(std::string const& name) {
    if (name.find_first_of(",\"\r\n") == std::string::npos) return name;
    std::string text = "\"";
    for (char const c : name) text += c == '"' ? "\"\"" : std::string(1, c);
    return text + '"';
}

}  // namespace

std::string record_line(measured_tool const& measured) {
    std::string text, ignored;
    if (!measured.fit || !record_text(*measured.fit->feature, 15, false, text, ignored)) return {};
    text.pop_back();
    return text;
}

std::string record_table(measure_report const& report) {
    std::string text;
    for (measured_tool const& tool : report.tools) {
        std::string const record = record_line(tool);
        if (!record.empty()) text += one_line(tool.tool->name) + '\t' + record + '\n';
    }
    return text;
}

bool center_table(measure_report const& report, std::string& table, std::string& reason) {
    std::string text = report.job->z ? "x,y,z\n" : "x,y\n";
    for (measured_tool const& tool : report.tools) {
        if (!tool.fit) {
            reason = "no rows are written, since '" + one_line(tool.tool->name) + "' was not found";
            return false;
        }
        // The first figure of every kind that can be measured is its place.
        std::vector<double> const& place = tool.fit->figures.front().values;
        for (std::size_t i = 0; i < place.size(); ++i) text += (i > 0 ? "," : "") + number_text(place[i]);
        text += '\n';
    }
    table = text;
    return true;
}

std::string edge_table(measure_report const& report) {
    bool const in_space = report.job->z.has_value();
    std::string text = in_space ? "tool,index,image_x,image_y,x,y,z,residual,contrast,kept\n"
                                : "tool,index,image_x,image_y,x,y,residual,contrast,kept\n";
    for (measured_tool const& tool : report.tools) {
        std::string const name = field_of(tool.tool->name);
        std::size_t index = 0;
        for (edge_mark const& e : tool.edges) {
            text += name + ',' + std::to_string(++index);
            for (double const x : {e.seen.x(), e.seen.y(), e.place.x(), e.place.y()})
                text += ',' + number_text(x);
            if (in_space) text += ',' + number_text(e.place.z());
            text +=
                ',' + number_text(e.residual) + ',' + number_text(e.contrast) + (e.kept ? ",1\n" : ",0\n");
        }
    }
    return text;
}

}  // namespace tvmath
