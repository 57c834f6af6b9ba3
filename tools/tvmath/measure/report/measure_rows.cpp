#include "measure/report/measure_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "fit/fit_report.h"
#include "measure/edges/measure_checks.h"
#include "report/figure_json.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

constexpr int most_decimals = 12;

// The ends of lines and arcs are those of the nominal feature; the others say again what stands beside them.
struct left_out_figure {
    std::string_view kind, label;
};
constexpr left_out_figure left_out[] = {
    {"line", "direction"},     {"line", "length"},   {"line", "start"},
    {"line", "end"},           {"arc", "length"},    {"arc", "start angle"},
    {"arc", "included angle"}, {"arc", "end angle"}, {"slot", "end radius"}};

bool is_left_out(std::string_view kind, std::string_view label) {
    return std::any_of(std::begin(left_out), std::end(left_out),
                       [&](left_out_figure const& f) { return f.kind == kind && f.label == label; });
}

figure const* find(std::vector<figure> const& figures, std::string const& label) {
    auto const found =
        std::find_if(figures.begin(), figures.end(), [&](figure const& f) { return f.label == label; });
    return found == figures.end() ? nullptr : &*found;
}

std::string with_sign(std::string const& text) {
    bool const is_zero = text.find_first_of("123456789") == std::string::npos;
    return is_zero || text[0] == '-' ? text : '+' + text;
}

bool is_kept(tolerance_limit const& limit, std::string const& number) {
    double value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return limit.lower <= value && value <= limit.upper;
}

// All digits of a limit, without a power of ten where that needs no more room than other numbers have.
std::string text_of(double limit) {
    for (int decimals = 1; decimals <= most_decimals; ++decimals) {
        std::string const text = fixed_number(limit, decimals);
        double read = 0;
        std::from_chars(text.data(), text.data() + text.size(), read);
        if (read == limit) return text;
    }
    return number_text(limit);
}

class row_list {
public:
    row_list(measured_tool const& measured, int decimals)
        : tool_(*measured.tool), fit_(*measured.fit), checks_(measured.checks), decimals_(decimals) {
        if (tool_.nominal) nominal_ = figures_of(*tool_.nominal);
    }

    std::vector<measure_row> rows;

    void list() {
        for (figure const& f : fit_.figures) add_figure(f);
        bool const is_to_nominal = fit_.nominal && fit_.nominal->profile_error;
        add_error(form_label(fit_), fit_.form_error, "form");
        add_error(is_to_nominal ? "profile to nominal" : "profile error",
                  is_to_nominal ? *fit_.nominal->profile_error : fit_.profile_error, "profile");
        add_error("standard deviation", fit_.standard_deviation.value_or(std::nan("")), "standard_deviation");
    }

private:
    measure_row& row(std::string const& label) {
        auto const found =
            std::find_if(rows.begin(), rows.end(), [&](measure_row const& r) { return r.label == label; });
        if (found != rows.end()) return *found;
        rows.push_back({label, {}, {}});
        return rows.back();
    }

    // The numbers of a figure, each in its row.
    void put(figure const& f, measure_column column) {
        int const decimals = is_angle(f) ? angle_decimals : decimals_;
        for (report_row const& r :
             tvmath::rows_of({f}, false, [decimals](double x) { return fixed_number(x, decimals); }))
            row(r.label).cells[column] = column == column_deviation ? with_sign(r.number) : r.number;
    }

    void add_figure(figure const& f) {
        figure const* const deviation = fit_.nominal ? find(fit_.nominal->deviations, f.label) : nullptr;
        tolerance_check const* const check = find_check(checks_, figure_key(deviation ? *deviation : f));
        if (!check && is_left_out(fit_.kind->name, f.label)) return;
        put(f, column_measured);
        if (figure const* const n = find(nominal_, f.label)) put(*n, column_nominal);
        if (deviation) put(*deviation, column_deviation);
        if (!check) return;
        // A place has one distance from where it should be.
        bool const is_place = f.kind == figure_kind::location;
        measure_row& checked = is_place ? row(f.label + " offset") : rows.back();
        std::string const text =
            number_of(*check, is_angle(deviation ? *deviation : f) ? angle_decimals : decimals_);
        checked.cells[column_deviation] = is_place ? text : with_sign(text);
        add_limits(checked, *check, !is_place);
    }

    // Where no point is to spare there are no errors, unless somebody asks.
    void add_error(std::string const& label, double value, char const* limit) {
        tolerance_check const* const check = find_check(checks_, limit);
        bool const has_errors = !fit_.degrees_of_freedom || *fit_.degrees_of_freedom > 0;
        if (!check && !(has_errors && std::isfinite(value))) return;
        measure_row& error = row(label);
        error.cells[column_measured] = check ? number_of(*check, decimals_) : fixed_number(value, decimals_);
        if (check) add_limits(error, *check, false);
    }

    // Limits have their own digits: rounded ones would not be those that decide.
    static void add_limits(measure_row& to, tolerance_check const& check, bool has_lower) {
        std::string const upper = text_of(check.limit.upper);
        if (has_lower) to.cells[column_lower] = with_sign(text_of(check.limit.lower));
        to.cells[column_upper] = has_lower ? with_sign(upper) : upper;
        to.verdict = check.passed ? "pass" : "FAIL";
    }

    measure_tool const& tool_;
    fit_result const& fit_;
    std::vector<tolerance_check> const& checks_;
    std::vector<figure> nominal_;
    int decimals_;
};

}  // namespace

int decimals_for(double pixel_length) {
    // 0.005 / 500 is a rounding away from a power of ten.
    double const decimals = std::ceil(-std::log10(pixel_length / 500) - 1e-9);
    return decimals > 0 ? static_cast<int>(std::min<double>(decimals, most_decimals)) : 0;
}

std::string number_of(tolerance_check const& check, int decimals) {
    if (!std::isfinite(check.value)) return "-";
    for (int more = decimals; more <= most_decimals; ++more) {
        std::string text = fixed_number(check.value, more);
        if (is_kept(check.limit, text) == check.passed) return text;
    }
    return fixed_number(check.value, decimals);
}

std::vector<measure_row> rows_of(measured_tool const& measured, int decimals) {
    row_list list(measured, decimals);
    list.list();
    return std::move(list.rows);
}

}  // namespace tvmath
