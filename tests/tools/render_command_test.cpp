#include "record/render_command.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "plot/picture.h"
#include "tvmath/point.h"

inline namespace tvmath {
namespace {

struct table_row {
    std::string role;
    double x, y;
};

std::vector<std::string> words(std::string const& text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

// The table that is written for a kind and its parameters; offsets in words, too.
std::vector<table_row> table_of(std::string const& kind, std::string const& parameters,
                                std::string const& offsets = "") {
    std::ostringstream out, err;
    EXPECT_EQ(run_render({kind, words(parameters), words(offsets), {}, "-"}, out, err), exit_status::done)
        << err.str();
    std::vector<table_row> rows;
    std::istringstream in(out.str());
    std::string line, field;
    std::getline(in, line);
    EXPECT_EQ(line, "stroke,role,closed,x,y,z");
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        table_row row;
        std::getline(fields, field, ',');
        std::getline(fields, row.role, ',');
        std::getline(fields, field, ',');
        std::getline(fields, field, ',');
        row.x = std::stod(field);
        std::getline(fields, field, ',');
        row.y = std::stod(field);
        rows.push_back(row);
    }
    return rows;
}

TEST(RenderCommand, DrawsACircleWithItsParallelAndRectangles) {
    // Distance of the points of each role from the centre; the corners of a rectangle are at sqrt(2) of its
    // half.
    std::map<std::string, double> const radii = {{"outline", 2.0},
                                                 {"parallel", 2.5},
                                                 {"bounds", 2.0 * std::sqrt(2.0)},
                                                 {"wide bounds", 2.5 * std::sqrt(2.0)}};
    std::map<std::string, int> counts;
    for (table_row const& row : table_of("circle", "2 10 -5", "0.5")) {
        ++counts[row.role];
        auto const radius = radii.find(row.role);
        if (radius == radii.end()) continue;
        EXPECT_NEAR(std::hypot(row.x - 10, row.y + 5), radius->second, 1e-12) << row.role;
    }
    EXPECT_GE(counts["outline"], 8);
    EXPECT_EQ(counts["parallel"], counts["outline"]);
    EXPECT_EQ(counts["bounds"], 4);
    EXPECT_EQ(counts["wide bounds"], 4);
}

TEST(RenderCommand, ReadsDegreesAndRadians) {
    auto const degrees = table_of("arc", "3 90deg 60deg"),
               radians = table_of("arc", "3 1.5707963267948966 1.0471975511965976");
    ASSERT_EQ(degrees.size(), radians.size());
    EXPECT_NEAR(degrees.front().x, 0, 1e-12);  // the arc starts at 90 degrees
    EXPECT_NEAR(degrees.front().y, 3, 1e-12);
    EXPECT_NEAR(degrees.front().y, radians.front().y, 1e-12);
    // However many turns: the angle has no bound of its own.
    EXPECT_EQ(table_of("arc", "3 0 1e9deg").size(), table_of("arc", "3 0 360deg").size());
}

TEST(RenderCommand, AnswersBadInputWithOneLine) {
    struct {
        char const *kind, *parameters, *output;
        exit_status status;
    } const cases[] = {
        {"ball", "1", "-", exit_status::wrong_usage},
        {"circle", "", "-", exit_status::wrong_usage},
        {"circle", "1 2", "-", exit_status::wrong_usage},
        {"circle", "1x", "-", exit_status::wrong_usage},
        {"circle", "nan", "-", exit_status::wrong_usage},
        {"circle", "1e999", "-", exit_status::wrong_usage},
        {"circle", "1", "circle.doc", exit_status::wrong_usage},
        {"circle", "1", "no/such/folder/circle.csv", exit_status::internal},
        {"all", "", "-", exit_status::wrong_usage},
        {"all", "1", "all.svg", exit_status::wrong_usage},
        {"open-spline", "0 0 1 1 2 2", "-", exit_status::wrong_usage},
        {"nurb", "1e9 1e9 0 0 0 0 0", "-", exit_status::wrong_usage},
        {"nurb", "2 2 0 0 1 0.5 0 0 1 1 1 1", "-", exit_status::wrong_usage},  // knots descend
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(std::string(c.kind) + ' ' + c.parameters);
        std::ostringstream out, err;
        EXPECT_EQ(run_render({c.kind, words(c.parameters), {}, {}, c.output}, out, err), c.status);
        EXPECT_EQ(out.str(), "");
        std::string const message = err.str();
        EXPECT_GT(message.size(), 1u);
        EXPECT_EQ(message.find('\n'), message.size() - 1);
    }
}

TEST(RenderCommand, WritesTheSheetOfAllKinds) {
    if (!is_picture_suffix(".svg")) GTEST_SKIP() << "this build makes no pictures";
    auto const folder = std::filesystem::temp_directory_path();
    struct {
        char const *suffix, *start;
    } const formats[] = {{".svg", "<?xml"}, {".png", "\x89PNG"}, {".pdf", "%PDF"}};
    for (auto const& format : formats) {
        std::string const file = (folder / (std::string("tvmath_sheet_test") + format.suffix)).string();
        std::ostringstream out, err;
        EXPECT_EQ(run_render({"all", {}, {}, {}, file}, out, err), exit_status::done) << err.str();
        std::ifstream in(file, std::ios::binary);
        std::string const bytes((std::istreambuf_iterator<char>(in)), {});
        EXPECT_EQ(bytes.rfind(format.start, 0), 0u);
        EXPECT_GT(bytes.size(), 10000u);
        std::filesystem::remove(file);
    }
}

}  // namespace
}  // namespace tvmath
