#include "fit_record.h"

#include <ostream>

#include "files/file_output.h"
#include "record/record_file.h"

inline namespace tvmath {
namespace {

// The form of the option, else that of the suffix.
bool form_of(fit_request const& request, file_form& form, std::string& reason) {
    if (!find_form(request.record, request.record_file, form, reason)) return false;
    if (form == file_form::text || form == file_form::xml) return true;
    reason = "a record is written as text or xml";
    return false;
}

}  // namespace

bool check_record_options(fit_request const& request, bool is_single, std::string& reason) {
    if (request.record.empty() && request.record_file.empty()) return true;
    file_form ignored = file_form::text;
    if (!form_of(request, ignored, reason)) {
        reason = (request.record.empty() ? "--record-file: " : "--record: ") + reason;
    } else if (!is_single) {
        reason = "--record and --record-file go with one FILE at a time";
    } else if (request.json && is_record_printed(request)) {
        reason = "--record takes the place of the report; with --json give --record-file too";
    } else {
        return true;
    }
    return false;
}

exit_status write_fitted_record(fit_request const& request, Geometry_Description const& record,
                                std::ostream& out, std::ostream& err) {
    if (request.record.empty() && request.record_file.empty()) return exit_status::done;
    file_form form = file_form::text;
    std::string bytes, reason;
    if (!form_of(request, form, reason)) return exit_status::wrong_usage;
    exit_status const status = record_bytes(record, form, {}, bytes, reason);
    if (status != exit_status::done) {
        err << "tvmath: " << reason << '\n';
        return status;
    }
    if (!request.record_file.empty()) return write_file(request.record_file, bytes, err);
    out << bytes;
    return exit_status::done;
}

}  // namespace tvmath
