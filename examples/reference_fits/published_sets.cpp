#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "reference_set.h"

namespace {

using nlohmann::json;

// Sets that determine their feature weakly: rounding alone, in the data as in the fit, costs more digits.
bool is_weak(std::string const& name) {
    return name == "own_lsq_circle_arc30";
}

std::vector<point> read_points(std::string const& file) {
    std::ifstream in(file);
    std::vector<point> points;
    bool below_names = false;
    for (std::string row; std::getline(in, row);) {
        if (row.empty() || row[0] == '#') continue;
        if (!below_names) {
            below_names = true;
            continue;
        }
        double c[3] = {};
        int n = 0;
        // The answers belong to the doubles that strtod makes of the text.
        for (char const* at = row.c_str(); n < 3;) {
            char* end = nullptr;
            c[n++] = std::strtod(at, &end);
            if (*end != ',') break;
            at = end + 1;
        }
        points.push_back(n == 3 ? point(true, c[0], c[1], c[2]) : point(true, c[0], c[1]));
    }
    if (points.empty()) throw std::runtime_error("no points in " + file);
    return points;
}

// Numbers and lists of numbers; whatever else stands beside them is left out.
figures numbers_of(json const& answer) {
    figures found;
    for (auto const& [name, value] : answer.items()) {
        if (value.is_number()) {
            found[name] = {value.get<double>()};
        } else if (value.is_array() && value[0].is_number()) {
            found[name] = value.get<std::vector<double>>();
        }
    }
    return found;
}

std::string kind_of(std::string const& kind) {
    if (kind == "roundness" || kind == "lsq_circle2d") return "circle";
    if (kind == "mz_line" || kind == "lsq_line2d") return "line";
    return kind.substr(kind.find('_') + 1);
}

// Some sets have the least squares element among other ones.
json const& least_squares_of(json const& verified) {
    for (char const* const part : {"lsc", "least_squares_line"}) {
        if (verified.contains(part)) return verified[part];
    }
    return verified;
}

reference_set read_set(std::filesystem::path const& file) {
    std::ifstream in(file);
    json const all = json::parse(in);
    reference_set set;
    set.name = all.at("name");
    set.kind = kind_of(all.at("kind"));
    set.origin = all.at("source");
    set.known_by = all.at("how_verified");
    if (!all.at("published").is_null()) set.published = all["published"].dump();
    set.points = read_points(file.parent_path() / all.at("points_file"));
    json const& verified = all.at("verified");
    set.answer = numbers_of(least_squares_of(verified));
    if (verified.contains("algebraic_fits")) {
        set.algebraic_answer = numbers_of(verified["algebraic_fits"].at("kasa"));
    }
    if (is_weak(set.name)) set.bound = 1e-9;
    return set;
}

}  // namespace

std::vector<reference_set> published_sets(std::string const& folder) {
    std::vector<std::filesystem::path> files;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<reference_set> sets;
    for (auto const& file : files) sets.push_back(read_set(file));
    if (sets.empty()) throw std::runtime_error("no sets in " + folder);
    return sets;
}
