#include "plot/picture_file.h"

#include <filesystem>
#include <ostream>

#include "files/file_output.h"
#include "files/point_file.h"
#include "plot/canvas.h"

inline namespace tvmath {

std::string suffix_of(std::string const& name) {
    return name == "-" ? ".csv" : std::filesystem::path(name).extension().string();
}

bool check_picture_name(std::string const& name, std::string& reason) {
    if (name.empty() || is_picture_suffix(suffix_of(name))) return true;
    reason = shown_name(name) + (is_picture_suffix(".svg") ? ": the suffix must be .svg, .png or .pdf"
                                                           : ": this build makes no pictures");
    return false;
}

exit_status write_picture(std::string const& name, std::string const& bytes, std::ostream& err) {
    if (!bytes.empty()) return write_file(name, bytes, err);
    err << shown_name(name) << ": the picture cannot be made\n";
    return exit_status::internal;
}

}  // namespace tvmath
