#include "files/point_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <locale>
#include <sstream>

#include "fit/fit_report.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

std::string read_failure(std::string const& text, bool decimal_comma = false) {
    std::istringstream in(text);
    std::vector<point> points = {at(7, 8)};
    read_error error;
    if (read_points(in, decimal_comma, points, error)) return "read";
    EXPECT_TRUE(points.size() == 1 && points[0] == at(7, 8)) << "a failure changed the points";
    return error_text("F", error);
}

TEST(PointFile, ReadsEverySeparatorHeaderAndComment) {
    std::vector<point> const flat = {at(1.5, -2), at(3, 4e3)}, space = {at(1, 2, 3), at(4, 5, 6)};
    struct {
        char const* name;
        std::string text;
        std::vector<point> points;
        bool decimal_comma = false;
    } const cases[] = {
        {"commas", "1.5,-2\n3,4e3\n", flat},
        {"no end of the last line", "1.5,-2\n3,4e3", flat},
        {"semicolons", "1.5;-2\n3;4e3\n", flat},
        {"semicolons with decimal commas", "1,5;-2\n3;4e3\n", flat},
        {"blanks and tabs in runs", "  1.5 \t -2\t\n\t3  4e3\n", flat},
        {"header, CRLF and byte order mark", "\xEF\xBB\xBFx,y\r\n1.5,-2\r\n3,4e3\r\n", flat},
        {"header settles the separator", "x;y\n1,5;-2\n3;4e3\n", flat},
        {"header whose name begins like a word for infinity", "info number\n1.5 -2\n3 4e3\n", flat},
        {"comments and blank lines", "# a;b\n\n \t\n1.5,-2 # first\n#3,3\n3,4e3#last", flat},
        {"quotes", "\"x, mm # 1\",\"y\"\n\"1.5\",\" -2 \"\n3,\"4e3\"\n", flat},
        {"plus signs", "+1.5,-2\n+3,+4e+3\n", flat},
        {"decimal commas by option", "1,5 -2\n3 4e3\n", flat, true},
        {"three columns", "x y z\n1 2 3\n4 5 6\n", space},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        std::istringstream in(c.text);
        std::vector<point> points;
        read_error error;
        ASSERT_TRUE(read_points(in, c.decimal_comma, points, error)) << error_text("F", error);
        EXPECT_TRUE(points == c.points);
    }
}

