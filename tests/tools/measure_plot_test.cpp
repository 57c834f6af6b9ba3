#include <gtest/gtest.h>

#include <sstream>

#include "calibrate/corrector_file.h"
#include "files/image_file.h"
#include "fit/fit_plot.h"
#include "measure/edges/measure_checks.h"
#include "measure/picture/measure_overlay.h"
#include "measure/picture/measure_plot_parts.h"
#include "record/record_parameters.h"
#include "recording_canvas.h"
#include "support/seeded_random.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

std::shared_ptr<Geometry_Description const> record_of(std::string const& words) {
    std::istringstream in(words);
    std::vector<std::string> parameters;
    std::string kind, reason;
    in >> kind;
    for (std::string word; in >> word;) parameters.push_back(word);
    std::unique_ptr<Geometry_Description> record;
    EXPECT_TRUE(make_record(kind == "line" ? "segment" : kind, parameters, record, reason)) << reason;
    return record;
}

enum class lens { none, upright, bent };

// Features whose edge points are known, without an image to find them in.
class measured_scene {
public:
    measured_scene(unsigned int width, unsigned int height, lens l) : scene(height, width) {
        if (l != lens::none) {
            job.from_screen = transform::dilation(0.01, -0.01);
            job.unit = "mm";
        }
        any_corrector bent;
        std::string reason;
        if (l == lens::bent &&
            read_corrector_text("screen (0 (0.5 1 2 -1 3 1)(1 -2 0.5 2 1 -3) " + std::to_string(width) + ' ' +
                                    std::to_string(height) + ")",
                                bent, reason))
            job.screen = std::get<screen_corrector>(bent);
        EXPECT_EQ(job.screen.is_trivial(), l != lens::bent) << reason;
        report = {"a/scene.png", width, height, &job, {}};
    }

    // A tool; `points` on its edge in the plane of the image, none when it was not found.
    void add(std::string const& name, std::string const& words, std::vector<point> const& points) {
        measure_tool t;
        t.name = name;
        t.kind = find_fit_kind(words.substr(0, words.find(' ')));
        t.place = record_of(words);
        job.tools.push_back(t);
        points_.push_back(points);
    }
    void finish() {
        for (std::size_t i = 0; i < job.tools.size(); ++i) {
            measured_tool m;
            m.tool = &job.tools[i];
            std::vector<point> places;
            for (point const& p : points_[i]) {
                places.push_back(frame().to_result(p));
                m.edges.push_back({p, places.back(), 0, 0.5, true});
            }
            bool is_usage = false;
            fit_conditions known;
            if (m.tool->nominal) known.nominal = {m.tool->nominal};
            fit_result fit;
            if (places.empty()) {
                m.reason = "an edge was found at 0 of 30 places";
            } else if (fit_feature(*m.tool->kind, places, {places.size()}, known, fit, m.reason, is_usage)) {
                m.fit = fit;
                m.checks = check_limits(*m.tool, fit);
                m.edges.push_back({points_[i][0] + point(false, 3, 4), places[0], 0, 0.5, false});
            }
            report.tools.push_back(m);
        }
    }
    measure_frame frame() const { return {job, report.width, report.height}; }

    image scene;
    measure_job job;
    measure_report report;

private:
    std::vector<std::vector<point>> points_;
};

point at(double x, double y) {
    return point(true, x, y);
}

// A circle with three waves.
std::vector<point> wavy_circle(double radius, double x, double y, double wave, int n = 36) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) {
        double const t = 2 * pi * i / n, r = radius + wave * std::cos(3 * t);
        points.push_back(at(x + r * std::cos(t), y + r * std::sin(t)));
    }
    return points;
}

std::vector<point> wavy_line(double length, double x, double y, double wave) {
    std::vector<point> points;
    for (int i = 0; i < 24; ++i)
        points.push_back(at(x + length * i / 23, y + 0.5 * length * i / 23 + (i % 2 == 0 ? wave : -wave)));
    return points;
}

double length(spot a) {
    return std::hypot(a.x, a.y);
}

TEST(MeasurePlot, WhiskersLeadFromTheFeatureThroughThePoint) {
    for (lens const l : {lens::none, lens::upright, lens::bent}) {
        for (double const wave : {0.02, 0.3, 2.5}) {
            measured_scene s(640, 480, l);
            s.add("c", "circle 100 300 200", wavy_circle(100, 300, 200, wave));
            s.add("l", "line 20 30 520 280", wavy_line(500, 20, 30, wave));
            s.finish();
            measure_drawing const d = make_measure_drawing(s.frame(), s.report, 30);
            for (drawn_feature const& f : d.features) {
                ASSERT_EQ(f.state, verdict::without_limits);
                outline_finder const drawn(f.outlines);
                for (drawn_edge const& e : f.edges) {
                    spot const end = e.kept ? e.foot + e.away - e.at : e.away;
                    EXPECT_NEAR(length(end), 0, 2e-4 * (1 + wave));
                    if (e.kept) {
                        EXPECT_NEAR(drawn.nearest(e.foot).distance, 0, 0.1);
                    }
                }
            }
            // The image of a circle through the lens leaves the circle, so its residuals are known without
            // one.
            if (l == lens::bent) continue;
            drawn_edge const& first = d.features[0].edges[0];
            EXPECT_NEAR(d.tip(first).x, 400 + d.factor * wave, 1e-3 * d.factor * wave);
            double const digit = d.factor / std::pow(10, std::floor(std::log10(d.factor) + 1e-9));
            EXPECT_TRUE(std::fabs(digit - 1) < 1e-9 || std::fabs(digit - 2) < 1e-9 ||
                        std::fabs(digit - 5) < 1e-9)
                << d.factor;
            EXPECT_LE(d.longest, 30 * (1 + 1e-9));
            EXPECT_GT(d.longest, 30 / 2.5);
        }
    }
}

