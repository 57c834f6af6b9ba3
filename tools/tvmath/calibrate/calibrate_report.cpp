#include "calibrate/calibrate_report.h"

#include <cmath>
#include <ostream>

#include "files/point_file.h"
#include "fit/fit_report.h"
#include "report/json_text.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

using table = std::vector<report_row>;

std::string count(std::size_t n) {
    return std::to_string(n);
}

void add_spread(table& all, calibrate_result const& result, std::string const& when, spread const& s) {
    point const& p = result.setup.measured[s.index];
    all.push_back({"rms error " + when, number_text(s.rms), {}});
    all.push_back(
        {"largest error " + when, number_text(s.largest),
         "point " + count(s.index + 1) + " (" + number_text(p.x()) + ", " + number_text(p.y()) + ")"});
}

void add_orders(table& all, calibrate_result const& result, unsigned int chosen) {
    for (tried_order const& tried : result.orders) {
        bool const is_known = std::isfinite(tried.residual);
        all.push_back({"residual at order " + count(tried.order),
                       is_known ? number_text(tried.residual) : "-",
                       tried.order == chosen ? "taken"
                       : is_known            ? ""
                                             : "not determined by the points"});
    }
}

// What each kind has of its own.

void add_parameters(table& all, calibrate_result const&, screen_corrector const& c) {
    all.push_back({"order", count(c.order), {}});
}

void add_parameters(table& all, calibrate_result const& result, flatness_corrector const& c) {
    all.push_back({"order", count(c.order), {}});
    all.push_back({"curvature", number_text(c.curvature), "of the surface of focus"});
    if (c.curvature != 0.0) all.push_back({"radius of curvature", number_text(1 / c.curvature), {}});
    all.push_back({"nominal height", number_text(*result.setup.z), {}});
}

void add_parameters(table& all, calibrate_result const& result, telecentricity_corrector const& c) {
    auto const with_error = [&all](std::string const& label, double value, double error, char const* what) {
        all.push_back({label, number_text(value), what});
        all.push_back({"uncertainty of " + label, number_text(error), {}});
    };
    with_error("magnification", c.magnification, c.magnification_error, "for a unit of height");
    with_error("tilt x", c.tilt_x, c.tilt_x_error, "");
    with_error("tilt y", c.tilt_y, c.tilt_y_error, "");
    all.push_back({"reference height", number_text(*result.setup.z), {}});
    all.push_back({"artefacts", count(result.artefacts), {}});
}

void add_fit(table& all, calibrate_result const& result) {
    bool const is_field = result.kind() != corrector_kind::telecentricity;
    all.push_back({"points", count(result.observations.size()), {}});
    all.push_back({"unknowns", count(result.unknowns),
                   result.kind() == corrector_kind::screen ? "for each coordinate" : ""});
    all.push_back({"residual", number_text(result.residual()), "standard error"});
    if (is_field)
        all.push_back(
            {"uncertainty", number_text(result.uncertainty()), "of a correction, mean over the points"});
    add_spread(all, result, "before", result.before());
    add_spread(all, result, "after", result.after());
    if (auto const* const c = std::get_if<screen_corrector>(&result.corrector))
        add_orders(all, result, c->order);
}

json_value spread_object(calibrate_result const& result, spread const& s) {
    point const& p = result.setup.measured[s.index];
    json_value object;
    object["rms"] = s.rms;
    object["largest"] = {{"index", s.index + 1}, {"point", {p.x(), p.y()}}, {"error", s.largest}};
    return object;
}

json_value list_of(vector const& v) {
    json_value list = json_value::array();
    for (double const x : v) list.push_back(x);
    return list;
}

void put_fields(json_value& object, screen_corrector const& c) {
    object["order"] = c.order;
    object["x_scale"] = c.x_scale;
    object["y_scale"] = c.y_scale;
    object["dx"] = list_of(c.coefficients[0]);
    object["dy"] = list_of(c.coefficients[1]);
}

void put_fields(json_value& object, flatness_corrector const& c) {
    object["order"] = c.order;
    object["x_scale"] = c.x_scale;
    object["y_scale"] = c.y_scale;
    object["coefficients"] = list_of(c.coefficients);
    object["curvature"] = c.curvature;
}

void put_fields(json_value& object, telecentricity_corrector const& c) {
    object["magnification"] = c.magnification;
    object["tilt_x"] = c.tilt_x;
    object["tilt_y"] = c.tilt_y;
    object["magnification_error"] = c.magnification_error;
    object["tilt_x_error"] = c.tilt_x_error;
    object["tilt_y_error"] = c.tilt_y_error;
}

}  // namespace

std::string method_words(calibrate_result const& result) {
    calibrate_setup const& s = result.setup;
    if (result.kind() == corrector_kind::telecentricity)
        return "least squares over artefacts seen at several heights of the stage";
    return std::string("least squares ") +
           (result.kind() == corrector_kind::screen ? "from seen to nominal places"
                                                    : "from heights of focus to the nominal height") +
           ", screen of " + count(s.width) + " x " + count(s.height) + " pixels, orders up to " +
           count(s.max_order);
}

void write_text(std::ostream& out, calibrate_result const& result) {
    calibrate_setup const& s = result.setup;
    out << corrector_name(result.kind()) << "  " << shown_name(s.measured_file);
    if (!s.nominal_file.empty()) out << ", " << shown_name(s.nominal_file);
    out << "\n  " << method_words(result) << '\n';
    if (result.outside > 0) {
        out << "  " << result.outside << " of " << result.observations.size()
            << " points lie outside the screen, whose middle is the origin\n";
    }
    table all;
    std::visit([&](auto const& c) { add_parameters(all, result, c); }, result.corrector);
    add_fit(all, result);
    write_rows(out, all);
}

void write_json(std::ostream& out, calibrate_result const& result) {
    calibrate_setup const& s = result.setup;
    bool const is_field = result.kind() != corrector_kind::telecentricity;
    json_value document;
    document["schema"] = "tvmath.calibrate/1";
    document["kind"] = corrector_name(result.kind());
    document["measured"] = s.measured_file;
    document["nominal"] = s.nominal_file.empty() ? json_value() : json_value(s.nominal_file);
    document["points"] = result.observations.size();
    document["unknowns"] = result.unknowns;
    if (is_field) {
        document["screen_size"] = {s.width, s.height};
        document["max_order"] = s.max_order;
        document["outside_screen"] = result.outside;
        document["uncertainty"] = result.uncertainty();
    } else {
        document["artefacts"] = result.artefacts;
    }
    if (s.z) document[is_field ? "z_nominal" : "z_reference"] = *s.z;
    document["corrector"] = {{"residual", result.residual()}};
    std::visit([&](auto const& c) { put_fields(document["corrector"], c); }, result.corrector);
    document["before"] = spread_object(result, result.before());
    document["after"] = spread_object(result, result.after());
    for (tried_order const& tried : result.orders)
        document["orders"].push_back({{"order", tried.order}, {"residual", tried.residual}});
    std::string text = corrector_text(result.corrector);
    text.pop_back();
    document["text"] = text;
    write_json_text(out, document);
}

}  // namespace tvmath
