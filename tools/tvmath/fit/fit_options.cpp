#include "fit_options.h"

#include <algorithm>
#include <iterator>

#include "files/point_file.h"
#include "fit_kinds.h"
#include "record/record_parameters.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;

struct option_name {
    unsigned option;
    char const* name;
};

option_name const names[] = {
    {option_center, "--center"},
    {option_through, "--through"},
    {option_tangent, "--tangent"},
    {option_parallel, "--parallel"},
    {option_perpendicular, "--perpendicular"},
    {option_nominal, "--nominal"},
    {option_method, "--method"},
    {option_onto, "--onto"},
    {option_quick, "--quick"},
    {option_diameter, "--diameter"},
    {option_sort, "--sort"},
    {option_zone, "--zone"},
    {option_flip, "--flip"},
};

struct method_name {
    char const* name;
    path_method method;
};

method_name const methods[] = {{"interpolating", path_method::interpolating},
                               {"least-squares", path_method::least_squares},
                               {"minimum-curvature", path_method::minimum_curvature}};

unsigned given_options(fit_request const& request) {
    unsigned given = 0;
    auto const note = [&given](bool is_given, unsigned option) { given |= is_given ? option : 0u; };
    note(!request.center.empty(), option_center);
    note(!request.through.empty(), option_through);
    note(!request.tangent.empty(), option_tangent);
    note(!request.parallel.empty(), option_parallel);
    note(!request.perpendicular.empty(), option_perpendicular);
    note(!request.nominal.empty(), option_nominal);
    note(!request.method.empty(), option_method);
    note(!request.onto.empty(), option_onto);
    note(request.quick, option_quick);
    note(request.diameter, option_diameter);
    note(request.sort, option_sort);
    note(request.zone, option_zone);
    note(request.flip, option_flip);
    return given;
}

std::string counts_text(std::vector<std::size_t> const& counts) {
    std::string text = std::to_string(counts.front());
    for (std::size_t i = 1; i < counts.size(); ++i) text += " or " + std::to_string(counts[i]);
    return text;
}

// The words of one condition after the other. Keeps what is wrong first.
class condition_reader {
public:
    condition_reader(fit_kind const& kind, fit_conditions& known, std::string& reason)
        : kind_(kind), known_(known), reason_(reason) {}

    bool is_good() const { return good_; }

    numbers read(char const* option, std::string const& text, std::vector<std::size_t> const& counts) {
        numbers values;
        std::string reason;
        for (std::string const& word : split_words(text)) {
            double value = 0;
            if (!parse_parameter(word, value, reason)) {
                fail(std::string("--") + option + ": " + reason);
                return {};
            }
            values.push_back(value);
        }
        if (std::find(counts.begin(), counts.end(), values.size()) == counts.end()) {
            fail(std::string("--") + option + " of " + kind_.named() + " takes " + counts_text(counts) +
                 " numbers, not " + std::to_string(values.size()));
            return {};
        }
        known_.words.push_back(option + (' ' + shown_name(text)));
        return values;
    }

    point read_point(char const* option, std::string const& text) {
        numbers const v =
            read(option, text, kind_.in_space ? std::vector<std::size_t>{3} : std::vector<std::size_t>{2, 3});
        return v.empty() ? point() : v.size() == 2 ? point(true, v[0], v[1]) : point(true, v[0], v[1], v[2]);
    }

    numbers read_once(char const* option, std::vector<std::string> const& texts) {
        if (texts.empty()) return {};
        if (texts.size() > 1) fail(std::string("--") + option + " is taken once");
        std::vector<std::size_t> const counts =
            kind_.in_space ? std::vector<std::size_t>{3} : std::vector<std::size_t>{2, 4};
        numbers values = read(option, texts.front(), counts);
        // The direction itself, or that of a line between two places.
        bool const is_line = values.size() == 4;
        bool nothing = good_;
        for (std::size_t i = 0; i < (is_line ? 2 : values.size()); ++i) {
            nothing = nothing && (is_line ? values[i + 2] - values[i] : values[i]) == 0.0;
        }
        if (nothing) fail(std::string("--") + option + " has no direction");
        return values;
    }