TEST(MeasurePlot, HugeFeaturesAndExactOnesAreDrawnWithoutHarm) {
    measured_scene s(200, 100, lens::bent);
    std::vector<point> nearly_straight;
    for (double x = 0; x <= 200; x += 5) nearly_straight.push_back(at(x, 50 + x * x / 2e7));
    s.add("far", "circle 1e7 0 1e7", nearly_straight);
    s.add("exact", "circle 10 50 50", wavy_circle(10, 50, 50, 0));
    s.finish();
    recording_canvas c;
    measure_page const page = make_measure_page(s.frame(), s.report);
    draw_measure_page(c, s.scene, s.frame(), s.report, page);
    c.expect_readable(fit_page_width, page.height);
    for (spot const& p : c.lines) ASSERT_LT(length(p), 1e5);
}

// Bitmaps count rows from the bottom and pictures from the top; green and red differ in their grey.
TEST(MeasurePlot, OverlayHasTheFeaturesInTheirPlaces) {
    measured_scene s(90, 60, lens::upright);
    s.add("good", "circle 12 20 18", wavy_circle(12, 20, 18, 0, 6));
    s.add("bad", "circle 12 70 22", wavy_circle(12, 70, 22, 0, 6));
    s.job.tools[1].limits = {{"form", -2, -1}};
    s.finish();
    std::string const png = overlay_png(s.scene, s.frame(), s.report);
    if (png.empty()) GTEST_SKIP() << "this build makes no PNG";
    std::istringstream in(png);
    image drawn;
    std::string reason;
    ASSERT_TRUE(read_image(in, drawn, reason)) << reason;
    ASSERT_EQ(matrix::rows(drawn), 60u);
    ASSERT_EQ(matrix::cols(drawn), 90u);
    // The brightest pixel within a pixel of the place.
    auto const grey = [&drawn](double x, double y) {
        double most = 0;
        for (int i = 0; i < 9; ++i)
            most = std::max(
                most,
                drawn[static_cast<unsigned int>(y + i / 3 - 1)][static_cast<unsigned int>(x + i % 3 - 1)]);
        return most;
    };
    for (double const t : {0.5, 1.6, 2.6, 3.7, 5.7}) {  // away from the points, which have crosses
        double const x = 12 * std::cos(t), y = 12 * std::sin(t);
        EXPECT_NEAR(grey(20 + x, 18 + y), 0.61, 0.01) << t;  // 0.7152 of 210 / 255, and some blue
        EXPECT_NEAR(grey(70 + x, 22 + y), 0.34, 0.01) << t;  // 0.2126, and 40 / 255 of the others
        EXPECT_EQ(grey(20 + 0.7 * x, 18 + 0.7 * y), 0);
        EXPECT_EQ(grey(20 + x, 50 + 0.4 * y), 0);
    }
}

TEST(MeasurePlot, RowsSayWhatFailedAndTheRestIsSummedUp) {
    measured_scene s(1000, 800, lens::upright);
    for (int i = 0; i < 25; ++i) {
        double const x = 80 + 130 * (i % 5), y = 80 + 130 * (i / 5);
        std::string const words = "circle 40 " + std::to_string(x) + ' ' + std::to_string(y);
        s.add("hole " + std::to_string(i + 1), words,
              i == 23 ? std::vector<point>() : wavy_circle(40, x, y, 0.01));
        measure_tool& t = s.job.tools.back();
        t.nominal = record_of("circle 0.4 " + std::to_string((x - 500) * 0.01) + ' ' +
                              std::to_string((400 - y) * 0.01));
        t.limits = {{"diameter", -0.005, 0.005}, {"center", 0, 0.003}};
    }
    s.job.tools[22].nominal = record_of("circle 0.39 -1.6 -2");
    s.finish();
    measure_sheet const sheet = make_measure_sheet(s.report, s.frame().pixel_length());
    EXPECT_EQ(sheet.summary, "23 of 25 pass, 1 not measured");
    EXPECT_EQ(sheet.failing, "hole 23, hole 24 fail");
    EXPECT_EQ(sheet.rest, "and 5 more, all pass");
    ASSERT_EQ(sheet.rows.size(), 20u);
    EXPECT_EQ(sheet.rows[0].name, "hole 23");
    EXPECT_EQ(sheet.rows[0].what, "diameter");
    EXPECT_EQ(sheet.rows[0].measured, "0.80000");
    EXPECT_EQ(sheet.rows[0].nominal, "0.78000");
    EXPECT_EQ(sheet.rows[0].deviation, "+0.02000");
    EXPECT_EQ(sheet.rows[0].tolerance, "\u00b1 0.005");
    EXPECT_EQ(sheet.rows[0].form, "0.00020");  // twice the wave of 0.01 pixel
    EXPECT_EQ(sheet.rows[0].verdict, "FAIL");
    EXPECT_EQ(sheet.rows[1].verdict, "NOT MEASURED");
    EXPECT_EQ(sheet.rows[1].reason, "an edge was found at 0 of 30 places");
    EXPECT_EQ(sheet.rows[2].name, "hole 1");
    EXPECT_EQ(sheet.rows[2].verdict, "PASS");
}

