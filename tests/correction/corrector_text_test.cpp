#include "tvmath/corrector_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using namespace Persistence;

std::string plain(wide_string const& text) {
    return to_utf8(text);
}
// A reader takes the inside of the text, which ends where it says.
wide_string inside(wide_string const& text) {
    return text.substr(1, text.size() - 2);
}

screen_corrector screen(double const (&dx)[3], double const (&dy)[3]) {
    screen_corrector c;
    c.residual = 0.0125;
    c.order = 1;
    c.x_scale = 2.0 / 1280;
    c.y_scale = 2.0 / 1024;
    c.coefficients = matrix(2, vector(3, dx));
    c.coefficients.row(1, vector(3, dy));
    return c;
}

flatness_corrector flatness() {
    double const coefficients[] = {0.001, -0.5, 0.25, 0.125, 0, 1e-7};
    flatness_corrector c;
    c.residual = 0.0025;
    c.order = 2;
    c.x_scale = 2.0 / 1280;
    c.y_scale = 2.0 / 1024;
    c.coefficients = vector(6, coefficients);
    c.curvature = 0.0078125;
    return c;
}

telecentricity_corrector telecentricity() {
    telecentricity_corrector c;
    c.residual = 0.0015;
    c.magnification = 0.002;
    c.tilt_x = 0.25;
    c.tilt_y = -0.5;
    c.magnification_error = 1e-5;
    c.tilt_x_error = 0.001;
    c.tilt_y_error = 0.0025;
    return c;
}

TEST(CorrectorText, IsInThousandthsAndScreenSizes) {
    EXPECT_EQ(plain(to_ascii(screen({0.5, -1, 1.0 / 3}, {0, 2, 1e-3}), 4)),
              "(12.5 (0.5 -1 0.3333)(0 2 0.001) 1280 1024)");
    EXPECT_EQ(plain(to_ascii(flatness(), 9)), "(2.5 (1 -500 250 125 0 0.0001) 1280 1024 7.8125e-06)");
    EXPECT_EQ(plain(to_ascii(telecentricity(), 6)), "(1.5 2e-06 0.25 -0.5 1e-08 0.001 0.0025)");
    screen_corrector failed;
    failed.order = 3;
    EXPECT_EQ(plain(to_ascii(failed, 6)), "()");
    EXPECT_EQ(plain(to_ascii(screen_corrector(), 6)), "()");
    EXPECT_EQ(plain(to_ascii(flatness_corrector(), 6)), "()");
    EXPECT_EQ(plain(to_ascii(telecentricity_corrector(), 6)), "()");
}

TEST(CorrectorText, ComesBack) {
    screen_corrector const s = screen({0.5, -1, 1.0 / 3}, {0, 2, 1e-3});
    screen_corrector const s_back = to_screen_corrector(inside(to_ascii(s, 17)).c_str(), {});
    EXPECT_TRUE(s_back.order == 1 && s_back.x_scale == s.x_scale && s_back.y_scale == s.y_scale);
    EXPECT_DOUBLE_EQ(s_back.residual, s.residual);
    // Text rounds at 1e-16 of each number.
    EXPECT_NEAR(distance2d(at(300, -200) * s_back, at(300, -200) * s), 0, 1e-12);

    flatness_corrector const f = flatness();
    flatness_corrector const f_back = to_flatness_corrector(inside(to_ascii(f, 17)).c_str(), {});
    EXPECT_TRUE(f_back.order == 2 && f_back.x_scale == f.x_scale && f_back.y_scale == f.y_scale);
    EXPECT_DOUBLE_EQ(f_back.residual, f.residual);
    EXPECT_DOUBLE_EQ(f_back.curvature, f.curvature);
    EXPECT_NEAR(f_back.get_focus_correction(at(300, -200)), f.get_focus_correction(at(300, -200)), 1e-15);

    telecentricity_corrector const t = telecentricity();
    telecentricity_corrector const t_back = to_telecentricity_corrector(inside(to_ascii(t, 17)).c_str(), {});
    double telecentricity_corrector::*const fields[] = {&telecentricity_corrector::residual,
                                                        &telecentricity_corrector::magnification,
                                                        &telecentricity_corrector::tilt_x,
                                                        &telecentricity_corrector::tilt_y,
                                                        &telecentricity_corrector::magnification_error,
                                                        &telecentricity_corrector::tilt_x_error,
                                                        &telecentricity_corrector::tilt_y_error};
    for (auto const field : fields) EXPECT_DOUBLE_EQ(t_back.*field, t.*field);
}

