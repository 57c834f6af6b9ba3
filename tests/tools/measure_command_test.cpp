#include "measure/measure_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "command_outcome.h"
#include "files/image_file.h"
#include "fit/fit_command.h"
#include "imaging/rendered_scene.h"
#include "record/show_command.h"
#include "record_files.h"

inline namespace tvmath {
namespace {

outcome run(measure_request const& request) {
    std::ostringstream out, err;
    exit_status const status = run_measure(request, out, err);
    return {static_cast<int>(status), out.str(), err.str()};
}

// A PGM file of 16 bits.
std::string pgm(image const& grey) {
    std::string text =
        "P5\n" + std::to_string(matrix::cols(grey)) + ' ' + std::to_string(matrix::rows(grey)) + "\n65535\n";
    for (vector const& row : grey) {
        for (double const v : row) {
            auto const n = static_cast<unsigned>(std::lround(std::clamp(v, 0.0, 1.0) * 65535));
            text += {static_cast<char>(n >> 8), static_cast<char>(n & 255)};
        }
    }
    return text;
}

std::string scene_of(round_edge const& hole, unsigned int rows, unsigned int cols) {
    return pgm(rendered_scene(rows, cols, hole, {}));
}

std::vector<std::string> lines_of(std::string const& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::vector<std::string> fields_of(std::string const& line, char mark) {
    std::istringstream in(line);
    std::vector<std::string> fields;
    for (std::string field; std::getline(in, field, mark);) fields.push_back(field);
    return fields;
}

// One image of a hole, a job that asks for it, and all that can be written: each file is read by what it is
// for, and all of them tell the same circle, which is the true one.
TEST(MeasureCommand, WritesWhatOtherCommandsRead) {
    record_folder const folder;
    measure_request request;
    request.image = folder.write("hole.pgm", scene_of({130.3, 89.8, 60}, 200, 240));
    request.config = folder.write("job.json", R"({
      "schema": "tvmath.job/1", "unit": "mm", "pixel": [0.01, -0.01],
      "tools": [
        {"name": "bore", "feature": "circle 61 131 89", "nominal": "circle 0.6 0.1 0.1",
         "tolerance": {"radius": 0.001, "center": 0.004, "form": 0.001}},
        {"name": "rim", "feature": "arc 60 -90deg 180deg 130.3 89.8"},
        {"name": "right, stop", "feature": "point 191 89.8 0"}]})");
    request.points = folder.path("points.csv");
    request.centers = folder.path("centers.csv");
    request.records = folder.path("records.txt");
#ifdef TVMATH_READS_PNG
    request.overlay = folder.path("seen.png");
#endif
    request.json = true;
    outcome const o = run(request);
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_EQ(o.err, "");

    auto const document = nlohmann::json::parse(o.out);
    auto const& bore = document.at("tools").at(0);
    EXPECT_EQ(bore.at("passed"), true);
    EXPECT_NEAR(bore.at("feature").at("radius"), 0.6, 5e-5);
    EXPECT_NEAR(bore.at("feature").at("center").at(0), 0.103, 1e-4);
    EXPECT_NEAR(bore.at("feature").at("center").at(1), 0.102, 1e-4);
    // Upward y turns an arc round.
    EXPECT_NEAR(document.at("tools").at(1).at("feature").at("included_angle_deg"), -180, 0.05);

    // Residuals are positive outside, in the units of the results.
    std::vector<std::string> const rows = lines_of(folder.read("points.csv"));
    ASSERT_EQ(rows.size(), 1 + 32 + 16 + 1u);
    std::string of_bore;
    for (std::size_t i = 1; i <= 32; ++i) {
        std::vector<std::string> const f = fields_of(rows[i], ',');
        ASSERT_EQ(f.size(), 9u);
        EXPECT_EQ(f[0], "bore");
        double const seen_x = std::stod(f[2]), seen_y = std::stod(f[3]);
        double const x = std::stod(f[4]), y = std::stod(f[5]);
        EXPECT_NEAR(x, (seen_x - 120) * 0.01, 1e-9);
        EXPECT_NEAR(y, (100 - seen_y) * 0.01, 1e-9);
        auto const& center = bore.at("feature").at("center");
        EXPECT_NEAR(std::stod(f[6]),
                    std::hypot(x - center.at(0).get<double>(), y - center.at(1).get<double>()) -
                        bore.at("feature").at("radius").get<double>(),
                    1e-9);
        EXPECT_LT(std::stod(f[7]), -0.5);
        of_bore += f[4] + ',' + f[5] + '\n';
    }
    EXPECT_EQ(rows.back().rfind("\"right, stop\",1,", 0), 0u);

    std::ostringstream out, err;
    fit_request fit;
    fit.kind = "circle";
    fit.files = {folder.write("bore.csv", of_bore)};
    fit.json = true;
    EXPECT_EQ(run_fit(fit, out, err), exit_status::done) << err.str();
    EXPECT_NEAR(nlohmann::json::parse(out.str()).at("results").at(0).at("feature").at("radius"),
                bore.at("feature").at("radius").get<double>(), 1e-9);
    EXPECT_EQ(lines_of(folder.read("centers.csv")).size(), 1 + 3u);
    fit.files = {request.centers};
    EXPECT_EQ(run_fit(fit, out, err), exit_status::done) << err.str();

    std::vector<std::string> const records = lines_of(folder.read("records.txt"));
    ASSERT_EQ(records.size(), 3u);
    std::vector<std::string> const record = fields_of(records[0], '\t');
    ASSERT_EQ(record.size(), 2u);
    EXPECT_EQ(record[0], "bore");
    show_request show;
    show.file = folder.write("bore.txt", record[1]);
    std::ostringstream shown;
    EXPECT_EQ(run_show(show, shown, err), exit_status::done) << err.str();
    EXPECT_NE(shown.str().find("radius"), std::string::npos);

#ifdef TVMATH_READS_PNG
    image picture;
    std::string reason;
    ASSERT_TRUE(read_image_file(request.overlay, picture, reason)) << reason;
    EXPECT_EQ(matrix::cols(picture), 240u);
    EXPECT_EQ(matrix::rows(picture), 200u);
#endif
}

// The status is that of the worst feature, and no message is longer than a line.
TEST(MeasureCommand, EndsWithTheStatusOfTheWorst) {
    record_folder const folder;
    std::string const hole = folder.write("hole.pgm", scene_of({70.3, 69.8, 40}, 140, 140));
    std::string const plain = folder.write("plain.pgm", scene_of({70, 70, 1000}, 140, 140));
    std::string const dot = folder.write("dot.pgm", "P5\n1 1\n255\n\x80");
    struct {
        std::string image, feature, tolerance;
        int status;
    } const cases[] = {{hole, "circle 40 70 70", "0.1", 0},
                       {hole, "circle 40 70 70", "0.000001", 1},
                       {hole, "circle 0 70 70", "", 2},
                       {hole, "circle 40 70 70", "radius=1", 2},
                       {plain, "circle 40 70 70", "0.1", 4},
                       {dot, "circle 40 70 70", "", 4},
                       {dot, "point 0 0", "", 4},
                       {hole, "slot 40 39.99 0 900 900", "", 4},
                       {"none.pgm", "circle 40 70 70", "", 3}};
    for (auto const& c : cases) {
        measure_request request;
        request.image = c.image;
        request.feature = c.feature;
        request.tolerance = c.tolerance;
        outcome const o = run(request);
        EXPECT_EQ(o.status, c.status) << c.image << ' ' << c.feature << ' ' << c.tolerance << ": " << o.err;
        if (c.status == 2 || c.status == 3) {
            expect_one_line(o.err);
            EXPECT_EQ(o.out, "");
        } else {
            EXPECT_NE(o.out.find("1 feature: "), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace tvmath
