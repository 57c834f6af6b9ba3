#include "tvmath/feature_switches.h"

#include <gtest/gtest.h>

#include <thread>

#include "services/service_test.h"

inline namespace tvmath {
namespace {

using feature = bool (*)();

struct beta_feature {
    feature is_on;
    char const* key;
};
beta_feature const beta_features[] = {
    {is_calibrate_scanner_enabled, "Calibrate Scanner"},
    {is_low_noise_focus_gradient_enabled, "Low Noise Focus Gradient"},
    {is_new_adjustlights_autogain_algorithm_enabled, "New Auto-Gain Adjust Lights"},
    {is_pendant_programmable_buttons_enabled, "Pendant Programmable Buttons"},
    {is_play_at_enabled, "Play At"},
    {is_point_cloud_pick_theta_enabled, "Point Cloud Pick Theta"},
    {is_rich_text_prompts_enabled, "Rich Text Prompts"},
};

TEST(FeatureSwitches, OfVisionToolsFollowTheirValues) {
    struct {
        char const* text;
        bool new_algorithms, new_match, learn;
    } const cases[] = {
        {"", true, true, false},
        {"[Vision Tools]\r\n", true, true, false},
        {"[Vision Tools]\r\nNew Algorithms=disabled\r\nOld Pattern Match=ENABLED\r\nLearn Pattern If "
         "Imported=enabled\r\n",
         false, false, true},
        {"[Vision Tools]\r\nNew Algorithms=0\r\nOld Pattern Match=Enable\r\nLearn Pattern If Imported=1\r\n",
         true, true, false},
        {"[Beta Test]\r\nNew Algorithms=Disabled\r\n", true, true, false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.text);
        installation place;
        write_bytes(place.common("Torvex.ini"), text_file(c.text));
        EXPECT_TRUE(in_fresh_process([&] {
            EXPECT_EQ(new_vision_algorithms_enabled(), c.new_algorithms);
            EXPECT_EQ(new_pattern_match_enabled(), c.new_match);
            EXPECT_EQ(learn_pattern_if_imported(), c.learn);
        }));
        EXPECT_EQ(read_bytes(place.common("Torvex.ini")), text_file(c.text));
    }
}

TEST(FeatureSwitches, OfTheBetaTestReadWordsAndNumbers) {
    struct {
        char const* value;
        bool is_on;
    } const values[] = {{"Enabled", true},   {"enabled", true},
                        {"ENABLE", true},    {"1", true},
                        {"-2", true},        {" \t+007x", true},
                        {"0", false},        {"", false},
                        {"Disabled", false}, {"Enabled ", false},
                        {"x1", false},       {"0x10", false},
                        {"- 1", false},      {"99999999999999999999", true}};
    for (auto const& v : values) {
        SCOPED_TRACE(v.value);
        installation place;
        std::string text = "[Beta Test]\r\n";
        for (beta_feature const& f : beta_features) text += f.key + std::string("=") + v.value + "\r\n";
        write_bytes(place.common("Torvex.ini"), text_file(text));
        EXPECT_TRUE(in_fresh_process([&] {
            for (beta_feature const& f : beta_features) EXPECT_EQ(f.is_on(), v.is_on) << f.key;
        }));
    }
    for (beta_feature const& only : beta_features) {
        SCOPED_TRACE(only.key);
        installation place;
        write_bytes(place.common("Torvex.ini"),
                    text_file("[Beta Test]\r\n" + std::string(only.key) + "=1\r\n"));
        EXPECT_TRUE(in_fresh_process([&] {
            for (beta_feature const& f : beta_features) EXPECT_EQ(f.is_on(), f.is_on == only.is_on) << f.key;
        }));
    }
}

TEST(FeatureSwitches, KeepTheirFirstAnswer) {
    installation place;
    write_bytes(place.common("Torvex.ini"), text_file("[Beta Test]\r\nPlay At=2\r\n"));
    EXPECT_TRUE(in_fresh_process([&] {
        std::thread threads[4];
        for (std::thread& t : threads) t = std::thread([] { EXPECT_TRUE(is_play_at_enabled()); });
        for (std::thread& t : threads) t.join();
        write_bytes(place.common("Torvex.ini"), text_file("[Beta Test]\r\nPlay At=0\r\n"));
        EXPECT_TRUE(is_play_at_enabled());
    }));
    EXPECT_TRUE(in_fresh_process([] { EXPECT_FALSE(is_play_at_enabled()); }));
}

}  // namespace
}  // namespace tvmath
