#include "fit_command.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>

#include "number_text.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

namespace fs = std::filesystem;

// Runs the built program in a folder of its own.
class Program : public testing::Test {
protected:
    void SetUp() override {
        // Tests run side by side, each in its own process.
        folder_ = fs::path(testing::TempDir()) /
                  (std::string("tvmath_") + testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(std::string const& name) const { return (folder_ / name).string(); }
    std::string file(std::string const& name, std::string const& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    static std::string contents(std::string const& name) {
        std::ifstream in(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // Leaves the texts in out and err.
    bool succeeds(std::string const& arguments) { return run(arguments) == 0; }
    int run(std::string const& arguments) {
        std::string const command = std::string("\"") + TVMATH_PROGRAM + "\" " + arguments + " > \"" +
                                    path("out") + "\" 2> \"" + path("err") + "\"";
        int const raw = std::system(command.c_str());
        out = contents(path("out"));
        err = contents(path("err"));
        // Where a wait status comes back, the exit status is in its second byte.
        return raw > 255 ? raw / 256 : raw;
    }

    std::string out, err;

private:
    fs::path folder_;
};

TEST_F(Program, FitsTheRectangleWorkedByHand) {
    std::string const name = file("rectangle.csv", "x,y\n0,0\n4,0\n4,2\n0,2\n");
    ASSERT_TRUE(succeeds("fit circle \"" + name + "\"")) << err;
    EXPECT_EQ(out, "circle  " + name +
                       "\n"
                       "  center x      2.0\n"
                       "  center y      1.0\n"
                       "  radius        2.23606797749979\n"  // sqrt 5
                       "  points        4\n"
                       "  rms residual  0.0\n");
    EXPECT_EQ(err, "");
}

TEST_F(Program, ExitStatusTellsTheKindOfFailure) {
    std::string const good = file("good", "0,0\n4,0\n4,2\n"), bad = file("bad", "1,2\n1,b\n"),
                      few = file("few", "0,0\n1,1\n"), row = file("row", "0,0\n1,0\n2,0\n"),
                      same = file("same", "1,1\n1,1\n"), huge = file("huge", "-1e308,0\n1e308,1\n0,2\n");
    struct {
        std::string arguments;
        int status;
        std::string err;
    } const cases[] = {
        {"fit circle " + good, 0, ""},
        {"fit circle " + bad, 3, bad + ":2: 'b' is not a number\n"},
        {"fit circle - < " + bad, 3, "<stdin>:2: 'b' is not a number\n"},
        {"fit circle " + few, 4, few + ": a circle needs at least 3 points, not 2\n"},
        {"fit circle " + row, 4,
         row + ": no circle is determined: the points lie on one line, or are fewer than 3 different ones\n"},
        {"fit line " + same, 4,
         same + ": no line is determined: the points scatter equally in every direction, or are all equal\n"},
        {"fit circle " + huge, 4,
         huge + ": no circle is determined: the coordinates are too large or too small to calculate with\n"},
        {"fit point " + path(""), 3, path("") + ": is a folder, not a file\n"},
        {"fit circle --json " + few, 4, few + ": a circle needs at least 3 points, not 2\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(run(c.arguments), c.status);
        EXPECT_EQ(err, c.err);
        EXPECT_EQ(out.empty(), c.status != 0);
    }
}

TEST_F(Program, AnswersWrongUsageInOneLine) {
    for (char const* arguments : {"", "fit", "fit circle", "fit cube x", "fit circle x --decimal .",
                                  "--nonsense", "fit circle - -", "turn circle x"}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments), 2);
        EXPECT_EQ(out, "");
        EXPECT_EQ(err.find('\n'), err.size() - 1) << err;
    }
    for (char const* arguments : {"--help", "fit --help", "--version"}) {
        EXPECT_EQ(run(arguments), 0);
        EXPECT_EQ(err, "");
        EXPECT_NE(out, "");
    }
}

TEST_F(Program, WorksOnEveryFileAndReturnsTheWorstStatus) {
    std::string const good = file("good", "0,0\n4,0\n4,2\n"), bad = file("bad", "1,2,\n"),
                      few = file("few", "0,0\n");
    EXPECT_EQ(run("fit circle " + few + " " + bad + " " + good), 4);
    EXPECT_EQ(out.rfind("circle  " + good, 0), 0u);
    EXPECT_EQ(err, few + ": a circle needs at least 3 points, not 1\n" + bad + ":1: column 3 is empty\n");
}

TEST_F(Program, ReportsResultsThatCannotBeWritten) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "this system has no device that is always full";
    std::string const good = file("good", "0,0\n4,0\n4,2\n");
    std::string const command =
        std::string("\"") + TVMATH_PROGRAM + "\" fit circle " + good + " > /dev/full 2> " + path("err");
    EXPECT_EQ(std::system(command.c_str()) / 256, 5);
}

TEST_F(Program, JsonGivesTheSameDoublesBack) {
    seeded_random random(3);
    std::string text;
    for (point const& p : sphere_points(random, at(1, -20, 300), 5, 50, 1e-3)) {
        text += number_text(p.x()) + ' ' + number_text(p.y()) + ' ' + number_text(p.z()) + '\n';
    }
    seeded_random again(3);
    fit_result expected;
    std::string reason;
    ASSERT_TRUE(fit_feature("sphere", sphere_points(again, at(1, -20, 300), 5, 50, 1e-3), expected, reason));

    ASSERT_TRUE(succeeds("fit sphere --json " + file("sphere.xyz", text))) << err;
    auto const document = nlohmann::json::parse(out);
    EXPECT_EQ(document["schema"], "tvmath.fit/1");
    auto const& result = document["results"].at(0);
    EXPECT_EQ(result["dimension"], 3);
    EXPECT_EQ(result["points"], 50);
    EXPECT_FALSE(result.contains("direction"));
    EXPECT_EQ(result["radius"].get<double>(), expected.radius);
    EXPECT_EQ(result["rms_residual"].get<double>(), expected.rms_residual);
    EXPECT_EQ(result["center"].get<std::vector<double>>(),
              (std::vector<double>{expected.center.x(), expected.center.y(), expected.center.z()}));
    EXPECT_NEAR(expected.radius, 5, 1e-3);  // the noise of 1e-3, averaged over 50 points
}

TEST(FitFeature, GivesResidualsWorkedByHand) {
    double const huge = 1e200;
    struct {
        char const* feature;
        std::vector<point> points;
        double rms;
    } const cases[] = {
        {"point", {at(0, 0), at(2, 0)}, 1},
        {"point", {at(0, 0, 0), at(0, 0, 2)}, 1},                               // z counts
        {"point", {at(0, 0), at(2 * huge, 0)}, huge},                           // whose square is no double
        {"line", {at(-2, 1), at(-2, -1), at(2, 1), at(2, -1)}, 1},              // along x
        {"line", {at(-2, 1, 9), at(-2, -1, 0), at(2, 1, 5), at(2, -1, 7)}, 1},  // in XY
        // Radius sqrt 2.5 about the origin, by symmetry; residuals 2 - r and 1 - r, twice each.
        {"circle",
         {at(2, 0), at(-2, 0), at(0, 1), at(0, -1)},
         std::sqrt((std::pow(2 - std::sqrt(2.5), 2) + std::pow(1 - std::sqrt(2.5), 2)) / 2)},
        {"sphere", {at(1, 0, 0), at(-1, 0, 0), at(0, 1, 0), at(0, -1, 0), at(0, 0, 1), at(0, 0, -1)}, 0},
    };
    for (auto const& c : cases) {
        fit_result result;
        std::string reason;
        ASSERT_TRUE(fit_feature(c.feature, c.points, result, reason)) << c.feature << ": " << reason;
        EXPECT_NEAR(result.rms_residual, c.rms, 1e-15 * c.rms) << c.feature;
    }
}

// A parser of options takes "-.5" for one unless it is told.
TEST_F(Program, TakesNegativeNumbersWithAndWithoutTheZero) {
    ASSERT_TRUE(succeeds("render point -.5 -2 -o -")) << err;
    EXPECT_EQ(out, "stroke,role,closed,x,y,z\n1,mark,0,-0.5,-2.0,\n");
}

TEST(NumberText, IsShortestWithAPoint) {
    struct {
        double x;
        char const* text;
    } const cases[] = {
        {0, "0.0"},
        {-0.0, "-0.0"},
        {2, "2.0"},
        {0.1, "0.1"},
        {1e20, "1.0e+20"},
        {-1.5e-7, "-1.5e-07"},
        {5e-324, "5.0e-324"},
        {1e23, "1.0e+23"},  // many writers give 9.999999999999999e+22
        {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
    };
    for (auto const& c : cases) EXPECT_EQ(number_text(c.x), c.text);
}

}  // namespace
}  // namespace tvmath
