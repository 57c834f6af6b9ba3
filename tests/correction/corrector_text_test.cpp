#include "tvmath/corrector_text.h"

#include <gtest/gtest.h>

#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using namespace Persistence;

// What a reader makes of a text, written again; "-7" for the fallback. The correctors do their work on the
// way, so that no text may leave one that cannot.
std::string screen(wide_string const& text, int precision) {
    screen_corrector fallback;
    fallback.residual = -7;
    screen_corrector const c = to_screen_corrector(text.c_str(), fallback);
    at(100, 200) * c.sub_grab(at(3, 4));
    return c.residual == -7 ? "-7" : to_utf8(to_ascii(c, precision));
}
std::string flatness(wide_string const& text, int precision) {
    flatness_corrector fallback;
    fallback.residual = -7;
    flatness_corrector const c = to_flatness_corrector(text.c_str(), fallback);
    c.get_focus_correction_at_y(100).get_focus_correction_at_x(c.get_focus_correction(at(100, 200)));
    c.get_focus_correction_derivative(at(100, 200));
    return c.residual == -7 ? "-7" : to_utf8(to_ascii(c, precision));
}
std::string telecentricity(wide_string const& text, int precision) {
    telecentricity_corrector fallback;
    fallback.residual = -7;
    telecentricity_corrector const c = to_telecentricity_corrector(text.c_str(), fallback);
    return c.residual == -7 ? "-7" : to_utf8(to_ascii(c, precision));
}

TEST(CorrectorText, ComesBackByteForByte) {
    struct {
        std::string (*rewrite)(wide_string const&, int);
        wide_string text;  // the inside
        std::string rewritten;
    } const cases[] = {{screen, u"12.5 (0.5 -1 0.3333)(0 2 1e-05) 1280 1024"_w,
                        "(12.5 (0.5 -1 0.3333)(0 2 1e-05) 1280 1024)"},
                       {screen, u" 3  [1 2 3]{4 5 6}640 480 more (and more"_w, "(3 (1 2 3)(4 5 6) 640 480)"},
                       {flatness, u"2.5 (1 -500 250 125 0 0.0001) 1280 1024 7.8125e-06"_w,
                        "(2.5 (1 -500 250 125 0 0.0001) 1280 1024 7.8125e-06)"},
                       {telecentricity, u"1.5 2e-06 0.25 -0.5 1e-08 0.001 0.0025"_w,
                        "(1.5 2e-06 0.25 -0.5 1e-08 0.001 0.0025)"},
                       {telecentricity, u"1.#INF 2 3 4 5 6 7"_w, "()"}};
    for (auto const& c : cases) EXPECT_EQ(c.rewrite(c.text, 6), c.rewritten);
    EXPECT_EQ(screen(cases[0].text, 2), "(12 (0.5 -1 0.33)(0 2 1e-05) 1280 1024)");
    screen_corrector failed;
    failed.order = 3;
    EXPECT_TRUE(to_ascii(failed, 6) == u"()"_w && to_ascii(screen_corrector(), 6) == u"()"_w);
    EXPECT_TRUE(to_ascii(flatness_corrector(), 6) == u"()"_w &&
                to_ascii(telecentricity_corrector(), 6) == u"()"_w);
}

TEST(CorrectorText, IsInThousandthsAndScreenSizes) {
    screen_corrector const s = to_screen_corrector(u"12.5 (1 2 3)(4 5 6) 1280 1024", {});
    EXPECT_TRUE(s.residual == 0.0125 && s.order == 1 && s.x_scale == 2.0 / 1280 && s.y_scale == 2.0 / 1024);
    EXPECT_TRUE(at(640, -512) * s == at(640 + 1 + 2 - 3, -512 + 4 + 5 - 6));
    flatness_corrector const f = to_flatness_corrector(u"2.5 (1000 2000 3000 0 0 0) 1280 1024 0.5", {});
    EXPECT_TRUE(f.residual == 0.0025 && f.order == 2 && f.curvature == 500);
    EXPECT_EQ(f.get_focus_correction(at(640, -512)), 1 + 2 - 3);
    telecentricity_corrector const t = to_telecentricity_corrector(u"1.5 0.5 3 4 0.25 6 7", {});
    EXPECT_TRUE(t.residual == 0.0015 && t.magnification == 500 && t.tilt_x == 3 && t.tilt_y == 4 &&
                t.magnification_error == 250 && t.tilt_x_error == 6 && t.tilt_y_error == 7);
}

TEST(CorrectorText, GivesTheFallbackForAnythingElse) {
    for (wide_string const& text :
         {u""_w, u" "_w, u"()"_w, u"3 (1 2 3)(4 5 6) 640"_w, u"3 (1 2 3)(4 5 6 7) 640 480"_w,
          u"3 (1 2 3 4)(4 5 6 7) 640 480"_w, u"3 (1)(4) 640 480"_w, u"3 ()() 640 480"_w,
          u"3 (1 2 3)(4 5 6) 0 480"_w, u"3 (1 2 3)(4 5 6) 640 1.#QNAN"_w, u"(3 (1 2 3)(4 5 6) 640 480)"_w}) {
        EXPECT_EQ(screen(text, 6), "-7") << to_utf8(text);
    }
    for (wide_string const& text :
         {u""_w, u"()"_w, u"3 (1 2 3 4 5 6) 640 480"_w, u"3 (1 2 3 4 5) 640 480 1"_w, u"3 () 640 480 1"_w,
          u"3 (1 2 3) 0 480 1"_w}) {
        EXPECT_EQ(flatness(text, 6), "-7") << to_utf8(text);
    }
    for (wide_string const& text : {u""_w, u"()"_w, u"3 1 2 3 4 5"_w, u"3 1 2 3 4 5 6 7"_w}) {
        EXPECT_EQ(telecentricity(text, 6), "-7") << to_utf8(text);
    }
    EXPECT_TRUE(to_screen_corrector(nullptr, {}).is_trivial() &&
                to_flatness_corrector(nullptr, {}).is_trivial() &&
                to_telecentricity_corrector(nullptr, {}).is_trivial());
}

TEST(CorrectorText, OfAnyKindDoesNoHarm) {
    seeded_random random(91);
    wide_string const seeds[] = {u"3 (1 2 3)(4 5 6) 640 480"_w, u"3 (1 2 3 4 5 6) 640 480 1"_w,
                                 u"3 1 2 3 4 5 6"_w};
    wide_string const units = u"()[]{}\" 0123456789.-+eE#INDQ\t\xFFFF"_w;
    for (int trial = 0; trial < 3000; ++trial) {
        wide_string text = seeds[random.below(3)];
        for (unsigned int n = 1 + random.below(4); n > 0; --n) {
            auto const unit = units[random.below(static_cast<unsigned int>(units.size()))];
            text.replace(random.below(static_cast<unsigned int>(text.size())), random.below(2), 1, unit);
        }
        EXPECT_NE(screen(text, 6), "()") << to_utf8(text);  // what has been taken is in use
        flatness(text, 6);
        telecentricity(text, 6);
    }
    wide_string row;  // of order 199, beyond the scratch in the frame
    for (int i = 0; i < 20100; ++i) row += u"1 "_w;
    EXPECT_EQ(screen(u"3 ("_w + row + u")("_w + row + u") 1e9 1e9"_w, 6).size(), 2 * row.size() + 18);
    EXPECT_EQ(flatness(u"3 ("_w + row + u") 1e9 1e9 0"_w, 6).size(), row.size() + 19);
}

}  // namespace
}  // namespace tvmath
