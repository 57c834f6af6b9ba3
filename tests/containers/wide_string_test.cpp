#include "tvmath/wide_string.h"

#include <gtest/gtest.h>

inline namespace tvmath {
namespace {

// Encodings worked out by the table of RFC 3629 and the pairs of RFC 2781.
TEST(WideString, ConvertsBothWays) {
    struct {
        std::string utf8;
        wide_string wide;
    } const cases[] = {
        {"", {}},
        {"abc", {'a', 'b', 'c'}},
        {"\xC3\x98 12", {0xD8, ' ', '1', '2'}},                      // U+00D8
        {"\xE2\x88\x9E", {0x221E}},                                  // infinity
        {"\xF0\x9F\x98\x80", {0xD83D, 0xDE00}},                      // U+1F600
        {std::string("a\0b", 3), {'a', 0, 'b'}},                     // a zero is a character
        {"\xEF\xBF\xBD\xF4\x8F\xBF\xBF", {0xFFFD, 0xDBFF, 0xDFFF}},  // U+FFFD, U+10FFFF
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.utf8);
        EXPECT_TRUE(to_wide(c.utf8) == c.wide);
        EXPECT_EQ(to_utf8(c.wide), c.utf8);
    }
}

TEST(WideString, ReplacesWhatIsNoText) {
    wide_string const mark = u"\uFFFD"_w;
    struct {
        char const* name;
        std::string utf8;
        wide_string wide;
    } const cases[] = {
        {"lone continuation", "a\x80z", u"a"_w + mark + u"z"_w},
        {"cut off", "a\xE2\x88", u"a"_w + mark + mark},
        {"overlong zero", "\xC0\x80", mark + mark},
        {"surrogate", "\xED\xA0\x80", mark + mark + mark},
        {"above U+10FFFF", "\xF4\x90\x80\x80", mark + mark + mark + mark},
    };
    for (auto const& c : cases) EXPECT_TRUE(to_wide(c.utf8) == c.wide) << c.name;

    EXPECT_EQ(to_utf8(wide_string{'a', 0xD800, 'b'}),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(to_utf8(wide_string{0xDC00, 0xD800}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(WideString, HelpersTakeNullForEmpty) {
    wide_char const* const null = nullptr;
    wide_string const text = u"Circle 12"_w;
    EXPECT_EQ(wide_length(text.c_str()), 9u);
    EXPECT_EQ(wide_length(null), 0u);
    EXPECT_EQ(to_utf8(null), "");
    EXPECT_EQ(wide_find(text.c_str(), u"le"), 4u);
    EXPECT_EQ(wide_find(text.c_str(), u"x"), wide_npos);
    EXPECT_EQ(wide_find(null, text.c_str()), wide_npos);
    EXPECT_EQ(wide_compare(text.c_str(), u"Circle 12"), 0);
    EXPECT_LT(wide_compare(text.c_str(), u"Circle 2"), 0);
    EXPECT_GT(wide_compare(text.c_str(), null), 0);
    EXPECT_EQ(wide_compare(null, u""), 0);
}

}  // namespace
}  // namespace tvmath
