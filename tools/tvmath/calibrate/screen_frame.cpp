#include "calibrate/screen_frame.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "files/point_file.h"
#include "record/record_file.h"

inline namespace tvmath {

bool pixel_transform(std::vector<double> const& sizes, std::optional<transform>& to_machine,
                     std::string& reason) {
    auto const is_size = [](double size) { return std::isfinite(size) && size != 0.0; };
    if (sizes.empty() || sizes.size() > 2 || !std::all_of(sizes.begin(), sizes.end(), is_size)) {
        reason = "is one or two numbers other than 0";
        return false;
    }
    to_machine = transform::dilation(sizes.front(), sizes.back(), 1);
    return true;
}

exit_status read_transform(std::string const& name, std::optional<transform>& to_machine,
                           std::string& reason) {
    // XML keeps no scale of a transform.
    file_form form = file_form::text;
    if (name != "-" && (!find_form("", name, form, reason) || form != file_form::text)) {
        reason = shown_name(name) + ": a transform is read as text, from a file .txt";
        return exit_status::wrong_usage;
    }
    std::shared_ptr<Geometry_Description> record;
    exit_status const status = read_record(name, form, Transform_Description::type_value, record, reason);
    if (status != exit_status::done) return status;
    transform read = dynamic_cast<Transform_Description const&>(*record).geometry;
    read.promote3d();
    double const a = read.basis(1).x() * read.basis(2).y(), b = read.basis(1).y() * read.basis(2).x();
    if (a == b) {
        reason = shown_name(name) + ": leads the screen to a line or a point of the machine";
        return exit_status::unreadable_input;
    }
    to_machine = read;
    return exit_status::done;
}

}  // namespace tvmath
