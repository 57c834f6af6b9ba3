#include "drawing_output.h"

#include <filesystem>
#include <ostream>

#include "files/file_output.h"
#include "files/point_file.h"
#include "picture.h"

inline namespace tvmath {
namespace {

std::string suffix_of(std::string const& name) {
    return name == "-" ? ".csv" : std::filesystem::path(name).extension().string();
}

}  // namespace

bool is_drawing_name(std::string const& name, std::ostream& err) {
    if (suffix_of(name) == ".csv" || is_picture_suffix(suffix_of(name))) return true;
    err << shown_name(name) << ": the suffix must be .csv"
        << (is_picture_suffix(".svg") ? ", .svg, .png or .pdf" : "; this build makes no pictures") << '\n';
    return false;
}

exit_status write_drawings(std::vector<drawing> const& drawings, int columns, std::string const& name,
                           std::ostream& out, std::ostream& err) {
    std::string const suffix = suffix_of(name);
    std::string const bytes =
        suffix == ".csv" ? csv_text(drawings.front()) : picture_bytes(drawings, columns, suffix);
    if (bytes.empty()) {
        err << shown_name(name) << ": the picture cannot be made\n";
        return exit_status::internal;
    }
    if (name != "-") return write_file(name, bytes, err);
    out << bytes;
    return exit_status::done;
}

}  // namespace tvmath
