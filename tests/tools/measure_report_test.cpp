#include "measure/report/measure_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "measure/edges/measure_checks.h"
#include "measure/report/measure_rows.h"
#include "record/record_text.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

using places = std::vector<point>;

point at(double x, double y) {
    return point(true, x, y);
}

// A job whose tools were measured by hand. Not copied, because reports point into it.
struct bench {
    measure_job job;
    measure_report report;

    bench() {
        job.tools.reserve(1000);
        job.unit = "mm";
        job.from_screen = make_transform(at(0, 0), point(false, 0.01, 0), point(false, 0, -0.01));
        report.image = "plate.png";
        report.width = 1280;
        report.height = 1024;
        report.job = &job;
    }

    measured_tool& add(std::string const& name, std::string const& kind,
                       std::shared_ptr<Geometry_Description const> nominal = nullptr,
                       std::vector<tolerance_limit> const& limits = {}) {
        measure_tool& tool = job.tools.emplace_back();
        tool.name = name;
        tool.kind = find_fit_kind(kind);
        tool.words = kind + " in pixels";
        tool.nominal = std::move(nominal);
        tool.nominal_words = "nominal words";
        tool.limits = limits;
        measured_tool& measured = report.tools.emplace_back();
        measured.tool = &tool;
        return measured;
    }

    // Fits as measuring does: a last point that is dropped lies a unit off.
    static void fit(measured_tool& measured, places const& points, std::size_t stations, bool drop) {
        fit_conditions known;
        if (measured.tool->nominal) known.nominal = {measured.tool->nominal};
        std::string reason;
        bool is_usage = false;
        fit_result fit;
        ASSERT_TRUE(fit_feature(*measured.tool->kind, points, {points.size()}, known, fit, reason, is_usage));
        for (std::size_t i = 0; i < points.size(); ++i)
            measured.edges.push_back({at(640, 512), points[i], fit.residuals[i], 0.5, true});
        if (drop) measured.edges.push_back({at(1, 2.5), at(3, 4), 1.25, -0.25, false});
        measured.stations = stations;
        measured.checks = check_limits(*measured.tool, fit);
        measured.fit = fit;
    }
};

std::string text_of(measure_report const& report) {
    std::ostringstream out;
    write_text(out, report);
    return out.str();
}

// Every second of the 8 points 0.001 outside, the others inside: by symmetry the parameters are those of
// least squares, and the standard deviation is 0.001 sqrt(8 / 5).
places circle_points(double x, double y, double radius) {
    places points;
    for (int k = 0; k < 8; ++k) {
        double const r = radius + (k % 2 == 0 ? 0.001 : -0.001), angle = k * pi / 4;
        points.push_back(at(x + r * std::cos(angle), y + r * std::sin(angle)));
    }
    return points;
}

std::shared_ptr<Geometry_Description const> circle_of(double radius, point const& center) {
    auto record = std::make_shared<Circle_Description>();
    record->geometry = circle(radius, center);
    return record;
}

std::shared_ptr<Geometry_Description const> nominal_line() {
    auto record = std::make_shared<Segment_Description>();
    record->geometry = line(at(0, 0), at(100, 0));
    return record;
}

// One tool of each verdict.
void fill(bench& b) {
    b.fit(b.add("bore", "circle", circle_of(1.5, at(0, 0)),
                {{"radius", -0.003, 0.003}, {"center", 0, 0.01}, {"form", 0, 0.005}, {"profile", 0, 0.02}}),
          circle_points(0.004, -0.003, 1.5030004), 10, true);
    b.fit(b.add("k\u00e4nt\u00e9, 1", "line", nominal_line(), {{"angle_deg", -0.25, 1}}),
          {at(0, 0), at(50, 0.5), at(100, 1)}, 3, false);
    b.fit(b.add("rim", "line"), {at(0, 0), at(1, 1), at(2, 2)}, 3, false);
    b.add("slot 3", "slot").reason = "an edge was found at 2 of 40 places; a slot needs 5";
}

TEST(MeasureReport, ShowsEachFeatureBesideItsNominalOneAndItsLimits) {
    bench b;
    fill(b);
    EXPECT_EQ(text_of(b.report), R"(plate.png  1280 x 1024 pixels of 0.01 mm

bore  circle                                                         FAIL
                      measured   nominal   deviation      tolerance
  center x             0.00400   0.00000  +0.00400
  center y            -0.00300   0.00000  -0.00300
  center offset                            0.00500            0.01   pass
  radius               1.50300   1.50000  +0.0030004  -0.003 +0.003  FAIL
  diameter             3.00600   3.00000  +0.00600
  roundness RONt       0.00200                                0.005  pass
  profile to nominal   0.01601                                0.02   pass
  standard deviation   0.00126
  9 edge points at 10 places, 1 dropped as an outlier, 1.25000 off

känté, 1  line                                                       PASS
                      measured   nominal   deviation      tolerance
  center x            50.00000  50.00000   0.00000
  center y             0.50000   0.00000  +0.50000
  angle deg            0.5729    0.0000   +0.5729     -0.25  +1.0    pass
  straightness STRt    0.00000
  profile to nominal   2.00000
  standard deviation   0.00000
  3 edge points at 3 places

rim  line
  center x             1.00000
  center y             1.00000
  angle deg           45.0000
  straightness STRt    0.00000
  profile error        0.00000
  standard deviation   0.00000
  3 edge points at 3 places

slot 3  slot  not measured: an edge was found at 2 of 40 places; a slot needs 5

4 features: 1 passes, 1 fails (bore), 1 without limits, 1 not measured (slot 3)
)");
}

