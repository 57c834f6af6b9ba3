#include "measure/job/measure_job.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "calibrate/corrector_file.h"
#include "record/record_file.h"
#include "record/record_parameters.h"
#include "record_files.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using json = nlohmann::json;

char const* const whole_job = R"({
  "schema": "tvmath.job/1", "unit": "mm", "pixel": [0.01, -0.02],
  "screen": "lens.txt", "flatness": "focus.txt", "z": -3,
  "search": 9, "edge": "rising", "outliers": 0,
  "tools": [
    {"name": "bore", "feature": "circle 150 640 512", "search": 8, "contrast": 0.2, "edge": "falling",
     "nominal": "circle 1.5 1 2", "tolerance": {"form": 0.005, "radius": 0.004, "center": 0.01,
     "diameter": [-0.01, 0.02]}},
    {"feature": "line 1 2 30 40", "nominal": "line 0 0 1 1", "tolerance": {"angle_deg": 0.5}},
    {"feature": "arc 10 0 90deg 50 60"}, {"feature": "rectangle 10 20 0 50 60"},
    {"feature": "slot 10 5 0.1 50 60", "nominal": "slot 4 2", "tolerance": {"end_radius": 1, "profile": 2}},
    {"feature": "point 7 8 -90deg", "nominal": "point 1 2", "tolerance": {"center": 3}},
    {"feature": "circle 5 6 7", "spacing": 20}]})";

class MeasureJob : public testing::Test {
protected:
    record_folder folder;
    measure_job job;
    std::string reason;

    MeasureJob() {
        folder.write("lens.txt", "screen (0 (1 2 3)(0 0 0) 640 480)");
        folder.write("focus.txt", "flatness (0 (1000 0 0 2000 0 0) 640 480 0)");
    }

    exit_status read_text(std::string const& text) {
        reason.clear();
        return read_job({.config = folder.write("job.json", text)}, job, reason);
    }

    // That `text` is no job for this reason, without the name of the file.
    void expect_wrong(std::string const& text, std::string const& why) {
        SCOPED_TRACE(text.substr(0, 300));
        job.unit = "untouched";
        EXPECT_EQ(read_text(text), exit_status::unreadable_input);
        std::string const name = folder.path("job.json");
        EXPECT_EQ(reason.substr(0, name.size() + why.size()), name + why);
        EXPECT_EQ(reason.find('\n'), std::string::npos);
        EXPECT_EQ(job.unit, "untouched");
    }
};

TEST_F(MeasureJob, ReadsWhatAJobSays) {
    ASSERT_EQ(read_text(whole_job), exit_status::done) << reason;
    EXPECT_EQ(job.unit, "mm");
    EXPECT_EQ(job.z, -3);
    EXPECT_FALSE(job.screen.is_trivial() || job.flatness.is_trivial());
    EXPECT_NEAR(job.pixel_length(), std::sqrt(2e-4), 1e-17);
    point const seen = point(true, 100, 100) * *job.from_screen;
    EXPECT_NEAR(distance2d(seen, point(true, 1, -2)), 0, 1e-15);

    std::string names;
    for (measure_tool const& tool : job.tools) names += tool.name + ", ";
    EXPECT_EQ(names, "bore, line 1, arc 1, rectangle 1, slot 1, point 1, circle 2, ");
    measure_tool const &bore = job.tools[0], &last = job.tools[6];
    EXPECT_EQ(dynamic_cast<Circle_Description const&>(*bore.place).geometry.radius(), 150);
    EXPECT_EQ(dynamic_cast<Circle_Description const&>(*bore.nominal).geometry.radius(), 1.5);
    EXPECT_TRUE(bore.edges.search == 8 && bore.edges.spacing == 12 && bore.edges.contrast == 0.2 &&
                bore.edges.outliers == 0 && bore.edges.sense == edge_sense::falling);
    EXPECT_TRUE(last.edges.search == 9 && last.edges.spacing == 20 && last.edges.contrast == 0.03 &&
                last.edges.sense == edge_sense::rising && !last.nominal);
    EXPECT_DOUBLE_EQ(job.tools[5].angle.value(), -std::acos(0.0));
    EXPECT_EQ(dynamic_cast<Point_Description const&>(*job.tools[5].place).position.dimension(), 2u);

    std::string limits;
    for (measure_tool const& tool : job.tools) {
        for (auto const& l : tool.limits) limits += l.figure + json({l.lower, l.upper}).dump() + ' ';
    }
    EXPECT_EQ(limits,
              "center[0.0,0.01] diameter[-0.01,0.02] form[0.0,0.005] radius[-0.004,0.004] "
              "angle_deg[-0.5,0.5] end_radius[-1.0,1.0] profile[0.0,2.0] center[0.0,3.0] ");
}

