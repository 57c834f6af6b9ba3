#include "fit/fit_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>

#include "fit_cases.h"
#include "plot/canvas.h"
#include "report/number_text.h"

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

// The corners of a rectangle are on one circle, so that the text is exact.
TEST_F(Program, FitsTheRectangleWorkedByHand) {
    std::string const name = file("rectangle.csv", "x,y\n0,0\n4,0\n4,2\n0,2\n");
    ASSERT_TRUE(succeeds("fit circle --quick --tolerance 0.5 \"" + name + "\"")) << err;
    EXPECT_EQ(out, "circle  " + name +
                       "\n"
                       "  algebraic\n"
                       "  center x            2.0\n"
                       "  center y            1.0\n"
                       "  radius              2.23606797749979\n"  // sqrt 5
                       "  diameter            4.47213595499958\n"
                       "  points              4\n"
                       "  parameters          3\n"
                       "  degrees of freedom  1\n"
                       "  form error          0.0\n"
                       "  highest residual    0.0               point 4 (0.0, 2.0)\n"
                       "  lowest residual     0.0               point 1 (0.0, 0.0)\n"
                       "  profile error       0.0\n"
                       "  standard deviation  0.0\n"
                       "  rms residual        0.0\n"
                       "  tolerance           0.5               kept by the form error\n");
    EXPECT_EQ(err, "");
}

