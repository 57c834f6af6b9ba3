#include "fit_report.h"

#include <algorithm>
#include <ostream>

#include "report/number_text.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t most_contacts = 12;  // JSON has all

std::string count_text(double x) {
    return std::to_string(static_cast<long long>(x));
}

std::string place_text(extreme_point const& e) {
    std::string text =
        "point " + std::to_string(e.index + 1) + " (" + number_text(e.at.x()) + ", " + number_text(e.at.y());
    if (e.at.is_3d()) text += ", " + number_text(e.at.z());
    return text + ")";
}

void add_form(std::vector<report_row>& rows, fit_result const& result) {
    rows.push_back({form_label(result), number_text(result.form_error), {}});
    std::string const symbol = result.has_standard_names ? result.kind->form.symbol : "";
    // The standard defines the others about the least-squares feature alone.
    if (result.has_standard_names && !result.is_zone()) {
        rows.push_back({"peak " + symbol + "p", number_text(result.highest.residual), {}});
        rows.push_back({"valley " + symbol + "v", number_text(-result.lowest.residual), {}});
        rows.push_back({"root mean square " + symbol + "q", number_text(result.rms), {}});
    }
    rows.push_back({"highest residual", number_text(result.highest.residual), place_text(result.highest)});
    rows.push_back({"lowest residual", number_text(result.lowest.residual), place_text(result.lowest)});
    rows.push_back({"profile error", number_text(result.profile_error), {}});
    if (result.standard_deviation)
        rows.push_back({"standard deviation", number_text(*result.standard_deviation), {}});
    rows.push_back({"rms residual", number_text(result.rms), {}});
    if (result.tolerance) {
        rows.push_back({"tolerance", number_text(*result.tolerance),
                        result.is_in_tolerance() ? "kept by the form error" : "exceeded by the form error"});
    }
}

void add_nominal(std::vector<report_row>& rows, nominal_comparison const& nominal) {
    for (report_row row : rows_of(nominal.deviations, true, number_text)) {
        row.label = "deviation of " + row.label;
        rows.push_back(row);
    }
    if (nominal.profile_error)
        rows.push_back({"profile error to nominal", number_text(*nominal.profile_error), {}});
}

void add_contacts(std::vector<report_row>& rows, std::vector<contact_point> const& contacts) {
    std::size_t const shown = std::min(contacts.size(), most_contacts);
    for (std::size_t i = 0; i < shown; ++i) {
        contact_point const& c = contacts[i];
        rows.push_back({c.side + " contact", number_text(c.at.residual), place_text(c.at)});
    }
    if (shown < contacts.size())
        rows.push_back({"more contacts", std::to_string(contacts.size() - shown), {}});
}

std::size_t whole_digits(report_row const& row) {
    return std::min(row.number.find('.'), row.number.size());
}

}  // namespace

std::string form_label(fit_result const& result) {
    if (!result.has_standard_names) return "form error";
    std::string const label = std::string(result.kind->form.word) + ' ' + result.kind->form.symbol + 't';
    return result.is_zone() ? label + " (" + result.kind->form.reference + ')' : label;
}

std::vector<report_row> rows_of(std::vector<figure> const& figures, bool radians,
                                std::function<std::string(double)> const& text) {
    std::vector<report_row> rows;
    for (figure const& f : figures) {
        if (f.kind == figure_kind::rows || f.values.empty()) continue;
        if (is_angle(f)) {
            rows.push_back({f.label + " deg", text(f.values[0] * (180 / pi)), {}});
            if (radians) rows.push_back({f.label + " rad", text(f.values[0]), {}});
        } else if (f.kind == figure_kind::count) {
            rows.push_back({f.label, count_text(f.values[0]), {}});
        } else if (f.values.size() == 1) {
            rows.push_back({f.label, text(f.values[0]), {}});
        } else {
            for (std::size_t i = 0; i < f.values.size(); ++i)
                rows.push_back({f.label + ' ' + "xyz" [i], text(f.values[i]), {}});
        }
    }
    return rows;
}

void write_rows(std::ostream& out, std::vector<report_row> const& rows) {
    std::size_t widest_label = 0, widest_whole = 0, widest_number = 0;
    for (report_row const& r : rows) {
        widest_label = std::max(widest_label, r.label.size());
        widest_whole = std::max(widest_whole, whole_digits(r));
    }
    for (report_row const& r : rows)
        widest_number = std::max(widest_number, widest_whole - whole_digits(r) + r.number.size());
    for (report_row const& r : rows) {
        std::size_t const gap = widest_label - r.label.size() + 2 + widest_whole - whole_digits(r);
        out << "  " << r.label << std::string(gap, ' ') << r.number;
        if (!r.note.empty()) {
            std::size_t const used = widest_whole - whole_digits(r) + r.number.size();
            out << std::string(widest_number - used + 2, ' ') << r.note;
        }
        out << '\n';
    }
}

void write_text(std::ostream& out, fit_result const& result) {
    std::vector<report_row> rows = rows_of(result.figures, true, number_text);
    rows.push_back({"points", std::to_string(result.count), {}});
    if (result.parameters > 0) rows.push_back({"parameters", std::to_string(result.parameters), {}});
    if (result.degrees_of_freedom)
        rows.push_back({"degrees of freedom", std::to_string(*result.degrees_of_freedom), {}});
    add_form(rows, result);
    add_contacts(rows, result.contacts);
    if (result.nominal) add_nominal(rows, *result.nominal);

    out << result.kind->name << "  " << result.file << '\n' << "  " << result.method;
    if (result.forgets_z()) out << ", fitted in XY";
    out << '\n';
    for (std::string const& words : result.conditions) out << "  " << words << '\n';
    write_rows(out, rows);
}

std::string residual_table(fit_result const& result) {
    bool const in_space = result.dimension == 3;
    std::string text = in_space ? "index,x,y,z,residual\n" : "index,x,y,residual\n";
    for (std::size_t i = 0; i < result.points.size(); ++i) {
        point const& p = result.points[i];
        text += std::to_string(i + 1) + ',' + number_text(p.x()) + ',' + number_text(p.y()) + ',';
        if (in_space) text += number_text(p.z()) + ',';
        text += number_text(result.residuals[i]) + '\n';
    }
    return text;
}

}  // namespace tvmath