TEST_F(MeasureJob, ShortFormSaysTheSameAsAJob) {
    std::string const lens = folder.path("lens.txt");
    measure_request const request{.feature = "slot 40 9 30deg 50 60",
                                  .search = "7",
                                  .edge = "falling",
                                  .outliers = "0",
                                  .nominal = "slot 4 1",
                                  .tolerance = "0.1,width=-1:2,angle_deg=3",
                                  .pixel = "0.1 -0.1",
                                  .screen = lens,
                                  .z = "2",
                                  .unit = "um"};
    ASSERT_EQ(read_job(request, job, reason), exit_status::done) << reason;
    measure_job const other = job;
    json const document = {{"schema", "tvmath.job/1"},
                           {"pixel", {0.1, -0.1}},
                           {"screen", lens},
                           {"z", 2},
                           {"unit", "um"},
                           {"search", 7},
                           {"edge", "falling"},
                           {"outliers", 0},
                           {"tools",
                            {{{"feature", request.feature},
                              {"nominal", request.nominal},
                              {"tolerance", {{"form", 0.1}, {"width", {-1, 2}}, {"angle_deg", 3}}}}}}};
    ASSERT_EQ(read_text(document.dump()), exit_status::done) << reason;
    auto const said = [](measure_job const& j) {
        measure_tool const& t = j.tools.at(0);
        json limits;
        for (auto const& l : t.limits) limits.push_back({l.figure, l.lower, l.upper});
        return json({j.unit, j.pixel_length(), *j.z, corrector_text(j.screen), t.name, t.words,
                     t.nominal_words, t.edges.search, t.edges.spacing, t.edges.contrast, t.edges.outliers,
                     static_cast<int>(t.edges.sense), limits})
            .dump();
    };
    EXPECT_EQ(said(job), said(other));
}

