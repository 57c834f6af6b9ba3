#include <algorithm>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "fit/fit_report.h"
#include "measure/edges/measure_checks.h"
#include "measure/picture/measure_plot_parts.h"
#include "measure/report/measure_rows.h"
#include "report/figure_json.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t most_rows = 20, most_rows_of_one = 3, most_named = 3;

// What a feature is asked for first, by the names of its figures.
std::vector<std::string> main_figures(fit_result const& fit) {
    switch (fit.kind->record) {
        case Point_Description::type_value:
            return {"center"};
        case Segment_Description::type_value:
            return {"angle_deg"};
        case Circle_Description::type_value:
            return {"diameter"};
        case Arc_Description::type_value:
            return {"radius"};
        case Rectangle_Description::type_value:
            return {"width", "height"};
        case Slot_Description::type_value:
            return {"width", "length"};
        default:
            return {};
    }
}

template <class test>
figure const* find(std::vector<figure> const& figures, test const& is_wanted) {
    auto const found = std::find_if(figures.begin(), figures.end(), is_wanted);
    return found == figures.end() ? nullptr : &*found;
}

figure const* find(std::vector<figure> const& figures, std::string const& name) {
    return find(figures, [&name](figure const& f) { return figure_key(f) == name; });
}

std::string with_sign(double x, std::string const& text) {
    return x > 0 && text.find_first_of("123456789") != std::string::npos ? "+" + text : text;
}

// Writes the rows of one feature.
class row_writer {
public:
    row_writer(measured_tool const& tool, int decimals) : tool_(tool), fit_(*tool.fit), decimals_(decimals) {
        if (tool.tool->nominal) nominal_ = figures_of(*tool.tool->nominal);
    }

    std::vector<sheet_row> rows() {
        std::vector<std::string> names;
        auto const add = [&names](std::string const& name) {
            if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
        };
        for (tolerance_check const& c : tool_.checks) {
            if (!c.passed) add(c.limit.figure);
        }
        // The limit may be that of the radius.
        bool const by_radius = find_check(tool_.checks, "radius") != nullptr;
        for (std::string const& name : main_figures(fit_))
            add(name == "diameter" && by_radius ? "radius" : name);
        for (tolerance_check const& c : tool_.checks) {
            if (c.limit.figure != "form") add(c.limit.figure);  // that one has its column
        }
        std::vector<sheet_row> rows;
        for (std::string const& name : names) {
            sheet_row row;
            if (write(name, row)) rows.push_back(row);
        }
        if (rows.empty()) rows.emplace_back();
        rows.front().name = tool_.tool->name;
        figure const* const center = find(fit_.figures, std::string("center"));
        if (center && rows.front().what != "center") rows.front().place = text_of(*center);
        if (fit_.count > 1) rows.front().form = fixed_text(fit_.form_error, decimals_);
        tolerance_check const* const form = find_check(tool_.checks, "form");
        rows.front().is_form_bad = form && !form->passed;
        if (!tool_.checks.empty()) rows.front().verdict = tool_.passed() ? "PASS" : "FAIL";
        rows.front().verdict_ink = tool_.passed() ? good_ink : bad_ink;
        return rows;
    }

private:
    std::string number(figure const& f, double x) const {
        return is_angle(f) ? fixed_text(x * (180 / pi), angle_decimals) + "\u00b0" : fixed_text(x, decimals_);
    }

    std::string text_of(figure const& f) const {
        std::string text;
        for (std::size_t i = 0; i < std::min<std::size_t>(f.values.size(), 2); ++i)
            text += (i > 0 ? ", " : "") + number(f, f.values[i]);
        return text;
    }

    void write_limit(tolerance_check const& c, std::string const& unit, sheet_row& row) const {
        double const low = c.limit.lower, high = c.limit.upper;
        row.ink = c.passed ? good_ink : bad_ink;
        row.has_gauge = std::isfinite(c.value) && high > low;
        row.value = c.value;
        row.lower = low;
        row.upper = high;
        std::string const least = with_sign(low, short_text(low)), most = short_text(high) + unit;
        row.tolerance = low == -high ? "\u00b1 " + most
                        : low == 0.0 ? "\u2264 " + most
                                     : least + " \u2026 " + with_sign(high, most);
    }

    // As many as the verdict on it needs.
    static int decimals_of(tolerance_check const& c, int decimals) {
        std::string const number = number_of(c, decimals);
        std::size_t const dot = number.find('.');
        return dot == std::string::npos ? 0 : static_cast<int>(number.size() - dot) - 1;
    }

    // Errors have no nominal: what was measured is what the limit speaks of.
    bool write_error(std::string const& name, tolerance_check const& c, sheet_row& row) const {
        row.what = name == "form"      ? form_label(fit_)
                   : name == "profile" ? "profile error"
                                       : std::string("std deviation");
        if (std::isfinite(c.value)) row.measured = fixed_text(c.value, decimals_of(c, decimals_));
        write_limit(c, "", row);
        return true;
    }

    bool write(std::string const& name, sheet_row& row) const {
        tolerance_check const* const check = find_check(tool_.checks, name);
        if (name == "form" || name == "profile" || name == "standard_deviation")
            return check && write_error(name, *check, row);
        // The deviation of a direction is an angle, and has the name of one.
        figure const* const deviation = fit_.nominal ? find(fit_.nominal->deviations, name) : nullptr;
        figure const* const f = find(fit_.figures, [&](figure const& g) {
            return deviation ? g.label == deviation->label : figure_key(g) == name;
        });
        if (!f) return false;
        row.what = f->label;
        row.measured = text_of(*f);
        row.ink = text_ink;
        figure const* const nominal = find(nominal_, [f](figure const& g) { return g.label == f->label; });
        if (nominal) row.nominal = text_of(*nominal);
        std::string const unit = is_angle(deviation ? *deviation : *f) ? "\u00b0" : "";
        if (deviation) row.deviation = deviation_text(*deviation, check) + unit;
        if (check) write_limit(*check, unit, row);
        return true;
    }

