#include "show_command.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "files/point_file.h"
#include "fit/fit_report.h"
#include "plot/drawing_output.h"
#include "record_file.h"
#include "record_names.h"
#include "report/feature_figures.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

// In a picture of a large cloud most marks fall on each other. One for each place that can be told apart is
// left.
void thin_out(Geometry_Description& record) {
    auto* const cloud = dynamic_cast<PointCloud_Description*>(&record);
    constexpr std::size_t most_marks = 20000, cells = 256;
    if (!cloud || cloud->points.size() <= most_marks) return;
    auto const by_x = [](point const& a, point const& b) { return a.x() < b.x(); };
    auto const by_y = [](point const& a, point const& b) { return a.y() < b.y(); };
    std::vector<point>& all = cloud->points;
    auto const [left, right] = std::minmax_element(all.begin(), all.end(), by_x);
    auto const [low, high] = std::minmax_element(all.begin(), all.end(), by_y);
    double const x = left->x(), y = low->y(), size = std::max(right->x() - x, high->y() - y);
    // Halves, because the difference of two doubles may be infinite; not a number for an extent of 0.
    auto const cell = [size](double at, double from) {
        double const share = (at / 2 - from / 2) / (size / 2);
        return share > 0 ? std::min(static_cast<std::size_t>(share * cells), cells - 1) : 0;
    };
    std::vector<bool> taken(cells * cells);
    std::erase_if(all, [&](point const& p) {
        std::size_t const i = cell(p.x(), x) * cells + cell(p.y(), y);
        bool const before = taken[i];
        taken[i] = true;
        return before;
    });
}

}  // namespace

exit_status run_show(show_request const& request, std::ostream& out, std::ostream& err) {
    file_form form = file_form::csv;
    std::string reason;
    unsigned long long const type = record_type(request.kind);
    if (type == 0 && !request.kind.empty()) reason = "there is no kind '" + shown_name(request.kind) + "'";
    if (!reason.empty() || !find_form(request.from, request.file, form, reason)) {
        err << "tvmath: " << reason << '\n';
        return exit_status::wrong_usage;
    }
    if (!request.output.empty() && !is_drawing_name(request.output, err)) return exit_status::wrong_usage;

    std::shared_ptr<Geometry_Description> record;
    exit_status const status = read_record(request.file, form, type, record, reason);
    if (status != exit_status::done) {
        err << reason << '\n';
        return status;
    }
    std::string const name = record_name(record->type());
    if (request.output != "-") {
        out << name << "  " << shown_name(request.file) << '\n';
        write_rows(out, rows_of(figures_of(*record), true, number_text));
    }
    if (request.output.empty()) return exit_status::done;
    if (request.output != "-" && !request.output.ends_with(".csv")) thin_out(*record);
    drawing d;
    d.title = name + ' ' + shown_name(request.file);
    if (!draw_record(*record, {}, d)) {
        err << shown_name(request.file) << ": " << with_article(name) << " has nothing to draw\n";
        return exit_status::no_answer;
    }
    return write_drawings({d}, 1, request.output, out, err);
}

}  // namespace tvmath
