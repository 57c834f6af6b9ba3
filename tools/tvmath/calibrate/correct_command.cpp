#include <algorithm>
#include <cmath>
#include <ostream>

#include "calibrate/calibrate_command.h"
#include "calibrate/calibrate_setup.h"
#include "calibrate/corrector_file.h"
#include "files/file_output.h"
#include "files/point_file.h"
#include "record/record_file.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

bool is_finite(point const& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && (!p.is_3d() || std::isfinite(p.z()));
}

// What can be wrong with a request before any file is read.
bool check(correct_request const& request, file_form& form, double& reference, std::string& reason) {
    if (request.corrector == "-" && request.points == "-") {
        reason = "standard input (-) can be read only once";
    } else if (!request.z_reference.empty() && !parse_parameter(request.z_reference, reference, reason)) {
        reason = "--z-reference: " + reason;
    } else if (!request.output.empty() && request.output != "-") {
        find_form("", request.output, form, reason);
    }
    return reason.empty();
}

point moved(point const& p, any_corrector const& corrector, bool is_removed) {
    return std::visit([&](auto const& c) { return is_removed ? p / c : p * c; }, corrector);
}

// Replaces the points by where the corrector moves them. Heights count from `reference`.
bool correct_all(std::vector<point>& points, any_corrector const& corrector, bool is_removed,
                 double reference, std::string& reason) {
    bool const by_height = kind_of(corrector) == corrector_kind::telecentricity;
    if (by_height && !points.front().is_3d()) {
        reason = "telecentricity needs the height of each point: x, y, z";
        return false;
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        point& p = points[i];
        double const z = p.is_3d() ? p.z() : 0;
        if (by_height) p.z() = z - reference;
        p = moved(p, corrector, is_removed);
        if (by_height) p.z() = z;  // it stays, to its last digit
        if (is_finite(p)) continue;
        reason = "point " + std::to_string(i + 1) + " is too far away for this corrector";
        return false;
    }
    return true;
}

}  // namespace

exit_status run_correct(correct_request const& request, std::ostream& out, std::ostream& err) {
    file_form form = file_form::csv;
    double reference = 0;
    std::string reason;
    auto const fail = [&](exit_status status) {
        err << reason << '\n';
        return status;
    };
    if (!check(request, form, reference, reason)) {
        reason = "tvmath: " + reason;
        return fail(exit_status::wrong_usage);
    }
    any_corrector corrector;
    PointCloud_Description cloud;
    exit_status status = read_corrector_file(request.corrector, corrector, reason);
    if (status == exit_status::done && !request.z_reference.empty() &&
        kind_of(corrector) != corrector_kind::telecentricity) {
        reason = std::string("tvmath: --z-reference goes with telecentricity; this corrector is of ") +
                 corrector_name(kind_of(corrector));
        return fail(exit_status::wrong_usage);
    }
    if (status == exit_status::done)
        status = read_list(request.points, request.decimal_comma, cloud.points, reason);
    if (status != exit_status::done) return fail(status);
    std::string why, bytes;
    status = correct_all(cloud.points, corrector, request.remove, reference, why)
                 ? record_bytes(cloud, form, {}, bytes, why)
                 : exit_status::no_answer;
    if (status != exit_status::done) {
        reason = shown_name(request.points) + ": " + why;
        return fail(status);
    }
    if (!request.output.empty() && request.output != "-") return write_file(request.output, bytes, err);
    out << bytes;
    return exit_status::done;
}

}  // namespace tvmath