// Each reader's answer to a text, told by the residual in the text's units; -1 is the fallback's.
double read_screen(wide_string const& text) {
    screen_corrector fallback;
    fallback.residual = -0.001;
    screen_corrector const c = to_screen_corrector(text.c_str(), fallback);
    at(100, 200) * c.sub_grab(at(3, 4));
    // What has been taken is in use, so it has a text.
    EXPECT_TRUE(c.residual == fallback.residual || to_ascii(c, 6).size() > 2) << plain(text);
    return c.residual * 1000;
}
double read_flatness(wide_string const& text) {
    flatness_corrector fallback;
    fallback.residual = -0.001;
    flatness_corrector const c = to_flatness_corrector(text.c_str(), fallback);
    c.get_focus_correction_at_y(100).get_focus_correction_at_x(c.get_focus_correction(at(100, 200)));
    c.get_focus_correction_derivative(at(100, 200));
    return c.residual * 1000;
}
double read_telecentricity(wide_string const& text) {
    telecentricity_corrector fallback;
    fallback.residual = -0.001;
    return to_telecentricity_corrector(text.c_str(), fallback).residual * 1000;
}

TEST(CorrectorText, GivesTheFallbackForAnythingElse) {
    struct {
        double (*read)(wide_string const&);
        wide_string text;
        double residual;
    } const cases[] = {{read_screen, u"3 (1 2 3)(4 5 6) 640 480"_w, 3},
                       {read_screen, u" 3  [1 2 3] {4 5 6} 640 480 more (and more"_w, 3},
                       {read_screen, u"3 (1 2 3)(4 5 6) 640"_w, -1},
                       {read_screen, u"3 (1 2 3)(4 5 6 7) 640 480"_w, -1},
                       {read_screen, u"3 (1 2 3 4)(4 5 6 7) 640 480"_w, -1},
                       {read_screen, u"3 (1)(4) 640 480"_w, -1},
                       {read_screen, u"3 ()() 640 480"_w, -1},
                       {read_screen, u"3 (1 2 3)(4 5 6) 0 480"_w, -1},
                       {read_screen, u"3 (1 2 3)(4 5 6) 640 1.#QNAN"_w, -1},
                       {read_screen, u"(3 (1 2 3)(4 5 6) 640 480)"_w, -1},  // the outer pair must be off
                       {read_flatness, u"3 (1 2 3 4 5 6) 640 480 1"_w, 3},
                       {read_flatness, u"3 (1 2 3 4 5 6) 640 480"_w, -1},
                       {read_flatness, u"3 (1 2 3 4 5) 640 480 1"_w, -1},
                       {read_flatness, u"3 () 640 480 1"_w, -1},
                       {read_telecentricity, u"3 1 2 3 4 5 6"_w, 3},
                       {read_telecentricity, u"3 1 2 3 4 5"_w, -1},
                       {read_telecentricity, u"3 1 2 3 4 5 6 7"_w, -1}};
    for (auto const& c : cases) EXPECT_DOUBLE_EQ(c.read(c.text), c.residual) << plain(c.text);
    for (auto const read : {read_screen, read_flatness, read_telecentricity}) {
        for (wide_string const& text : {u""_w, u" "_w, u"()"_w}) EXPECT_DOUBLE_EQ(read(text), -1);
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
            auto const place = random.below(static_cast<unsigned int>(text.size()));
            auto const unit = units[random.below(static_cast<unsigned int>(units.size()))];
            text.replace(place, random.below(2), 1, unit);
        }
        for (auto const read : {read_screen, read_flatness, read_telecentricity}) read(text);
    }
    // Rows of order 399, beyond all scratch in the frame.
    wide_string row;
    for (int i = 0; i < 80200; ++i) row += u"1 "_w;
    EXPECT_DOUBLE_EQ(read_screen(u"3 ("_w + row + u")("_w + row + u") 1e9 1e9"_w), 3);
    EXPECT_DOUBLE_EQ(read_flatness(u"3 ("_w + row + u") 1e9 1e9 0"_w), 3);
}

}  // namespace
}  // namespace tvmath