    void fail(std::string const& reason) {
        if (good_) reason_ = reason;
        good_ = false;
    }

private:
    fit_kind const& kind_;
    fit_conditions& known_;
    std::string& reason_;
    bool good_ = true;
};

void read_nominal(fit_request const& request, fit_kind const& kind, fit_conditions& known,
                  condition_reader& reader) {
    if (request.nominal.size() > 1 && !kind.takes_all_files) reader.fail("--nominal is taken once");
    for (std::string const& text : request.nominal) {
        std::string reason;
        std::shared_ptr<Geometry_Description const> record;
        if (!make_nominal(text, kind, record, reason)) return reader.fail("--nominal: " + reason);
        known.nominal.push_back(record);
        known.words.push_back("nominal " + shown_name(text));
    }
}

}  // namespace

bool make_nominal(std::string const& words, fit_kind const& kind,
                  std::shared_ptr<Geometry_Description const>& nominal, std::string& reason) {
    std::vector<std::string> parameters = split_words(words);
    std::string const name = parameters.empty() ? "" : parameters.front();
    if (!parameters.empty()) parameters.erase(parameters.begin());
    std::unique_ptr<Geometry_Description> record;
    if (!make_record(name, parameters, record, reason)) return false;
    if (!kind.takes_all_files && record->type() != kind.record) {
        reason = "a " + name + " is not the nominal feature of " + kind.named();
        return false;
    }
    nominal = std::move(record);
    return true;
}

std::string option_names(unsigned options) {
    std::string text;
    for (option_name const& n : names) {
        if (options & n.option) text += (text.empty() ? "" : ", ") + std::string(n.name);
    }
    return text.empty() ? "none of them" : text;
}

bool read_conditions(fit_request const& request, fit_kind const& kind, fit_conditions& known,
                     std::string& reason) {
    fit_conditions fresh;
    fresh.given = given_options(request);
    if (unsigned const foreign = fresh.given & ~kind.options) {
        reason =
            kind.named() + " does not take " + option_names(foreign) + ", but " + option_names(kind.options);
        return false;
    }
    if (fresh.has(option_quick) && (fresh.given & ~(option_quick | option_nominal | option_center))) {
        reason = "--quick goes with no other condition than --center and --nominal";
        return false;
    }
    condition_reader reader(kind, fresh, reason);
    if (request.center.size() > 1) reader.fail("--center is taken once");
    for (std::string const& text : request.center) fresh.center = reader.read_point("center", text);
    for (std::string const& text : request.through)
        fresh.through.push_back(reader.read_point("through", text));
    for (std::string const& text : request.tangent)
        fresh.tangent.push_back(reader.read("tangent", text, {kind.in_space ? 6u : 4u}));
    fresh.parallel = reader.read_once("parallel", request.parallel);
    fresh.perpendicular = reader.read_once("perpendicular", request.perpendicular);
    read_nominal(request, kind, fresh, reader);
    if (!request.tolerance.empty()) {
        double value = -1;
        std::string ignored;
        if (!parse_parameter(request.tolerance, value, ignored) || value < 0) {
            reader.fail("--tolerance: '" + shown_name(request.tolerance) + "' is not a number of at least 0");
        }
        fresh.tolerance = value;
    }
    if (!request.method.empty()) {
        auto const found = std::find_if(std::begin(methods), std::end(methods),
                                        [&](method_name const& m) { return request.method == m.name; });
        if (found == std::end(methods)) {
            reader.fail("--method is interpolating, least-squares or minimum-curvature");
        } else {
            fresh.method = found->method;
        }
    }
    if (!reader.is_good()) return false;
    known = fresh;
    return true;
}

}  // namespace tvmath
