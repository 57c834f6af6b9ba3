#include "tvmath/construction_choice.h"

#include <gtest/gtest.h>

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

std::vector<choice> one_of_each() {
    std::vector<point> const p = {at(1.0 / 3, -2), point(true, 3, 4, 5), point()};
    std::vector<circle> const c = {circle(2, at(1, 3)), circle(), circle(0.5, point(true, 1, 2, 3))};
    std::vector<line> const l = {line(at(0, 0), at(2, 2.0 / 3)), line()};
    std::vector<choice> all;
    for (multi_solution* const m : std::initializer_list<multi_solution*>{
             new intersect_curve(list(p)),
             new intersect_ellipse_ellipse(list({p[0], p[1], p[0], p[1], p[0]})),
             new multsln_closest_point3d(list(p)), new tangent_line_multi(l),
             new tangent_line_multi_old({{p[0], p[1]}, {p[1]}, {}, {p[0]}}), new circle_tan_tan_fit_multi(c),
             new circle_tan_tan_tan_multi(c), new circle_tan_tan_val_multi,
             new bisect_line_line(point(false, 0, -2)), new intersect_line_ellipse(point(false, -1, -2))}) {
        all.emplace_back(m);
    }
    return all;
}

TEST(MultiSolution, IsWrittenAndReadBack) {
    char const* const texts[] = {"(ILC 1 0.333333 -2 3 4)",
                                 "(IEE 1 0.333333 -2 3 4 0.333333 -2 3 4)",
                                 "(CP3 1 ((0.33333333 -2) (3 4 5) ()))",
                                 "(LTM 1 ((0 0) (2 0.66666667) () ()))",
                                 "(LMM 1 0.333333 -2 3 4 3 4)",
                                 "(CTTF 1 1 3 2 1.#QNAN 1.#QNAN 1.#QNAN 1 2 0.5)",
                                 "(CTTT 1 1 3 2 1.#QNAN 1.#QNAN 1.#QNAN 1 2 0.5)",
                                 "(CTTV 1)",
                                 "(BLL 5)",    // along -Y, at twice the angle -X
                                 "(ILE 15)"};  // the second component is the larger one, both are negative
    std::vector<choice> const all = one_of_each();
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i]->select(1);
        EXPECT_EQ(written(all[i]), texts[i]);
        choice const back = read(without_brackets(texts[i]));
        ASSERT_TRUE(back.address()) << texts[i];
        EXPECT_EQ(written(back).substr(0, 6), std::string(texts[i]).substr(0, 6));
        EXPECT_EQ(index_of(back), 1u);
        // What the old object remembers is found by the one that was read, and the other way round.
        bool const has_answer = i != 3 && i != 5 && i != 6 && i != 7;  // of these the second does not exist
        EXPECT_EQ(back->update_from(all[i].address()), has_answer) << texts[i];
        EXPECT_EQ(all[i]->update_from(back.address()), has_answer) << texts[i];
        for (std::size_t k = 0; k < all.size(); ++k) {
            EXPECT_TRUE(k == i || !all[k]->update_from(back.address())) << texts[i] << texts[k];
        }
        EXPECT_FALSE(all[i]->update_from(nullptr));
    }
    EXPECT_EQ(written(choice()), "()");
    all[0]->select(4294967295u);
    EXPECT_EQ(index_of(read(without_brackets(written(all[0])))), 4294967295u);
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
    for (char const* const text : bad) {
        EXPECT_FALSE(read(text).address()) << text;
        // An object stays as it was.
        std::string const rest = std::string(text).substr(std::min(std::string(text).size(), std::size_t{3}));
        for (choice const& c : one_of_each()) {
            std::string const before = written(c);
            EXPECT_TRUE(c->from_text(to_wide(rest).c_str()) || written(c) == before) << text;
        }
    }
    EXPECT_FALSE(Persistence::to_multi_solution(static_cast<unsigned short const*>(nullptr)).address());
    for (choice const& c : one_of_each()) EXPECT_FALSE(c->from_text(nullptr));
    struct {
        char const *text, *read;
    } const good[] = {
        {"  ILE   3 ", "(ILE 3)"},
        {"ILC 0", "(ILC 0)"},
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
    int read_back = 0;
    for (int trial = 0; trial < 20000; ++trial) {
        std::vector<choice> const all = one_of_each();
        std::string text = without_brackets(written(all[random.below(10)]));
        for (unsigned int n = random.below(4); n > 0; --n) {
            std::size_t const place = random.below(static_cast<unsigned int>(text.size()));
            text[place] = units[random.below(static_cast<unsigned int>(units.size()))];
        }
        if (random.below(4) == 0) text.resize(random.below(static_cast<unsigned int>(text.size())));
        choice const c = read(text);
        if (!c) continue;
        ++read_back;
        std::string const once = written(c);
        choice const again = read(without_brackets(once));
        ASSERT_TRUE(again.address()) << text;
        ASSERT_EQ(written(again), once) << text;
    }
    EXPECT_GT(read_back, 5000);
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
        // Each takes the nearest place by itself, but then the second would have none of its own.
        {"IEE 0 0 0 3 0", "IEE 0 1 0 -2 0", true, 1},
        {"IEE 1 0 0 3 0", "IEE 0 1 0 -2 0", true, 0},
        // Of four only two are left: those that did not move.
        {"IEE 2 0 0 9 0 9 9 0 9", "IEE 0 9 9 0 0", true, 0},
        {"IEE 1 0 0 9 0 9 9 0 9", "IEE 0 9 9 0 0", false, 0},
        // Both are assigned, though the far one costs much.
        {"IEE 1 0 0 0 1", "IEE 0 500 0 0 0", true, 0},
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
        {"ILE 1", "ILE 0", true, 1},
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
    multsln_closest_point3d closest(list({at(0, 0), at(1, 1)}));
    closest.select(1);
    closest.select(2);
    unsigned int index = 9;
    closest.selected(index);
    EXPECT_EQ(index, 1u);
}

