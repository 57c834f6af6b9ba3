#include "convert_command.h"

#include <ostream>

#include "files/file_output.h"
#include "files/point_file.h"
#include "record_file.h"
#include "record_names.h"

inline namespace tvmath {
namespace {

bool read_count(std::string const& text, int least, int most, int& value) {
    if (text.empty() || text.size() > 2 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    int const read = std::stoi(text);
    if (read < least || read > most) return false;
    value = read;
    return true;
}

struct plan {
    file_form from = file_form::csv, to = file_form::csv;
    unsigned long long type = 0;
    write_options options;
};

// What can be wrong with a request before any file is read.
bool make_plan(convert_request const& request, plan& p, std::string& reason) {
    if (!find_form(request.from, request.input, p.from, reason) ||
        !find_form(request.to, request.output, p.to, reason)) {
        return false;
    }
    p.options.bare = request.bare;
    int method = 0;
    p.type = record_type(request.kind);
    if (p.type == 0 && !request.kind.empty()) {
        reason = "there is no kind '" + shown_name(request.kind) + "'";
    } else if (!request.method.empty() && p.to != file_form::hexadecimal) {
        reason = "--method goes with compressed points, the form hex";
    } else if (!request.method.empty() && !read_count(request.method, 0, 3, method)) {
        reason = "--method is 0, 1, 2 or 3";
    } else if (!request.precision.empty() && p.to != file_form::text && p.to != file_form::xml) {
        reason = "--precision goes with the forms text and xml";
    } else if (!request.precision.empty() && !read_count(request.precision, 1, 17, p.options.precision)) {
        reason = "--precision is 1 to 17 digits";
    } else if (request.bare && p.to != file_form::text) {
        reason = "--bare goes with the form text";
    }
    p.options.method = static_cast<unsigned char>(method);
    return reason.empty();
}

}  // namespace

exit_status run_convert(convert_request const& request, std::ostream& out, std::ostream& err) {
    plan p;
    std::string reason, bytes;
    if (!make_plan(request, p, reason)) {
        err << "tvmath: " << reason << '\n';
        return exit_status::wrong_usage;
    }
    std::shared_ptr<Geometry_Description> record;
    exit_status status = read_record(request.input, p.from, p.type, record, reason);
    if (status != exit_status::done) {
        err << reason << '\n';
        return status;
    }
    if (!request.precision.empty() && !points_in(*record)) {
        err << "tvmath: --precision goes with lists of points; records have 8 digits\n";
        return exit_status::wrong_usage;
    }
    status = record_bytes(*record, p.to, p.options, bytes, reason);
    if (status != exit_status::done) {
        err << shown_name(request.input) << ": " << reason << '\n';
        return status;
    }
    if (request.output != "-") return write_file(request.output, bytes, err);
    out << bytes;
    return exit_status::done;
}

}  // namespace tvmath
