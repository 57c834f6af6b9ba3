#include "plot/plot_axis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

// The number that a reader sees: a minus sign, digits, and the power of ten.
double read(std::string text) {
    auto const replace = [&text](std::string const& from, std::string const& to) {
        for (std::size_t at; (at = text.find(from)) != std::string::npos;) text.replace(at, from.size(), to);
    };
    if (text.rfind("10", 0) == 0 && text.size() > 2 && static_cast<unsigned char>(text[2]) > 127)
        text.replace(0, 2, "1e");
    replace("\u2212", "-");
    replace(" \u00d7 10", "e");
    replace("\u207b", "-");
    static char const* const raised[] = {"\u2070", "\u00b9", "\u00b2", "\u00b3", "\u2074",
                                         "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    for (int d = 0; d < 10; ++d) replace(raised[d], std::to_string(d));
    return std::atof(text.c_str());
}

// What the labels say, with the remark of the axis, is where the ticks stand; and no two are alike.
TEST(PlotAxis, LabelsSayWhereTheTicksAre) {
    seeded_random random(5);
    for (int trial = 0; trial < 2000; ++trial) {
        double const span = random.log_uniform(1e-9, 1e9);
        double const origin =
            random.coin() ? 0 : (random.coin() ? -1 : 1) * span * random.log_uniform(0.1, 1e7);
        double const low = span * random.uniform(-2, 1), step = round_above(span / 8);
        plot_axis const axis = make_axis(origin, low, low + span, step);
        SCOPED_TRACE(std::to_string(trial) + ": " + axis.remark);
        double offset = 0, unit = 1;
        if (std::size_t const in = axis.remark.find("in "); in != std::string::npos)
            unit = read(axis.remark.substr(in + 3));
        if (axis.remark.rfind(" + ", 0) == 0) offset = -read(axis.remark.substr(3));
        if (axis.remark.rfind(" \u2212 ", 0) == 0) offset = read(axis.remark.substr(5));
        ASSERT_GE(axis.ticks.size(), 3u);
        ASSERT_LE(axis.ticks.size(), 10u);
        for (std::size_t i = 0; i < axis.ticks.size(); ++i) {
            auto const& t = axis.ticks[i];
            ASSERT_GE(t.at, low - 1e-5 * span);
            ASSERT_LE(t.at, low + span * (1 + 1e-5));
            ASSERT_NEAR(read(t.text) * unit + offset, origin + t.at, 1e-6 * span + 1e-15 * std::fabs(origin))
                << t.text;
            ASSERT_LE(t.text.size(), 14u) << t.text;
            if (i > 0) {
                ASSERT_NE(t.text, axis.ticks[i - 1].text);
            }
        }
    }
}

TEST(PlotAxis, RoundsToOneDigit) {
    struct {
        double x, below, above;
    } const cases[] = {{1, 1, 1},  {0.5, 0.5, 0.5}, {0.19, 0.15, 0.2},
                       {7, 6, 10}, {99, 80, 100},   {2e-7, 2e-7, 2e-7}};
    for (auto const& c : cases) {
        EXPECT_NEAR(round_below(c.x), c.below, 1e-12 * c.x);
        EXPECT_NEAR(round_above(c.x), c.above, 1e-12 * c.x);
    }
}

}  // namespace
}  // namespace tvmath
