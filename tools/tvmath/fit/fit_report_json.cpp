#include "fit_json.h"
#include "fit_report.h"
#include "report/figure_json.h"

inline namespace tvmath {
namespace {

json_value coordinates(point const& p) {
    return p.is_3d() ? json_value{p.x(), p.y(), p.z()} : json_value{p.x(), p.y()};
}

json_value object_of(extreme_point const& e) {
    json_value object;
    object["index"] = e.index + 1;
    object["point"] = coordinates(e.at);
    object["residual"] = e.residual;
    return object;
}

template <class number>
json_value or_null(std::optional<number> const& value) {
    return value ? json_value(*value) : json_value();
}

json_value standard_names(fit_result const& result) {
    if (!result.has_standard_names) return {};
    std::string const symbol = result.kind->form.symbol;
    json_value object;
    object["standard"] = result.kind->form.standard;
    object["name"] = result.kind->form.word;
    object["reference"] = result.kind->form.reference;
    object[symbol + 't'] = result.form_error;
    if (result.is_zone()) return object;
    object[symbol + 'p'] = result.highest.residual;
    object[symbol + 'v'] = -result.lowest.residual;
    object[symbol + 'q'] = result.rms;
    return object;
}

}  // namespace

void put_fit(json_value& document, fit_result const& result) {
    document["method"] = result.method;
    document["conditions"] = result.conditions;
    document["dimension"] = result.dimension;
    document["points"] = result.count;
    document["feature"] = figures_object(result.figures);
    document["parameters"] = result.parameters > 0 ? json_value(result.parameters) : json_value();
    document["degrees_of_freedom"] = or_null(result.degrees_of_freedom);
    document["form_error"] = result.form_error;
    document["highest"] = object_of(result.highest);
    document["lowest"] = object_of(result.lowest);
    if (result.is_zone()) {
        document["contacts"] = json_value::array();
        for (contact_point const& c : result.contacts) {
            json_value contact = {{"side", c.side}};
            contact.update(object_of(c.at));
            document["contacts"].push_back(contact);
        }
    }
    document["iso"] = standard_names(result);
    document["profile_error"] = result.profile_error;
    document["standard_deviation"] = or_null(result.standard_deviation);
    document["rms_residual"] = result.rms;
    if (result.tolerance) {
        document["tolerance"] = *result.tolerance;
        document["in_tolerance"] = result.is_in_tolerance();
    }
    if (result.nominal) {
        document["nominal"] = {{"feature", result.nominal->words},
                               {"deviations", figures_object(result.nominal->deviations)},
                               {"profile_error", or_null(result.nominal->profile_error)}};
    }
}

void write_json(std::ostream& out, std::vector<fit_result> const& results) {
    json_value document;
    document["schema"] = "tvmath.fit/2";
    document["results"] = json_value::array();
    for (fit_result const& result : results) {
        json_value& object = document["results"].emplace_back();
        object["file"] = result.file;
        object["kind"] = result.kind->name;
        put_fit(object, result);
    }
    write_json_text(out, document);
}

}  // namespace tvmath
