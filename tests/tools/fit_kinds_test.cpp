#include "fit/fit_kinds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "fit_cases.h"

inline namespace tvmath {
namespace {

TEST(FitKinds, FindTheFeatureThatThePointsWereMadeFrom) {
    std::set<std::string> seen;
    for (fit_case const& c : fit_cases()) {
        SCOPED_TRACE(std::string(c.kind) + ", case " + std::to_string(seen.size()));
        seen.insert(find_fit_kind(c.kind)->name);
        fit_result const result = fitted(c);
        // A circle of 60 Bezier segments is round to some 1e-6; all others are as exact as their points.
        bool const is_path = !result.degrees_of_freedom && result.parameters == 0;
        double const tolerance = is_path ? 1e-4 : 1e-9;
        for (auto const& e : c.figures) {
            auto const f = std::find_if(result.figures.begin(), result.figures.end(),
                                        [&e](figure const& g) { return g.label == e.label; });
            ASSERT_TRUE(f != result.figures.end() && e.index < f->values.size()) << e.label;
            // A direction may point either way.
            double const value = f->kind == figure_kind::direction || f->kind == figure_kind::axis
                                     ? std::fabs(f->values[e.index])
                                     : f->values[e.index];
            EXPECT_NEAR(value, e.value, tolerance) << e.label << ' ' << e.index;
        }
        EXPECT_NEAR(result.form_error, c.form_error, tolerance);
        if (c.degrees_of_freedom >= 0) {
            EXPECT_EQ(result.degrees_of_freedom, c.degrees_of_freedom);
        }
        EXPECT_EQ(result.residuals.size(), c.points.size());
    }
    EXPECT_EQ(seen.size(), fit_kinds().size()) << "a kind without a case";
}

// Gander, Golub, Strebel, BIT 34 (1994) 558-578, by the answer in 25 digits that belongs to these six points:
// centre, radius, rms, and the extreme residuals.
TEST(FitKinds, GivesThePublishedCircleItsFiguresAndItsNames) {
    fit_case const c = {"circle", {at(1, 7), at(2, 6), at(5, 8), at(7, 7), at(9, 5), at(3, 7)}, {}, {}, 0, 0};
    fit_result const result = fitted(c);
    EXPECT_NEAR(result.figures[0].values[0], 4.739782410906074, 1e-12);
    EXPECT_NEAR(result.figures[0].values[1], 2.983532699292475, 1e-12);
    EXPECT_NEAR(result.figures[1].values[0], 4.714226037792110, 1e-12);
    EXPECT_NEAR(result.rms, 0.4523271452875040, 1e-12);
    EXPECT_NEAR(result.highest.residual, 0.7737592080495041, 1e-12);
    EXPECT_NEAR(result.lowest.residual, -0.6392435058850047, 1e-12);
    EXPECT_NEAR(result.form_error, 1.413002713934509, 1e-12);
    EXPECT_NEAR(result.profile_error, 2 * 0.7737592080495041, 1e-12);
    EXPECT_NEAR(*result.standard_deviation, std::sqrt(1.227599078183656 / 3), 1e-12);
    EXPECT_TRUE(result.has_standard_names);
    EXPECT_EQ(*result.degrees_of_freedom, 3);
}

// The standards name the deviations from the least-squares feature only.
TEST(FitKinds, NamesFormErrorsOnlyAboutTheReferenceOfTheStandard) {
    std::set<std::string> const named = {"line", "circle", "arc", "plane", "cylinder"};
    for (fit_case const& c : fit_cases()) {
        fit_request const& r = c.request;
        bool const is_free = r.center.empty() && r.through.empty() && r.tangent.empty() &&
                             r.parallel.empty() && r.perpendicular.empty() && !r.quick && !r.diameter;
        EXPECT_EQ(fitted(c).has_standard_names, is_free && named.count(c.kind) > 0) << c.kind;
    }
}

TEST(FitKinds, CompareWithTheNominalFeature) {
    fit_case c = {
        "circle", around(8, [](double a) { return at(1 + 5 * std::cos(a), 5 * std::sin(a)); }), {}, {}, 0, 0};
    c.request.nominal = {"circle 4.5 0 0"};
    nominal_comparison const nominal = *fitted(c).nominal;
    ASSERT_EQ(nominal.deviations[0].label, "center");
    EXPECT_NEAR(nominal.deviations[0].values[0], 1, 1e-12);
    EXPECT_NEAR(nominal.deviations[1].values[0], 0.5, 1e-12);
    // The farthest point (6, 0) is 1.5 outside.
    EXPECT_NEAR(*nominal.profile_error, 3, 1e-12);

    // A direction turns, and half a turn of it is none: 0.1 rad between the planes.
    fit_case p = {"plane", {at(0, 0, 0), at(1, 0, 0), at(0, 1, 0), at(1, 1, 0)}, {}, {}, 0, 0};
    p.request.nominal = {"plane 0 0 0 0 " + std::to_string(std::sin(0.1)) + " " +
                         std::to_string(-std::cos(0.1))};
    figure const tilt = fitted(p).nominal->deviations[1];
    EXPECT_EQ(tilt.kind, figure_kind::angle);
    EXPECT_NEAR(tilt.values[0], 0.1, 1e-6);  // six decimals in the words
}

// Distances of paths have a side.
TEST(FitKinds, SignTheDistancesFromAPath) {
    fit_case c = {"closed-spline",
                  around(200,
                         [](double a) {
                             double const r = 3 + (a < 1e-9 ? 0.2 : 0);  // one point outside
                             return at(r * std::cos(a), r * std::sin(a));
                         }),
                  {},
                  {},
                  0,
                  0};
    c.request.method = "least-squares";
    fit_result const result = fitted(c);
    EXPECT_EQ(result.highest.index, 0u);
    EXPECT_GT(result.highest.residual, 0.1);
    EXPECT_GT(result.highest.residual, -3 * result.lowest.residual);
    // Backwards, the outside stays outside.
    std::reverse(c.points.begin(), c.points.end());
    EXPECT_NEAR(fitted(c).highest.residual, result.highest.residual, 0.01);
}

}  // namespace
}  // namespace tvmath
