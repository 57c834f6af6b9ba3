#include <algorithm>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "fit/fit_report.h"
#include "measure/measure_checks.h"
#include "measure/measure_plot_parts.h"
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

bool is_angle(figure const& f) {
    return f.kind == figure_kind::angle || f.kind == figure_kind::axis_angle;
}

figure const* find(std::vector<figure> const& figures, std::string const& name) {
    for (figure const& f : figures) {
        if (figure_key(f) == name) return &f;
    }
    return nullptr;
}

tolerance_check const* find(std::vector<tolerance_check> const& checks, std::string const& name) {
    for (tolerance_check const& c : checks) {
        if (c.limit.figure == name) return &c;
    }
    return nullptr;
}

std::string signed_text(double x, int decimals) {
    std::string const text = fixed_text(x, decimals);
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
        bool const by_radius = find(tool_.checks, "radius") != nullptr;
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
        figure const* const center = find(fit_.figures, "center");
        if (center && rows.front().what != "center") rows.front().place = text_of(*center);
        if (fit_.count > 1) rows.front().form = fixed_text(fit_.form_error, decimals_);
        tolerance_check const* const form = find(tool_.checks, "form");
        rows.front().is_form_bad = form && !form->passed;
        if (!tool_.checks.empty()) rows.front().verdict = tool_.passed() ? "PASS" : "FAIL";
        rows.front().verdict_ink = tool_.passed() ? good_ink : bad_ink;
        return rows;
    }

private:
    std::string number(figure const& f, double x) const {
        return is_angle(f) ? fixed_text(x * (180 / pi), 4) + "\u00b0" : fixed_text(x, decimals_);
    }

    std::string text_of(figure const& f) const {
        std::string text;
        for (std::size_t i = 0; i < std::min<std::size_t>(f.values.size(), 2); ++i)
            text += (i > 0 ? ", " : "") + number(f, f.values[i]);
        return text;
    }

    void write_limit(tolerance_check const& c, int decimals, std::string const& unit, sheet_row& row) const {
        double const low = c.limit.lower, high = c.limit.upper;
        row.ink = c.passed ? good_ink : bad_ink;
        row.has_gauge = std::isfinite(c.value) && high > low;
        row.value = c.value;
        row.lower = low;
        row.upper = high;
        auto const bound = [&](double x) { return short_text(x) + unit; };
        row.tolerance = low == -high ? "\u00b1 " + bound(high)
                        : low == 0.0
                            ? "\u2264 " + bound(high)
                            : signed_text(low, decimals) + " \u2026 " + signed_text(high, decimals) + unit;
    }

    // Errors have no nominal: what was measured is what the limit speaks of.
    bool write_error(std::string const& name, tolerance_check const& c, sheet_row& row) const {
        row.what = name == "form"      ? form_label(fit_)
                   : name == "profile" ? "profile error"
                                       : std::string("std deviation");
        if (std::isfinite(c.value)) row.measured = fixed_text(c.value, decimals_);
        write_limit(c, decimals_, "", row);
        return true;
    }

    bool write(std::string const& name, sheet_row& row) const {
        tolerance_check const* const check = find(tool_.checks, name);
        if (name == "form" || name == "profile" || name == "standard_deviation")
            return check && write_error(name, *check, row);
        figure const* const f = find(fit_.figures, name);
        if (!f) return false;
        row.what = f->label;
        row.measured = text_of(*f);
        row.ink = text_ink;
        figure const* const nominal = find(nominal_, name);
        if (nominal) row.nominal = text_of(*nominal);
        int const decimals = is_angle(*f) ? 4 : decimals_;
        std::string const unit = is_angle(*f) ? "\u00b0" : "";
        if (fit_.nominal) {
            if (figure const* const d = find(fit_.nominal->deviations, name)) {
                double size = 0;
                for (double const v : d->values) size = std::hypot(size, v);
                row.deviation = d->values.size() > 1
                                    ? fixed_text(size, decimals)
                                    : signed_text(d->values[0] * (is_angle(*d) ? 180 / pi : 1), decimals) +
                                          (is_angle(*d) ? "\u00b0" : "");
            }
        }
        if (check) write_limit(*check, decimals, unit, row);
        return true;
    }

    measured_tool const& tool_;
    fit_result const& fit_;
    int decimals_;
    std::vector<figure> nominal_;
};