TEST_F(MeasureJob, SaysWhereAJobIsWrong) {
    // Patches of the whole job and of its tool "bore"; null takes a key away.
    std::pair<char const*, char const*> const of_job[] = {
        {R"({"schema": null})", ": schema: is missing"},
        {R"({"schema": "tvmath.job/2"})", ": schema: 'tvmath.job/2' is not"},
        {R"({"serch": 9})", ": there is no key 'serch'"},
        {R"({"pixel": [0.1, 0]})", ": pixel: is one or two numbers other than 0"},
        {R"({"pixel": [0.1, 0.1, 1]})", ": pixel: must be a number or a list of two"},
        {R"({"transform": "way.txt"})", ": transform: goes without pixel"},
        {R"({"screen": "focus.txt"})", ": screen: "},
        {R"({"flatness": "-"})", ": flatness: "},
        {R"({"z": null})", ": flatness: corrects the height"},
        {R"({"z": "2"})", ": z: must be a number"},
        {R"({"unit": "a\nb"})", ": unit: must be printable text"},
        {R"({"search": 501})", ": search: 501 is not from 2 to 500"},
        {R"({"outliers": 1.5})", ": outliers: 1.5 is not from 2 to 100, or 0"},
        {R"({"edge": "up"})", ": edge: 'up' is none of"},
        {R"({"tools": []})", ": tools: must be a list"},
        {R"({"tools": [3]})", ": tools[0]: must be an object"},
        {R"({"tools": [{"feature": "point 1 2"}, {}]})", ": tools[1]: feature: is missing"},
        {R"({"tools": [{"feature": "point 1 2", "name": "point 2"}, {"feature": "point 1 2"}]})",
         ": tools[1]: name: 'point 2' is also that of tools[0]"}};
    for (auto const& [patch, why] : of_job) {
        json document = json::parse(whole_job);
        document.merge_patch(json::parse(patch));
        expect_wrong(document.dump(), why);
    }
    std::pair<char const*, char const*> const of_bore[] = {
        {R"({"colour": 1})", "there is no key 'colour'"},
        {R"({"feature": "ellipse 1 2 3 4 5"})", "feature: 'ellipse' is no feature"},
        {R"({"feature": "circle 80"})", "feature: circle takes RADIUS X Y"},
        {R"({"feature": "circle 0 5 5"})", "feature: a circle needs a radius above 0"},
        {R"({"feature": "arc 9 0 361deg 5 5"})", "feature: an arc needs"},
        {R"({"feature": "slot 5 5 0 9 9"})", "feature: a slot needs"},
        {R"({"feature": "line 1 2 1 2"})", "feature: a line needs two different ends"},
        {R"({"feature": "circle 9 1e6 5"})", "feature: lies or reaches farther"},
        {R"({"feature": "circle inf 1 5"})", "feature: 'inf' is not a number"},
        {R"({"nominal": "line 0 0 1 1"})", "nominal: a line is not the nominal feature of a circle"},
        {R"({"nominal": "circle -2"})", "nominal: a circle needs a radius above 0"},
        {R"({"nominal": null})", "tolerance: 'center': only a nominal feature has it"},
        {R"({"tolerance": 0.1})", "tolerance: must be an object"},
        {R"({"tolerance": {"width": 1}})",
         "tolerance: 'width': a circle has none; it has center, radius, diameter"},
        {R"({"tolerance": {"radius": -1}})", "tolerance: 'radius': takes a number of at least 0"},
        {R"({"tolerance": {"radius": [1, -1]}})", "tolerance: 'radius': takes a number of at least 0"},
        {R"({"tolerance": {"center": [0, 1]}})", "tolerance: 'center': takes one number"},
        {R"({"tolerance": {"form": true}})", "tolerance: 'form': must be a number"}};
    for (auto const& [patch, why] : of_bore) {
        json document = json::parse(whole_job);
        document["tools"][0].merge_patch(json::parse(patch));
        expect_wrong(document.dump(), std::string(": tools[0] 'bore': ") + why);
    }
    expect_wrong(
        R"({"schema": "tvmath.job/1", "tools": [{"feature": "point 1 2", "tolerance": {"form": 1}}]})",
        ": tools[0]: tolerance: 'form': a point has none");
}

