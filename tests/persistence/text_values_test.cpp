#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/nurb_curves.h"
#include "support/shape_points.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

using namespace Persistence;

template <class value>
std::string text_of(value const& v) {
    return to_utf8(to_ascii(v, 6));
}

wide_string inside(wide_string const& text) {
    return token(0, text.c_str());
}

void expect_tokens(char16_t const* text, std::vector<char const*> const& expected) {
    wide_string const copy = as_wide(text);
    tokens const items(text);
    ASSERT_EQ(items.size(), expected.size()) << to_utf8(copy);
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(to_utf8(items.token(i, copy.c_str())), expected[i]);
        EXPECT_EQ(to_utf8(token(i, text)), expected[i]);
    }
    EXPECT_TRUE(items.token(items.size(), copy.c_str()).empty() && token(items.size(), text).empty());
}

TEST(Tokens, AreTheItemsWithoutTheirDelimiters) {
    expect_tokens(u"", {});
    expect_tokens(u"   ", {});
    expect_tokens(u"  1  two ", {"1", "two"});
    expect_tokens(u"(a (b) c)(d)  e", {"a (b) c", "d", "e"});
    expect_tokens(u"1(2 3) x", {"1(2", "3)", "x"});  // what an item opens with delimits it
    expect_tokens(u"[(] 1] {\"} \"( \" )", {"(", "1]", "\"", "( ", ")"});  // other kinds do not nest
    expect_tokens(u"((1) 2", {"(1) 2"});                                   // without its close, to the end
    expect_tokens(u"1 ((2)", {"1", "(2"});
    expect_tokens(u"1 (2  ", {"1", "2"});
    expect_tokens(u"() \"\" \"", {"", "", ""});
    expect_tokens(u"a\tb\nc", {"a\tb\nc"});
    EXPECT_TRUE(tokens(nullptr).size() == 0 && token(0, nullptr).empty());
}

TEST(Writers, GiveTheTextsWrittenByHand) {
    EXPECT_EQ(text_of(at(1, 2)), "(1 2)");
    EXPECT_EQ(text_of(at(1.5, -2e-7, 1e10)), "(1.5 -2e-07 1e+10)");
    EXPECT_EQ(text_of(point(false, 1, 2)), "{1 2}");
    EXPECT_EQ(text_of(point(false, 0, -0.0, infinity)), "{0 -0 1.#INF}");
    EXPECT_EQ(text_of(point()), "()");
    std::vector<point> const mixed = {at(1, 2), point(), point(false, 3, 4, 5)};
    EXPECT_EQ(text_of(mixed), "((1 2) () {3 4 5})");
    EXPECT_EQ(text_of(curve(at(1, 2), at(3, 4))), "((1 2) (3 4))");
    EXPECT_EQ(text_of(std::vector<point>()) + text_of(curve()) + text_of(vector()), "()()()");
    EXPECT_EQ(text_of(vector(3, 1 / 3.0)), "(0.333333 0.333333 0.333333)");

    EXPECT_EQ(text_of(transform()) + text_of(nurb()) + text_of(cone()), "()()()");
    EXPECT_EQ(text_of(transform(idioms::array<double>(5))), "()");
    EXPECT_EQ(text_of(transform::dilation(2, 4)), "((2 0) (0 4)  (0.5 0) (0 0.25))");
    EXPECT_EQ(text_of(transform(1, 2)), "((1 1 0) (2 0 1)  (-1 1 0) (-2 0 1))");
    EXPECT_EQ(text_of(transform::dilation(1, 2, 4)),
              "((1 0 0) (0 2 0) (0 0 4)  (1 0 0) (0 0.5 0) (0 0 0.25))");
    EXPECT_EQ(text_of(transform(0, 0, 3)), "((0 1 0 0) (0 0 1 0) (3 0 0 1)  (0 1 0 0) (0 0 1 0) (-3 0 0 1))");
    EXPECT_EQ(text_of(circle(2, at(0, 0)).promote3d()).substr(0, 27), "((2 0 0) (0 2 0) (0 0 1)  (");

    EXPECT_EQ(text_of(make_nurb({0, 0, 2, 2}, {at(1, 2, 3), at(4, 5, 6)}, {1, 2})),
              "(2 2 1 2 3 1 8 10 12 2 0 0 2 2)");
    EXPECT_EQ(text_of(cone(at(0, 0, 0), at(0, 0, 2), 1, 0.5)), "(0 0 0 0 0 2 1 0.5 0 0 1)");
}

