#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "command_outcome.h"
#include "fit/fit_command.h"
#include "fit/fit_result.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

outcome run(std::string const& kind, std::string text, fit_request request = {}) {
    std::replace(text.begin(), text.end(), ' ', '\n');
    request.kind = kind;
    request.files = {file_of(text)};
    std::ostringstream out, err;
    exit_status const status = (request.zone ? run_fit : run_zone)(request, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

fit_request in_json() {
    fit_request request;
    request.json = true;
    return request;
}

fit_request flipped() {
    fit_request request = in_json();
    request.flip = true;
    return request;
}

fit_request parallel(std::string const& direction) {
    fit_request request = in_json();
    request.parallel = {direction};
    return request;
}

// Twelve points of a rough circle; their answers were found by enumeration in 60 digits.
char const* const rough_circle =
    "17.017282,4 14.329402,14.005135 7.005542,21.330107 -3,23.990288 -12.996981,21.315278 "
    "-20.313932,13.996203 -22.982931,4 -20.316918,-5.997927 -13.004325,-13.327999 -3,-16.001908 "
    "6.998905,-13.318611 14.30714,-5.992282";
// Four corners of a warped plate, and feet of which one is short.
char const* const warped = "0,0,0 4,0,0.1 4,4,0 0,4,0.1";
char const* const table = "0,0,0 10,0,0 0,10,0 10,10,1 4,5,5";

TEST(ZoneCommand, FindsKnownZonesWithTheirContacts) {
    struct {
        char const *kind, *points;
        fit_request request;
        double form_error;
        char const* contacts;
        char const* label;  // of a length of the feature, or of a place or way whose x is told
        double value;
        char const* reference;
    } const cases[] = {
        {"circle", rough_circle, in_json(), 0.0296840829038373462, "inner 4, inner 12, outer 1, outer 9, ",
         "outer_radius", 20.01461847243505721, "MZCI"},
        {"inscribed", rough_circle, in_json(), 0.0298613940124608, "inner 4, inner 7, inner 12, ", "radius",
         19.98517645621985996, "MICI"},
        {"circumscribed", rough_circle, in_json(), 0.0331625214323182, "outer 1, outer 3, outer 9, ",
         "radius", 20.009868414499, "MCCI"},
        {"circle", "0,0 4,0 4,4 0,4", in_json(), 0, "both 1, both 2, both 3, both 4, ", "radius",
         std::sqrt(8), "MZCI"},
        {"line", "0,0 4,0 2,1", in_json(), 1, "left 3, right 1, right 2, ", "length", 4, "MZLI"},
        {"plane", warped, in_json(), 0.1, "lower 1, lower 3, upper 2, upper 4, ", "center", 2, "MZPL"},
        // About a normal that leans by 3 in 4 along x the plate is as high as it is long there.
        {"plane", warped, parallel("3 0 4"), 0.6 * 4 + 0.8 * 0.1, "lower 1, upper 2, ", "center", 2, ""},
        {"sphere", "3,0,0 -3,0,0 0,1,0 0,0,2", in_json(), 2, "outer 1, outer 2, ", "radius", 3, ""},
        {"seating", table, in_json(), 5, "seat 1, seat 2, seat 3, ", "normal", 0, ""},
        // 45 (x - 10) - 6 y + 60 z = 0
        {"seating", table, flipped(), 510 / std::sqrt(5661), "seat 2, seat 4, seat 5, ", "normal",
         45 / std::sqrt(5661), ""},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(std::string(c.kind) + ' ' + c.points);
        outcome const o = run(c.kind, c.points, c.request);
        ASSERT_EQ(o.status, 0) << o.err;
        auto const document = nlohmann::json::parse(o.out);
        EXPECT_EQ(document["schema"], "tvmath.fit/2");
        auto const& result = document["results"].at(0);
        EXPECT_NEAR(result["form_error"].get<double>(), c.form_error, 1e-14);
        std::set<std::pair<std::string, std::size_t>> contacts;
        for (auto const& contact : result["contacts"]) contacts.emplace(contact["side"], contact["index"]);
        std::string text;
        for (auto const& [side, index] : contacts) text += side + ' ' + std::to_string(index) + ", ";
        EXPECT_EQ(text, c.contacts);
        auto const& figure = result["feature"][c.label];
        EXPECT_NEAR(std::fabs((figure.is_array() ? figure[0] : figure).get<double>()), c.value, 1e-13);
        EXPECT_TRUE(result["degrees_of_freedom"].is_null());
        if (*c.reference == 0) {
            EXPECT_TRUE(result["iso"].is_null());
        } else {
            EXPECT_EQ(result["iso"]["reference"], c.reference);
            EXPECT_FALSE(result["iso"].contains("RONq"));
        }
    }
}

TEST(ZoneCommand, GivesTheSameAsTheOptionOfFit) {
    for (auto const& [kind, points] :
         {std::pair{"circle", rough_circle}, {"line", "0,0 4,0 2,1"}, {"plane", warped}}) {
        fit_request as_option;
        as_option.zone = true;
        outcome const zone = run(kind, points), fit = run(kind, points, as_option);
        EXPECT_EQ(zone.status, 0) << zone.err;
        EXPECT_EQ(zone.out, fit.out);
        EXPECT_NE(zone.out.find("t (MZ"), std::string::npos) << zone.out;
    }
    EXPECT_NE(run("circle", rough_circle).out.find("point 9 (-13.004325, -13.327999)"), std::string::npos);
}

TEST(ZoneCommand, SaysInOneLineWhatIsWrong) {
    std::string const name = file_of("") + ": ";
    fit_request as_option, narrow;
    as_option.zone = true;
    narrow.tolerance = "0.5";
    struct {
        char const *kind, *points;
        fit_request request;
        int status;
        std::string err;
    } const cases[] = {
        {"line", "0,0 4,0 2,1", narrow, 1, name + "out of tolerance: the form error 1.0 is above 0.5"},
        {"ring", "0,0", {}, 2, "tvmath: there is no kind 'ring' (tvmath zone --help lists them)"},
        {"circle", "0,0", flipped(), 2, "tvmath: a minimum zone circle does not take --flip, but --nominal"},
        {"sphere", warped, as_option, 2, "tvmath: a sphere does not take --zone, but "},
        {"circle", "0,0 1,b", {}, 3, name.substr(0, name.size() - 1) + "2: 'b' is not a number"},
        {"circle", "0,0 1,1", {}, 4, name + "a minimum zone circle needs at least 3 points, not 2"},
        {"circle", "0,0 1,1 2,2 3,3", {}, 4, name + "no minimum zone circle is determined: "},
        {"inscribed", "0,0 4,0 2,0.1", {}, 4, name + "no inscribed circle is determined: the points enclose"},
        {"circumscribed", "1,1 1,1", {}, 4, name + "no circumscribed circle is determined: the points are"},
        {"line", "1,1 1,1", {}, 4, name + "no minimum zone line is determined: the points are all equal"},
        {"plane", "0,0 1,0 2,3", {}, 4, name + "a minimum zone plane needs points with x, y and z"},
        {"plane", "0,0,0 1,1,1 2,2,2", {}, 4, name + "no minimum zone plane is determined: "},
        {"sphere", "1,1,1 1,1,1", {}, 4, name + "no circumscribed sphere is determined: "},
        {"seating", "0,0,0 1,0,5 2,0,3", {}, 4, name + "no seating plane is determined: "},
    };
    for (auto const& c : cases) {
        outcome const o = run(c.kind, c.points, c.request);
        EXPECT_EQ(o.status, c.status) << c.kind << ' ' << c.points;
        EXPECT_EQ(o.err.substr(0, c.err.size()), c.err);
        EXPECT_EQ(std::count(o.err.begin(), o.err.end(), '\n'), 1);
    }
}

// So many contacts hold a zone; fewer would be lost in rounding. Small, and far from the origin.
TEST(ZoneCommand, NamesAllContactsThatHoldAZone) {
    // In all, and on each boundary that holds.
    std::map<std::string, std::array<std::size_t, 2>> const least = {
        {"circle", {4, 2}},        {"line", {3, 1}},   {"plane", {4, 1}},  {"inscribed", {2, 2}},
        {"circumscribed", {2, 2}}, {"sphere", {2, 2}}, {"seating", {3, 3}}};
    seeded_random random(31);
    for (int trial = 0; trial < 100; ++trial) {
        double const size = random.log_uniform(1e-4, 1e4), far = trial % 2 ? 1e6 * size : 0.0;
        std::vector<point> points =
            circle_points(random, at(far, -2 * far), size, 0, 6.28, 20 + 5 * trial, 0.001 * size);
        for (point& p : points) {
            p.promote3d();
            p.z() = far + 0.002 * size * random.normal();
        }
        for (fit_kind const& kind : zone_kinds()) {
            SCOPED_TRACE(std::string(kind.name) + ' ' + std::to_string(trial));
            fit_result result;
            std::string reason;
            bool is_usage = false;
            ASSERT_TRUE(fit_feature(kind, points, {points.size()}, {}, result, reason, is_usage)) << reason;
            std::map<std::string, std::size_t> sides;
            for (contact_point const& c : result.contacts) ++sides[c.side];
            EXPECT_GE(result.contacts.size(), least.at(kind.alias)[0]);
            EXPECT_LT(result.contacts.size(), 7u);
            for (auto const& [side, count] : sides) EXPECT_GE(count, least.at(kind.alias)[1]) << side;
            // An inscribed circle has no point inside, a circumscribed one none outside.
            double const rounding = rounding_of(points);
            for (contact_point const& c : result.contacts) {
                EXPECT_TRUE(c.at.residual > result.highest.residual - 2 * rounding ||
                            c.at.residual < result.lowest.residual + 2 * rounding);
            }
            if (sides.size() == 1) {
                EXPECT_NEAR(result.contacts[0].at.residual, 0, rounding);
            }
            EXPECT_NEAR(result.form_error, result.highest.residual - result.lowest.residual, 2 * rounding);
        }
    }
}

// The centre is some hundred times as far away as the points are from each other.
TEST(ZoneCommand, NamesTheContactsOfAShortArc) {
    seeded_random random(8);
    for (int trial = 0; trial < 50; ++trial) {
        std::vector<point> points;
        for (int i = 0; i < 60; ++i) points.push_back(at(i, 1e-4 * i * i + 0.01 * random.normal()));
        fit_result result;
        std::string reason;
        bool is_usage = false;
        ASSERT_TRUE(fit_feature(*find_zone_kind("circle"), points, {60}, {}, result, reason, is_usage));
        EXPECT_EQ(result.contacts.size(), 4u) << trial;
    }
}

}  // namespace
}  // namespace tvmath
