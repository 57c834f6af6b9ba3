#include "tvmath/feature_switches.h"

#include <atomic>

#include "services/no_exceptions.h"
#include "services/text_case.h"
#include "tvmath/configuration.h"

inline namespace tvmath {

namespace {

bool is_word(wide_string const& value, std::u16string_view word) {
    return equal_ignoring_case(value, word);
}

// An integer other than 0 at the start: white space, a sign, digits. Its size does not matter.
bool starts_with_non_zero(wide_string const& value) {
    std::size_t at = 0;
    while (at < value.size() && (value[at] == ' ' || (value[at] >= '\t' && value[at] <= '\r'))) ++at;
    if (at < value.size() && (value[at] == '-' || value[at] == '+')) ++at;
    while (at < value.size() && value[at] == '0') ++at;
    return at < value.size() && value[at] >= '1' && value[at] <= '9';
}

bool is_on(wide_string const& value) {
    return is_word(value, u"Enabled") || is_word(value, u"Enable") || starts_with_non_zero(value);
}

bool is_enabled(wide_string const& value) {
    return is_word(value, u"Enabled");
}

bool is_not_enabled(wide_string const& value) {
    return !is_word(value, u"Enabled");
}

bool is_not_disabled(wide_string const& value) {
    return !is_word(value, u"Disabled");
}

// A missing key gives the answer of the empty value.
//
// Threads that ask at once may all read the file, and read the same. A lock around the first reading could
// not be had instead: a thread that has the file open may ask as well, and would wait for one that waits
// for the file.
class feature_switch {
public:
    constexpr feature_switch(char16_t const* section, char16_t const* key,
                             bool (*meaning)(wide_string const&))
        : section_(section), key_(key), meaning_(meaning) {}

    bool is_set() {
        answer known = answer_.load(std::memory_order_relaxed);
        if (known == answer::unknown) {
            known = read() ? answer::yes : answer::no;
            answer_.store(known, std::memory_order_relaxed);
        }
        return known == answer::yes;
    }

private:
    enum class answer : unsigned char { unknown, no, yes };

    bool read() const {
        wide_string value;
        without_exceptions(false, [&] {
            TorvexConfig settings(false);
            return settings.select_section(section_, false) && settings.get_value(key_, value);
        });
        return meaning_(value);
    }

    char16_t const* section_;
    char16_t const* key_;
    bool (*meaning_)(wide_string const&);
    std::atomic<answer> answer_ = answer::unknown;
};

constexpr char16_t const* vision_tools = u"Vision Tools";
constexpr char16_t const* beta_test = u"Beta Test";

}  // namespace

bool new_vision_algorithms_enabled() {
    static constinit feature_switch kept(vision_tools, u"New Algorithms", is_not_disabled);
    return kept.is_set();
}

bool new_pattern_match_enabled() {
    static constinit feature_switch kept(vision_tools, u"Old Pattern Match", is_not_enabled);
    return kept.is_set();
}

bool learn_pattern_if_imported() {
    static constinit feature_switch kept(vision_tools, u"Learn Pattern If Imported", is_enabled);
    return kept.is_set();
}

bool is_calibrate_scanner_enabled() {
    static constinit feature_switch kept(beta_test, u"Calibrate Scanner", is_on);
    return kept.is_set();
}

bool is_low_noise_focus_gradient_enabled() {
    static constinit feature_switch kept(beta_test, u"Low Noise Focus Gradient", is_on);
    return kept.is_set();
}

bool is_new_adjustlights_autogain_algorithm_enabled() {
    static constinit feature_switch kept(beta_test, u"New Auto-Gain Adjust Lights", is_on);
    return kept.is_set();
}

bool is_pendant_programmable_buttons_enabled() {
    static constinit feature_switch kept(beta_test, u"Pendant Programmable Buttons", is_on);
    return kept.is_set();
}

bool is_play_at_enabled() {
    static constinit feature_switch kept(beta_test, u"Play At", is_on);
    return kept.is_set();
}

bool is_point_cloud_pick_theta_enabled() {
    static constinit feature_switch kept(beta_test, u"Point Cloud Pick Theta", is_on);
    return kept.is_set();
}

bool is_rich_text_prompts_enabled() {
    static constinit feature_switch kept(beta_test, u"Rich Text Prompts", is_on);
    return kept.is_set();
}

}  // namespace tvmath
