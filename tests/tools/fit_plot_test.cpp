#include "fit/fit_plot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "fit/fit_view.h"
#include "fit_cases.h"
#include "recording_canvas.h"

inline namespace tvmath {
namespace {

// Everything is on the page, no text lies upon another, and what a reader needs is said.
void expect_readable(fit_result const& result) {
    recording_canvas c;
    draw_fit(c, result);
    c.expect_readable(fit_page_width, fit_page_height);
    EXPECT_GT(c.dot_count, 0u);
    std::string const name =
        result.has_standard_names ? result.kind->form.symbol : "orm error";  // also at the start of a line
    EXPECT_TRUE(c.says(name));
    EXPECT_TRUE(c.says("residuals") || c.says("no residual"));
    fit_view const view = view_of(result);
    if (make_fit_picture(result, view).is_rounding) {
        EXPECT_TRUE(c.says("rounding"));
    } else {
        std::vector<extreme_point> const marked = marked_points(result);
        for (std::size_t i = 0; i < std::min(marked.size(), most_labels); ++i)
            EXPECT_TRUE(c.says("point " + std::to_string(marked[i].index + 1)));
        EXPECT_EQ(c.says("contact points"), result.is_zone());
    }
}

fit_case scattered(fit_case c, double size, point offset, double noise, seeded_random& random) {
    for (point& p : c.points) {
        p.x() = size * p.x() + offset.x() + noise * random.normal();
        p.y() = size * p.y() + offset.y() + noise * random.normal();
        if (p.is_3d()) p.z() = size * p.z() + noise * random.normal();
    }
    return c;
}

TEST(FitPlot, IsReadableForEveryKindPerfectOrScatteredSmallOrFar) {
    seeded_random random(2);
    for (fit_case const& c : fit_cases()) {
        SCOPED_TRACE(c.kind);
        expect_readable(fitted(c));
        if (c.request.center.size() + c.request.through.size() + c.request.tangent.size() +
                c.request.nominal.size() + c.request.diameter >
            0)
            continue;  // conditions stay where they are
        for (double const size : {1e-3, 1.0, 1e4}) {
            for (point const& offset : {at(0, 0), at(123456.7 * size, -3e5 * size)}) {
                fit_case const moved = scattered(c, size, offset, 1e-4 * size, random);
                fit_kind const* const kind = find_fit_kind(c.kind);
                fit_conditions known;
                std::string reason;
                ASSERT_TRUE(read_conditions(moved.request, *kind, known, reason)) << reason;
                for (point const& p : c.points)
                    known.onto.push_back(at(size * (5 - 2 * p.y()), size * p.x()));
                fit_result result;
                bool is_usage = false;
                if (!fit_feature(*kind, moved.points, {moved.points.size()}, known, result, reason, is_usage))
                    continue;  // the fit is not the subject here
                result.file = "a file with a long name, in a folder with a long name, of a part.csv";
                SCOPED_TRACE(std::to_string(size) + " at " + std::to_string(offset.x()));
                expect_readable(result);
            }
        }
    }
}

TEST(FitPlot, IsReadableForEveryZone) {
    seeded_random random(3);
    for (fit_kind const& kind : zone_kinds()) {
        for (int trial = 0; trial < 12; ++trial) {
            double const size = std::pow(10, trial % 4), noise = trial < 8 ? 0.001 * size : 0;
            std::vector<point> points =
                circle_points(random, at(0, 1e5), size, 0, 6.28, 10 + 9 * trial, noise);
            for (point& p : points) {
                p.promote3d();
                p.z() = noise * random.normal();
            }
            fit_result result;
            std::string reason;
            bool is_usage = false;
            SCOPED_TRACE(std::string(kind.name) + ' ' + std::to_string(trial));
            ASSERT_TRUE(fit_feature(kind, points, {points.size()}, {}, result, reason, is_usage)) << reason;
            expect_readable(result);
        }
    }
}

// The whiskers begin on the feature and end, not enlarged, in the measured points.
TEST(FitPlot, WhiskersLeadFromTheFeatureToThePoints) {
    seeded_random random(4);
    for (fit_case const& c : fit_cases()) {
        if (find_fit_kind(c.kind)->in_space || !c.request.center.empty() || !c.request.nominal.empty())
            continue;
        SCOPED_TRACE(c.kind);
        fit_case moved = scattered(c, 1, at(0, 0), c.request.diameter ? 0 : 1e-4, random);
        moved.request.onto = "";
        fit_result const result = fitted(moved);
        if (std::string(c.kind) == "transform") continue;  // leads to the targets
        fit_view const view = view_of(result);
        ASSERT_EQ(view.points.size(), result.points.size());
        for (std::size_t i = 0; i < result.points.size(); ++i) {
            view_point const& p = view.points[i];
            spot const end = view.origin + p.foot + result.residuals[i] * p.out;
            // The Bezier path of a slot is within 2.8e-4 of its round ends; rings measure along the ray.
            EXPECT_NEAR(end.x, result.points[i].x(), 3e-4);
            EXPECT_NEAR(end.y, result.points[i].y(), 3e-4);
        }
    }
}

// A file of many points gives a picture of bounded size, with its extremes.
TEST(FitPlot, ThinsManyPointsButKeepsTheExtremes) {
    seeded_random random(6);
    fit_case c = {"circle", circle_points(random, at(0, 0), 5, 0, 6.28, 100000, 1e-3), {}, {}, 0, 0};
    c.points[777] = at(5.02, 0.001);
    recording_canvas canvas;
    draw_fit(canvas, fitted(c));
    EXPECT_TRUE(canvas.says("point 778"));
    EXPECT_LT(canvas.places.size(), 40000u);

    fit_case map = {"sphere", sphere_points(random, at(0, 0, 0), 5, 100000, 1e-3), {}, {}, 0, 0};
    recording_canvas other;
    draw_fit(other, fitted(map));
    EXPECT_LT(other.places.size(), 40000u);
}

TEST(FitPlot, SaysHowManyTimesTheResidualsAreEnlarged) {
    std::pair<double, char const*> const cases[] = {
        {50, "50"}, {2000, "2000"}, {20000, "20 000"}, {3e12, "3 \u00d7 10\u00b9\u00b2"}};
    for (auto const& [factor, text] : cases) EXPECT_EQ(factor_text(factor), text);
    fit_case const c = {"circle", {at(1, 7), at(2, 6), at(5, 8), at(7, 7), at(9, 5), at(3, 7)}, {}, {}, 0, 0};
    recording_canvas canvas;
    draw_fit(canvas, fitted(c));
    // A quarter of the radius, 1.18, has room for the greatest residual of 0.774 one and a half times.
    EXPECT_TRUE(canvas.says("residuals drawn \u00d7 1.5"));
}

}  // namespace
}  // namespace tvmath
