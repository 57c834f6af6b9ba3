#include "construct/construct_result.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>

#include "construct/construct_choice.h"
#include "files/point_file.h"
#include "record/record_names.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

struct operation_row {
    char const* name;
    operation what;
    char const* none;  ///< what to say when there is no answer
};

operation_row const operations[] = {
    {"nearest", operation::nearest, "there is no such distance"},
    {"farthest", operation::farthest, "there is no such distance"},
    {"intersect", operation::intersect, "there is no intersection"},
    {"tangent", operation::tangent, "there is no such tangent"},
    {"bisect", operation::bisect, "there is no bisector"},
    {"angle", operation::angle, "lines that are parallel or have no direction make no angle"},
};

operation_row const& row_of(operation what) {
    return *std::find_if(std::begin(operations), std::end(operations),
                         [what](operation_row const& row) { return row.what == what; });
}

// "line and line", "line, line and point", "line and line with --radius".
std::string pair_name(std::vector<feature_kind> const& kinds, bool takes_radius) {
    std::string text;
    for (std::size_t i = 0; i < kinds.size(); ++i)
        text += (i == 0 ? "" : i + 1 == kinds.size() ? " and " : ", ") + std::string(kind_name(kinds[i]));
    return text + (takes_radius ? " with --radius" : "");
}

std::vector<feature_kind> kinds_of(std::vector<construct_feature> const& features) {
    std::vector<feature_kind> kinds;
    kinds.reserve(features.size());
    for (construct_feature const& f : features) kinds.push_back(f.kind);
    return kinds;
}

std::vector<construct_row const*> rows_for(operation what, std::vector<feature_kind> const& kinds,
                                           bool with_radius) {
    std::vector<construct_row const*> found;
    for (construct_row const& row : construct_rows()) {
        if (row.what == what && row.kinds == kinds && row.takes_radius == with_radius) found.push_back(&row);
    }
    return found;
}

// Of several forms the one that was asked for; else what is in space when all features are; else the first
// that is not in space.
construct_row const* pick(std::vector<construct_row const*> const& rows, std::string const& form,
                          bool in_space) {
    construct_row const* usual = nullptr;
    for (construct_row const* const row : rows) {
        if (!form.empty() && form == form_name(row->form)) return row;
        bool const suits = row->form != construct_form::space || in_space;
        if (!usual && suits) usual = row;
    }
    if (!form.empty()) return nullptr;
    return usual ? usual : rows.front();
}

exit_status find_row(construct_request const& request, operation what, construct_result& result,
                     std::string& reason) {
    auto const kinds = kinds_of(result.features);
    auto const rows = rows_for(what, kinds, !request.radius.empty());
    if (rows.empty()) {
        reason = request.what +
                 (kinds.size() < 2 ? " takes two features at least"
                                   : ": nothing is known for " + pair_name(kinds, !request.radius.empty())) +
                 "; known are " + known_pairs(what, kinds);
        return exit_status::wrong_usage;
    }
    bool const in_space = std::all_of(result.features.begin(), result.features.end(),
                                      [](construct_feature const& f) { return f.in_space; });
    result.row = pick(rows, request.form, in_space);
    if (result.row) return exit_status::done;
    reason =
        "--as " + shown_name(request.form) + ": " + request.what + " of " + pair_name(kinds, false) + " has ";
    std::string forms;
    for (construct_row const* const row : rows) {
        std::string const name = form_name(row->form);
        forms += name.empty() ? "" : (forms.empty() ? "" : " and ") + name;
    }
    reason += forms.empty() ? "one form only" : forms + " only";
    return exit_status::wrong_usage;
}

exit_status read_features(construct_request const& request, std::vector<construct_feature>& features,
                          std::string& reason) {
    for (std::string const& words : request.features) {
        exit_status const status = read_feature(words, request.from, features.emplace_back(), reason);
        if (status != exit_status::done) return status;
    }
    return exit_status::done;
}

bool read_radius(std::string const& text, double& radius, std::string& reason) {
    if (text.empty()) return true;
    std::string ignored;
    if (parse_parameter(text, radius, ignored) && radius > 0) return true;
    reason = "--radius: '" + shown_name(text) + "' is not a number above 0";
    return false;
}

bool is_flat(transform const& t, int axes) {
    if (!t.is_3d()) return false;
    for (int i = 0; i <= axes; ++i) {
        if (t.basis(i).z() != 0.0) return false;
    }
    return true;
}

template <class kind>
void flatten_shape(Geometry_Description& record, int axes) {
    auto* const known = dynamic_cast<kind*>(&record);
    if (known && is_flat(known->geometry, axes)) known->geometry.project2d();
}

bool is_flat(std::vector<construct_feature> const& features) {
    return std::none_of(features.begin(), features.end(),
                        [](construct_feature const& f) { return f.in_space; });
}

