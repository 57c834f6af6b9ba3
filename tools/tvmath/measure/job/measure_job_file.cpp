#include "measure/job/measure_job_file.h"

#include <filesystem>
#include <map>

#include "calibrate/corrector_file.h"
#include "calibrate/screen_frame.h"
#include "files/file_input.h"
#include "files/json_input.h"
#include "files/point_file.h"
#include "measure/job/measure_words.h"

inline namespace tvmath {
namespace {

using json = nlohmann::json;

constexpr std::size_t largest_file = std::size_t{1} << 24, most_tools = 100'000;
constexpr std::size_t longest_name = 80, longest_unit = 20;
constexpr char const* schema = "tvmath.job/1";

// What a tool may say, the last five also for all of them.
std::vector<std::string_view> const tool_keys = {"name",    "feature", "nominal",  "tolerance", "search",
                                                 "spacing", "edge",    "outliers", "contrast"};
std::vector<std::string_view> const job_keys = {"schema",   "unit",     "pixel",   "transform", "screen",
                                                "flatness", "z",        "tools",   "search",    "spacing",
                                                "edge",     "outliers", "contrast"};

// The tools so far, to tell them apart.
struct known_tools {
    std::map<std::string, std::size_t> names;        // with their place in the list
    std::map<fit_kind const*, std::size_t> of_kind;  // how many
};

bool read_edges(job_object const& object, edge_settings& edges) {
    std::string word, why;
    for (edge_setting const& setting : edge_setting_list()) {
        std::vector<double> value;
        if (!object.read_numbers(setting.name, 1, value)) return false;
        if (!value.empty() && !set_edge_setting(setting, value[0], edges, why))
            return object.fail(setting.name, why);
    }
    if (!object.read_text("edge", word)) return false;
    return word.empty() || set_edge_sense(word, edges, why) || object.fail("edge", why);
}

// A file that a job names counts from the folder of the job, and is never standard input.
std::string path_of(std::string const& name, std::string const& job) {
    if (job.empty()) return name;
    std::filesystem::path const folder = std::filesystem::path(job).parent_path();
    return ((folder.empty() && name == "-" ? "." : folder) / name).string();
}

template <class reader>
bool read_file(job_object const& object, char const* key, reader const& read_from) {
    std::string name, why;
    if (!object.read_text(key, name)) return false;
    if (name.empty()) return true;
    return read_from(path_of(name, object.origin().file), why) == exit_status::done ||
           object.fail_file(key, why);
}

template <class corrector_type>
bool read_corrector(job_object const& object, char const* key, corrector_type& corrector) {
    return read_file(object, key, [&corrector](std::string const& name, std::string& why) {
        return read_corrector_file(name, corrector, why);
    });
}

bool read_frame(job_object const& object, measure_job& job) {
    std::vector<double> pixel, z;
    std::string why;
    if (!object.read_label("unit", longest_unit, job.unit) || !object.read_numbers("pixel", 2, pixel) ||
        !object.read_numbers("z", 1, z))
        return false;
    if (!pixel.empty() && object.has("transform"))
        return object.fail("transform",
                           "goes without pixel, which leads from the screen to the results as well");
    if (!pixel.empty() && !pixel_transform(pixel, job.from_screen, why)) return object.fail("pixel", why);
    if (!z.empty()) job.z = z[0];
    if (object.has("flatness") && z.empty())
        return object.fail("flatness", "corrects the height z of the image, which is not given");
    auto const read_way = [&job](std::string const& name, std::string& reason) {
        return read_transform(name, job.from_screen, reason);
    };
    if (!read_file(object, "transform", read_way) || !read_corrector(object, "screen", job.screen) ||
        !read_corrector(object, "flatness", job.flatness))
        return false;
    if (job.unit.empty() && !job.from_screen) job.unit = "px";
    return true;
}

bool read_limits(job_object const& object, measure_tool& tool) {
    if (!object.has("tolerance")) return true;
    json const& value = object.at("tolerance");
    if (!value.is_object() || value.empty())
        return object.fail("tolerance", "must be an object as {\"form\": 0.01}");
    for (auto const& item : value.items()) {
        std::vector<double> numbers;
        job_origin ignored;
        std::string why = "must be a number or a list of two";
        if (!job_object(value, "", ignored).read_numbers(item.key(), 2, numbers) ||
            !add_limit(item.key(), numbers, tool, why))
            return object.fail("tolerance", tvmath::quoted(item.key()) + ": " + why);
    }
    return true;
}

// Gives a tool without a name one. A name stands for one tool.
bool name_tool(job_object const& object, std::size_t index, known_tools& known, measure_tool& tool) {
    std::size_t const number = ++known.of_kind[tool.kind];
    if (tool.name.empty()) tool.name = std::string(tool.kind->name) + ' ' + std::to_string(number);
    auto const [other, is_new] = known.names.emplace(tool.name, index);
    return is_new || object.fail("name", "'" + tool.name + "' is also that of tools[" +
                                             std::to_string(other->second) + "]");
}

bool read_tool(json const& value, std::size_t index, job_origin& origin, known_tools& known,
               measure_tool& tool) {
    std::string const place = "tools[" + std::to_string(index) + "]";
    job_object object(value, place, origin);
    std::string words, nominal, why;
    if (!object.read_label("name", longest_name, tool.name)) return false;
    if (!tool.name.empty()) object.set_place(place + " '" + tool.name + "'");
    if (!object.has_only(tool_keys) || !object.read_text("feature", words)) return false;
    if (words.empty()) return object.fail("feature", "is missing");
    if (!set_place(words, tool, why)) return object.fail("feature", why);
    if (!name_tool(object, index, known, tool) || !read_edges(object, tool.edges) ||
        !object.read_text("nominal", nominal))
        return false;
    if (!nominal.empty() && !set_nominal(nominal, tool, why)) return object.fail("nominal", why);
    return read_limits(object, tool);
}

bool read_tools(job_object const& object, measure_job& job) {
    measure_tool fresh;
    if (!read_edges(object, fresh.edges)) return false;
    bool const is_list = object.has("tools") && object.at("tools").is_array();
    std::size_t const count = is_list ? object.at("tools").size() : 0;
    if (count == 0 || count > most_tools)
        return object.fail("tools", "must be a list of 1 to " + std::to_string(most_tools) + " tools");
    known_tools known;
    job.tools.assign(count, fresh);
    for (std::size_t i = 0; i < count; ++i) {
        if (!read_tool(object.at("tools")[i], i, object.origin(), known, job.tools[i])) return false;
    }
    return true;
}

bool check_schema(job_object const& object) {
    std::string said;
    if (!object.read_text("schema", said)) return false;
    if (said.empty()) return object.fail("schema", std::string("is missing; it is \"") + schema + '"');
    return said == schema || object.fail("schema", tvmath::quoted(said) + " is not '" + schema + "'");
}

}  // namespace

bool read_job_document(json const& document, job_origin& origin, measure_job& job) {
    job_object const object(document, "", origin);
    measure_job fresh;
    if (!object.has_only(job_keys) || !(origin.file.empty() || check_schema(object)) ||
        !read_frame(object, fresh) || !read_tools(object, fresh))
        return false;
    job = std::move(fresh);
    return true;
}

exit_status read_job_file(std::string const& name, measure_job& job, std::string& reason) {
    std::string bytes, why;
    if (!read_all(name, largest_file, "is larger than 16 MiB; this is no job", bytes, why)) {
        reason = shown_name(name) + ": " + why;
        return exit_status::unreadable_input;
    }
    json document;
    if (!read_json(bytes, document, why)) {
        reason = shown_name(name) + ':' + why;
        return exit_status::unreadable_input;
    }
    job_origin origin{.file = name};
    if (!read_job_document(document, origin, job)) reason = origin.reason;
    return origin.status;
}

}  // namespace tvmath
