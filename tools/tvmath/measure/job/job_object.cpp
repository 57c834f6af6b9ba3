#include "measure/job/job_object.h"

#include <algorithm>

#include "files/point_file.h"

inline namespace tvmath {
namespace {

using json = nlohmann::json;

}  // namespace

bool job_object::has_only(std::vector<std::string_view> const& keys) const {
    if (!value_.is_object()) return fail("", "must be an object in braces");
    for (auto const& item : value_.items()) {
        if (std::find(keys.begin(), keys.end(), item.key()) != keys.end()) continue;
        std::string known;
        for (std::string_view const key : keys) known.append(known.empty() ? "" : ", ").append(key);
        return fail("", "there is no key " + tvmath::quoted(item.key()) + "; the keys are " + known);
    }
    return true;
}

bool job_object::read_text(std::string const& key, std::string& text) const {
    if (!has(key)) return true;
    json const& value = at(key);
    if (!value.is_string() || value.get_ref<std::string const&>().empty())
        return fail(key, "must be text that is not empty");
    text = value.get<std::string>();
    return true;
}

bool job_object::read_label(std::string const& key, std::size_t longest, std::string& text) const {
    std::string label;
    if (!read_text(key, label)) return false;
    if (label.size() > longest || shown_name(label) != label)
        return fail(key, "must be printable text of up to " + std::to_string(longest) + " bytes");
    if (!label.empty()) text = label;
    return true;
}

bool job_object::read_numbers(std::string const& key, std::size_t most, std::vector<double>& numbers) const {
    if (!has(key)) return true;
    json const& value = at(key);
    bool const is_list = most > 1 && value.is_array() && value.size() == most;
    std::vector<double> fresh;
    for (json const& item : is_list ? value : json::array({value})) {
        if (item.is_number()) fresh.push_back(item.get<double>());
    }
    if (fresh.empty() || (is_list && fresh.size() != value.size()))
        return fail(key, most > 1 ? "must be a number or a list of two" : "must be a number");
    numbers = fresh;
    return true;
}

bool job_object::fail(std::string const& key, std::string const& why) const {
    bool const is_file = !origin_.file.empty();
    std::string text = is_file ? shown_name(origin_.file) + ": " : "tvmath: ";
    if (is_file && !place_.empty()) text += place_ + ": ";
    if (!is_file && key == "feature") {
        text += "FEATURE: ";  // which is no option
    } else if (!key.empty()) {
        text += (is_file ? "" : "--") + key + ": ";
    }
    origin_.reason = text + why;
    origin_.status = is_file ? exit_status::unreadable_input : exit_status::wrong_usage;
    return false;
}

bool job_object::fail_file(std::string const& key, std::string const& why) const {
    fail(key, why);
    if (origin_.file.empty()) origin_.reason = why;
    origin_.status = exit_status::unreadable_input;
    return false;
}

}  // namespace tvmath
