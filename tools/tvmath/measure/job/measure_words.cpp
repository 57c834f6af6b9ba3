#include "measure/job/measure_words.h"

#include <algorithm>
#include <cmath>

#include "files/point_file.h"
#include "record/record_names.h"
#include "record/record_parameters.h"
#include "report/feature_figures.h"
#include "report/figure_json.h"
#include "report/number_text.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;

edge_setting const edge_setting_rows[] = {{"search", &edge_settings::search, 2, 500, false},
                                          {"spacing", &edge_settings::spacing, 3, 1000, false},
                                          {"contrast", &edge_settings::contrast, 0, 1, false},
                                          {"outliers", &edge_settings::outliers, 2, 100, true}};

// Far beyond any image, and a bound of how many places an outline has.
constexpr int largest_place = 100'000;
constexpr std::size_t longest_words = 400;

// A kind of feature that edges are looked for along. Its numbers are those of `record_forms`, the place among
// them: one that was left out would put the feature into the corner of the image.
struct place_rule {
    char const* kind;
    char const* parameters;
    std::size_t least, most;
    bool (*has_extent)(numbers const& v);
    char const* extent;
};

place_rule const place_rules[] = {
    {"line", "X1 Y1 X2 Y2", 4, 4,
     [](numbers const& v) {
         auto const half = v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2);
         return !std::equal(v.begin(), half, half);
     },
     "two different ends"},
    {"circle", "RADIUS X Y", 3, 3, [](numbers const& v) { return v[0] > 0; }, "a radius above 0"},
    {"arc", "RADIUS START INCLUDED X Y", 5, 5,
     [](numbers const& v) { return v[0] > 0 && v[2] != 0 && std::fabs(v[2]) <= 2 * pi; },
     "a radius above 0 and an included angle up to 360deg, but not 0"},
    {"rectangle", "WIDTH HEIGHT ANGLE X Y", 5, 5, [](numbers const& v) { return v[0] > 0 && v[1] > 0; },
     "a width and a height above 0"},
    {"slot", "HALF-LENGTH HALF-WIDTH ANGLE X Y", 5, 5,
     [](numbers const& v) { return v[0] > v[1] && v[1] > 0; }, "a half length above its half width, above 0"},
    {"point", "X Y [ANGLE]", 2, 3, [](numbers const&) { return true; }, ""},
};

std::string kind_list() {
    std::string text;
    for (place_rule const& rule : place_rules)
        text += (text.empty()                         ? ""
                 : &rule == std::end(place_rules) - 1 ? " and "
                                                      : ", ") +
                std::string(rule.kind);
    return text;
}

place_rule const* find_rule(fit_kind const* kind) {
    auto const rule =
        std::find_if(std::begin(place_rules), std::end(place_rules),
                     [kind](place_rule const& r) { return kind && r.kind == std::string(kind->name); });
    return rule == std::end(place_rules) ? nullptr : rule;
}

bool is_short(std::string const& words, std::string& reason) {
    if (words.size() > longest_words)
        reason = "these words are too long for a feature: " + tvmath::quoted(words);
    return words.size() <= longest_words;
}

bool has_extent(place_rule const& rule, numbers const& values, std::string& reason) {
    if (rule.has_extent(values)) return true;
    reason = with_article(rule.kind) + " needs " + rule.extent;
    return false;
}

bool check_place(place_rule const& rule, numbers const& values, std::string& reason) {
    auto const is_near = [](double x) { return std::fabs(x) <= largest_place; };
    if (values.size() < rule.least || values.size() > rule.most) {
        reason = std::string(rule.kind) + " takes " + rule.parameters + ", in pixels; these are " +
                 std::to_string(values.size()) + " numbers";
    } else if (!std::all_of(values.begin(), values.end(), is_near)) {
        reason = "lies or reaches farther than " + std::to_string(largest_place) + " pixels";
    }
    return reason.empty() && has_extent(rule, values, reason);
}