TEST(Readers, TakeTheInsideAndNotTheWhole) {
    vector v(3);
    for (unsigned int i = 0; i < 3; ++i) v(i) = i + 1;
    wide_string const text = to_ascii(v, 6);
    EXPECT_TRUE(to_vector(inside(text).c_str(), vector()) == v);
    EXPECT_TRUE(to_vector(text.c_str(), v) == vector(1));  // one item, which starts with no number
    EXPECT_TRUE(to_point(true, u"(1 2)", at(7, 7)) ==
                at(0, 2));  // two pieces, the first of which is no number
    EXPECT_TRUE(to_transform(to_ascii(transform(1, 2), 6).c_str(), transform()).is_trivial());
    EXPECT_TRUE(to_nurb(to_ascii(circle_nurb(at(0, 0, 0), 1), 6).c_str(), nurb()).is_trivial());
    EXPECT_TRUE(to_cone(u"(0 0 0 0 0 2 1 0.5 0 0 1)", cone()).is_trivial());
}

// On its own, and in a list, where an item that is no point is trivial.
void expect_point(char16_t const* text, point const& expected) {
    point const fallback = at(7, 7);
    point const read = to_point(true, text, fallback);
    EXPECT_TRUE(read == (expected.is_trivial() ? fallback : expected)) << text_of(read);
    std::vector<point> list;
    ASSERT_TRUE(from_ascii((u"("_w + as_wide(text) + u") {3 4}"_w).c_str(), list));
    EXPECT_TRUE(list == std::vector<point>({expected, point(false, 3, 4)})) << text_of(list);
}

TEST(PointReader, CountsNumbersBetweenBlanks) {
    expect_point(u"1 2", at(1, 2));
    expect_point(u"  1   2  ", at(1, 2));
    expect_point(u"1 2 ", at(1, 2));
    expect_point(u"1 2 3", at(1, 2, 3));
    expect_point(u"1 2 3 4", at(1, 2, 3));
    expect_point(u"1x2 3", at(1, 3));
    expect_point(u"1\t2 3", at(1, 3));
    expect_point(u"x y", at(0, 0));
    expect_point(u"\t 5 6", at(5, 5, 6));  // the number behind the tab, whose piece ends at the blank
    expect_point(u"1", point());
    expect_point(u"", point());
    expect_point(u"  ", point());
    EXPECT_TRUE(to_point(true, nullptr, at(7, 7)) == at(7, 7));
    EXPECT_TRUE(to_point(false, u"1 2", point()) == point(false, 1, 2));
}

TEST(ListReader, GivesAPointForEveryItem) {
    std::vector<point> list = {at(9, 9)};
    EXPECT_FALSE(from_ascii(nullptr, list) || from_ascii(u"", list));
    EXPECT_EQ(list.size(), 1u);
    EXPECT_TRUE(from_ascii(u"(1 2) {3 4 5}[6 7] \"8 9\" 1 () ((1 2)) (1 2) ) (5 6", list));
    std::vector<point> const expected = {at(1, 2),
                                         point(false, 3, 4, 5),
                                         point(false, 6, 7),
                                         point(false, 8, 9),
                                         point(),
                                         point(),
                                         at(0, 2),
                                         at(1, 2),
                                         point(),
                                         at(5, 6)};
    EXPECT_TRUE(list == expected) << text_of(list);
    EXPECT_TRUE(from_ascii(u" ", list) && list.empty());
    curve const fallback(at(1, 1));
    EXPECT_EQ(to_curve(u"", fallback).capacity() + to_curve(nullptr, fallback).capacity(), 2u);
    EXPECT_EQ(to_curve(u"(1 2) (3 4) x", fallback).capacity(), 3u);
    EXPECT_TRUE(to_vector(u"", vector(4)) == vector(4) && to_vector(u"  ", vector(4)) == vector());
    vector const numbers = to_vector(u"1 (2) 3x -1.#INF", vector());
    EXPECT_EQ(text_of(numbers), "(1 0 3 -1.#INF)");
}