TEST(PointFile, SaysInOneLineWhatIsWrong) {
    struct {
        std::string text, message;
        bool decimal_comma = false;
    } const cases[] = {
        {"", "F: holds no points"},
        {"# nothing\nx,y\n", "F: holds no points"},
        {"1,2\n3,4x\n", "F:2: '4x' is not a number"},
        {"x,y\nx,y\n1,2\n", "F:2: 'x' is not a number"},
        // A first line of typing errors is no header: its point would be lost without a word.
        {"1.0o,2.o\n1,2\n", "F:1: '1.0o' is not a number"},
        {"x,2\n1,2\n", "F:1: 'x' is not a number"},
        {"nan,nan\n1,2\n", "F:1: 'nan' is not a finite number"},
        {"1,-INF\n", "F:1: '-INF' is not a finite number"},
        {"1,0x10\n", "F:1: '0x10' is not a number"},
        {"1,+-2\n", "F:1: '+-2' is not a number"},
        {"1,1e999\n", "F:1: '1e999' is out of the range of numbers"},
        {"1,2\n\n1,2,3\n", "F:3: 3 columns, separated by commas, but line 1 has 2"},
        {"x,y\n1 2\n", "F:2: 1 column, separated by commas; a point has 2 or 3"},
        {"1,2,3,4\n", "F:1: 4 columns, separated by commas; a point has 2 or 3"},
        {"1,2\n1,\n", "F:2: column 2 is empty"},
        {",,\n1,2\n", "F:1: column 1 is empty"},
        {"1,5 2,5\n", "F:1: '5 2' is not a number (if commas are decimal marks, give --decimal ,)"},
        {"x y\n1,5 2,5\n",
         "F:2: '1,5': the decimal mark is a point here (if commas are decimal marks, give --decimal ,)"},
        {"1.5 2\n", "F:1: '1.5': the decimal mark is a comma here", true},
        // A point between thousands must not be taken for a decimal point.
        {"1,5;2\n1.234;2\n", "F:2: '1.234': the decimal mark is a comma here"},
        {"1.234,5;2\n", "F:1: '1.234,5' is not a number"},
        {std::string("\xFF\xFE") + "1", "F:1: text in UTF-16; save it as UTF-8"},
        {std::string("1\0,2\n", 5),
         "F:1: zero byte: this is not a text file (text in UTF-16 has to be saved as UTF-8)"},
        {"1,2\n" + std::string(70000, '1'), "F:2: line longer than 65536 bytes; this is no list of points"},
        {"1,2\n1,\x1B[31m\xFF\n", "F:2: '?[31m?' is not a number"},
        {"1,2\n1,2\n1," + std::string(50, 'a'), "F:3: '" + std::string(40, 'a') + "...' is not a number"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(read_failure(c.text, c.decimal_comma), c.message) << c.text.substr(0, 60);
}

// As a program in a German environment would set it, without asking for an installed locale.
class comma_marks : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(PointFile, DoesNotFollowTheLocale) {
    std::locale const before = std::locale::global(std::locale(std::locale::classic(), new comma_marks));
    std::istringstream in("1234.5,2.5\n");
    std::vector<point> points;
    read_error error;
    bool const read = read_points(in, false, points, error);
    fit_result result;
    std::string reason;
    bool is_usage = false;
    bool const found = fit_feature(*find_fit_kind("point"), points, {1}, {}, result, reason, is_usage);
    std::ostringstream out;
    if (found) write_text(out, result);
    std::locale::global(before);

    EXPECT_TRUE(read && points == std::vector<point>{at(1234.5, 2.5)}) << error.reason;
    EXPECT_NE(out.str().find("center x            1234.5\n"), std::string::npos) << out.str();
}

// Nearly all lines have 15 bytes, and 2^20 leaves 1 over 15: the borders of the 13 chunks of 1 MiB that are
// read come to lie at as many different places of a line, between CR and LF included.
TEST(PointFile, ReadsAMillionLinesWhole) {
    constexpr int n = 1'000'000;
    std::string text;
    for (int i = 0; i < n; ++i) text += std::to_string(i) + ".25 " + std::to_string(i % 10) + ".5\r\n";
    std::istringstream in(text);
    std::vector<point> points;
    read_error error;
    ASSERT_TRUE(read_points(in, false, points, error)) << error_text("F", error);
    ASSERT_EQ(points.size(), static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(points[static_cast<std::size_t>(i)] == at(i + 0.25, i % 10 + 0.5)) << i;
    }
}

TEST(PointFile, AnswersAnyBytes) {
    seeded_random random(20260105);
    std::string const likely = "0123456789.,;+-eE \t\r\n\"#naif";
    for (int trial = 0; trial < 3000; ++trial) {
        std::string text;
        for (unsigned int i = random.below(60); i > 0; --i) {
            text += random.below(10) == 0 ? static_cast<char>(random.below(256))
                                          : likely[random.below(static_cast<unsigned int>(likely.size()))];
        }
        std::istringstream in(text);
        std::vector<point> points;
        read_error error;
        if (read_points(in, random.coin(), points, error)) {
            ASSERT_FALSE(points.empty());
            for (point const& p : points)
                ASSERT_TRUE(std::isfinite(p.x()) && p.dimension() == points[0].dimension());
        } else {
            ASSERT_FALSE(error.reason.empty());
            for (char const c : error.reason) ASSERT_TRUE(c >= ' ' && c <= '~') << text;
        }
    }
}

}  // namespace
}  // namespace tvmath
