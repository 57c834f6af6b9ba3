#include "report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

#include "number_text.h"
#include "point_file.h"

inline namespace tvmath {
namespace {

using json = nlohmann::ordered_json;

struct row {
    std::string label, number;
    std::size_t whole() const { return std::min(number.find('.'), number.size()); }
};

void add_coordinates(std::vector<row>& rows, std::string const& label, point const& p) {
    if (p.is_trivial()) return;
    rows.push_back({label + " x", number_text(p.x())});
    rows.push_back({label + " y", number_text(p.y())});
    if (p.is_3d()) rows.push_back({label + " z", number_text(p.z())});
}

json coordinates(point const& p) {
    json list = json::array({p.x(), p.y()});
    if (p.is_3d()) list.push_back(p.z());
    return list;
}

json document_of(fit_result const& result) {
    json document;
    document["file"] = shown_name(result.file);
    document["feature"] = result.feature;
    document["method"] = "quick";
    document["dimension"] = result.dimension;
    document["points"] = result.points;
    document["center"] = coordinates(result.center);
    if (!result.direction.is_trivial()) document["direction"] = coordinates(result.direction);
    if (result.has_radius()) document["radius"] = result.radius;
    document["rms_residual"] = result.rms_residual;
    return document;
}

// The library's own writer does not always find the shortest digits; strings it escapes well. A file name
// that is not UTF-8 gets replacement characters, because JSON has no other way to hold it.
void write_value(std::ostream& out, json const& value, std::string const& indent) {
    if (value.is_number_float()) {
        out << number_text(value.get<double>());
        return;
    }
    if (!value.is_structured()) {
        out << value.dump(-1, ' ', false, json::error_handler_t::replace);
        return;
    }
    // Coordinates stay on one line.
    bool const one_line = value.is_array() && !value.empty() && value.front().is_number();
    std::string const inner = indent + "  ";
    char const* comma = "";
    out << (value.is_array() ? '[' : '{');
    for (auto const& item : value.items()) {
        out << comma;
        if (!one_line) {
            out << '\n' << inner;
        } else if (*comma) {
            out << ' ';
        }
        if (value.is_object()) out << '"' << item.key() << "\": ";
        write_value(out, item.value(), inner);
        comma = ",";
    }
    if (!one_line) out << '\n' << indent;
    out << (value.is_array() ? ']' : '}');
}

}  // namespace

void write_text(std::ostream& out, fit_result const& result) {
    std::vector<row> rows;
    add_coordinates(rows, "center", result.center);
    add_coordinates(rows, "direction", result.direction);
    if (result.has_radius()) rows.push_back({"radius", number_text(result.radius)});
    rows.push_back({"points", std::to_string(result.points)});
    rows.push_back({"rms residual", number_text(result.rms_residual)});

    std::size_t widest_label = 0, widest_whole = 0;
    for (row const& r : rows) {
        widest_label = std::max(widest_label, r.label.size());
        widest_whole = std::max(widest_whole, r.whole());
    }
    out << result.feature << "  " << shown_name(result.file) << '\n';
    if (result.forgets_z()) out << "  fitted in XY\n";
    for (row const& r : rows) {
        std::size_t const gap = widest_label - r.label.size() + 2 + widest_whole - r.whole();
        out << "  " << r.label << std::string(gap, ' ') << r.number << '\n';
    }
}

void write_json(std::ostream& out, std::vector<fit_result> const& results) {
    json document;
    document["schema"] = "tvmath.fit/1";
    document["results"] = json::array();
    for (fit_result const& result : results) document["results"].push_back(document_of(result));
    write_value(out, document, "");
    out << '\n';
}

}  // namespace tvmath
