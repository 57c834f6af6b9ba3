#include "tvmath/construction_choice.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/seeded_random.h"
#include "tvmath/persistence.h"

namespace {

using choice = idioms::ref<multi_solution>;
using points = idioms::array<point>;

point at(double x, double y) {
    return point(true, x, y);
}
points list(std::vector<point> const& p) {
    return points(static_cast<unsigned int>(p.size()), p.data());
}
choice read(std::string const& text) {
    return Persistence::to_multi_solution(to_wide(text).c_str());
}
std::string written(choice const& c) {
    return to_utf8(Persistence::to_ascii(c));
}
std::string without_brackets(std::string const& text) {
    return text.substr(1, text.size() - 2);
}
unsigned int index_of(choice const& c) {
    unsigned int index = 99;
    c->selected(index);
    return index;
}

struct example {
    choice memory;
    char const *text, *moved;  // after a quarter turn and ten to the right: (x, y) to (10 - y, x)
    bool has_second;
};
std::vector<example> one_of_each() {
    std::vector<point> const p = {at(1.0 / 3, -2), point(true, 3, 4, 5), point()};
    std::vector<circle> const c = {circle(2, at(1, 3)), circle(), circle(0.5, point(true, 1, 2, 3))};
    auto const made = [](multi_solution* m) { return choice(m); };
    return {{made(new intersect_curve(list(p))), "(ILC 1 0.333333 -2 3 4)", "(ILC 1 12 0.333333 6 3)", true},
            {made(new intersect_ellipse_ellipse(list({p[0], p[1], p[0], p[1], p[0]}))),
             "(IEE 1 0.333333 -2 3 4 0.333333 -2 3 4)", "(IEE 1 12 0.333333 6 3 12 0.333333 6 3)", true},
            {made(new multsln_closest_point3d(list(p))), "(CP3 1 ((0.33333333 -2) (3 4 5) ()))",
             "(CP3 1 ((12 0.33333333) (6 3 5) ()))", true},
            {made(new tangent_line_multi({line(at(0, 0), at(2, 2.0 / 3)), line()})),
             "(LTM 1 ((0 0) (2 0.66666667) () ()))", "(LTM 1 ((10 0) (9.3333333 2) () ()))", false},
            {made(new tangent_line_multi_old({{p[0], p[1]}, {p[1]}, {}, {p[0]}})),
             "(LMM 1 0.333333 -2 3 4 3 4)", "(LMM 1 12 0.333333 6 3 6 3)", true},
            {made(new circle_tan_tan_fit_multi(c)), "(CTTF 1 1 3 2 1.#QNAN 1.#QNAN 1.#QNAN 1 2 0.5)",
             "(CTTF 1 7 1 2 1.#QNAN 1.#QNAN 1.#QNAN 8 1 0.5)", false},
            {made(new circle_tan_tan_tan_multi({c[2], c[0]})), "(CTTT 1 1 2 0.5 1 3 2)",
             "(CTTT 1 8 1 0.5 7 1 2)", true},
            {made(new circle_tan_tan_val_multi), "(CTTV 1)", "(CTTV 1)", false},
            // Along -Y, at twice the angle -X; and both components negative, the second one larger.
            {made(new bisect_line_line(point(false, 0, -2))), "(BLL 5)", "(BLL 5)", true},
            {made(new intersect_line_ellipse(point(false, -1, -2))), "(ILE 15)", "(ILE 15)", true}};
}

TEST(MultiSolution, IsWrittenReadBackAndMoved) {
    std::vector<example> const all = one_of_each();
    for (example const& c : all) {
        SCOPED_TRACE(c.text);
        if (index_of(c.memory) == 0) c.memory->select(1);
        EXPECT_EQ(written(c.memory), c.text);
        choice const back = read(without_brackets(c.text));
        ASSERT_TRUE(back.address());
        EXPECT_EQ(index_of(back), 1u);
        // What the old object remembers is found by the one that was read, and the other way round.
        EXPECT_EQ(back->update_from(c.memory.address()), c.has_second);
        EXPECT_EQ(c.memory->update_from(back.address()), c.has_second);
        for (example const& other : all) {
            EXPECT_TRUE(other.text == c.text || !other.memory->update_from(back.address())) << other.text;
        }
        EXPECT_FALSE(c.memory->update_from(nullptr));
        c.memory->apply_transform(transform(5, 5), transform::rotation_90().translate(10, 0));
        EXPECT_EQ(written(c.memory), c.moved);
    }
    EXPECT_EQ(written(choice()), "()");
    all[0].memory->select(4294967295u);
    EXPECT_EQ(index_of(read(without_brackets(written(all[0].memory)))), 4294967295u);
}

TEST(MultiSolution, IsReadFromGoodTextAlone) {
    char const* const bad[] = {"",
                               "  ",
                               "()",
                               "XYZ 1",
                               "ilc 0",
                               "ILC",
                               "ILC x",
                               "ILC 2147483648",
                               "ILC 99999999999999999999 1 2",
                               "ILC 0 1",
                               "ILC 0 1 2 x",
                               "ILC 0 1 2 - 3",
                               "(ILC 0 1 2)",
                               "IEE 0 1 2 3",
                               "IEE",
                               "IEE 0 1 x",
                               "BLL 16",
                               "BLL -1",
                               "ILE",
                               "ILE x",
                               "ILE 4294967296",
                               "CTTV 0 1 2",
                               "CTTV 0 1 2 3 4",
                               "LMM 0 1 2 3",
                               "LTM 0",
                               "LTM 0 () ()",
                               "LTM 0 ((1 2))",
                               "LTM 0x ()",
                               "LTM () ()",
                               "CP3 2 ((1 2 3) (4 5 6))",
                               "CP3 1 ()"};
    for (std::string const text : bad) {
        EXPECT_FALSE(read(text).address()) << text;
        for (example const& c : one_of_each()) {
            std::string const before = written(c.memory);
            bool const taken = c.memory->from_text(to_wide(text.substr(text.find(' ') + 1)).c_str());
            EXPECT_TRUE(taken || written(c.memory) == before) << text;
        }
    }
    EXPECT_FALSE(Persistence::to_multi_solution(static_cast<unsigned short const*>(nullptr)).address());
    for (example const& c : one_of_each()) EXPECT_FALSE(c.memory->from_text(nullptr));
    struct {
        char const *text, *read;
    } const good[] = {
        {"  ILE   3 ", "(ILE 3)"},
        {"ILC -1 +1 .5\t-2e1 1.#INF", "(ILC -1 1 0.5 -20 1.#INF)"},
        {"IEE 2 1 2 3 4 x", "(IEE 2 1 2 3 4)"},  // as `scanf` reads it
        {"IEE 2 1 2 3 4 5 6 7 8 9", "(IEE 2 1 2 3 4 5 6 7 8)"},
        {"LTM 7 ()", "(LTM 7 ())"},
        {"CP3 0 ()", "(CP3 0 ())"},
    };
    for (auto const& c : good) EXPECT_EQ(written(read(c.text)), c.read);
}

// Whatever a damaged text is read as is written as a text that reads back as itself.
TEST(MultiSolution, SurvivesDamagedText) {
    seeded_random random(7);
    std::string const units = "0123456789 .-+eE#()x\t";
    auto const below = [&](std::size_t n) { return random.below(static_cast<unsigned int>(n)); };
    int read_back = 0;
    for (int trial = 0; trial < 10000; ++trial) {
        std::string text = without_brackets(one_of_each()[below(10)].text);
        for (std::size_t n = below(4); n > 0; --n) text[below(text.size())] = units[below(units.size())];
        if (below(4) == 0) text.resize(below(text.size()));
        choice const c = read(text);
        if (!c) continue;
        ++read_back;
        ASSERT_EQ(written(read(without_brackets(written(c)))), written(c)) << text;
    }
    EXPECT_GT(read_back, 2000);
}

TEST(MultiSolution, TakesTheChoiceOver) {
    struct {
        char const *old, *now;
        bool found;
        unsigned int index;
    } const cases[] = {
        {"ILC 1 0 0 5 5", "ILC 0 9 9 5 6 0 0", true, 1},
        {"ILC 0 0 0", "ILC 0 3 4 1 0 -1 0 0 1", true, 1},  // the first of three equals
        {"ILC 2 0 0 5 5", "ILC 0 5 5", false, 0},
        {"ILC -1 0 0", "ILC 0 5 5 0 0", false, 0},
        {"ILC 0 0 0", "ILC 0", false, 0},
        {"ILC 0 0 0", "ILC 0 1.#QNAN 0 7 7", true, 1},
        {"ILC 0 1.#INF 0", "ILC 0 1 1 7 7", false, 0},
        {"ILC 0 0 0", "IEE 0 3 4 0 0", false, 0},
        // Each point alone would go to (1, 0).
        {"IEE 0 0 0 3 0", "IEE 0 1 0 -2 0", true, 1},
        {"IEE 1 0 0 3 0", "IEE 0 1 0 -2 0", true, 0},
        // Of four points two are left, and only they are assigned.
        {"IEE 2 0 0 9 0 9 9 0 9", "IEE 0 9 9 0 0", true, 0},
        {"IEE 1 0 0 9 0 9 9 0 9", "IEE 0 9 9 0 0", false, 0},
        {"IEE 1 0 0 0 1", "IEE 0 500 0 0 0", true, 0},  // both are, though one costs much
        {"IEE 3 0 0 9 0", "IEE 0 0 0", false, 0},
        {"IEE 0 0 0", "IEE 0 1 0 -1 0", true, 0},
        {"CP3 1 ((0 0 1) (5 5 1))", "CP3 0 (() (5 5.5 9) (0 0 0))", true, 1},
        {"CP3 0 (())", "CP3 0 ((1 1 1))", false, 0},
        // Also a line that runs the other way.
        {"LTM 0 ((0 0) (9 1))", "LTM 0 ((0 0) (9 -1) (9 1.1) (0 0))", true, 1},
        {"LTM 1 ((0 0) (9 1) () ())", "LTM 0 ((0 0) (9 1))", false, 0},
        {"LTM 0 ((0 0) (9 1))", "LTM 0 (() () () ())", false, 0},
        {"LMM 1 0 0 1 1 2 2 3 3", "LMM 0 5 5 6 6 7 7 8 8", true, 1},
        {"LMM 1 0 0 1 1 2 2 3 3", "LMM 0 5 5 6 6", false, 0},
        // Two circles about one centre are told apart by the radius.
        {"CTTT 1 0 0 1 0 0 2", "CTTT 0 9 9 2 0.1 0 2.1 0 0 1", true, 1},
        {"CTTF 1 0 0 1 0 0 2", "CTTT 0 9 9 2 0.1 0 2.1 0 0 1", false, 0},
        // Bit 1 of either says that bit 3 counts, otherwise bit 2 does.
        {"ILE 1", "ILE 8", true, 1},
        {"ILE 1", "ILE 4", true, 0},
        {"ILE 1", "ILE 6", true, 1},
        {"ILE 3", "ILE 8", true, 0},
        {"BLL 0", "BLL 10", true, 1},
        {"BLL 15", "BLL 14", true, 1},
        {"BLL 0", "ILE 4", false, 0},
    };
    for (auto const& c : cases) {
        choice const now = read(c.now);
        EXPECT_EQ(now->update_from(read(c.old).address()), c.found) << c.old << " to " << c.now;
        EXPECT_EQ(index_of(now), c.index) << c.old << " to " << c.now;
    }
    choice const closest = read("CP3 1 ((0 0) (1 1))");
    closest->select(2);
    EXPECT_EQ(index_of(closest), 1u);
}

TEST(FactoryList, LetsClassesComeAndGoInAnyOrder) {
    struct marked : intersect_curve {
        char16_t const* key() const override { return u"M"; }
    };
    using factory = dynamic::factory<marked, multi_solution>;
    auto a = std::make_unique<factory>(u"A"_w), b = std::make_unique<factory>(u"B"_w),
         c = std::make_unique<factory>(u"C"_w);
    auto const known = [] {
        return !!read("A 0").address() + 10 * !!read("B 0").address() + 100 * !!read("C 0").address();
    };
    EXPECT_EQ(dynamic::abstract_factory<multi_solution>::first(), c.get());
    EXPECT_EQ(written(read("B 1 1 2")), "(M 1 1 2)");
    EXPECT_EQ(known(), 111);
    b.reset();
    EXPECT_EQ(known(), 101);
    c.reset();
    EXPECT_EQ(known(), 1);
    a.reset();
    EXPECT_EQ(known(), 0);
    for (example const& e : one_of_each()) EXPECT_TRUE(read(without_brackets(e.text)).address());
}

}  // namespace
