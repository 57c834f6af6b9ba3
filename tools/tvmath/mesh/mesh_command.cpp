#include "mesh_command.h"

#include <ostream>

#include "files/point_file.h"
#include "mesh_plot.h"
#include "mesh_result.h"
#include "plot/canvas.h"
#include "plot/picture_file.h"
#include "report/json_text.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

std::string triangle_table(mesh_result const& mesh) {
    std::string text = "triangle,a,b,c\n";
    for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
        text += std::to_string(i + 1);
        for (std::size_t const corner : mesh.triangles[i]) text += ',' + std::to_string(corner + 1);
        text += '\n';
    }
    return text;
}

void write_text(std::ostream& out, mesh_result const& mesh) {
    out << "mesh  " << mesh.file << "\n  Delaunay triangulation"
        << (mesh.points.front().is_3d() ? " in XY" : "") << "\n  points           " << mesh.points.size()
        << "\n  repeated points  " << mesh.repeated << "\n  edges            " << mesh.edges.size()
        << "\n  triangles        " << mesh.triangles.size() << "\n  hull points      " << mesh.hull.size()
        << "\n  hull area        " << number_text(mesh.area) << "\n  hull perimeter   "
        << number_text(mesh.perimeter) << '\n';
}

void write_json(std::ostream& out, mesh_result const& mesh) {
    json_value document;
    document["schema"] = "tvmath.mesh/1";
    document["file"] = mesh.file;
    document["dimension"] = mesh.points.front().dimension();
    document["points"] = mesh.points.size();
    document["repeated_points"] = mesh.repeated;
    document["edges"] = mesh.edges.size();
    document["triangles"] = mesh.triangles.size();
    document["hull_points"] = mesh.hull.size();
    document["hull_area"] = mesh.area;
    document["hull_perimeter"] = mesh.perimeter;
    write_json_text(out, document);
}

// What can be wrong with a request before the file is read.
std::string fault_of(mesh_request const& request) {
    std::string const suffix = suffix_of(request.output);
    if (request.output == "-" && request.json) return "-o - and --json both need standard output";
    if (request.output.empty() || suffix == ".csv" || is_picture_suffix(suffix)) return {};
    return shown_name(request.output) + ": the suffix must be .csv" +
           (is_picture_suffix(".svg") ? ", .svg, .png or .pdf" : "; this build makes no pictures");
}

}  // namespace

exit_status run_mesh(mesh_request const& request, std::ostream& out, std::ostream& err) {
    if (std::string const fault = fault_of(request); !fault.empty()) {
        err << "tvmath: " << fault << '\n';
        return exit_status::wrong_usage;
    }
    std::vector<point> points;
    read_error error;
    if (!read_point_file(request.file, request.decimal_comma, points, error)) {
        err << error_text(request.file, error) << '\n';
        return exit_status::unreadable_input;
    }
    mesh_result mesh;
    std::string reason;
    if (!triangulate(std::move(points), mesh, reason)) {
        err << shown_name(request.file) << ": " << reason << '\n';
        return exit_status::no_answer;
    }
    mesh.file = shown_name(request.file);
    if (request.output == "-") {
        out << triangle_table(mesh);
        return exit_status::done;
    }
    request.json ? write_json(out, mesh) : write_text(out, mesh);
    if (request.output.empty()) return exit_status::done;
    std::string const suffix = suffix_of(request.output);
    return write_picture(request.output, suffix == ".csv" ? triangle_table(mesh) : mesh_plot(mesh, suffix),
                         err);
}

}  // namespace tvmath