// Constructions give many answers in space; those of flat features have a z of 0, which says nothing.
void flatten(Geometry_Description& record) {
    auto* const place = dynamic_cast<Point_Description*>(&record);
    if (place && place->position.is_3d() && place->position.z() == 0.0) place->position.project2d();
    flatten_shape<Segment_Description>(record, 1);
    flatten_shape<Circle_Description>(record, 2);
    flatten_shape<Ellipse_Description>(record, 2);
    auto* const angle = dynamic_cast<Angle_Description*>(&record);
    if (angle && is_flat(angle->arc, 2)) angle->arc.project2d();
}

// The length of a distance comes first, under the name of what it is.
std::vector<figure> figures_for(operation what, Geometry_Description const& record) {
    std::vector<figure> figures = figures_of(record);
    for (figure& f : figures) {
        for (double& x : f.values) x += 0.0;  // -0.0 becomes 0.0
    }
    if (what != operation::nearest && what != operation::farthest) return figures;
    auto const length =
        std::find_if(figures.begin(), figures.end(), [](figure const& f) { return f.label == "length"; });
    if (length == figures.end()) return figures;
    length->label = "distance";
    std::rotate(figures.begin(), length, length + 1);
    return figures;
}

bool is_finite(std::vector<figure> const& figures) {
    return std::all_of(figures.begin(), figures.end(), [](figure const& f) {
        return std::all_of(f.values.begin(), f.values.end(), [](double x) { return std::isfinite(x); });
    });
}

exit_status take_answers(construct_answers const& made, construct_result& result, std::string& reason) {
    for (auto const& record : made.records) {
        if (is_flat(result.features)) flatten(*record);
        result.answers.push_back({record, figures_for(result.row->what, *record)});
        if (!is_finite(result.answers.back().figures)) {
            reason = "an answer is not finite";
            return exit_status::no_answer;
        }
    }
    if (!result.answers.empty()) return exit_status::done;
    reason = row_of(result.row->what).none;
    return exit_status::no_answer;
}

}  // namespace

std::string known_pairs(operation what, std::vector<feature_kind> const& given) {
    std::string with_these, all;
    std::set<std::pair<std::vector<feature_kind>, bool>> seen;
    for (construct_row const& row : construct_rows()) {
        auto kinds = row.kinds;
        std::sort(kinds.begin(), kinds.end());
        if (row.what != what || !seen.insert({kinds, row.takes_radius}).second) continue;
        std::string const name = pair_name(row.kinds, row.takes_radius);
        all += (all.empty() ? "" : "; ") + name;
        bool const matches =
            std::find_first_of(kinds.begin(), kinds.end(), given.begin(), given.end()) != kinds.end();
        if (matches) with_these += (with_these.empty() ? "" : "; ") + name;
    }
    return with_these.empty() ? all : with_these;
}

char const* operation_name(operation what) {
    return row_of(what).name;
}

std::string form_words(construct_result const& result) {
    static char const* const words[] = {"", "in XY", "in space", "as a circle", "as an ellipse"};
    construct_form const form = result.row->form;
    bool const is_measure = form == construct_form::xy || form == construct_form::space;
    return is_measure && is_flat(result.features) ? "" : words[static_cast<int>(form)];
}

exit_status construct(construct_request const& request, construct_result& result, std::string& reason) {
    auto const op = std::find_if(std::begin(operations), std::end(operations),
                                 [&](operation_row const& row) { return request.what == row.name; });
    construct_input in;
    if (op == std::end(operations)) {
        reason = "construct: there is no '" + shown_name(request.what) +
                 "'; there are nearest, farthest, intersect, tangent, bisect, angle and sheet";
        return exit_status::wrong_usage;
    }
    if (!read_radius(request.radius, in.radius, reason)) return exit_status::wrong_usage;
    construct_result fresh;
    exit_status status = read_features(request, fresh.features, reason);
    if (status == exit_status::done) status = find_row(request, op->what, fresh, reason);
    old_choice old;
    bool const is_update = !request.update.empty();
    if (status == exit_status::done && is_update)
        status = read_old_choice(request.update, op->what, old, reason);
    if (status != exit_status::done) return status;

    in.features = fresh.features;
    if (is_update) in.reference = &old.angle;
    construct_answers const made = fresh.row->make(in);
    bool const remembers = !!made.memory || op->what == operation::angle;
    if (!remembers && (is_update || !request.save.empty())) {
        reason = request.what + " of " + pair_name(fresh.row->kinds, false) +
                 " has one answer at most, so there is no choice to remember";
        return exit_status::wrong_usage;
    }
    status = take_answers(made, fresh, reason);
    if (status == exit_status::done)
        status = choose(request.choose, is_update ? &old : nullptr, made.memory, fresh, reason);
    if (status == exit_status::done) result = fresh;
    return status;
}

}  // namespace tvmath