std::string text_of(double x) {
    std::string const text = number_text(x);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

// What the nominal feature has that a limit may name. The ends of a line and of an arc are those of the
// nominal one, so what depends on them says nothing about the part.
std::vector<figure> limited_figures(Geometry_Description const& nominal) {
    std::vector<figure> figures = figures_of(nominal);
    bool const is_line = nominal.type() == Segment_Description::type_value,
               is_arc = nominal.type() == Arc_Description::type_value;
    std::erase_if(figures, [is_line, is_arc](figure const& f) {
        bool const is_of_an_end = f.label == "start" || f.label == "end" || f.label == "length" ||
                                  (is_arc && f.kind == figure_kind::angle);
        if ((is_line || is_arc) && is_of_an_end) return true;
        return f.kind != figure_kind::length && f.kind != figure_kind::number && !is_angle(f) &&
               f.kind != figure_kind::location;
    });
    return figures;
}

bool is_error_name(std::string const& figure) {
    return figure == "form" || figure == "profile" || figure == "standard_deviation";
}

// What of the tool the limit speaks of: an error or a distance, which is never negative, or a deviation.
bool find_figure(std::string const& name, measure_tool const& tool, bool& is_signed, std::string& reason) {
    std::string const kind = tool.kind->named();
    is_signed = false;
    if (is_error_name(name)) {
        if (tool.kind->least_points > 1) return true;
        reason = kind + " has none; with a nominal one it has center";
        return false;
    }
    if (!tool.nominal) {
        reason = "only a nominal feature has it; without one there are form, profile and standard_deviation";
        return false;
    }
    std::string known;
    for (figure const& f : limited_figures(*tool.nominal)) {
        is_signed = f.kind != figure_kind::location;
        if (figure_key(f) == name) return true;
        known += (known.empty() ? "" : ", ") + figure_key(f);
    }
    reason = kind + " has none; it has " + known;
    return false;
}

}  // namespace

std::span<edge_setting const> edge_setting_list() {
    return edge_setting_rows;
}

bool set_edge_setting(edge_setting const& which, double x, edge_settings& edges, std::string& reason) {
    if ((x >= which.least && x <= which.most) || (which.or_none && x == 0.0)) {
        edges.*which.value = x;
        return true;
    }
    reason = text_of(x) + " is not from " + text_of(which.least) + " to " + text_of(which.most) +
             (which.or_none ? ", or 0" : "");
    return false;
}

bool set_edge_sense(std::string const& word, edge_settings& edges, std::string& reason) {
    if (word == "any" || word == "rising" || word == "falling") {
        edges.sense = word == "any"      ? edge_sense::any
                      : word == "rising" ? edge_sense::rising
                                         : edge_sense::falling;
        return true;
    }
    reason = tvmath::quoted(word) + " is none of any, rising and falling";
    return false;
}

bool set_place(std::string const& text, measure_tool& tool, std::string& reason) {
    if (!is_short(text, reason)) return false;
    std::vector<std::string> words = split_words(text);
    measure_tool fresh = tool;
    fresh.kind = words.empty() ? nullptr : find_fit_kind(words.front());
    place_rule const* const rule = find_rule(fresh.kind);
    if (!rule) {
        reason = tvmath::quoted(words.empty() ? "" : words.front()) +
                 " is no feature that can be measured; these are " + kind_list();
        return false;
    }
    words.erase(words.begin());
    numbers values;
    for (std::string const& word : words) {
        if (!parse_parameter(word, values.emplace_back(), reason)) return false;
    }
    if (!check_place(*rule, values, reason)) return false;
    if (*rule->kind == 'p') {
        // To a record the third number would be a height.
        if (words.size() == 3) fresh.angle = values.back();
        words.resize(2);
    }
    std::unique_ptr<Geometry_Description> place;
    if (!make_record(rule->kind, words, place, reason)) return false;
    fresh.place = std::move(place);
    fresh.words = shown_name(text);
    tool = fresh;
    return true;
}

bool set_nominal(std::string const& text, measure_tool& tool, std::string& reason) {
    std::shared_ptr<Geometry_Description const> nominal;
    if (!is_short(text, reason) || !make_nominal(text, *tool.kind, nominal, reason)) return false;
    numbers values;
    std::vector<std::string> words = split_words(text);
    words.erase(words.begin());
    for (std::string const& word : words) parse_parameter(word, values.emplace_back(), reason);
    if (!has_extent(*find_rule(tool.kind), values, reason)) return false;
    tool.nominal = nominal;
    tool.nominal_words = shown_name(text);
    return true;
}

bool add_limit(std::string const& name, numbers const& v, measure_tool& tool, std::string& reason) {
    bool is_signed = false;
    auto const is_finite = [](double x) { return std::isfinite(x); };
    if (!find_figure(name, tool, is_signed, reason)) return false;
    bool const is_one = v.size() == 1 && v[0] >= 0, is_range = is_signed && v.size() == 2 && v[0] <= v[1];
    if (!(is_one || is_range) || !std::all_of(v.begin(), v.end(), is_finite)) {
        reason = is_signed ? "takes a number of at least 0, or a lower and an upper one"
                           : "takes one number of at least 0";
        return false;
    }
    tool.limits.push_back({name, is_range ? v[0] : is_signed ? -v[0] : 0, v.back()});
    return true;
}

}  // namespace tvmath