// The answers of a part that was turned by a quarter and moved, with the flags as they were.
TEST(MultiSolution, MovesItsAnswers) {
    transform const move = transform::rotation_90().translate(10, 0);  // (x, y) to (10 - y, x)
    char const* const moved[] = {"(ILC 0 12 0.333333 6 3)",
                                 "(IEE 0 12 0.333333 6 3 12 0.333333 6 3)",
                                 "(CP3 0 ((12 0.33333333) (6 3 5) ()))",
                                 "(LTM 0 ((10 0) (9.3333333 2) () ()))",
                                 "(LMM 0 12 0.333333 6 3 6 3)",
                                 "(CTTF 0 7 1 2 1.#QNAN 1.#QNAN 1.#QNAN 8 1 0.5)",
                                 "(CTTT 0 7 1 2 1.#QNAN 1.#QNAN 1.#QNAN 8 1 0.5)",
                                 "(CTTV 0)",
                                 "(BLL 4)",
                                 "(ILE 14)"};
    std::vector<choice> const all = one_of_each();
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i]->apply_transform(transform(5, 5), move);
        EXPECT_EQ(written(all[i]), moved[i]);
    }
}

class marked : public intersect_curve {
public:
    static inline int alive = 0;
    marked() { ++alive; }
    ~marked() override { --alive; }
    char16_t const* key() const override { return u"M"; }
};

TEST(FactoryList, LetsClassesComeAndGoInAnyOrder) {
    using factory = dynamic::factory<marked, multi_solution>;
    auto const length = [] {
        int n = 0;
        for (auto* at = dynamic::abstract_factory<multi_solution>::first(); at; at = at->next()) ++n;
        return n;
    };
    EXPECT_EQ(length(), 10);
    EXPECT_FALSE(read("M 0 1 2").address());
    auto a = std::make_unique<factory>(u"M"_w), b = std::make_unique<factory>(u"N"_w),
         c = std::make_unique<factory>(u"O"_w);
    EXPECT_EQ(dynamic::abstract_factory<multi_solution>::first(), c.get());
    EXPECT_EQ(written(read("N 1 1 2")), "(M 1 1 2)");
    b.reset();
    EXPECT_FALSE(read("N 1 1 2").address());
    EXPECT_EQ(length(), 12);
    EXPECT_FALSE(read("O 1 1").address());
    c.reset();
    EXPECT_TRUE(read("M 0 1 2").address());
    a.reset();
    EXPECT_EQ(length(), 10);
    EXPECT_TRUE(read("ILE 0").address());
    EXPECT_EQ(marked::alive, 0);
}

}  // namespace