TEST(TransformReader, TakesRowsWithAndWithoutOffsets) {
    struct {
        char16_t const* text;
        char const* result;
    } const cases[] = {{u"(1 2) (7 3 4) (5) (6 7 8 9)", "((0 1 2) (7 3 4)  (0 0 0) (6 7 8))"},
                       {u"(1 2 3) (7 3 4 5) (5 6) 1 () (1 2 3 4 5)",
                        "((0 1 2 3) (7 3 4 5) (0 0 0 0)  (0 0 0 0) (0 0 0 0) (1 2 3 4))"},
                       {u"(1 2) (3 4) (5 6)", "()"},
                       {u"1 2 3 4 5", "()"},
                       {u"1 2 3 4 5 6 7", "()"},
                       {u"", "()"},
                       {nullptr, "()"}};
    for (auto const& c : cases) EXPECT_EQ(text_of(to_transform(c.text, transform())), c.result);
    EXPECT_TRUE(to_transform(u"1 2 3", transform(1, 2)) == transform(1, 2));
}

TEST(NurbReader, TakesExactlyAsManyNumbersAsTheCountsSay) {
    wide_string const good = inside(to_ascii(make_nurb({0, 0, 2, 2}, {at(1, 2, 3), at(4, 5, 6)}, {1, 2}), 6));
    nurb const fallback(5, 6);
    EXPECT_EQ(text_of(to_nurb(good.c_str(), fallback)), "(2 2 1 2 3 1 8 10 12 2 0 0 2 2)");
    // A number too many, one too few, none; counts whose sums wrap in 32 and in 64 bits.
    wide_string const bad[] = {good + u" 1"_w,
                               good.substr(0, good.size() - 2),
                               u""_w,
                               u"0 0"_w,
                               u"2 0 0"_w,
                               u"4294967297 0 1 "_w,
                               u"2147483647 2147483647 1"_w,
                               u"-5 2 1 2 3 4 5"_w,
                               u"8 -1 1 2 3"_w,
                               u"99999999999999999999999 858993459 1"_w,
                               u"2 858993459 1"_w};
    for (wide_string const& text : bad)
        EXPECT_EQ(to_nurb(text.c_str(), fallback).order(), 5u) << to_utf8(text);
    EXPECT_EQ(to_nurb(nullptr, fallback).order(), 5u);
}

TEST(OldSplineReader, WeighsTheControlPoints) {
    auto const read = [](std::string const& degree, std::string const& points, std::string const& weights,
                         std::string const& knots) {
        std::string const text =
            "a b c d " + degree + " (f) g (" + points + ") (" + weights + ") (" + knots + ") k l";
        return text_of(to_spline_to_nurb(to_wide(text).c_str(), nurb()));
    };
    EXPECT_EQ(read("1", "(1 2 3) (4 5 6)", "1 2", "0 0 2 2"), "(2 2 1 2 3 1 8 10 12 2 0 0 2 2)");
    EXPECT_EQ(read("1", "(1 2 3) (4 5)", "1 2", "0 0 2 2"), "()");
    EXPECT_EQ(read("1", "(1 2 3) (4 5 6)", "1", "0 0 2 2"), "()");
    EXPECT_EQ(read("1", "(1 2 3) (4 5 6)", "1 2", "0 0 2"), "()");
    for (char const* degree : {"-1", "2147483647", "-2147483648"})
        EXPECT_EQ(read(degree, "(1 2 3)", "1", "0 0"), "()");
    EXPECT_EQ(text_of(to_spline_to_nurb(u"a b c d 1 f g (1 2 3) (1) (0 0 0) k", nurb())), "()");
}

}  // namespace
}  // namespace tvmath
