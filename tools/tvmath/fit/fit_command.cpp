#include "fit_command.h"

#include <ostream>

#include "files/file_output.h"
#include "files/point_file.h"
#include "fit_plot.h"
#include "fit_record.h"
#include "fit_report.h"
#include "fit_result.h"
#include "plot/picture_file.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

// What can be wrong with a request before any file is read.
exit_status check(fit_request const& request, fit_kind const* kind, char const* command,
                  fit_conditions& known, std::string& reason) {
    if (!kind) {
        reason =
            "there is no kind '" + shown_name(request.kind) + "' (tvmath " + command + " --help lists them)";
        return exit_status::wrong_usage;
    }
    if (!read_conditions(request, *kind, known, reason)) return exit_status::wrong_usage;
    std::string const name = kind->name;
    if (name == "transform" && request.onto.empty()) {
        reason = "a transform takes --onto FILE, the points that it leads to";
        return exit_status::wrong_usage;
    }
    bool const single = request.files.size() == 1 || kind->takes_all_files;
    if (!single && !(request.plot.empty() && request.residuals.empty())) {
        reason = "--plot and --residuals go with one FILE at a time";
        return exit_status::wrong_usage;
    }
    if (!check_record_options(request, single, reason)) return exit_status::wrong_usage;
    return check_picture_name(request.plot, reason) ? exit_status::done : exit_status::wrong_usage;
}

// The work on the files of one request.
class fit_run {
public:
    fit_run(fit_request const& request, fit_kind const& kind, fit_conditions const& known, std::ostream& out,
            std::ostream& err)
        : request_(request), kind_(kind), known_(known), out_(out), err_(err) {}

    exit_status run() {
        if (!request_.onto.empty() && !read(request_.onto, known_.onto)) return status_;
        if (kind_.takes_all_files) {
            fit_together();
        } else {
            for (std::string const& file : request_.files) fit_alone(file);
        }
        // Without any result there is nothing to say, so a caller may test for output.
        if (request_.json && !results_.empty()) write_json(out_, results_);
        return status_;
    }

private:
    void note(exit_status status) { status_ = worse(status_, status); }

    bool read(std::string const& file, std::vector<point>& points) {
        read_error error;
        if (read_point_file(file, request_.decimal_comma, points, error)) return true;
        err_ << error_text(file, error) << '\n';
        note(exit_status::unreadable_input);
        return false;
    }

    void fit_alone(std::string const& file) {
        std::vector<point> points;
        if (read(file, points)) fit(shown_name(file), points, {points.size()});
    }

    void fit_together() {
        std::vector<point> all;
        std::vector<std::size_t> sizes;
        std::string names;
        for (std::string const& file : request_.files) {
            std::vector<point> points;
            if (!read(file, points)) return;
            if (!all.empty() && all.front().dimension() != points.front().dimension()) {
                err_ << error_text(file, {0, "points of another dimension than those of the first file"})
                     << '\n';
                return note(exit_status::unreadable_input);
            }
            all.insert(all.end(), points.begin(), points.end());
            sizes.push_back(points.size());
            names += (names.empty() ? "" : " + ") + shown_name(file);
        }
        fit(names, all, sizes);
    }

    void fit(std::string const& name, std::vector<point> const& points,
             std::vector<std::size_t> const& sizes) {
        fit_result result;
        std::string reason;
        bool is_usage = false;
        if (!fit_feature(kind_, points, sizes, known_, result, reason, is_usage)) {
            err_ << name << ": " << reason << '\n';
            return note(is_usage ? exit_status::wrong_usage : exit_status::no_answer);
        }
        result.file = name;
        if (!result.is_in_tolerance()) {
            err_ << name << ": out of tolerance: the form error " << number_text(result.form_error)
                 << " is above " << number_text(*result.tolerance) << '\n';
            note(exit_status::out_of_tolerance);
        }
        if (!request_.json && !is_record_printed(request_)) {
            if (!results_.empty()) out_ << '\n';
            write_text(out_, result);
        }
        write_files(result);
        // Reports need them no more, and of many large files they would fill the memory.
        result.points = {};
        result.residuals = {};
        results_.push_back(std::move(result));
    }

    void write_files(fit_result const& result) {
        note(write_fitted_record(request_, *result.feature, out_, err_));
        if (!request_.residuals.empty()) note(write_file(request_.residuals, residual_table(result), err_));
        if (request_.plot.empty()) return;
        note(write_picture(request_.plot, fit_plot(result, suffix_of(request_.plot)), err_));
    }

    fit_request const& request_;
    fit_kind const& kind_;
    fit_conditions known_;
    std::ostream &out_, &err_;
    std::vector<fit_result> results_;
    exit_status status_ = exit_status::done;
};

exit_status run(fit_request const& request, fit_kind const* kind, char const* command, std::ostream& out,
                std::ostream& err) {
    fit_conditions known;
    std::string reason;
    exit_status const status = check(request, kind, command, known, reason);
    if (status != exit_status::done) {
        err << "tvmath: " << reason << '\n';
        return status;
    }
    return fit_run(request, *kind, known, out, err).run();
}

}  // namespace

exit_status run_fit(fit_request const& request, std::ostream& out, std::ostream& err) {
    fit_kind const* const kind = find_fit_kind(request.kind);
    if (!request.zone || !kind || !(kind->options & option_zone)) return run(request, kind, "fit", out, err);
    fit_request of_zone = request;
    of_zone.zone = false;
    return run(of_zone, find_zone_kind(kind->name), "fit", out, err);
}

exit_status run_zone(fit_request const& request, std::ostream& out, std::ostream& err) {
    return run(request, find_zone_kind(request.kind), "zone", out, err);
}

}  // namespace tvmath
