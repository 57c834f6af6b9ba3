#include "measure/measure_command.h"

#include <ostream>

#include "files/file_output.h"
#include "files/image_file.h"
#include "files/point_file.h"
#include "measure/measure_progress.h"
#include "measure/picture/measure_overlay.h"
#include "measure/report/measure_report.h"
#include "plot/picture_file.h"

inline namespace tvmath {
namespace {

// What can be wrong with a request before any file is read.
bool check(measure_request const& request, std::string& reason) {
    if (!check_picture_name(request.plot, reason)) return false;
    if (request.overlay.empty() || suffix_of(request.overlay) == ".png") return true;
    reason = shown_name(request.overlay) + ": the suffix must be .png";
    return false;
}

// A correction belongs to the size of its screen.
template <class corrector_type>
bool is_for_screen(corrector_type const& corrector, image const& scene) {
    auto const agrees = [](double scale, unsigned int size) {
        return scale * size > 1.999 && scale * size < 2.001;
    };
    return corrector.is_trivial() ||
           (agrees(corrector.x_scale, matrix::cols(scene)) && agrees(corrector.y_scale, matrix::rows(scene)));
}

bool are_for_screen(measure_job const& job, image const& scene, std::string& reason) {
    char const* const wrong = !is_for_screen(job.screen, scene)     ? "screen"
                              : !is_for_screen(job.flatness, scene) ? "flatness"
                                                                    : nullptr;
    if (wrong) reason = std::string("the ") + wrong + " correction is that of another size of image";
    return !wrong;
}

exit_status status_of(measured_tool const& tool) {
    if (!tool.fit) return exit_status::no_answer;
    return tool.passed() ? exit_status::done : exit_status::out_of_tolerance;
}

exit_status write_centers(std::string const& name, measure_report const& report, std::ostream& err) {
    std::string table, reason;
    if (center_table(report, table, reason)) return write_file(name, table, err);
    err << shown_name(name) << ": " << reason << '\n';
    return exit_status::no_answer;
}

exit_status write_files(measure_request const& request, image const& scene, measure_frame const& frame,
                        measure_report const& report, std::ostream& err) {
    exit_status status = exit_status::done;
    if (!request.points.empty()) status = worse(status, write_file(request.points, edge_table(report), err));
    if (!request.records.empty())
        status = worse(status, write_file(request.records, record_table(report), err));
    if (!request.centers.empty()) status = worse(status, write_centers(request.centers, report, err));
    if (!request.overlay.empty())
        status = worse(status, write_picture(request.overlay, overlay_png(scene, frame, report), err));
    if (!request.plot.empty()) {
        std::string const picture = measure_plot(scene, frame, report, suffix_of(request.plot));
        status = worse(status, write_picture(request.plot, picture, err));
    }
    return status;
}

exit_status complain(exit_status status, std::string const& reason, std::ostream& err) {
    err << reason << '\n';
    return status;
}

}  // namespace

exit_status run_measure(measure_request const& request, std::ostream& out, std::ostream& err) {
    std::string reason;
    if (!check(request, reason)) return complain(exit_status::wrong_usage, "tvmath: " + reason, err);
    measure_job job;
    exit_status status = read_job(request, job, reason);
    if (status != exit_status::done) return complain(status, reason, err);
    image scene;
    if (!read_image_file(request.image, scene, reason))
        return complain(exit_status::unreadable_input, shown_name(request.image) + ": " + reason, err);
    if (!are_for_screen(job, scene, reason))
        return complain(exit_status::wrong_usage, "tvmath: " + reason, err);

    measure_report report{shown_name(request.image), matrix::cols(scene), matrix::rows(scene), &job, {}};
    measure_frame const frame(job, report.width, report.height);
    {
        progress_line progress(err, job.tools.size());
        for (measure_tool const& tool : job.tools) {
            progress.show(report.tools.size(), tool.name);
            report.tools.push_back(measure(scene, frame, tool));
            status = worse(status, status_of(report.tools.back()));
        }
    }
    (request.json ? write_json : request.summary ? write_summary : write_text)(out, report);
    return worse(status, write_files(request, scene, frame, report, err));
}

}  // namespace tvmath