    // Of a place how far it is from where it should be.
    std::string deviation_text(figure const& d, tolerance_check const* check) const {
        double const size = deviation_size(d);
        int const decimals = is_angle(d) ? angle_decimals : decimals_;
        std::string const text = fixed_text(size, check ? decimals_of(*check, decimals) : decimals);
        return d.values.size() > 1 ? text : with_sign(size, text);
    }

    measured_tool const& tool_;
    fit_result const& fit_;
    int decimals_;
    std::vector<figure> nominal_;
};

std::vector<sheet_row> sheet_rows_of(measured_tool const& tool, int decimals) {
    if (tool.fit) return row_writer(tool, decimals).rows();
    sheet_row row;
    row.name = tool.tool->name;
    row.reason = tool.reason;
    row.verdict = "NOT MEASURED";
    row.verdict_ink = bad_ink;
    return {row};
}

std::string counted(std::size_t n, char const* one, char const* many) {
    return std::to_string(n) + ' ' + (n == 1 ? one : many);
}

// Of those that were judged.
std::string summary_of(measure_tally const& t, std::size_t features) {
    std::size_t const passing = t.passing.size(), missing = t.not_measured.size(),
                      judged = passing + t.failing.size() + missing;
    std::string const not_measured = missing > 0 ? std::to_string(missing) + " not measured" : "";
    if (passing + t.failing.size() == 0) {
        if (features == 1 && missing > 0) return "not measured";
        std::string const found = counted(features - missing, "feature", "features");
        return missing == 0 ? found : found + ", " + not_measured;
    }
    if (judged == 1) return passing == 1 ? "passes" : "fails";
    if (passing == judged) return judged == 2 ? "both pass" : "all " + std::to_string(judged) + " pass";
    std::string const text = std::to_string(passing) + " of " + counted(judged, "passes", "pass");
    return missing == 0 ? text : text + ", " + not_measured;
}

// The first ones by name.
std::string failing_of(measure_report const& report) {
    std::string names;
    std::size_t count = 0;
    for (measured_tool const& t : report.tools) {
        if (t.passed()) continue;
        if (++count <= most_named) names += (count > 1 ? ", " : "") + t.tool->name;
    }
    if (count == 0 || report.tools.size() == 1) return {};
    if (count > most_named) names += " and " + std::to_string(count - most_named) + " more";
    return names + (count == 1 ? " fails" : " fail");
}

// Those that fail were named first.
std::string rest_of(std::vector<measured_tool const*> const& rest, bool has_limits) {
    if (rest.empty()) return {};
    auto const failing = static_cast<std::size_t>(
        std::count_if(rest.begin(), rest.end(), [](auto const* t) { return !t->passed(); }));
    std::string const text = "and " + std::to_string(rest.size()) + " more";
    if (failing > 0) return text + ", " + counted(failing, "of which fails", "of which fail");
    return !has_limits ? text : text + (rest.size() == 1 ? ", which passes" : ", all pass");
}

// As many rows of each feature as there is room for.
std::vector<sheet_row> chosen_rows(std::vector<std::vector<sheet_row>> const& rows) {
    auto const total = [&rows](std::size_t of_one) {
        std::size_t sum = 0;
        for (auto const& own : rows) sum += std::min(own.size(), of_one);
        return sum;
    };
    std::size_t of_one = most_rows_of_one;
    while (of_one > 1 && total(of_one) > most_rows) --of_one;
    std::vector<sheet_row> chosen;
    for (auto const& own : rows)
        chosen.insert(chosen.end(), own.begin(),
                      own.begin() + static_cast<std::ptrdiff_t>(std::min(own.size(), of_one)));
    return chosen;
}

}  // namespace

measure_sheet make_measure_sheet(measure_report const& report, double pixel_length) {
    measure_tally const tally(report);
    measure_sheet sheet;
    sheet.has_limits = !tally.passing.empty() || !tally.failing.empty();
    sheet.is_good = report.passed();
    sheet.summary = summary_of(tally, report.tools.size());
    sheet.failing = failing_of(report);

    std::vector<measured_tool const*> shown;
    for (measured_tool const& t : report.tools) shown.push_back(&t);
    if (shown.size() > most_rows) {
        std::stable_partition(shown.begin(), shown.end(), [](auto const* t) { return !t->passed(); });
        auto const first = shown.begin() + static_cast<std::ptrdiff_t>(most_rows);
        sheet.rest = rest_of({first, shown.end()}, sheet.has_limits);
        shown.erase(first, shown.end());
    }
    std::vector<std::vector<sheet_row>> rows;
    for (measured_tool const* t : shown) rows.push_back(sheet_rows_of(*t, decimals_for(pixel_length)));
    sheet.rows = chosen_rows(rows);
    // Beside a nominal value the deviations tell more.
    auto& made = sheet.rows;
    if (std::any_of(made.begin(), made.end(), [](sheet_row const& row) { return !row.nominal.empty(); })) {
        for (sheet_row& row : made) row.place.clear();
    }
    return sheet;
}

}  // namespace tvmath
