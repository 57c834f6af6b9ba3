#include "calibrate/calibrate_setup.h"

#include <algorithm>
#include <charconv>

#include "calibrate/screen_frame.h"
#include "files/point_file.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

constexpr unsigned int largest_screen = 999'999;  // text forms have six digits for it

// An option with the kinds that take it and those that need it, as bits of `corrector_kind`.
struct option_row {
    char const* name;
    unsigned takes, needs;
    bool (*is_given)(calibrate_request const&);
};

constexpr unsigned of_screen = 1, of_flatness = 2, of_telecentricity = 4;
constexpr unsigned of_all = of_screen | of_flatness | of_telecentricity;

option_row const option_rows[] = {
    {"a second file, of the nominal places,", of_screen, of_screen,
     [](calibrate_request const& r) { return !r.nominal.empty(); }},
    {"a second file, of the places of the stage,", of_telecentricity, of_telecentricity,
     [](calibrate_request const& r) { return !r.nominal.empty(); }},
    {"--screen-size W H", of_screen | of_flatness, of_screen | of_flatness,
     [](calibrate_request const& r) { return !r.screen_size.empty(); }},
    {"--max-order", of_screen | of_flatness, 0,
     [](calibrate_request const& r) { return !r.max_order.empty(); }},
    {"--z-nominal", of_flatness, 0, [](calibrate_request const& r) { return !r.z_nominal.empty(); }},
    {"--z-reference Z", of_telecentricity, of_telecentricity,
     [](calibrate_request const& r) { return !r.z_reference.empty(); }},
    {"--screen", of_flatness | of_telecentricity, 0,
     [](calibrate_request const& r) { return !r.screen.empty(); }},
    {"--pixel SX [SY] or --transform FILE", of_all, of_flatness | of_telecentricity,
     [](calibrate_request const& r) { return !r.pixel.empty() || !r.transform_file.empty(); }},
};

bool check_options(calibrate_request const& request, corrector_kind kind, std::string& reason) {
    unsigned const bit = 1u << static_cast<unsigned>(kind);
    std::string const name = std::string("calibrate ") + corrector_name(kind);
    bool const takes_nominal = kind != corrector_kind::flatness;
    if (!takes_nominal && !request.nominal.empty()) {
        reason = name + " takes one file, of places on the screen with the heights measured there";
        return false;
    }
    for (option_row const& row : option_rows) {
        if ((row.needs & bit) && !row.is_given(request)) {
            reason = name + " needs " + row.name + " too";
        } else if (*row.name == '-' && !(row.takes & bit) && row.is_given(request)) {
            reason = std::string(row.name) + " does not go with " + name;
        }
        if (!reason.empty()) return false;
    }
    std::string const* const files[] = {&request.measured, &request.nominal, &request.screen,
                                        &request.transform_file};
    if (std::count_if(std::begin(files), std::end(files), [](auto const* f) { return *f == "-"; }) > 1) {
        reason = "standard input (-) can be read only once";
    } else if (!request.pixel.empty() && !request.transform_file.empty()) {
        reason = "--pixel and --transform both lead from the screen to the machine; give one of them";
    }
    return reason.empty();
}

bool read_height(char const* name, std::string const& text, std::optional<double>& z, std::string& reason) {
    if (text.empty()) return true;
    double value = 0;
    if (!parse_parameter(text, value, reason)) {
        reason = std::string(name) + ": " + reason;
        return false;
    }
    z = value;
    return true;
}

bool read_pixel(std::string const& text, std::optional<transform>& to_machine, std::string& reason) {
    std::vector<double> sizes;
    if (text.empty() || (parse_parameters(text, sizes, reason) && pixel_transform(sizes, to_machine, reason)))
        return true;
    reason = "--pixel: " + reason;
    return false;
}

bool read_whole(std::string const& text, unsigned int least, unsigned int most, unsigned int& value) {
    unsigned int number = 0;
    auto const read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return false;
    if (number < least || number > most) return false;
    value = number;
    return true;
}

bool read_sizes(calibrate_request const& request, calibrate_setup& setup, std::string& reason) {
    if (!request.screen_size.empty() &&
        (request.screen_size.size() != 2 ||
         !read_whole(request.screen_size[0], 1, largest_screen, setup.width) ||
         !read_whole(request.screen_size[1], 1, largest_screen, setup.height))) {
        reason = "--screen-size is a width and a height in whole pixels";
        return false;
    }
    setup.max_order = setup.kind == corrector_kind::telecentricity ? 1 : default_order(setup.kind);
    if (request.max_order.empty() || read_whole(request.max_order, 2, highest_order, setup.max_order))
        return true;
    reason = "--max-order is a whole number from 2 to " + std::to_string(highest_order);
    return false;
}

exit_status read_files(calibrate_request const& request, calibrate_setup& setup, std::string& reason) {
    setup.measured_file = request.measured;
    setup.nominal_file = request.nominal;
    exit_status status = read_list(request.measured, request.decimal_comma, setup.measured, reason);
    if (status == exit_status::done && !request.nominal.empty())
        status = read_list(request.nominal, request.decimal_comma, setup.nominal, reason);
    if (status == exit_status::done && !request.transform_file.empty())
        status = read_transform(request.transform_file, setup.to_machine, reason);
    if (status != exit_status::done || request.screen.empty()) return status;
    return read_corrector_file(request.screen, setup.screen, reason);
}

}  // namespace

exit_status read_list(std::string const& name, bool decimal_comma, std::vector<point>& points,
                      std::string& reason) {
    read_error error;
    if (read_point_file(name, decimal_comma, points, error)) return exit_status::done;
    reason = error_text(name, error);
    return exit_status::unreadable_input;
}

exit_status read_setup(calibrate_request const& request, calibrate_setup& setup, std::string& reason) {
    calibrate_setup fresh;
    std::string why;
    if (!find_corrector_kind(request.kind, fresh.kind)) {
        why = "there is no corrector '" + shown_name(request.kind) +
              "'; they are screen, flatness and telecentricity";
    }
    if (!why.empty() || !check_options(request, fresh.kind, why) || !read_sizes(request, fresh, why) ||
        !read_height("--z-nominal", request.z_nominal, fresh.z, why) ||
        !read_height("--z-reference", request.z_reference, fresh.z, why) ||
        !read_pixel(request.pixel, fresh.to_machine, why)) {
        reason = "tvmath: " + why;
        return exit_status::wrong_usage;
    }
    exit_status const status = read_files(request, fresh, reason);
    if (status == exit_status::done) setup = fresh;
    return status;
}

}  // namespace tvmath
