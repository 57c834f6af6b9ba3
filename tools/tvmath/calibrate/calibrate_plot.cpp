#include "calibrate/calibrate_plot.h"

#include "calibrate/calibrate_plot_parts.h"
#include "calibrate/calibrate_report.h"
#include "fit/fit_plot.h"
#include "fit/fit_plot_parts.h"
#include "fit/fit_report.h"

inline namespace tvmath {
namespace {

// Places on the page.
constexpr double left = 76, right = 814, top = 74, field_width = 476, field_height = 372;
constexpr double errors_left = 636, errors_width = 172, errors_height = 430;
constexpr double figures_top = 535, line_height = 13, column_width = 268;

std::string number(double x) {
    return short_text(x, 5);
}

std::string with_error(double value, double error) {
    return number(value) + " \u00b1 " + short_text(error, 2);
}

void draw_title(canvas& c, calibrate_result const& result) {
    text_style const big = {.size = 17, .ink = text_ink, .bold = true}, name = {.size = 12, .ink = text_ink},
                     small = {.size = 9.5, .ink = faint_ink};
    std::string title = corrector_name(result.kind());
    title[0] = static_cast<char>(title[0] - 'a' + 'A');
    title += " correction";
    calibrate_setup const& s = result.setup;
    std::string const files =
        names_of(s.measured_file) + (s.nominal_file.empty() ? "" : ", " + names_of(s.nominal_file));
    double const used = 28 + c.text_width(title, big) + 12;
    c.text({28, 34}, title, big);
    c.text({used, 34}, cut(c, files, name, right - used), name);
    c.text({28, 51}, cut(c, method_words(result), small, right - 28), small);
}

std::vector<report_row> figures_of(calibrate_result const& result) {
    std::vector<report_row> rows;
    auto const add = [&rows](char const* label, std::string const& text) {
        rows.push_back({label, text, {}});
    };
    if (auto const* const t = std::get_if<telecentricity_corrector>(&result.corrector)) {
        add("magnification", with_error(t->magnification, t->magnification_error));
        add("tilt x", with_error(t->tilt_x, t->tilt_x_error));
        add("tilt y", with_error(t->tilt_y, t->tilt_y_error));
        add("reference height", number(*result.setup.z));
        add("artefacts", std::to_string(result.artefacts));
    } else {
        auto const* const screen = std::get_if<screen_corrector>(&result.corrector);
        auto const* const flatness = std::get_if<flatness_corrector>(&result.corrector);
        add("order", std::to_string(screen ? screen->order : flatness->order));
        if (flatness) {
            add("nominal height", number(*result.setup.z));
            add("radius of curvature", flatness->curvature != 0.0 ? number(1 / flatness->curvature) : "flat");
        }
        add("uncertainty of a correction", number(result.uncertainty()));
    }
    add("points", std::to_string(result.observations.size()));
    add("unknowns", std::to_string(result.unknowns));
    add("residual (standard error)", number(result.residual()));
    add("rms error before", number(result.before().rms));
    add("rms error after", number(result.after().rms));
    return rows;
}

void draw_figures(canvas& c, calibrate_result const& result) {
    std::vector<report_row> const rows = figures_of(result);
    std::size_t const lines = (rows.size() + 2) / 3;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        double const x = left + column_width * static_cast<double>(i / lines),
                     y = figures_top + line_height * static_cast<double>(i % lines);
        c.text({x, y}, rows[i].label, {.size = 8.5, .ink = faint_ink});
        c.text({x + 124, y}, rows[i].number, {.size = 8.5, .ink = text_ink});
    }
}

}  // namespace

char const* error_unit(corrector_kind kind) {
    return kind == corrector_kind::screen ? "pixels" : "machine units";
}

std::string calibrate_plot(calibrate_result const& result, std::string const& suffix) {
    auto const c = make_canvas(suffix, fit_page_width, fit_page_height);
    if (!c) return {};
    draw_title(*c, result);
    draw_field(*c, result, {left, top}, field_width, field_height);
    draw_errors(*c, result, {errors_left, top}, errors_width, errors_height);
    draw_figures(*c, result);
    return c->finish();
}

}  // namespace tvmath
