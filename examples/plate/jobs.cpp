#include "jobs.h"

#include <cstdio>

#include "lens.h"
#include "part_distance.h"

namespace plate {
namespace {

std::string number(double x, char const* form = "%.10g") {
    char text[32];
    std::snprintf(text, sizeof text, form, x == 0 ? 0.0 : x);  // no -0
    return text;
}

std::string degrees(double angle, char const* form) {
    return number(angle / degree, form) + "deg";
}

std::string quoted(std::string const& text) {
    return '"' + text + '"';
}

// A feature in the words of a job, with the numbers in one form.
std::string words(outline kind, std::array<double, 5> const& m, char const* form) {
    auto const n = [&](int i) { return ' ' + number(m[static_cast<std::size_t>(i)], form); };
    auto const a = [&](int i) { return ' ' + degrees(m[static_cast<std::size_t>(i)], form); };
    switch (kind) {
        case outline::line:
            return "line" + n(0) + n(1) + n(2) + n(3);
        case outline::circle:
            return "circle" + n(0) + n(1) + n(2);
        case outline::arc:
            return "arc" + n(0) + a(1) + a(2) + n(3) + n(4);
        case outline::rectangle:
            return "rectangle" + n(0) + n(1) + a(2) + n(3) + n(4);
        case outline::slot:
            return "slot" + n(0) + n(1) + a(2) + n(3) + n(4);
        case outline::point:
            return "point" + n(0) + n(1) + a(2);
    }
    return {};
}

// The places of a shape's axes, turned by `angle`, half-lengths `a` and `b`, as the camera sees them.
struct seen_axes {
    place center;
    double a, b, angle;  // pixels; from +x towards +y
};

seen_axes axes_of(double a, double b, double angle, double x, double y) {
    auto const seen = [&](double u, double v) {
        double const c = std::cos(angle), s = std::sin(angle);
        return seen_place(from_mm({x + u * c - v * s, y + u * s + v * c}));
    };
    place const left = seen(-a, 0), right = seen(a, 0), low = seen(0, -b), high = seen(0, b);
    return {seen(0, 0), std::hypot(right.x - left.x, right.y - left.y) / 2,
            std::hypot(high.x - low.x, high.y - low.y) / 2, std::atan2(right.y - left.y, right.x - left.x)};
}

// The drawn feature as the camera sees it. Angles run the other way, since y does.
std::array<double, 5> in_image(feature const& f) {
    std::array<double, 5> const& m = f.made;
    switch (f.kind) {
        case outline::line: {
            place const from = seen_place(from_mm({m[0], m[1]})), to = seen_place(from_mm({m[2], m[3]}));
            return {from.x, from.y, to.x, to.y};
        }
        case outline::circle: {
            seen_axes const s = axes_of(m[0] - f.oversize, m[0] - f.oversize, 0, m[1], m[2]);
            return {(s.a + s.b) / 2, s.center.x, s.center.y};
        }
        case outline::arc: {
            seen_axes const s = axes_of(m[0], m[0], 0, m[3], m[4]);
            return {(s.a + s.b) / 2, std::remainder(-m[1] - m[2], 360 * degree), m[2], s.center.x,
                    s.center.y};
        }
        case outline::rectangle: {
            seen_axes const s = axes_of(m[0] / 2, m[1] / 2, m[2], m[3], m[4]);
            return {2 * s.a, 2 * s.b, s.angle, s.center.x, s.center.y};
        }
        case outline::slot: {
            seen_axes const s = axes_of(m[0], m[1], m[2], m[3], m[4]);
            return {s.a, s.b, s.angle, s.center.x, s.center.y};
        }
        case outline::point: {
            place const s = seen_place(from_mm({m[0], m[1]}));
            return {s.x, s.y, -m[2]};
        }
    }
    return {};
}

// What an operator types who points at it: places to 2 pixels, sizes to whole ones, angles to degrees.
std::array<double, 5> typed(feature const& f) {
    std::array<double, 5> m = in_image(f);
    bool const is_line = f.kind == outline::line;
    std::size_t const first = is_line || f.kind == outline::point ? 0 : f.kind == outline::circle ? 1 : 3;
    for (std::size_t i = first; i < first + (is_line ? 4 : 2); ++i) m[i] = 2 * std::round(m[i] / 2);
    return m;
}

// Where the edge crosses the line of search of a point tool, which stands a little beside the drawn place: in
// mm, by bisection.
place found_by(std::array<double, 5> const& tool) {
    double const x = tool[0], y = tool[1], c = std::cos(tool[2]), s = std::sin(tool[2]);
    auto const at = [&](double t) { return to_mm(true_place({x + t * c, y + t * s})); };
    double inside = -20, outside = 20;
    for (int round = 0; round < 60; ++round) {
        double const middle = (inside + outside) / 2;
        (opening_distance(at(middle)) < 0 ? inside : outside) = middle;
    }
    return at(inside);
}

std::string nominal_words(feature const& f, bool as_made) {
    std::array<double, 5> m = f.made;
    if (!as_made) m[0] -= f.oversize;
    if (f.kind == outline::point) {
        place const found = found_by(typed(f));
        return "point " + number(found.x, "%.6g") + ' ' + number(found.y, "%.6g");
    }
    return words(f.kind, m, "%.10g");
}

bool is_opening(outline kind) {
    return kind != outline::line && kind != outline::point;
}

std::string tolerances(outline kind, plate_picture const& picture) {
    std::string text;
    auto const add = [&text](char const* name, double width) {
        if (width > 0) text += (text.empty() ? "" : ", ") + quoted(name) + ": " + number(width);
    };
    auto const add_sizes = [&](std::vector<char const*> const& names) {
        for (char const* const name : names) add(name, picture.size);
    };
    if (kind != outline::point) add("form", picture.form);
    switch (kind) {
        case outline::line:
            add("profile", picture.profile);
            if (picture.is_truth) add_sizes({"center"});
            break;
        case outline::circle:
        case outline::arc:
            add_sizes({"radius", "center"});
            break;
        case outline::rectangle:
            add_sizes({"width", "height", "center"});
            break;
        case outline::slot:
            add_sizes({"width", "length", "center"});
            break;
        case outline::point:
            add_sizes({"center"});
            break;
    }
    bool const has_direction = kind == outline::line || kind == outline::rectangle || kind == outline::slot;
    if (has_direction) add("angle_deg", picture.direction);
    return text;
}

std::string head(char const* schema, char const* unit) {
    return "  \"schema\": " + quoted(schema) + ",\n  \"unit\": " + quoted(unit) + ",\n";
}

std::string list(char const* name, std::vector<std::string> const& items) {
    std::string text = "  " + quoted(name) + ": [";
    for (std::size_t i = 0; i < items.size(); ++i) text += (i == 0 ? "\n    " : ",\n    ") + items[i];
    return text + "\n  ]\n";
}

template <class visitor>
void for_each_dot(visitor const& visit) {
    for (int row = 0; row < dot_rows; ++row) {
        for (int column = 0; column < dot_columns; ++column) {
            visit(row, column,
                  place{dot_pitch * (column - dot_columns / 2), dot_pitch * (row - dot_rows / 2)});
        }
    }
}

}  // namespace

std::string chart_job() {
    std::vector<std::string> tools;
    for_each_dot([&](int row, int column, place truth) {
        place const seen = seen_place(truth);
        std::string const name = "dot " + number(row + 1) + '.' + number(column + 1);
        tools.push_back("{\"name\": " + quoted(name) + ", \"feature\": " +
                        quoted(words(outline::circle, {dot_radius, seen.x, seen.y}, "%.0f")) + '}');
    });
    return "{\n" + head("tvmath.job/1", "px") +
           "  \"pixel\": 1,\n  \"search\": 6,\n  \"spacing\": 4,\n  \"edge\": \"rising\",\n" +
           list("tools", tools) + "}\n";
}

std::string chart_nominal() {
    std::string text = "x,y\n";
    for_each_dot([&](int, int, place truth) { text += number(truth.x) + ',' + number(truth.y) + '\n'; });
    return text;
}

std::string plate_job(plate_picture const& picture) {
    std::vector<std::string> tools;
    for (feature const& f : features) {
        // Across an opening's outline it gets dark where openings are bright, across a line or a point it
        // gets bright.
        bool const rising = is_opening(f.kind) != picture.openings_are_bright;
        tools.push_back("{\"name\": " + quoted(f.name) +
                        ", \"feature\": " + quoted(words(f.kind, typed(f), "%.0f")) +
                        ", \"edge\": " + (rising ? "\"rising\"" : "\"falling\"") +
                        ",\n     \"nominal\": " + quoted(nominal_words(f, picture.is_truth)) +
                        ",\n     \"tolerance\": {" + tolerances(f.kind, picture) + "}}");
    }
    std::string const frame = "[" + number(pixel) + ", " + number(-pixel) + ']';
    return "{\n" + head("tvmath.job/1", "mm") + "  \"pixel\": " + frame +
           ",\n  \"screen\": \"lens.txt\",\n  \"search\": 8,\n  \"spacing\": 6,\n" + list("tools", tools) +
           "}\n";
}

}  // namespace plate
