#include "drawing_output.h"

#include <ostream>

#include "files/point_file.h"
#include "picture.h"
#include "picture_file.h"

inline namespace tvmath {

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
    if (name != "-") return write_picture(name, bytes, err);
    out << bytes;
    return exit_status::done;
}

}  // namespace tvmath
