#include "measure/job/measure_job.h"

#include <algorithm>
#include <cmath>

#include "files/point_file.h"
#include "measure/job/measure_job_file.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

using json = nlohmann::json;

// An option of the short form, which the job of one tool has as a key.
struct short_option {
    char const* key;
    std::string measure_request::*text;
    bool is_number;
    bool is_of_tool;
};

short_option const short_options[] = {
    {"search", &measure_request::search, true, true},
    {"spacing", &measure_request::spacing, true, true},
    {"edge", &measure_request::edge, false, true},
    {"outliers", &measure_request::outliers, true, true},
    {"contrast", &measure_request::contrast, true, true},
    {"nominal", &measure_request::nominal, false, true},
    {"pixel", &measure_request::pixel, true, false},
    {"transform", &measure_request::transform_file, false, false},
    {"screen", &measure_request::screen, false, false},
    {"flatness", &measure_request::flatness, false, false},
    {"z", &measure_request::z, true, false},
    {"unit", &measure_request::unit, false, false},
};

bool put_numbers(std::string const& text, json& value, std::string& why) {
    std::vector<double> numbers;
    if (!parse_parameters(text, numbers, why)) return false;
    value = numbers.size() == 1 ? json(numbers[0]) : json(numbers);
    return true;
}

// "0.01" is a tolerance of form; "radius=0.005,width=-0.01:0.02" names what it is of.
bool put_tolerance(std::string const& text, json& limits, std::string& why) {
    for (std::string const& word : split_words(text)) {
        std::size_t const equals = word.find('=');
        std::string const key = equals == std::string::npos ? "form" : word.substr(0, equals);
        std::string numbers = equals == std::string::npos ? word : word.substr(equals + 1);
        std::replace(numbers.begin(), numbers.end(), ':', ' ');
        if (limits.contains(key)) {
            why = tvmath::quoted(key) + " stands there twice";
            return false;
        }
        if (!put_numbers(numbers, limits[key], why)) return false;
    }
    return true;
}

// The job of the short form.
bool make_document(measure_request const& request, json& document, std::string& reason) {
    std::string why;
    json tool = {{"feature", request.feature}};
    for (short_option const& option : short_options) {
        std::string const& text = request.*option.text;
        if (text.empty()) continue;
        json& value = (option.is_of_tool ? tool : document)[option.key];
        if (!option.is_number) {
            value = text;
        } else if (!put_numbers(text, value, why)) {
            reason = "tvmath: --" + std::string(option.key) + ": " + why;
            return false;
        }
    }
    if (!request.tolerance.empty() && !put_tolerance(request.tolerance, tool["tolerance"], why)) {
        reason = "tvmath: --tolerance: " + why;
        return false;
    }
    document["tools"] = json::array({tool});
    return true;
}

bool check_request(measure_request const& request, std::string& reason) {
    std::string const* const files[] = {&request.image, &request.config, &request.transform_file,
                                        &request.screen, &request.flatness};
    std::string given = request.tolerance.empty() ? "" : "tolerance";
    for (short_option const& option : short_options) {
        if (!(request.*option.text).empty()) given = option.key;
    }
    if (request.feature.empty() && request.config.empty()) {
        reason = "say what to measure: a FEATURE such as 'circle 80 320 240', or --config JOB.json";
    } else if (!request.feature.empty() && !request.config.empty()) {
        reason = "FEATURE and --config both say what to measure; give one of them";
    } else if (!request.config.empty() && !given.empty()) {
        reason = "--" + given + " goes with a FEATURE; a job says it itself";
    } else if (std::count_if(std::begin(files), std::end(files), [](auto const* f) { return *f == "-"; }) >
               1) {
        reason = "standard input (-) can be read only once";
    }
    if (!reason.empty()) reason.insert(0, "tvmath: ");
    return reason.empty();
}

}  // namespace

double measure_job::pixel_length() const {
    if (!from_screen) return 1;
    point const u = from_screen->basis(1), v = from_screen->basis(2);
    // In units of the largest entry, whose square may lie outside the range of numbers.
    double const largest = std::max({std::fabs(u.x()), std::fabs(u.y()), std::fabs(v.x()), std::fabs(v.y())});
    return largest *
           std::sqrt(std::fabs(u.x() / largest * (v.y() / largest) - u.y() / largest * (v.x() / largest)));
}

exit_status read_job(measure_request const& request, measure_job& job, std::string& reason) {
    std::string why;
    json document = json::object();
    job_origin origin;
    if (!check_request(request, why) || (request.config.empty() && !make_document(request, document, why))) {
        reason = why;
        return exit_status::wrong_usage;
    }
    if (!request.config.empty()) return read_job_file(request.config, job, reason);
    if (!read_job_document(document, origin, job)) reason = origin.reason;
    return origin.status;
}

}  // namespace tvmath
