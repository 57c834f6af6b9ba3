#include "measure/edges/measure_result.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "imaging/rendered_scene.h"
#include "measure/edges/measure_frame.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

// Signed distances, positive inside, of shapes that lie turned by `angle` about (x, y).

struct box_edge {
    double x, y, angle, half_width, half_height;
    double operator()(double px, double py) const {
        double const u = (px - x) * std::cos(angle) + (py - y) * std::sin(angle);
        double const v = (py - y) * std::cos(angle) - (px - x) * std::sin(angle);
        double const a = std::fabs(u) - half_width, b = std::fabs(v) - half_height;
        return a > 0 && b > 0 ? -std::hypot(a, b) : -std::max(a, b);
    }
};

struct slot_edge {
    double x, y, angle, half_length, half_width;
    double operator()(double px, double py) const {
        double const u = (px - x) * std::cos(angle) + (py - y) * std::sin(angle);
        double const v = (py - y) * std::cos(angle) - (px - x) * std::sin(angle);
        return half_width - std::hypot(std::max(std::fabs(u) - (half_length - half_width), 0.0), v);
    }
};

measure_tool tool_of(std::string const& words) {
    measure_request request;
    request.image = "none.png";
    request.feature = words;
    measure_job job;
    std::string reason;
    EXPECT_EQ(read_job(request, job, reason), exit_status::done) << words << ": " << reason;
    return job.tools.empty() ? measure_tool() : job.tools.front();
}

measured_tool measured(image const& scene, measure_tool const& tool) {
    measure_job const job;
    return measure(scene, measure_frame(job, matrix::cols(scene), matrix::rows(scene)), tool);
}

double figure_of(measured_tool const& m, std::string const& label, std::size_t coordinate = 0) {
    if (!m.fit) return std::nan("");
    for (figure const& f : m.fit->figures) {
        if (f.label == label) return f.values.at(coordinate);
    }
    return std::nan("");
}

std::string words(char const* kind, std::vector<double> const& numbers) {
    std::string text = kind;
    for (double const x : numbers) text += ' ' + std::to_string(x);
    return text;
}

// Tools that lie up to 3 pixels beside the truth.
TEST(measure, finds_places_and_sizes_to_a_fiftieth_of_a_pixel) {
    seeded_random random(5);
    for (int i = 0; i < 12; ++i) {
        double const x = 150 + random.unit(), y = 150 + random.unit(), angle = i == 0 ? 0 : 3 * random.unit();
        double const dx = 4 * random.unit() - 2, dy = 4 * random.unit() - 2;
        camera const c{.blur = 0.6 + 1.5 * random.unit()};
        double const k = std::cos(angle), s = std::sin(angle);
        SCOPED_TRACE(i);

        double const r = 8 + 90 * random.unit();
        image const round = rendered_scene(300, 300, round_edge{x, y, r}, c);
        measured_tool const hole = measured(round, tool_of(words("circle", {r + 1, x + dx, y + dy})));
        EXPECT_NEAR(figure_of(hole, "radius"), r, 0.004);
        EXPECT_NEAR(figure_of(hole, "center"), x, 0.01);
        EXPECT_NEAR(figure_of(hole, "center", 1), y, 0.01);

        image const box = rendered_scene(300, 300, box_edge{x, y, angle, 70.3, 41.6}, c);
        measured_tool const pocket =
            measured(box, tool_of(words("rectangle", {141, 83, angle + 0.01, x + dx, y + dy})));
        EXPECT_NEAR(figure_of(pocket, "width"), 140.6, 0.01);
        EXPECT_NEAR(figure_of(pocket, "height"), 83.2, 0.01);
        EXPECT_NEAR(figure_of(pocket, "center"), x, 0.01);
        EXPECT_NEAR(std::remainder(figure_of(pocket, "angle") - angle, pi), 0, 1e-4);
        measured_tool const side =
            measured(box, tool_of(words("line", {x - 50 * k - 41 * s, y - 50 * s + 41 * k,
                                                 x + 50 * k - 41 * s, y + 50 * s + 41 * k})));
        EXPECT_NEAR(std::remainder(figure_of(side, "angle") - angle, pi), 0, 2e-4);
        EXPECT_NEAR(dot2d(point(false, figure_of(side, "center") - x, figure_of(side, "center", 1) - y),
                          point(false, -s, k)),
                    41.6, 0.01);

        image const long_hole = rendered_scene(300, 300, slot_edge{x, y, angle, 65.2, 20.4}, c);
        measured_tool const slot =
            measured(long_hole, tool_of(words("slot", {66, 21, angle + 0.01, x + dx, y + dy})));
        EXPECT_NEAR(figure_of(slot, "length"), 130.4, 0.02);
        EXPECT_NEAR(figure_of(slot, "width"), 40.8, 0.02);
        EXPECT_NEAR(figure_of(slot, "center"), x, 0.01);
        measured_tool const end =
            measured(long_hole, tool_of(words("arc", {20, angle - 1.2, 2.4, x + 44.8 * k, y + 44.8 * s})));
        EXPECT_NEAR(figure_of(end, "radius"), 20.4, 0.02);
        EXPECT_NEAR(figure_of(end, "included angle"), 2.4, 0.01);
        measured_tool const touch =
            measured(long_hole, tool_of(words("point", {x + 67 * k, y + 67 * s, angle})));
        EXPECT_NEAR(figure_of(touch, "center"), x + 65.2 * k, 0.03);
        EXPECT_NEAR(figure_of(touch, "center", 1), y + 65.2 * s, 0.03);
    }
}