TEST_F(MeasureJob, SaysWhereTheTextIsNoJson) {
    std::pair<std::string, char const*> const cases[] = {
        {"{\n \"z\": 1,\n}", ":3:1: unexpected '}'"},
        {"{\"z\": 1 // height\n}", ":1:9: invalid literal"},
        {"{\n\"z\": 1,\n \"z\": 2}", ":3:4: the key 'z' stands here twice"},
        {"{\"z\": 1e999}", ":1:12: number overflow"},
        {"{\"z\": \"" + std::string(100'000, 'x'), ":1:100007: invalid string: missing closing quote"},
        {std::string(5'000'000, '['), ":1:17: is nested too deep"},
        {std::string("{}\0{}", 5), ":1:3: has a byte 0"},
        {"{} {}", ":1:4: unexpected '{'; expected end of input"},
        {"", ": is empty"}};
    for (auto const& [text, why] : cases) expect_wrong(text, why);
}

// Whatever happens to its bytes, a job is read or refused in one printable line.
TEST_F(MeasureJob, SurvivesDamage) {
    seeded_random random(9);
    auto const below = [&random](std::size_t n) { return random.below(static_cast<unsigned int>(n)); };
    int refused = 0;
    for (int trial = 0; trial < 300; ++trial) {
        std::string text = whole_job;
        for (unsigned int n = below(3) + 1; n > 0; --n) {
            unsigned int const at = below(text.size() - 1);
            if (n % 2)
                text[at] = text[below(text.size())];
            else
                text.erase(at, below(8));
        }
        exit_status const status = read_text(text);
        refused += status == exit_status::unreadable_input;
        ASSERT_EQ(status == exit_status::done, reason.empty()) << text;
        for (char const c : reason) ASSERT_TRUE(c < '\0' || c >= ' ') << reason;
    }
    EXPECT_GT(refused, 150);
}

TEST_F(MeasureJob, RefusesWrongOptionsInOneLine) {
    struct {
        measure_request request;
        exit_status status;
        char const* why;
    } const cases[] = {{{}, exit_status::wrong_usage, "tvmath: say what to measure"},
                       {{.feature = "point 1 2", .config = "job.json"},
                        exit_status::wrong_usage,
                        "tvmath: FEATURE and --config"},
                       {{.config = "job.json", .search = "3"},
                        exit_status::wrong_usage,
                        "tvmath: --search goes with a FEATURE"},
                       {{.image = "-", .config = "-"},
                        exit_status::wrong_usage,
                        "tvmath: standard input (-) can be read only once"},
                       {{.feature = "circle 1 2"}, exit_status::wrong_usage, "tvmath: FEATURE: circle takes"},
                       {{.feature = "point 1 2", .search = "a"},
                        exit_status::wrong_usage,
                        "tvmath: --search: 'a' is not a number"},
                       {{.feature = "point 1 2", .search = "3 4"},
                        exit_status::wrong_usage,
                        "tvmath: --search: must be a number"},
                       {{.feature = "circle 1 2 3", .tolerance = "form=1,form=2"},
                        exit_status::wrong_usage,
                        "tvmath: --tolerance: 'form' stands there twice"},
                       {{.feature = "circle 1 2 3", .tolerance = "radius=1"},
                        exit_status::wrong_usage,
                        "tvmath: --tolerance: 'radius': only a nominal"},
                       {{.feature = "point 1 2", .transform_file = "way.xml"},
                        exit_status::unreadable_input,
                        "way.xml: a transform is read as text"},
                       {{.feature = "point 1 2", .screen = "gone.txt"},
                        exit_status::unreadable_input,
                        "gone.txt: cannot be opened"}};
    for (auto const& c : cases) {
        EXPECT_EQ(read_job(c.request, job, reason), c.status) << c.why;
        EXPECT_TRUE(reason.starts_with(c.why)) << reason;
    }
}

// The area of a pixel does not change when it is turned, mirrored or sheared, at any scale.
TEST_F(MeasureJob, LengthOfAPixelIsTheRootOfItsArea) {
    for (double const scale : {1e-200, 1.0, 1e200}) {
        measure_job turned;
        turned.from_screen = transform::dilation(4 * scale, -9 * scale, 1).rotate(0.7).translate(5, 6);
        EXPECT_NEAR(turned.pixel_length() / scale, 6, 1e-14);
    }
    std::unique_ptr<Geometry_Description> turned;
    std::string text;
    ASSERT_TRUE(make_record("transform", {"5", "6", "0", "4", "-9"}, turned, reason)) << reason;
    ASSERT_EQ(record_bytes(*turned, file_form::text, {}, text, reason), exit_status::done) << reason;
    measure_request const request{.feature = "point 1 2", .transform_file = folder.write("way.txt", text)};
    ASSERT_EQ(read_job(request, job, reason), exit_status::done) << reason;
    EXPECT_DOUBLE_EQ(job.pixel_length(), 6);
    EXPECT_EQ(job.unit, "");
}

}  // namespace
}  // namespace tvmath