// Names stay in the image and clear of each other, and so does all else on the page.
TEST(MeasurePlot, PagesAreReadable) {
    seeded_random random(5);
    for (int trial = 0; trial < 24; ++trial) {
        SCOPED_TRACE(trial);
        unsigned int const width = 60 + random.below(2000), height = 60 + random.below(1500);
        measured_scene s(width, height, static_cast<lens>(trial % 3));
        if (trial % 8 == 5)
            s.job.from_screen = transform::dilation(1e-9) * transform(1e4, -1e5);  // long numbers
        std::size_t const count = 1 + random.below(trial % 4 == 0 ? 120 : 30);
        for (std::size_t i = 0; i < count; ++i) {
            double const r = random.uniform(6, 0.2 * std::min(width, height)), x = random.uniform(0, width),
                         y = random.uniform(0, height);
            std::string const name =
                random.coin()
                    ? "b" + std::to_string(i)
                    : "gr\u00f6\u00dfte \u00d6\u00d6\u00d6\u00d6\u00d6\u00d6\u00d6\u00d6 Bohrung links";
            bool const is_line = random.below(3) == 0, is_found = random.below(5) != 0;
            std::string const end = ' ' + std::to_string(x) + ' ' + std::to_string(y);
            std::vector<point> points = is_line ? wavy_line(r, x, y, 0.1) : wavy_circle(r, x, y, 0.1);
            if (!is_found) points.clear();
            s.add(name, is_line ? "line 3 4" + end : "circle " + std::to_string(r) + end, points);
            measure_tool& t = s.job.tools.back();
            if (random.coin()) t.nominal = record_of(is_line ? "line 0 0 1 1" : "circle 1 2 3");
            if (t.nominal && !is_line)
                t.limits = {{"radius", -0.1, 0.1}, {"center", 0, random.uniform(1, 10)}};
            if (random.coin()) t.limits.push_back({"form", 0, 0.001});
        }
        s.finish();
        recording_canvas c;
        measure_page const page = make_measure_page(s.frame(), s.report);
        draw_measure_page(c, s.scene, s.frame(), s.report, page);
        c.expect_readable(fit_page_width, page.height);
        double const w = c.photo.width, h = c.photo.height;
        EXPECT_TRUE(w <= 1600 && h <= 1600 && w * h == static_cast<double>(c.photo.grey.size()));
    }
}

TEST(MeasurePlot, WritesPicturesOfAllKinds) {
    measured_scene s(300, 200, lens::upright);
    seeded_random random(1);
    for (unsigned int y = 0; y < 200; ++y) {
        for (unsigned int x = 0; x < 300; ++x) s.scene(y)(x) = random.unit();
    }
    // Too long a name is cut between characters, or no picture comes out.
    std::string name = "hole";
    for (int i = 0; i < 40; ++i) name += "\u00d6";
    s.add(name, "circle 40 100 90", wavy_circle(40, 100, 90, 0.1));
    s.finish();
    for (auto const& [suffix, start] : {std::pair{".svg", "<?xml"}, {".png", "\x89PNG"}, {".pdf", "%PDF"}}) {
        std::string const bytes = measure_plot(s.scene, s.frame(), s.report, suffix);
        EXPECT_EQ(bytes.empty(), !is_picture_suffix(suffix));
        if (bytes.empty()) continue;
        EXPECT_EQ(bytes.compare(0, 4, start, 4), 0);
        // Bytes 24 to 26 of the PNG within: 8 bits, grey, deflated.
        std::string const data = "data:image/png;base64,";
        std::size_t const from = bytes.find(data);
        EXPECT_EQ(from == std::string::npos, bytes[0] != '<');
        if (bytes[0] == '<') {
            EXPECT_EQ(bytes.substr(from + data.size() + 32, 4), "CAAA");
        }
    }
}

}  // namespace
}  // namespace tvmath