// A third of the rim is a flat of dust that stands up to 5 pixels into the hole.
TEST(measure, drops_what_lies_beside_the_outline) {
    round_edge const hole{150.3, 149.8, 80};
    auto const dusty = [&](double px, double py) {
        return std::min(hole(px, py), std::max(75 - std::fabs(px - 150), py - 150 - 74.0));
    };
    image const scene = rendered_scene(300, 300, dusty, {.blur = 1});
    measure_tool tool = tool_of("circle 80 150 150");
    measured_tool const without = measured(scene, tool);
    EXPECT_GT(without.dropped(), 0u);
    EXPECT_NEAR(figure_of(without, "radius"), 80, 0.01);
    tool.edges.outliers = 0;
    measured_tool const with = measured(scene, tool);
    EXPECT_EQ(with.dropped(), 0u);
    EXPECT_GT(std::fabs(figure_of(with, "radius") - 80), 0.1);
}

// Two fifths of the rim lie 5 pixels inside: what a fit to all points makes of them is no circle of the part.
TEST(measure, finds_the_outline_from_the_larger_share_of_it) {
    auto const stepped = [](double px, double py) {
        double const x = px - 150.3, y = py - 149.8;
        return (std::fabs(std::atan2(y, x)) < 0.4 * pi ? 75 : 80) - std::hypot(x, y);
    };
    measured_tool const hole = measured(rendered_scene(300, 300, stepped, {}), tool_of("circle 80 150 150"));
    EXPECT_NEAR(figure_of(hole, "radius"), 80, 0.02);
    EXPECT_NEAR(hole.farthest_dropped(), 5, 0.3);
    // Form that is spread over the rim is no outlier.
    auto const lobed = [](double px, double py) {
        double const x = px - 150.3, y = py - 149.8;
        return 80 + 2 * std::cos(3 * std::atan2(y, x)) - std::hypot(x, y);
    };
    measured_tool const rim = measured(rendered_scene(300, 300, lobed, {}), tool_of("circle 80 150 150"));
    EXPECT_EQ(rim.dropped(), 0u);
    ASSERT_TRUE(rim.fit);
    EXPECT_NEAR(rim.fit->form_error, 4, 0.15);
}

// Neither the end of the search nor a narrow window nor the border of the image draws the edges.
TEST(measure, is_not_drawn_to_the_nominal_place) {
    for (double const search : {2.0, 3.0, 5.0, 20.0}) {
        SCOPED_TRACE(search);
        image const scene = rendered_scene(300, 300, round_edge{150.3, 149.8, 60}, {});
        for (double const off : {-1.0, -0.5, 0.6, 1.0}) {
            measure_tool tool = tool_of(words("circle", {60 + off * search, 150.3, 149.8}));
            tool.edges.search = search;
            EXPECT_NEAR(figure_of(measured(scene, tool), "radius"), 60, 0.01) << off;
        }
    }
    for (double const radius : {5.0, 6.0, 8.0}) {
        image const scene = rendered_scene(60, 60, round_edge{30.3, 29.8, radius}, {.blur = 0.7});
        measured_tool const dot = measured(scene, tool_of(words("circle", {radius + 1, 31.3, 28.8})));
        EXPECT_NEAR(figure_of(dot, "radius"), radius, 0.02);
        EXPECT_NEAR(figure_of(dot, "center"), 30.3, 0.02);
    }
    image const slit = rendered_scene(100, 200, slot_edge{100.3, 49.8, 0, 60, 5}, {.blur = 0.7});
    measured_tool const slot = measured(slit, tool_of("slot 60 6 0 101 50.5"));
    EXPECT_NEAR(figure_of(slot, "width"), 10, 0.05);
    EXPECT_NEAR(figure_of(slot, "length"), 120, 0.05);
    image const top = rendered_scene(100, 100, straight_edge{0, 5.3, pi / 2}, {});
    EXPECT_NEAR(figure_of(measured(top, tool_of("line 20 6 80 6")), "center", 1), 5.3, 0.01);
}