TEST_F(Program, ExitStatusTellsTheKindOfFailure) {
    std::string const good = file("good", "0,0\n4,0\n4,2\n"), bad = file("bad", "1,2\n1,b\n"),
                      few = file("few", "0,0\n1,1\n"), row = file("row", "0,0\n1,0\n2,0\n"),
                      same = file("same", "1,1\n1,1\n"), huge = file("huge", "-1e308,0\n1e308,1\n0,2\n"),
                      bent = file("bent", "0,0\n1,1\n2,0\n");
    struct {
        std::string arguments;
        int status;
        std::string err;
    } const cases[] = {
        {"fit circle " + good, 0, ""},
        {"fit line --tolerance 0.5 " + bent, 1,
         bent + ": out of tolerance: the form error 1.0 is above 0.5\n"},
        {"fit circle " + bad, 3, bad + ":2: 'b' is not a number\n"},
        {"fit circle - < " + bad, 3, "<stdin>:2: 'b' is not a number\n"},
        {"fit circle " + few, 4, few + ": a circle needs at least 3 points, not 2\n"},
        {"fit circle " + row, 4,
         row + ": no circle is determined: the points lie on one line, or are fewer than 3 different ones\n"},
        {"fit line " + same, 4,
         same + ": no line is determined: the points scatter equally in every direction, or are all equal\n"},
        {"fit circle " + huge, 4,
         huge + ": no circle is determined: the coordinates are too large or too small to calculate with\n"},
        {"fit plane " + good, 4, good + ": a plane needs points with x, y and z; these have x and y\n"},
        {"fit ellipse --center 0 0 " + few, 4, few + ": an ellipse needs at least 3 points, not 2\n"},
        {"fit transform --onto " + few + " " + good, 4,
         good + ": 3 points, but 2 of --onto; the points of both are taken in pairs\n"},
        {"fit point " + path(""), 3, path("") + ": is a folder, not a file\n"},
        {"fit circle --json " + few, 4, few + ": a circle needs at least 3 points, not 2\n"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(run(c.arguments), c.status);
        EXPECT_EQ(err, c.err);
        EXPECT_EQ(out.empty(), c.status > 1);
    }
}

TEST_F(Program, AnswersWrongUsageInOneLine) {
    std::string const f = file("points", "0,0\n4,0\n4,2\n0,2\n"), g = file("solid", "0,0,0\n4,0,1\n4,2,2\n");
    std::vector<std::string> const wrong = {
        "",
        "fit",
        "fit circle",
        "turn circle x",
        "--nonsense",
        "fit circle - -",
        "fit transform - --onto -",
        "fit cube " + f,
        "fit circle x --decimal .",
        "fit circle --parallel 1 0 " + f,
        "fit circle --center 1 " + f,
        "fit circle --center 1 nan " + f,
        "fit circle --tangent 1 2 3 " + f,
        "fit circle --center 1 2 --center 1 2 " + f,
        "fit circle --through 1 2 --center 0 0 --quick " + f,
        "fit circle --through 0 0 --through 1 0 --through 0 1 --through 2 2 " + f,
        "fit line --parallel 0 0 " + f,
        "fit line --parallel 1 1 1 1 " + f,
        "fit circle --nominal 'slot 2 1' " + f,
        "fit circle --nominal 'circle x' " + f,
        "fit circle --tolerance -1 " + f,
        "fit circle --tolerance x " + f,
        "fit open-spline --method best " + f,
        "fit transform " + f,
        "fit composite " + f,
        "fit composite --nominal 'open-data 0 0' " + f,
        "fit cylinder --center 0 0 0 " + g,
        "fit plane --center 0 0 0 --parallel 0 0 1 " + g,
        "fit sphere --center 0 0 " + g,
        "fit circle --plot picture.doc " + f,
        "fit circle --plot a.svg " + f + " " + f,
        "fit circle --residuals a.csv " + f + " " + f};
    for (std::string const& arguments : wrong) {
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
    std::string const good = file("good", "0,0\n4,0\n4,2\n");
    EXPECT_EQ(run("fit circle " + good + " --residuals " + path("no/such.csv")), 5);
    EXPECT_EQ(err, path("no/such.csv") + ": cannot be written: No such file or directory\n");
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "this system has no device that is always full";
    std::string const command =
        std::string("\"") + TVMATH_PROGRAM + "\" fit circle " + good + " > /dev/full 2> " + path("err");
    EXPECT_EQ(std::system(command.c_str()) / 256, 5);
}

// Every kind through the program: the document has the members of its schema, and the same doubles as the
// fit itself.
TEST_F(Program, JsonGivesTheSameDoublesBack) {
    for (fit_case const& c : fit_cases()) {
        fit_request const& r = c.request;
        if (std::string(c.kind) == "transform") continue;  // has its own test
        SCOPED_TRACE(c.kind);
        std::string text, options;
        for (point const& p : c.points) {
            text += number_text(p.x()) + ' ' + number_text(p.y());
            text += p.is_3d() ? ' ' + number_text(p.z()) + '\n' : "\n";
        }
        auto const add = [&options](char const* name, std::vector<std::string> const& words) {
            for (std::string const& w : words) options += std::string(name) + " '" + w + "' ";
        };
        add("--center", r.center);
        add("--through", r.through);
        add("--tangent", r.tangent);
        add("--parallel", r.parallel);
        add("--perpendicular", r.perpendicular);
        add("--nominal", r.nominal);
        if (!r.method.empty()) add("--method", {r.method});
        options += std::string(r.quick ? "--quick " : "") + (r.diameter ? "--diameter " : "");
        ASSERT_TRUE(succeeds("fit --json " + options + c.kind + " " + file("points.xyz", text))) << err;
        auto const document = nlohmann::json::parse(out);
        EXPECT_EQ(document["schema"], "tvmath.fit/2");
        auto const& result = document["results"].at(0);
        fit_result const expected = fitted(c);
        EXPECT_EQ(result["kind"], expected.kind->name);
        EXPECT_EQ(result["points"], c.points.size());
        EXPECT_EQ(result["dimension"], c.points[0].dimension());
        EXPECT_EQ(result["form_error"].get<double>(), expected.form_error);
        EXPECT_EQ(result["highest"]["index"], expected.highest.index + 1);
        EXPECT_EQ(result["lowest"]["residual"].get<double>(), expected.lowest.residual);
        EXPECT_EQ(result["iso"].is_null(), !expected.has_standard_names);
        EXPECT_EQ(result["degrees_of_freedom"].is_null(), !expected.degrees_of_freedom);
        for (figure const& f : expected.figures) {
            std::string key = f.label;
            std::replace(key.begin(), key.end(), ' ', '_');
            ASSERT_TRUE(result["feature"].contains(key)) << key;
            if (f.values.size() == 1 && f.kind != figure_kind::rows) {
                EXPECT_EQ(result["feature"][key].get<double>(), f.values[0]) << key;
            }
        }
    }
}

TEST_F(Program, ReadsTheNumbersOfAnOptionApartFromTheFiles) {
    std::string const f = file("points", "5,0\n0,5\n-5,0\n0,-5\n");
    for (char const* arguments :
         {"--center 0 0 ", "--center 0 0 --json ", "--center '0 0' ", "--center=0,0 "}) {
        EXPECT_TRUE(succeeds(std::string("fit circle ") + arguments + f)) << arguments << err;
    }
    // A parser of options takes "-5" for one in the wrong place.
    ASSERT_TRUE(succeeds("fit circle --through -5 -.0 " + f)) << err;
    EXPECT_NE(out.find("  through -5 -.0\n"), std::string::npos) << out;
}

TEST_F(Program, LeadsPointsOntoTheirTargets) {
    // Both scaled by 3 along x and moved, but for one pair that is off by a length of 4.
    std::string const from = file("from", "0,0\n1,0\n1,1\n0,1\n"), to = file("to", "5,5\n8,5\n8,10\n5,6\n");
    ASSERT_TRUE(succeeds("fit transform --json " + from + " --onto " + to)) << err;
    auto const result = nlohmann::json::parse(out)["results"][0];
    // Of four corners an affine map leaves a quarter of the twist in each.
    EXPECT_NEAR(result["highest"]["residual"].get<double>(), 1, 1e-12);
    EXPECT_NEAR(result["feature"]["scale_x"].get<double>(), std::hypot(3, 2), 1e-12);
    EXPECT_EQ(result["degrees_of_freedom"], 2);
}

TEST_F(Program, PlacesSeveralFeaturesAsOneBody) {
    // Two nominal holes at (0, 0) and (10, 0), found turned by a quarter about (3, 4).
    std::string const a = file("a", "4,4\n3,5\n2,4\n3,3\n"), b = file("b", "5,14\n3,16\n1,14\n3,12\n");
    ASSERT_TRUE(
        succeeds("fit composite --json " + a + " " + b + " --nominal 'circle 1' --nominal 'circle 2 10 0'"))
        << err;
    auto const result = nlohmann::json::parse(out)["results"][0];
    EXPECT_NEAR(result["feature"]["offset"][0].get<double>(), 3, 1e-9);
    EXPECT_NEAR(result["feature"]["offset"][1].get<double>(), 4, 1e-9);
    EXPECT_NEAR(result["feature"]["angle_deg"].get<double>(), 90, 1e-9);
    EXPECT_LT(result["form_error"].get<double>(), 1e-9);
}

TEST_F(Program, WritesResidualsAndPictures) {
    std::string const f = file("points", "0,0\n1,1\n2,0\n3,1\n"), table = path("table.csv");
    ASSERT_TRUE(succeeds("fit line --parallel 1 0 " + f + " --residuals " + table)) << err;
    EXPECT_EQ(contents(table),
              "index,x,y,residual\n1,0.0,0.0,-0.5\n2,1.0,1.0,0.5\n3,2.0,0.0,-0.5\n4,3.0,1.0,0.5\n");
    if (!is_picture_suffix(".svg")) {
        EXPECT_EQ(run("fit line " + f + " --plot " + path("p.svg")), 2);
        EXPECT_TRUE(err.ends_with(": this build makes no pictures\n")) << err;
        return;
    }
    struct {
        char const *name, *start;
    } const formats[] = {{"p.svg", "<?xml"}, {"p.png", "\x89PNG"}, {"p.pdf", "%PDF"}};
    for (auto const& format : formats) {
        ASSERT_TRUE(succeeds("fit line " + f + " --plot " + path(format.name))) << err;
        EXPECT_EQ(contents(path(format.name)).rfind(format.start, 0), 0u);
        EXPECT_GT(contents(path(format.name)).size(), 5000u);
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
