#include "figure_json.h"

#include <algorithm>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

std::string key_of(std::string label) {
    std::replace(label.begin(), label.end(), ' ', '_');
    return label;
}

json_value rows(figure const& f) {
    if (f.columns == 1) return f.values;
    json_value list = json_value::array();
    for (std::size_t i = 0; i + f.columns <= f.values.size(); i += f.columns) {
        auto const first = f.values.begin() + static_cast<std::ptrdiff_t>(i);
        list.push_back(std::vector<double>(first, first + static_cast<std::ptrdiff_t>(f.columns)));
    }
    return list;
}

}  // namespace

std::string figure_key(figure const& f) {
    return key_of(f.label) + (is_angle(f) ? "_deg" : "");
}

json_value figures_object(std::vector<figure> const& figures) {
    json_value object = json_value::object();
    for (figure const& f : figures) {
        std::string const key = key_of(f.label);
        switch (f.kind) {
            case figure_kind::rows:
                object[key] = rows(f);
                break;
            case figure_kind::count:
                object[key] = static_cast<long long>(f.values[0]);
                break;
            case figure_kind::angle:
            case figure_kind::axis_angle:
                object[key] = f.values[0];
                object[figure_key(f)] = f.values[0] * (180 / pi);
                break;
            default:
                object[key] = f.values.size() == 1 ? json_value(f.values[0]) : json_value(f.values);
        }
    }
    return object;
}

}  // namespace tvmath