TEST(measure, calls_things_as_the_tool_does) {
    image const round = rendered_scene(300, 300, round_edge{150.3, 149.8, 80}, {});
    EXPECT_NEAR(figure_of(measured(round, tool_of("arc 80 1 360deg 150.3 149.8")), "included angle"), 2 * pi,
                1e-9);
    EXPECT_NEAR(figure_of(measured(round, tool_of("arc 80 1 -270deg 150.3 149.8")), "included angle"),
                -1.5 * pi, 1e-3);
    image const box = rendered_scene(300, 300, box_edge{150.3, 149.8, 0.2, 40, 70}, {});
    measured_tool const upright = measured(box, tool_of("rectangle 80 140 0.2 150 150"));
    EXPECT_NEAR(figure_of(upright, "width"), 80, 0.01);
    EXPECT_NEAR(figure_of(upright, "angle"), 0.2, 1e-4);
}

TEST(measure, tells_the_two_edges_of_a_thin_wall_apart) {
    auto const wall = [](double px, double py) { return 5 - std::fabs(std::hypot(px - 150, py - 150) - 80); };
    image const scene = rendered_scene(300, 300, wall, {.blur = 0.7});
    measure_tool tool = tool_of("circle 80 150 150");
    tool.edges.sense = edge_sense::rising;
    EXPECT_NEAR(figure_of(measured(scene, tool), "radius"), 75, 0.01);
    tool.edges.sense = edge_sense::falling;
    EXPECT_NEAR(figure_of(measured(scene, tool), "radius"), 85, 0.01);
}

TEST(measure, says_why_there_is_no_feature) {
    image const scene = rendered_scene(200, 200, round_edge{100, 100, 40}, {});
    image const plain = image_of(200, 200, [](double, double) { return 0.5; });
    auto const reason = [](image const& m, char const* tool) { return measured(m, tool_of(tool)).reason; };
    EXPECT_EQ(reason(plain, "circle 40 100 100"), "an edge was found at 0 of 21 places; a circle needs 3");
    EXPECT_EQ(reason(scene, "circle 40 500 100"), "an edge was found at 0 of 21 places; a circle needs 3");
    EXPECT_EQ(reason(plain, "point 100 100"), "an edge was found at 0 of 1 place; a point needs 1");
    EXPECT_EQ(reason(plain, "point 3 100"), "the window that would tell its direction leaves the image");
    EXPECT_EQ(reason(scene, "circle 41 100 100"), "");
}

// Limits that are met exactly are kept.
TEST(measure, compares_with_the_limits) {
    image const scene = rendered_scene(200, 200, round_edge{100, 100, 40}, {});
    measure_tool tool = tool_of("circle 40 100 100");
    auto nominal = std::make_shared<Circle_Description>();
    nominal->geometry = circle(39.5, point(true, 100, 101));
    tool.nominal = nominal;
    tool.limits = {{"form", 0, 0.1},         {"form", 0, 1e-9},
                   {"radius", -0.51, 0.51},  {"radius", 0, 0.4},
                   {"center", 0, 1.01},      {"center", 0, 0.9},
                   {"profile", 0, 4},        {"profile", 0, 2.9},
                   {"diameter", 0.99, 1.01}, {"standard_deviation", 0, 1e-9}};
    measured_tool const m = measured(scene, tool);
    std::vector<bool> passed;
    for (tolerance_check const& c : m.checks) passed.push_back(c.passed);
    EXPECT_EQ(passed, (std::vector<bool>{true, false, true, false, true, false, true, false, true, false}));
    EXPECT_FALSE(m.passed());
}

// Screen places count from the middle; the height follows from the seen place, the rest from the corrected
// one.
TEST(measure_frame, leads_from_the_image_to_the_results_and_back) {
    std::vector<point> seen, truth;
    for (int i = 0; i < 100; ++i) {
        double const x = 64 * (i % 10) - 288.0, y = 48 * (i / 10) - 216.0, r2 = x * x + y * y;
        seen.push_back(point(true, x, y));
        truth.push_back(point(true, x * (1 + 3e-8 * r2), y * (1 + 3e-8 * r2)));
    }
    measure_job job;
    measure_frame const plain(job, 640, 480);
    point const place(true, 600.5, 20.25);
    EXPECT_EQ(plain.to_result(place), place);
    job.screen = screen_corrector(640, 480, idioms::array<point>(100, seen.data()),
                                  idioms::array<point>(100, truth.data()), 3);
    job.from_screen = transform::dilation(0.01, -0.01);
    measure_frame const frame(job, 640, 480);
    double const x = 280.5, y = -219.75, k = 1 + 3e-8 * (x * x + y * y);
    point const result = frame.to_result(place);
    EXPECT_NEAR(result.x(), 0.01 * x * k, 1e-6);
    EXPECT_NEAR(result.y(), -0.01 * y * k, 1e-6);
    EXPECT_LT(distance2d(frame.to_image(result), place), 1e-5);
    EXPECT_NEAR(frame.pixel_length(), 0.01, 1e-15);

    job.flatness.coefficients = vector(1);
    job.flatness.coefficients(0) = 0.25;
    job.z = 5;
    point const in_space = measure_frame(job, 640, 480).to_result(place);
    EXPECT_EQ(in_space, point(true, result.x(), result.y(), 5.25));
}

}  // namespace
}  // namespace tvmath
