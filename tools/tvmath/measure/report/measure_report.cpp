#include "measure/report/measure_report.h"

#include <ostream>

#include "files/point_file.h"
#include "fit/fit_report.h"
#include "measure/report/measure_layout.h"
#include "measure/report/measure_verdict.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

constexpr std::size_t widest = 100;

std::string counted(std::size_t n, std::string const& what) {
    return std::to_string(n) + ' ' + what + (n == 1 ? "" : "s");
}

// "plate.png  1280 x 1024 pixels of 0.01 mm, corrected by screen and flatness, at z 2"
std::string frame_line(measure_report const& report) {
    measure_job const& job = *report.job;
    std::string text = report.image + "  " + std::to_string(report.width) + " x " +
                       std::to_string(report.height) + " pixels";
    if (job.from_screen) {
        text += " of " + short_number(job.pixel_length(), 6);
        if (!job.unit.empty()) text += ' ' + one_line(job.unit);
    }
    bool const screen = !job.screen.is_trivial(), flatness = !job.flatness.is_trivial();
    if (screen || flatness) text += ", corrected by ";
    if (screen) text += "screen";
    if (screen && flatness) text += " and ";
    if (flatness) text += "flatness";
    return job.z ? text + ", at z " + short_number(*job.z, 6) : text;
}

std::string title_of(measured_tool const& tool) {
    return one_line(tool.tool->name) + "  " + tool.tool->kind->name;
}

void write_measured(std::ostream& out, measure_layout const& layout, measured_tool const& tool,
                    std::vector<measure_row> const& rows, int decimals) {
    verdict const v = verdict_of(tool);
    out << layout.line_of(title_of(tool), v == verdict::pass   ? "PASS"
                                          : v == verdict::fail ? "FAIL"
                                                               : "")
        << '\n';
    std::string const titles = layout.titles_of(rows);
    if (!titles.empty()) out << titles << '\n';
    for (measure_row const& r : rows) out << layout.line_of(r) << '\n';
    out << "  " << counted(tool.edges.size(), "edge point") << " at " << counted(tool.stations, "place");
    if (std::size_t const dropped = tool.dropped())
        out << ", " << dropped << " dropped as " << (dropped == 1 ? "an outlier, " : "outliers, up to ")
            << fixed_number(tool.farthest_dropped(), decimals) << " off";
    out << '\n';
}

// " (bore, slot 3 and 7 more)", as many names as there is room for.
std::string names_of(std::vector<measured_tool const*> const& tools, std::size_t room) {
    std::string names, best;
    for (std::size_t i = 0; i < tools.size(); ++i) {
        names += (i > 0 ? ", " : " (") + one_line(tools[i]->tool->name);
        std::size_t const left = tools.size() - 1 - i;
        std::string const all = names + (left > 0 ? " and " + std::to_string(left) + " more)" : ")");
        if (width_of(all) > room) break;
        best = all;
    }
    return best;
}

// "14 features: 12 pass, 1 fails (bore), 1 not measured (slot 3)", the names as given.
std::string summary_of(measure_tally const& tally, std::string const& failing,
                       std::string const& not_measured) {
    std::size_t const features =
        tally.passing.size() + tally.failing.size() + tally.without_limits.size() + tally.not_measured.size();
    std::string text = counted(features, "feature");
    char const* comma = ": ";
    auto const add = [&](std::size_t n, std::string const& words) {
        if (n == 0) return;
        text += comma + std::to_string(n) + ' ' + words;
        comma = ", ";
    };
    bool const has_limits = !tally.passing.empty() || !tally.failing.empty();
    add(tally.passing.size(), tally.passing.size() == 1 ? "passes" : "pass");
    add(tally.failing.size(), (tally.failing.size() == 1 ? "fails" : "fail") + failing);
    add(tally.without_limits.size(), has_limits ? "without limits" : "measured");
    add(tally.not_measured.size(), "not measured" + not_measured);
    return text;
}

std::string summary_of(measure_report const& report) {
    measure_tally const tally(report);
    std::size_t const room = widest - summary_of(tally, "", "").size();
    // Where one long name takes it all the tables tell the others.
    std::string failing = names_of(tally.failing, tally.not_measured.empty() ? room : room / 2);
    if (failing.empty()) failing = names_of(tally.failing, room);
    return summary_of(tally, failing, names_of(tally.not_measured, room - width_of(failing)));
}

// Of a feature with limits what these speak of; of another one all but its errors.
std::vector<measure_row> main_rows(measured_tool const& tool, int decimals) {
    std::vector<measure_row> rows = rows_of(tool, decimals);
    if (tool.checks.empty()) {
        std::erase_if(rows, [&tool](measure_row const& r) {
            return r.label == form_label(*tool.fit) || r.label.starts_with("profile") ||
                   r.label == "standard deviation";
        });
    } else {
        std::erase_if(rows, [](measure_row const& r) { return r.verdict.empty(); });
    }
    for (measure_row& r : rows) r.label = one_line(tool.tool->name) + "  " + r.label;
    return rows;
}

}  // namespace

void write_summary(std::ostream& out, measure_report const& report) {
    int const decimals = decimals_for(report.job->pixel_length());
    std::vector<measure_row> rows;
    for (measured_tool const& tool : report.tools) {
        if (!tool.fit) continue;
        std::vector<measure_row> const own = main_rows(tool, decimals);
        rows.insert(rows.end(), own.begin(), own.end());
    }
    measure_layout layout;
    layout.include(rows);
    layout.settle();
    out << frame_line(report) << "\n\n";
    std::string const titles = layout.titles_of(rows);
    if (!titles.empty()) out << titles << '\n';
    for (measure_row const& r : rows) out << layout.line_of(r) << '\n';
    for (measured_tool const& tool : report.tools) {
        if (!tool.fit) out << "  " << one_line(tool.tool->name) << "  not measured: " << tool.reason << '\n';
    }
    out << '\n' << summary_of(report) << '\n';
}

void write_text(std::ostream& out, measure_report const& report) {
    int const decimals = decimals_for(report.job->pixel_length());
    measure_layout layout;
    for (measured_tool const& tool : report.tools) {
        if (tool.fit) layout.include(rows_of(tool, decimals));
    }
    layout.settle();

    out << frame_line(report) << "\n\n";
    // Made a second time, because the rows of a large job are many times the size of its results.
    for (measured_tool const& tool : report.tools) {
        if (tool.fit) {
            write_measured(out, layout, tool, rows_of(tool, decimals), decimals);
        } else {
            out << title_of(tool) << "  not measured: " << tool.reason << '\n';
        }
        out << '\n';
    }
    out << summary_of(report) << '\n';
}

}  // namespace tvmath
