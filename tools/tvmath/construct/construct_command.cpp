#include "construct/construct_command.h"

#include <algorithm>
#include <ostream>
#include <sstream>

#include "construct/construct_plot.h"
#include "construct/construct_report.h"
#include "construct/construct_result.h"
#include "construct/construct_sheet.h"
#include "files/file_output.h"
#include "files/point_file.h"
#include "fit/fit_record.h"
#include "plot/picture_file.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

// The part of the request that is the same as that of a fit.
fit_request record_request(construct_request const& request) {
    fit_request wanted;
    wanted.record = request.record;
    wanted.record_file = request.record_file;
    wanted.json = request.json;
    return wanted;
}

bool read_view(std::vector<std::string> const& words, std::optional<transform>& view, std::string& reason) {
    if (words.empty()) return true;
    std::vector<double> angles(3);
    for (std::size_t i = 0; i < 3; ++i) {
        if (words.size() == 3 && parse_parameter(words[i], angles[i], reason)) continue;
        reason = "--view: " + (words.size() == 3 ? reason : "three angles are needed");
        return false;
    }
    view = transform::rotation(angles[0], angles[1], angles[2]);
    return true;
}

bool check(construct_request const& request, std::optional<transform>& view, std::string& reason) {
    if (!check_picture_name(request.plot, reason) || !check_picture_name(request.sheet, reason)) return false;
    if (!check_record_options(record_request(request), true, reason)) return false;
    if (!read_view(request.view, view, reason)) return false;
    bool const is_sheet = request.what == "sheet";
    if (is_sheet != !request.sheet.empty()) {
        reason =
            is_sheet ? "construct sheet needs -o PICTURE" : "-o goes with construct sheet; --plot draws this";
    } else if (is_sheet && !request.features.empty()) {
        reason = "construct sheet takes no features";
    } else if (std::count(request.features.begin(), request.features.end(), "-") > 1) {
        reason = "standard input (-) can be read only once";
    } else if (!request.choose.empty() && !request.update.empty()) {
        reason = "--choose and --update both choose; give one of them";
    }
    return reason.empty();
}

exit_status write_results(construct_request const& request, std::optional<transform> const& view,
                          construct_result const& result, std::ostream& out, std::ostream& err) {
    fit_request const record = record_request(request);
    exit_status status = write_fitted_record(record, *result.choice().record, out, err);
    if (status != exit_status::done) return status;
    if (!is_record_printed(record)) request.json ? write_json(out, result) : write_text(out, result);
    if (!request.save.empty()) status = write_file(request.save, result.memory + '\n', err);
    if (request.plot.empty()) return status;
    return worse(status,
                 write_picture(request.plot, construct_plot(result, view, suffix_of(request.plot)), err));
}

}  // namespace

exit_status run_construct(construct_request const& request, std::ostream& out, std::ostream& err) {
    std::string reason;
    std::optional<transform> view;
    if (!check(request, view, reason)) {
        err << "tvmath: " << reason << '\n';
        return exit_status::wrong_usage;
    }
    if (request.what == "sheet")
        return write_picture(request.sheet, construct_sheet(suffix_of(request.sheet)), err);
    construct_result result;
    exit_status const status = construct(request, result, reason);
    if (status == exit_status::done) return write_results(request, view, result, out, err);
    err << (status == exit_status::unreadable_input ? "" : "tvmath: ") << reason << '\n';
    return status;
}

std::string construct_help() {
    constexpr std::size_t column = 14, longest = 110;
    std::string text = "Constructions and the features that they take, in any order:\n";
    for (operation const what : {operation::nearest, operation::farthest, operation::intersect,
                                 operation::tangent, operation::bisect, operation::angle}) {
        std::string line = std::string("  ") + operation_name(what);
        line.resize(column, ' ');
        std::istringstream pairs(known_pairs(what, {}));
        for (std::string pair; std::getline(pairs, pair, ';');) {
            if (line.size() + pair.size() > longest) {
                text += line + '\n';
                line.assign(column, ' ');
            }
            bool const is_first = line.back() == ' ';
            line += is_first ? pair.substr(pair.front() == ' ' ? 1 : 0) : ';' + pair;
        }
        text += line + '\n';
    }
    return text +
           "  sheet       -o PICTURE: a sample of each\n"
           "An ellipse may be a circle or an arc, a path a spline or a nurb, a list points of a file.\n";
}

}  // namespace tvmath