// Hundreds of tools, numbers of many digits: nothing is wider than a line.
TEST(MeasureReport, StaysNarrow) {
    bench b;
    b.job.from_screen.reset();
    b.job.unit = "px";
    b.job.z = 0.5;
    std::shared_ptr<Geometry_Description const> const nominal = circle_of(1.5, at(123456.7, 0));
    for (int i = 0; i < 300; ++i) {
        b.fit(
            b.add("hole of the outer row " + std::to_string(i), "circle", nominal, {{"radius", -0.0125, 1}}),
            circle_points(123456.7, 0.5, i % 2 == 0 ? 1.51 : 1.47), 8, false);
        b.add("slot " + std::to_string(i), "slot").reason = "no edge";
    }
    std::istringstream lines(text_of(b.report));
    std::string line, last;
    std::getline(lines, line);
    EXPECT_EQ(line, "plate.png  1280 x 1024 pixels, at z 0.5");
    for (; std::getline(lines, line); last = line) EXPECT_LE(line.size(), 100u) << line;
    EXPECT_EQ(last,
              "600 features: 150 pass, 150 fail (hole of the outer row 1 and 149 more), 300 not measured");
}

TEST(MeasureReport, KeepsThousandthsOfAPixel) {
    struct {
        double pixel_length;
        int decimals;
    } const cases[] = {{1, 3}, {0.01, 5}, {0.005, 5}, {0.0049, 6}, {2.5, 3}, {1000, 0}, {1e-12, 12}, {0, 12}};
    for (auto const& c : cases) EXPECT_EQ(decimals_for(c.pixel_length), c.decimals) << c.pixel_length;
}

TEST(MeasureReport, TellsProgramsAllDigits) {
    bench b;
    fill(b);
    std::ostringstream out;
    write_json(out, b.report);
    auto const document = nlohmann::json::parse(out.str());
    EXPECT_EQ(document["schema"], "tvmath.measure/1");
    EXPECT_EQ(document["pixel_length"], 0.01);
    EXPECT_EQ(document["counts"].dump(),
              R"({"failed":1,"features":4,"not_measured":1,"passed":1,"without_limits":1})");
    auto const& tools = document["tools"];
    // What passed, per tool and in all.
    EXPECT_EQ(document["passed"], false);
    EXPECT_EQ(tools[0]["passed"], false);
    EXPECT_EQ(tools[1]["passed"], true);
    EXPECT_TRUE(tools[2]["passed"].is_null());
    EXPECT_EQ(tools[3]["passed"], false);

    EXPECT_NEAR(tools[0]["standard_deviation"].get<double>(), 0.001 * std::sqrt(1.6), 1e-15);
    EXPECT_NEAR(tools[0]["feature"]["radius"].get<double>(), 1.5030004, 1e-15);
    EXPECT_EQ(tools[0]["nominal"]["figures"]["radius"], 1.5);
    EXPECT_EQ(tools[0]["dropped"], 1);
    EXPECT_EQ(tools[0]["farthest_dropped"], 1.25);
    EXPECT_EQ(tools[0]["checks"][1]["figure"], "center");
    EXPECT_NEAR(tools[0]["checks"][1]["value"].get<double>(), 0.005, 1e-15);
    EXPECT_EQ(tools[3]["reason"], "an edge was found at 2 of 40 places; a slot needs 5");
    EXPECT_TRUE(tools[3]["feature"].is_null() && tools[3]["record"].is_null());

    std::shared_ptr<Geometry_Description> record;
    std::string reason;
    ASSERT_TRUE(read_record_text(tools[0]["record"], 0, record, reason)) << reason;
    EXPECT_NEAR(dynamic_cast<Circle_Description&>(*record).geometry.radius(), 1.503, 1e-6);
}

TEST(MeasureReport, TablesHaveARowForEachEdgeAndForEachFeature) {
    bench b;
    b.fit(b.add("a \"b\", c", "point"), {at(-1.5, 2)}, 1, true);
    b.add("slot 3", "slot").reason = "no edge";
    EXPECT_EQ(edge_table(b.report),
              "tool,index,image_x,image_y,x,y,residual,contrast,kept\n"
              "\"a \"\"b\"\", c\",1,640.0,512.0,-1.5,2.0,0.0,0.5,1\n"
              "\"a \"\"b\"\", c\",2,1.0,2.5,3.0,4.0,1.25,-0.25,0\n");
    EXPECT_EQ(record_table(b.report), "a \"b\", c\tpoint (-1.5 2 0)\n");
}

}  // namespace
}  // namespace tvmath
