#include "show_command.h"

#include <ostream>

#include "drawing_output.h"
#include "feature_figures.h"
#include "fit_report.h"
#include "number_text.h"
#include "point_file.h"
#include "record_file.h"
#include "record_names.h"

inline namespace tvmath {

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
    drawing d;
    d.title = name + ' ' + shown_name(request.file);
    if (!draw_record(*record, {}, d)) {
        err << shown_name(request.file) << ": " << with_article(name) << " has nothing to draw\n";
        return exit_status::no_answer;
    }
    return write_drawings({d}, 1, request.output, out, err);
}

}  // namespace tvmath