std::vector<sheet_row> rows_of(measured_tool const& tool, int decimals) {
    if (tool.fit) return row_writer(tool, decimals).rows();
    sheet_row row;
    row.name = tool.tool->name;
    row.reason = tool.reason;
    row.verdict = "NOT FOUND";
    row.verdict_ink = bad_ink;
    return {row};
}

std::string counted(std::size_t n, char const* one, char const* many) {
    return std::to_string(n) + ' ' + (n == 1 ? one : many);
}

// A feature without limits neither passes nor fails.
struct tally {
    std::size_t all = 0, good = 0, failing = 0, missing = 0;

    void count(measured_tool const& t) {
        ++all;
        if (!t.fit) {
            ++missing;
        } else if (!t.passed()) {
            ++failing;
        } else if (!t.checks.empty()) {
            ++good;
        }
    }
    std::size_t judged() const { return good + failing + missing; }
};

std::string summary_of(tally const& t, bool has_limits) {
    std::string const not_found = t.missing > 0 ? std::to_string(t.missing) + " not found" : "";
    if (!has_limits) {
        std::string const found = counted(t.all - t.missing, "feature", "features");
        return t.missing == 0 ? found : found + ", " + not_found;
    }
    std::size_t const judged = t.judged();
    if (t.good == judged)
        return judged == 1 ? "passes" : judged == 2 ? "both pass" : "all " + std::to_string(judged) + " pass";
    if (t.all == 1) return t.missing > 0 ? "not found" : "fails";
    std::string text = std::to_string(t.good) + " of " + counted(judged, "passes", "pass");
    if (t.missing > 0) text += ", " + not_found;
    return text;
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

std::string rest_of(tally const& t, bool has_limits) {
    std::string text = "and " + std::to_string(t.all) + " more";
    if (t.failing + t.missing > 0)
        return text + ", " + counted(t.failing + t.missing, "of which fails", "of which fail");
    return has_limits && t.good == t.all ? text + (t.all == 1 ? ", which passes" : ", all pass") : text;
}

int decimals_for(double pixel_length) {
    return static_cast<int>(std::clamp(std::ceil(-std::log10(pixel_length / 500)), 0.0, 12.0));
}

}  // namespace

measure_sheet make_measure_sheet(measure_report const& report, double pixel_length) {
    measure_sheet sheet;
    tally all;
    std::vector<measured_tool const*> shown;
    for (measured_tool const& t : report.tools) {
        all.count(t);
        sheet.has_limits = sheet.has_limits || !t.tool->limits.empty();
        shown.push_back(&t);
    }
    if (shown.size() > most_rows) {
        std::stable_partition(shown.begin(), shown.end(), [](auto const* t) { return !t->passed(); });
    }
    tally rest;
    for (std::size_t i = most_rows; i < shown.size(); ++i) rest.count(*shown[i]);
    shown.resize(std::min(shown.size(), most_rows));
    if (rest.all > 0) sheet.rest = rest_of(rest, sheet.has_limits);
    sheet.failing = failing_of(report);
    sheet.summary = summary_of(all, sheet.has_limits);
    sheet.state = all.failing + all.missing == 0 ? verdict::good : verdict::bad;

    std::vector<std::vector<sheet_row>> rows;
    for (measured_tool const* t : shown) rows.push_back(rows_of(*t, decimals_for(pixel_length)));
    std::size_t of_one = most_rows_of_one;
    auto const total = [&rows](std::size_t limit) {
        std::size_t sum = 0;
        for (auto const& own : rows) sum += std::min(own.size(), limit);
        return sum;
    };
    while (of_one > 1 && total(of_one) > most_rows) --of_one;
    for (auto const& own : rows) {
        for (std::size_t i = 0; i < std::min(own.size(), of_one); ++i) sheet.rows.push_back(own[i]);
    }
    // Beside a nominal value the deviations tell more.
    auto& made = sheet.rows;
    if (std::any_of(made.begin(), made.end(), [](sheet_row const& row) { return !row.nominal.empty(); })) {
        for (sheet_row& row : made) row.place.clear();
    }
    return sheet;
}

}  // namespace tvmath
