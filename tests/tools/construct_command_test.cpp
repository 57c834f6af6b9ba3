#include "construct/construct_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "command_outcome.h"
#include "construct/construct_result.h"
#include "plot/canvas.h"
#include "record/record_xml.h"
#include "record_files.h"
#include "report/number_text.h"
#include "support/seeded_random.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using nlohmann::json;
using words = std::vector<std::string>;

outcome run(construct_request const& request) {
    std::ostringstream out, err;
    exit_status const status = run_construct(request, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

construct_request request_of(std::string const& what, words const& features) {
    construct_request request;
    request.what = what;
    request.features = features;
    request.json = true;
    return request;
}

json document_of(construct_request const& request) {
    outcome const done = run(request);
    EXPECT_EQ(done.status, 0) << done.err;
    return done.status == 0 ? json::parse(done.out) : json();
}

json chosen_of(json const& document) {
    return document["answers"][document["chosen"].get<std::size_t>() - 1]["feature"];
}

double gap(json const& a, json const& b) {
    double sum = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        sum += sqr(a[i].get<double>() - b[i].get<double>());
    return std::sqrt(sum);
}

// A number or a list of them.
std::vector<double> numbers_in(json const& value) {
    return value.is_array() ? value.get<std::vector<double>>() : std::vector<double>{value.get<double>()};
}

TEST(ConstructCommand, GivesValuesWorkedByHand) {
    char const* const tilted = "plane 0 0 0 0 0.8660254037844386 0.5";  // by 60 degrees
    char const* const cylinder = "cylinder 1 4 0 0 0 0 0 1";
    struct {
        std::string what;
        words features;
        std::string form, radius, choose, used_form;
        std::size_t answers;
        char const* member;
        std::vector<double> values;
    } const cases[] = {
        {"nearest", {"point 0 3", "line -1 -1 1 -1"}, "", "", "", "xy", 1, "distance", {4}},
        // The foot of (3, 0, 0) on (t, t, t) is at t = 1; in XY it is at 1.5.
        {"nearest", {"line 0 0 0 1 1 1", "point 3 0 0"}, "", "", "", "space", 1, "start", {1, 1, 1}},
        {"nearest", {"line 0 0 0 1 1 1", "point 3 0 0"}, "xy", "", "", "xy", 1, "start", {1.5, 1.5, 1.5}},
        {"farthest", {"point-cloud 0 0 3 4 1 1", "point 0 0"}, "", "", "", "xy", 1, "start", {3, 4}},
        {"intersect", {"line -9 4 -8 4", "circle 5"}, "", "", "2", "xy", 2, "center", {3, 4}},
        // Twice as long as wide: 1 / cos(60 degrees).
        {"intersect", {tilted, cylinder}, "", "", "", "ellipse", 1, "major_half_axis", {2}},
        {"intersect", {tilted, cylinder}, "circle", "", "", "circle", 1, "radius", {1}},
        {"tangent", {"line 0 0 1 0", "line 0 0 0 1"}, "", "2", "", "", 4, "radius", {2}},
        // The triangle of sides 3, 4 and 5 has an incircle of radius 1.
        {"tangent", {"line 0 0 4 0", "line 0 0 0 3", "line 4 0 0 3"}, "", "", "", "", 4, "center", {1, 1}},
        {"tangent", {"point 1 5", "line 0 2 9 2"}, "", "", "", "", 1, "radius", {3}},
        {"bisect", {"point 0 0", "point 4 0"}, "", "", "", "", 1, "direction", {0, 1}},
        {"angle", {"line 0 0 2 0", "line 0 0 0 2"}, "", "", "4", "", 4, "included_angle_deg", {270}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.what + ' ' + c.features[0] + ", " + c.features[1]);
        construct_request request = request_of(c.what, c.features);
        request.form = c.form;
        request.radius = c.radius;
        request.choose = c.choose;
        json const document = document_of(request);
        EXPECT_EQ(document["schema"], "tvmath.construct/1");
        EXPECT_EQ(document["form"], c.used_form.empty() ? json() : json(c.used_form));
        EXPECT_EQ(document["answers"].size(), c.answers);
        auto const values = numbers_in(chosen_of(document)[c.member]);
        ASSERT_EQ(values.size(), c.values.size());
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_NEAR(values[i], c.values[i], 1e-12);
    }
}

TEST(ConstructCommand, ReportsEveryAnswerAndMarksTheChosenOne) {
    construct_request request = request_of("intersect", {"line -9 4 9 4", "circle 5 0 0"});
    request.json = false;
    request.choose = "2";
    EXPECT_EQ(run(request).out,
              "intersect  line -9 4 9 4  circle 5 0 0\n"
              "answer 1 of 2, point\n  center x  -3.0\n  center y   4.0\n"
              "answer 2 of 2, point, chosen\n  center x  3.0\n  center y  4.0\n");
}

// Features of each kind, placed so that every construction of the table has an answer.
std::string sample(feature_kind kind, std::size_t place) {
    bool const first = place == 0;
    switch (kind) {
        case feature_kind::point:
            return first ? "point 3.5 2.5" : "point 3 1";
        case feature_kind::list:
            return first ? "point-cloud 0 0 1 2 3 1" : "open-data 5 1 6 4 5 3";
        case feature_kind::line:
            return first ? "line -3 -2 0 4 1 0.5" : place == 1 ? "line 0 -2 0.4 1 3 0.4" : "line 4 0 3 3";
        case feature_kind::plane:
            return first ? "plane 0 0 1 0.2 0.1 1" : "plane 0 0 1 -0.5 0.4 0.7";
        case feature_kind::sphere:
            return "sphere 2";
        case feature_kind::cylinder:
            return "cylinder 1 4 0 0 0 0 0 1";
        case feature_kind::cone:
            return "cone 0 0 -2 0 0 3 2 0.7";
        case feature_kind::ellipse:
            return first ? "ellipse 3 1 20deg 0 0" : "arc 2 10deg 200deg 1 0.5";
        case feature_kind::path:
            return first ? "open-spline -3 -1 0 5 1 -5 4 2"
                         : "closed-spline -2 0 0 3 2 3 3 0 2 -3 -1 -3 -2 0";
        case feature_kind::rectangle:
            return "rectangle 4 2 20deg 0 0";
    }
    return {};
}

// Every construction, by every form and in both orders: the same answers, distances from the other end.
TEST(ConstructCommand, AnswersInBothOrders) {
    std::size_t answered = 0;
    for (construct_row const& row : construct_rows()) {
        construct_request request = request_of(operation_name(row.what), {});
        for (std::size_t i = 0; i < row.kinds.size(); ++i)
            request.features.push_back(sample(row.kinds[i], i));
        request.form = form_name(row.form);
        if (row.takes_radius) request.radius = "0.9";
        SCOPED_TRACE(request.what + ' ' + request.features[0] + ", " + request.features[1]);
        json const given = document_of(request)["answers"];
        std::reverse(request.features.begin(), request.features.end());
        json const swapped = document_of(request)["answers"];
        EXPECT_EQ(given.size(), swapped.size());
        bool const is_distance = given[0]["feature"].contains("distance");
        char const* const place = request.what == "angle" ? "vertex" : is_distance ? "start" : "center";
        for (json const& answer : given) {
            double least = 1e9;
            for (json const& other : swapped)
                least = std::min(
                    least, gap(answer["feature"][place], other["feature"][is_distance ? "end" : place]));
            EXPECT_LT(least, 1e-9) << answer;
            ++answered;
        }
    }
    EXPECT_GT(answered, 100u);
}

std::string line_at(double x, double y, double angle, bool reversed) {
    double const c = 8 * std::cos(angle), s = 8 * std::sin(angle);
    point const a(true, x - c, y - s), b(true, x + c, y + s), &from = reversed ? b : a,
                                                              &to = reversed ? a : b;
    return "line " + number_text(from.x()) + ' ' + number_text(from.y()) + ' ' + number_text(to.x()) + ' ' +
           number_text(to.y());
}

// Parts measured one after the other, each a little turned, with lines measured in either direction: the
// answer stays beside its place, found by --update from what --save wrote.
TEST(ConstructCommand, FollowsAChoiceFromPartToPart) {
    struct {
        char const *name, *what, *radius, *choose, *place;
        std::vector<std::string> (*features)(double turn, seeded_random& random);
    } const cases[] = {
        {"line and circle", "intersect", "", "2", "center",
         [](double t, seeded_random& r) {
             return words{line_at(1, 0.5, t, r.below(2) == 1), "circle 3 1 1"};
         }},
        {"ellipses", "intersect", "", "3", "center",
         [](double t, seeded_random&) {
             return words{"ellipse 4 2", "ellipse 4 2 " + number_text(1 + 0.1 * std::sin(t)) + " 0 0"};
         }},
        {"circles at lines", "tangent", "1", "4", "center",
         [](double t, seeded_random& r) {
             return words{line_at(0, 0, t, r.below(2) == 1), line_at(0, 0, t + 1, r.below(2) == 1)};
         }},
        {"tangents", "tangent", "", "2", "end",
         [](double t, seeded_random&) {
             return words{"point " + number_text(5 * std::cos(t)) + ' ' + number_text(5 * std::sin(t)),
                          "circle 2"};
         }},
        {"angle", "angle", "", "3", "vertex",
         [](double t, seeded_random& r) {
             return words{line_at(0, 0, t, r.below(2) == 1), line_at(0, 0, t + 1, r.below(2) == 1)};
         }},
    };
    record_folder const files;
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        seeded_random random(7);
        construct_request request = request_of(c.what, c.features(0, random));
        request.radius = c.radius;
        request.choose = c.choose;
        request.save = files.path(c.name);
        json last = chosen_of(document_of(request));
        request.choose.clear();
        request.update = request.save;
        for (int step = 1; step <= 126; ++step) {  // two turns
            request.features = c.features(step * 0.1, random);
            json const now = chosen_of(document_of(request));
            ASSERT_LT(gap(last[c.place], now[c.place]), 0.8) << step;
            if (last.contains("included_angle")) {
                double const turned = now["start_angle"].get<double>() - last["start_angle"].get<double>();
                ASSERT_NEAR(std::remainder(turned, 2 * pi), 0.1, 1e-6) << step;
                ASSERT_NEAR(now["included_angle"].get<double>(), last["included_angle"].get<double>(), 1e-6);
            }
            last = now;
        }
    }
}

// An answer that is gone is not replaced by another one, and its memory stays for the next part.
TEST(ConstructCommand, KeepsTheMemoryOfAnAnswerThatIsGone) {
    record_folder const files;
    construct_request request = request_of("intersect", {"line 0 1 9 1", "open-spline 0 0 1 4 3 -4 4 2"});
    request.choose = "2";
    request.save = files.path("memory");
    std::string const before = (document_of(request), files.read("memory"));
    request.choose.clear();
    request.update = request.save;
    request.features[0] = "line 0 9 9 9";
    outcome const gone = run(request);
    EXPECT_EQ(gone.status, 4);
    EXPECT_EQ(gone.out, "");
    expect_one_line(gone.err);
    EXPECT_EQ(files.read("memory"), before);
    request.what = "tangent";
    request.features = {"point 9 0", "circle 1"};
    EXPECT_EQ(run(request).status, 3);
}

TEST(ConstructCommand, ReadsFilesAndWritesTheChosenRecord) {
    record_folder const files;
    std::string const points = files.write("p.csv", "0,0\n4,0\n4,3\n");
    // The nearest corner, edge and list.
    EXPECT_EQ(chosen_of(document_of(request_of("nearest", {"point 6 0", points})))["distance"], 2.0);
    construct_request request = request_of("nearest", {"point 0 0", "closed-spline " + points});
    EXPECT_NEAR(chosen_of(document_of(request))["distance"].get<double>(), 0, 1e-12);
    for (std::string const form : {"text", "xml"}) {
        if (form == "xml" && !reads_xml()) continue;
        SCOPED_TRACE(form);
        construct_request tangent = request_of("tangent", {"line 0 0 1 0", "line 0 0 0 1"});
        tangent.json = false;
        tangent.radius = "2";
        tangent.record = form;
        std::string const printed = run(tangent).out;
        tangent.record_file = files.path("circle");
        EXPECT_NE(run(tangent).out.find("chosen"), std::string::npos);
        EXPECT_EQ(files.read("circle"), printed);
        construct_request back = request_of("nearest", {files.path("circle"), "point 0 0"});
        back.from = form;
        back.form = "xy";
        // The corner is sqrt(8) - 2 from each of the four circles.
        EXPECT_NEAR(chosen_of(document_of(back))["distance"].get<double>(), std::sqrt(8.0) - 2, 1e-7);
    }
}

TEST(ConstructCommand, RefusesNonsenseInOneLine) {
    record_folder const files;
    std::string const memory = files.write("m", "(ILE 99)"), circles = files.write("c", "(CTTV 0 1 1 1)"),
                      noise = files.write("n", std::string("(\0\xff", 3)),
                      angle = files.write("a.txt", "angle (1 2 3)");
    struct {
        construct_request request;
        exit_status status;
    } const cases[] = {
        {{.what = "cut", .features = {"point 0 0", "point 1 1"}}, exit_status::wrong_usage},
        {{.what = "nearest"}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"line 0 0 1 0", "line 0 1 1 1"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", "slot 2 1"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point", "0", "0"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", "point 0\n"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", "point 0 inf"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", "\x1b[2J\n"}}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"-", "-"}, .from = "csv"}, exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", files.path("none.csv")}},
         exit_status::unreadable_input},
        {{.what = "nearest", .features = {"point 0 0", "circle " + files.path("a.txt")}},
         exit_status::unreadable_input},
        {{.what = "nearest", .features = {"point 0 0", "circle 1"}, .form = "circle"},
         exit_status::wrong_usage},
        {{.what = "nearest", .features = {"point 0 0", "circle 1"}, .save = files.path("s")},
         exit_status::wrong_usage},
        {{.what = "intersect", .features = {"line 0 5 1 5", "circle 1"}}, exit_status::no_answer},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .choose = "0"},
         exit_status::wrong_usage},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .choose = "3"},
         exit_status::no_answer},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .choose = "1", .update = memory},
         exit_status::wrong_usage},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .update = memory},
         exit_status::unreadable_input},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .update = circles},
         exit_status::unreadable_input},
        {{.what = "intersect", .features = {"line 0 0 1 0", "circle 1"}, .update = noise},
         exit_status::unreadable_input},
        {{.what = "angle", .features = {"line 0 0 1 0", "line 0 0 1 1"}, .update = angle},
         exit_status::unreadable_input},
        {{.what = "angle", .features = {"line 0 0 1 0", "line 0 1 1 1"}}, exit_status::no_answer},
        {{.what = "tangent", .features = {"line 0 0 1 0", "line 0 0 1 1"}}, exit_status::wrong_usage},
        {{.what = "tangent", .features = {"line 0 0 1 0", "line 0 0 1 1"}, .radius = "0"},
         exit_status::wrong_usage},
        {{.what = "bisect", .features = {"point 0 0", "point 0 0"}, .plot = "a.gif"},
         exit_status::wrong_usage},
        {{.what = "bisect", .features = {"point 0 0", "point 1 0"}, .record = "hex"},
         exit_status::wrong_usage},
        {{.what = "sheet"}, exit_status::wrong_usage},
        {{.what = "bisect", .features = {"point 0 0", "point 1 0"}, .sheet = "a.svg"},
         exit_status::wrong_usage},
    };
    auto const before = files.files();
    for (auto const& c : cases) {
        outcome const refused = run(c.request);
        SCOPED_TRACE(c.request.what + ' ' + (c.request.features.empty() ? "" : c.request.features.back()) +
                     '\n' + refused.err);
        EXPECT_EQ(refused.status, static_cast<int>(c.status));
        EXPECT_EQ(refused.out, "");
        expect_one_line(refused.err);
        EXPECT_EQ(files.files(), before);
    }
}

TEST(ConstructCommand, DrawsTheChosenAnswerAndTheSheet) {
    if (!is_picture_suffix(".svg")) return;
    record_folder const files;
    construct_request request = request_of("intersect", {"ellipse 4 2", "ellipse 4 2 1 0 0"});
    std::string pictures[2];
    for (std::size_t i = 0; i < 2; ++i) {
        request.choose = std::to_string(i + 1);
        request.plot = files.path("a.svg");
        document_of(request);
        pictures[i] = files.read("a.svg");
        EXPECT_EQ(pictures[i].rfind("<?xml", 0), 0u);
    }
    EXPECT_NE(pictures[0], pictures[1]);
    // All in one place, far away: nothing to scale by.
    construct_request flat = request_of("nearest", {"point 1e9 1e9", "point 1e9 1e9"});
    flat.plot = files.path("b.pdf");
    document_of(flat);
    EXPECT_EQ(files.read("b.pdf").rfind("%PDF", 0), 0u);
    // Made only when every sample has its answers.
    EXPECT_EQ(run({.what = "sheet", .sheet = files.path("sheet.png")}).status, 0);
    EXPECT_EQ(files.read("sheet.png").rfind("\x89PNG", 0), 0u);
}

}  // namespace
}  // namespace tvmath
