#include "json_text.h"

#include <cmath>
#include <ostream>

#include "number_text.h"

inline namespace tvmath {
namespace {

// The library's own writer does not always find the shortest digits; strings it escapes well.
void write_value(std::ostream& out, json_value const& value, std::string const& indent) {
    if (value.is_number_float()) {
        double const x = value.get<double>();
        out << (std::isfinite(x) ? number_text(x) : "null");
        return;
    }
    if (!value.is_structured()) {
        out << value.dump(-1, ' ', false, json_value::error_handler_t::replace);
        return;
    }
    bool const one_line = value.is_array() && (value.empty() || value.front().is_number());
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

void write_json_text(std::ostream& out, json_value const& document) {
    write_value(out, document, "");
    out << '\n';
}

}  // namespace tvmath
