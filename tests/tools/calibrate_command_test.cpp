#include "calibrate/calibrate_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "calibrate/calibrate_plot_parts.h"
#include "command_outcome.h"
#include "record_files.h"
#include "recording_canvas.h"
#include "report/number_text.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using row = std::vector<double>;

outcome run(calibrate_request const& request) {
    std::ostringstream out, err;
    exit_status const status = run_calibrate(request, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

nlohmann::json document_of(calibrate_request request) {
    request.json = true;
    outcome const o = run(request);
    EXPECT_EQ(o.status, 0) << o.err;
    return o.status == 0 ? nlohmann::json::parse(o.out) : nlohmann::json();
}

std::string csv(std::vector<row> const& rows) {
    std::string text;
    for (row const& r : rows) {
        for (double const x : r) text.append(number_text(x)).append(",");
        text.back() = '\n';
    }
    return text;
}

// The points of `rows` under the corrector of a file.
std::vector<row> corrected(record_folder const& folder, std::string const& corrector,
                           std::vector<row> const& rows) {
    std::ostringstream out, err;
    correct_request request{.corrector = corrector, .points = folder.write("points.csv", csv(rows))};
    EXPECT_EQ(run_correct(request, out, err), exit_status::done) << err.str();
    std::istringstream in(out.str());
    std::string line;
    std::getline(in, line);
    std::vector<row> result;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        result.emplace_back();
        for (std::string word; std::getline(words, word, ',');) result.back().push_back(std::stod(word));
    }
    return result;
}

// What a lens with radial distortion of third and fifth order, decentring and a tilted sensor shows of (x,
// y).
row seen_by_lens(double x, double y) {
    double const u = (x - 6) / 320, v = (y + 4) / 320, r2 = u * u + v * v;
    double const radial = 1 - 0.02 * r2 + 0.004 * r2 * r2, p1 = 0.0008, p2 = -0.0005;
    double const a = u * radial + 2 * p1 * u * v + p2 * (r2 + 2 * u * u),
                 b = v * radial + p1 * (r2 + 2 * v * v) + 2 * p2 * u * v, tilt = 1 + 4e-4 * a - 3e-4 * b;
    return {320 * a / tilt + 6, 320 * b / tilt - 4};
}

class CalibrateCommand : public testing::Test {
protected:
    record_folder folder;
    seeded_random random{31};
    static constexpr double noise = 0.03;

    // A chart of 17 x 13 marks on a screen of 640 x 480 pixels; `unit` is that of the nominal places.
    calibrate_request lens(double unit = 1) {
        std::vector<row> seen, nominal;
        for (double x = -304; x <= 304; x += 38) {
            for (double y = -228; y <= 228; y += 38) {
                row at = seen_by_lens(x, y);
                for (double& coordinate : at) coordinate += noise * random.normal();
                seen.push_back(at);
                nominal.push_back({unit * x, unit * y});
            }
        }
        return {.kind = "screen",
                .measured = folder.write("seen.csv", csv(seen)),
                .nominal = folder.write("nominal.csv", csv(nominal)),
                .screen_size = {"640", "480"}};
    }

    // Heights of focus on a sphere of radius -150 about (0, 0, 162), of pixels of 0.005.
    calibrate_request focus() {
        std::vector<row> rows;
        for (double x = -300; x <= 300; x += 50) {
            for (double y = -220; y <= 220; y += 55)
                rows.push_back({x, y, focus_height(x, y) + 1e-4 * random.normal()});
        }
        return {.kind = "flatness",
                .measured = folder.write("heights.csv", csv(rows)),
                .screen_size = {"640", "480"},
                .z_nominal = "12",
                .pixel = "0.005"};
    }
    static double focus_height(double x, double y) {
        return 162 - std::sqrt(150 * 150 - 25e-6 * (x * x + y * y));
    }

    static constexpr double k = 4e-4, tilt[] = {-3e-4, 2e-4};
    // `artefacts` seen at 9 places each in 3 heights about 30. A stage at s sees one of o at
    // c + s = d (k c + t) + o, d being its height above the reference.
    calibrate_request telecentric(int artefacts, bool has_column, double image_noise) {
        std::vector<row> image, stage;
        for (int n = 0; n < 27 * artefacts; ++n) {
            int const g = n / 27, place = n % 9;
            double const d = n % 27 / 9 * 2 - 2, o[] = {40 + 0.7 * g, 25 - 0.2 * g},
                         s[] = {o[0] + place % 3 - 1, o[1] + place / 3 - 1};
            row at;
            for (int i = 0; i < 2; ++i)
                at.push_back(((o[i] - s[i] + d * tilt[i]) / (1 - d * k)) / 0.005 +
                             image_noise * random.normal());
            if (has_column) at.push_back(g);
            image.push_back(at);
            stage.push_back({s[0], s[1], 30 + d});
        }
        return {.kind = "telecentricity",
                .measured = folder.write("image.csv", csv(image)),
                .nominal = folder.write("stage.csv", csv(stage)),
                .z_reference = "30",
                .pixel = "0.005"};
    }
};

TEST_F(CalibrateCommand, FindsTheDistortionOfALens) {
    calibrate_request request = lens();
    auto const document = document_of(request);
    EXPECT_EQ(document["schema"], "tvmath.calibrate/1");
    EXPECT_EQ(document["corrector"]["order"], 5);
    // Of 221 points the sum of squares of both coordinates is known to 5 %; here three times that.
    EXPECT_NEAR(document["corrector"]["residual"].get<double>(), std::sqrt(2.0) * noise, 0.15 * noise);
    EXPECT_GT(document["before"]["rms"].get<double>(), 2);
    EXPECT_EQ(document["outside_screen"], 0);
    request.screen_size = {"320", "240"};
    EXPECT_EQ(document_of(request)["outside_screen"], 221 - 9 * 7);  // marks up to 152 and 114 are seen
    request.screen_size = {"640", "480"};
    // Places that were not measured, up to the corners of the chart; the uncertainty is 0.3 of the noise in
    // the mean.
    request.output = folder.path("lens.txt");
    ASSERT_EQ(run(request).status, 0);
    double squares = 0, largest = 0;
    constexpr int n = 300;
    std::vector<row> truth, seen;
    for (int i = 0; i < n; ++i) {
        truth.push_back({random.uniform(-304, 304), random.uniform(-228, 228)});
        seen.push_back(seen_by_lens(truth.back()[0], truth.back()[1]));
    }
    std::vector<row> const found = corrected(folder, request.output, seen);
    ASSERT_EQ(found.size(), truth.size());
    for (std::size_t i = 0; i < n; ++i) {
        double const error = std::hypot(found[i][0] - truth[i][0], found[i][1] - truth[i][1]);
        squares += error * error;
        largest = std::max(largest, error);
    }
    double const predicted = document["uncertainty"];
    EXPECT_LT(std::sqrt(squares / n), 1.5 * predicted);
    EXPECT_LT(largest, 6 * predicted);
}

TEST_F(CalibrateCommand, TakesNominalPlacesInMachineUnits) {
    // The same noise each time; 1/128 keeps every digit.
    auto const in_pixels = document_of(lens());
    random = seeded_random(31);
    calibrate_request in_units = lens(1.0 / 128);
    in_units.pixel = "0.0078125";
    EXPECT_EQ(document_of(in_units)["text"], in_pixels["text"]);
    in_units.pixel.clear();
    in_units.transform_file =
        folder.write("t.txt", "transform ((0.0078125 0 0)(0 0.0078125 0)(0 0 1)(128 0 0)(0 128 0)(0 0 1))\n");
    outcome const o = run(in_units);
    ASSERT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(document_of(in_units)["text"], in_pixels["text"]);
}

TEST_F(CalibrateCommand, FindsTheSurfaceOfFocus) {
    calibrate_request request = focus();
    request.output = folder.path("focus.txt");
    auto const document = document_of(request);
    EXPECT_NEAR(1 / document["corrector"]["curvature"].get<double>(), -150, 1.5);
    EXPECT_NEAR(document["corrector"]["residual"].get<double>(), 1e-4, 2.5e-5);
    std::vector<row> heights;
    for (int i = 0; i < 100; ++i) {
        double const x = random.uniform(-300, 300), y = random.uniform(-220, 220);
        heights.push_back({x, y, focus_height(x, y)});
    }
    for (row const& p : corrected(folder, request.output, heights)) EXPECT_NEAR(p[2], 12, 1.5e-4);
    // Without --z-nominal the corrections vanish in the mean.
    request.z_nominal.clear();
    auto const about_mean = document_of(request);
    // Sagitta of the mean square distance, 55167 square pixels of 0.005.
    EXPECT_NEAR(about_mean["z_nominal"].get<double>(), 12 + 55167 * 25e-6 / 300, 5e-5);
}

TEST_F(CalibrateCommand, FindsTheErrorOfTelecentricity) {
    for (int const artefacts : {1, 4}) {
        auto const document = document_of(telecentric(artefacts, true, 0.04));
        auto const& found = document["corrector"];
        EXPECT_EQ(document["artefacts"], artefacts);
        std::pair<char const*, double> const expected[] = {
            {"magnification", k}, {"tilt_x", tilt[0]}, {"tilt_y", tilt[1]}};
        for (auto const& [name, value] : expected) {
            double const error = found[std::string(name) + "_error"];
            EXPECT_NEAR(found[name].get<double>(), value, 4 * error) << name;
            EXPECT_LT(error, 5e-5);
        }
        // Two coordinates of 0.04 pixels of 0.005; few degrees of freedom.
        EXPECT_NEAR(found["residual"].get<double>(), std::sqrt(2.0) * 2e-4, 1e-4);
        EXPECT_LT(document["after"]["rms"].get<double>(), document["before"]["rms"].get<double>() / 2);
    }
    auto const with = document_of(telecentric(1, true, 0)), without = document_of(telecentric(1, false, 0));
    EXPECT_EQ(with["text"], without["text"]);
    EXPECT_NEAR(with["corrector"]["magnification"].get<double>(), k, 1e-12);
}

TEST_F(CalibrateCommand, SaysInOneLineWhyThereIsNoCorrector) {
    std::string line, six, level, pairs;
    for (int i = 0; i < 9; ++i) {
        std::string const n = std::to_string(i);
        line += n + ',' + n + ",1\n";
        level += n + ',' + std::to_string(i * i % 5) + ",7\n";
        if (i < 6) six += n + ',' + std::to_string(i * i) + ",1\n";
        pairs += n + ',' + std::to_string(i * i % 7) + '\n';
    }
    std::string const gap = folder.write("gap", "1,1,0\n2,2,2\n3,3,2\n4,4,0\n"),
                      half = folder.write("half", "1,1,0\n2,2,0.5\n3,3,0\n4,4,0\n");
    auto const file = [this](char const* name, std::string const& text) { return folder.write(name, text); };
    std::string const l = file("line", line), s = file("six", six), v = file("level", level),
                      p = file("pairs", pairs);
    struct {
        std::string kind, measured, nominal;
        int status;
        std::string reason;
        std::string order = "", pixel = "1", reference = "", plot = "", output = "";
    } const cases[] = {
        {"lens", l, l, 2, "there is no corrector 'lens'"},
        {"screen", l, "", 2, "needs a second file"},
        {"flatness", l, l, 2, "takes one file"},
        {"screen", l, l, 2, "--max-order is", "1"},
        {"screen", l, l, 2, "--pixel: is", "", "0"},
        {"flatness", l, "", 2, "needs --pixel", "", ""},
        {"telecentricity", l, l, 2, "needs --z-reference"},
        {"flatness", l, "", 2, "--z-reference Z does not go", "", "1", "4"},
        {"screen", l, l, 2, is_picture_suffix(".svg") ? "suffix must be" : "makes no pictures", "", "", "",
         "a.gif"},
        {"screen", folder.path("none"), l, 3, "cannot be opened"},
        {"screen", s, s, 4, "needs at least 7 points, not 6", "", ""},
        {"screen", s, l, 4, "6 points, but 9 to go with them", "", ""},
        {"screen", l, v, 4, "determine no order", "", ""},
        {"screen", v, v, 4, "order 1 fits best", "", ""},
        {"flatness", p, "", 4, "needs the height of each point"},
        {"flatness", l, "", 4, "determine no order"},
        {"telecentricity", v, v, 4, "artefact 0 is not observed", "", "1", "0"},
        {"telecentricity", p, v, 4, "all observations are at one height", "", "1", "0"},
        {"telecentricity", gap, gap, 4, "artefact 1 is not observed", "", "1", "0"},
        {"telecentricity", half, half, 4, "third column of point 2", "", "1", "0"},
    };
    std::ptrdiff_t const files = folder.files();
    for (auto const& c : cases) {
        SCOPED_TRACE(c.kind + ' ' + c.reason);
        calibrate_request request{.kind = c.kind, .measured = c.measured, .nominal = c.nominal};
        if (c.kind != "telecentricity") request.screen_size = {"64", "48"};
        request.max_order = c.order;
        request.pixel = c.pixel;
        request.z_reference = c.reference;
        request.plot = c.plot;
        request.output = folder.path("never.txt");
        outcome const o = run(request);
        EXPECT_EQ(o.status, c.status);
        EXPECT_NE(o.err.find(c.reason), std::string::npos) << o.err;
        expect_one_line(o.err);
        EXPECT_EQ(o.out, "");
        EXPECT_EQ(folder.files(), files);
    }
}

TEST_F(CalibrateCommand, DrawsArrowsAsLongAsItSays) {
    // dx = 2 pixels everywhere: T(0, u) alone.
    any_corrector two_right;
    std::string reason;
    ASSERT_TRUE(read_corrector_text("screen (0 (2 0 0)(0 0 0) 640 480)", two_right, reason)) << reason;
    calibrate_result result;
    result.corrector = two_right;
    result.setup.width = 640;
    result.setup.height = 480;
    result.observations = {{{0, 0}, {3, 4}, {0, 1}}};
    recording_canvas c;
    draw_field(c, result, {100, 50}, 452, 352);  // a margin of 26: 400 across for 640 pixels
    // Steps of 49.2 pixels hold 23 arrows of 2; 20 is the next round number. The bar is an arrow of 2 pixels.
    EXPECT_TRUE(c.says("displacements, 20 times enlarged"));
    EXPECT_TRUE(c.says("2 pixels"));
    double const length = 2 * 20 * 400.0 / 640;
    ASSERT_GE(c.lines.size(), 2u);
    spot const tail = c.lines[c.lines.size() - 2], neck = c.lines.back();
    EXPECT_NEAR(neck.x - tail.x, length - 4.6, 1e-9);  // less the head
    draw_errors(c, result, {600, 50}, 150, 400);
    EXPECT_TRUE(c.says("Before: rms 5, largest 5"));
    for (spot const& p : c.places) EXPECT_TRUE(p.x > 0 && p.x < 842 && p.y > 0 && p.y < 595);
}

TEST_F(CalibrateCommand, WritesPicturesOfAllKinds) {
    for (calibrate_request request : {lens(), focus(), telecentric(2, true, 0.01)}) {
        request.plot = folder.path("picture.svg");
        outcome const o = run(request);
        if (!is_picture_suffix(".svg")) {
            EXPECT_EQ(o.status, 2);
            continue;
        }
        ASSERT_EQ(o.status, 0) << o.err;
        std::string const picture = folder.read("picture.svg");
        EXPECT_GT(picture.size(), 20000u);
        EXPECT_EQ(picture.find("nan"), std::string::npos);
    }
}

}  // namespace
}  // namespace tvmath
